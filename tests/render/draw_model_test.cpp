#include "render/scene.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <filesystem>
#include <span>
#include <sstream>

#include "render/camera.h"
#include "render/recorded_view.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::ElementsAre;

/// What a draw draws: a part of the scenery, or a mesh by its number.
std::string nameOf(const RecordedDraw& draw, const ModelView& view) {
  if (draw.vertices == view.system.axesBuffer) return std::to_string(draw.primitiveCount) + " axes";
  if (draw.vertices == view.system.gridBuffer) return std::to_string(draw.primitiveCount) + " grid lines";
  if (draw.vertices == view.system.skyBuffer) return "sky" + std::to_string(draw.startVertex / 4);
  size_t i = 0;
  while (draw.indices != view.scene.model->meshes[i].indexBuffer) ++i;
  return std::to_string(i);
}

/// How a draw differs from plain ones.
std::string lookOf(const RecordedDraw& draw, const Model& model) {
  const DeviceState& state = draw.state;
  std::string text;
  if (state.fillMode == D3DFILL_WIREFRAME) text += " wires";
  if (state.cullMode == D3DCULL_NONE) text += " two-sided";
  if (state.lighting) text += " lit";
  if (state.colorOp == D3DTOP_MODULATE) text += " modulated";
  if (state.address == D3DTADDRESS_CLAMP) text += " clamped";
  if (state.alphaTestEnable) text += " alpha>" + std::to_string(state.alphaRef);
  if (state.alphaBlendEnable)
    text += " blend " + std::to_string(state.srcBlend) + ":" + std::to_string(state.destBlend);
  for (size_t i = 0; state.texture && i < model.materials.size(); ++i)
    if (state.texture == model.materials[i].texture) text += " texture " + std::to_string(i);
  return text;
}

/// The draws of a frame in order, those that look the same in one line.
std::string drawn(RecordedView& recorded) {
  std::string text, last;
  for (const RecordedDraw& draw : recorded.frame()) {
    const std::string look = lookOf(draw, *recorded.view.scene.model);
    if (!text.empty()) text += look == last ? " " : ":" + last + "\n";
    text += nameOf(draw, recorded.view);
    last = look;
  }
  return text.empty() ? text : text + ":" + last;
}

/// The light, the material, the second vertex of the first mesh and the draws of a frame.
std::string told(RecordedView& recorded) {
  const std::string draws = drawn(recorded);
  std::ostringstream text;
  const auto tell = [&](const char* name, std::span<const float> values) {
    text << name;
    for (const float value : values) text << ' ' << static_cast<double>(std::lround(value * 1000)) / 1000;
    text << '\n';
  };
  const auto tellColor = [&](const char* name, const D3DCOLORVALUE& c) {
    tell(name, {{c.r, c.g, c.b, c.a}});
  };
  const DeviceState& state = recorded.device().state;
  if (state.lightEnable) {
    tellColor("light: diffuse", state.light.Diffuse);
    tellColor("light: ambient", state.light.Ambient);
    tell("light: direction", {{state.light.Direction.x, state.light.Direction.y, state.light.Direction.z}});
  }
  tellColor("material: diffuse", state.material.Diffuse);
  tellColor("material: ambient", state.material.Ambient);
  tellColor("material: specular", state.material.Specular);
  tell("material: power", {{state.material.Power}});
  const auto& buffer = recorded.view.scene.model->meshes[0].vertexBuffer;
  const uint32_t format = static_cast<RecordedVertices&>(*buffer).fvf;
  const size_t colors = format & D3DFVF_DIFFUSE ? 1 : 0;
  const auto all = contents<float>(buffer);
  const auto vertex = std::span(all).subspan(all.size() / 3, all.size() / 3);
  tell("vertex:", vertex.first(vertex.size() - colors));
  text << std::hex << "vertex: format " << format;
  if (colors) text << ", color " << std::bit_cast<uint32_t>(vertex.back());
  text << '\n';
  return text.str() + draws + "\n\n";
}

/// One mesh for each material of these render flags; all materials, those of the sky too, have textures.
struct DrawnMeshes : RecordedView {
  explicit DrawnMeshes(const std::vector<uint8_t>& renderFlags) {
    ModelBuilder builder;
    for (uint32_t i = 0; i < renderFlags.size(); ++i)
      builder.material("m").mesh(i, {{1, 2, 3}, {4, 5, 6, 0.5f, 0.25f, 0.75f, 0.1f, 0.2f}, {}}, {0, 1, 2});
    show(builder.build());
    for (Material& material : view.scene.model->materials) dress(material);
    for (size_t i = 0; i < renderFlags.size(); ++i)
      view.scene.model->materials[i].renderFlags = renderFlags[i];
  }
};

TEST(Frame, IsLitAndDrawnByTheModesAndTheHour) {
  struct {
    uint8_t background, renderMode, lightMode;
    bool environment;
    float hour;
  } const cases[] = {
      {0, renderWireframe, lightHead, false, 18}, {1, renderWireframe, lightOff, true, 18},
      {0, renderLit, lightOff, false, 18},        {0, renderLit, lightHead, true, 18},
      {0, renderTextured, lightOff, false, 18},   {0, renderTextured, lightHead, false, 18},
      {0, renderTextured, lightHead, true, 18},   {0, renderTextured, lightSun, true, 0},
      {0, renderTextured, lightSun, true, 11},    {0, renderTextured, lightSun, true, 12},
      {0, renderTextured, lightSun, true, 18},
  };
  DrawnMeshes meshes({1, 0, 2, 3, 4, 14, 8});
  ModelView& view = meshes.view;
  view.camera.pitch = 90;
  view.settings.clearColor = {0.1f, 0.2f, 0.3f, 0.0f};
  std::ostringstream text;
  for (const auto& c : cases) {
    view.settings.backgroundIndex = c.background;
    view.settings.renderMode = c.renderMode;
    view.settings.lightMode = c.lightMode;
    view.settings.envMode = c.environment;
    view.settings.envTime = c.hour;
    view.scene.buffersBuilt = false;
    const char *const modes[] = {"wireframe", "lit", "textured"}, *const lights[] = {"no light", "head",
                                                                                     "sun"};
    text << modes[c.renderMode] << ", " << lights[c.lightMode] << (c.environment ? ", environment, " : ", ");
    text << c.hour << " h, background " << int{c.background} << '\n' << told(meshes);
  }
  EXPECT_EQ(text.str(), readWholeFile(std::filesystem::path(TESTS_FOLDER) / "render/golden/frames.txt"));
  EXPECT_EQ(meshes.device().liveObjects(), 3 + 7 * 2 + 13) << "buffers of earlier modes are gone";
  view.settings.renderMode = 3;
  EXPECT_EQ(drawn(meshes), "");
}

TEST(DrawModel, TurnsTheSkyAroundTheEye) {
  DrawnMeshes meshes({});
  meshes.view.settings.renderMode = renderTextured;
  meshes.view.settings.envMode = true;
  meshes.view.settings.envTime = 9;  // turned by 90 degrees
  constexpr float turned[4][4] = {{0, 0, -1, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}, {0, 3, -10, 1}};
  const auto& draws = meshes.frame();
  ASSERT_EQ(draws.size(), 10u);
  for (size_t i = 0; i < 16; ++i)
    EXPECT_NEAR(draws[9].state.world.m[i / 4][i % 4], turned[i / 4][i % 4], 1e-5);
  EXPECT_EQ(draws[9].state.view.m, viewMatrix({0, 3, -10}, 0, 0).m);
  EXPECT_EQ(std::tuple(draws[9].type, draws[9].primitiveCount), std::tuple(D3DPT_TRIANGLESTRIP, 2u));
  meshes.view.scene.model->materials.resize(5);
  EXPECT_EQ(drawn(meshes), "");
}

TEST(DrawModel, ShowsUntexturedMeshesAmongThePlainOnesAsLitColours) {
  DrawnMeshes meshes({1, 0, 1, 0});
  ViewSettings& settings = meshes.view.settings;
  settings.renderMode = renderLit;
  meshes.frame();
  const D3DCOLORVALUE ambient = meshes.device().draws.back().state.material.Ambient;
  const auto colored = contents<uint32_t>(meshes.device().draws.back().vertices);
  settings.renderMode = renderTextured;
  settings.envMode = settings.showUntextured = true;
  settings.lightMode = lightHead;
  Model& model = *meshes.view.scene.model;
  for (const size_t i : {1, 2}) model.materials[i].hasTexture = 0, model.materials[i].texture.reset();
  model.materials.resize(5);  // without a sky
  meshes.view.scene.buffersBuilt = false;
  EXPECT_EQ(drawn(meshes), "1 2: lit\n3: lit texture 3\n0: two-sided lit alpha>128 texture 0");
  const auto& draws = meshes.device().draws;
  EXPECT_EQ(contents<uint32_t>(draws[0].vertices), colored);
  EXPECT_EQ(draws[0].state.material.Ambient.r, ambient.r);
  EXPECT_EQ(draws[2].state.material.Ambient.r, 1);
}

TEST(DrawModel, LeavesOutWhatHasNothingToDraw) {
  DrawnMeshes meshes({0, 0, 1, 0, 1, 0});
  meshes.frame();  // builds the buffers
  meshes.view.settings.noDistanceCut = true;
  Model& model = *meshes.view.scene.model;
  model.meshes[1].vertexBuffer.reset();
  model.materials[2].hasTexture = 0;
  model.materials[3].hasTexture = 0;
  model.meshes[4].visibility = 2;
  model.meshes[5].indexBuffer.reset();
  EXPECT_THAT(meshes.meshesDrawn(), ElementsAre(0, 2, 3, 4));
  meshes.view.settings.renderMode = renderTextured;
  EXPECT_THAT(meshes.meshesDrawn(), ElementsAre(0, 4));
}

}  // namespace
}  // namespace facet
