#include "render/draw_model.h"

#include <gmock/gmock.h>

#include "render/camera.h"
#include "render/recorded_view.h"

namespace facet {
namespace {

using testing::ElementsAre;

/// What a draw draws: a part of the scenery, or a mesh by its number.
std::string nameOf(const RecordedDraw& draw, const ModelView& view) {
  if (draw.vertices == view.system.axesBuffer) return "axes";
  if (draw.vertices == view.system.gridBuffer) return "grid";
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

/// One mesh for each material of these render flags; all materials, those of the sky too, have textures.
struct DrawnMeshes : RecordedView {
  explicit DrawnMeshes(const std::vector<uint8_t>& renderFlags) {
    ModelBuilder builder;
    for (size_t i = 0; i < renderFlags.size(); ++i)
      builder.material("m" + std::to_string(i)).grid(static_cast<uint32_t>(i), 1);
    show(builder.build());
    for (Material& material : view.scene.model->materials) dress(material);
    for (size_t i = 0; i < renderFlags.size(); ++i)
      view.scene.model->materials[i].renderFlags = renderFlags[i];
  }
};

TEST(DrawModel, DrawsEachModeInItsOwnWay) {
  const std::string scenery = "axes grid: wires two-sided";
  const std::string sky = R"(sky0: clamped texture 7
sky1: clamped texture 8
sky2: clamped texture 9
sky3: clamped texture 10
sky4: clamped texture 11
sky5: clamped texture 12
sky6 sky7 sky8 sky9: clamped texture 10)";
  const std::string lit = R"(
1: lit texture 1
6: lit texture 6
0: two-sided lit alpha>128 texture 0
2: two-sided lit blend 5:6 texture 2
3: two-sided lit alpha>0 blend 5:6 texture 3
4: two-sided blend 2:6 texture 4
5: two-sided blend 2:5 texture 5)";
  const std::string unlit = R"(
1: texture 1
6: texture 6
0: two-sided alpha>128 texture 0
2: two-sided blend 5:6 texture 2
3: two-sided alpha>0 blend 5:6 texture 3
4: two-sided blend 2:6 texture 4)";  // 5 needs light
  struct {
    uint8_t renderMode, lightMode;
    bool environment;
    std::string drawn;
  } const cases[] = {
      {renderWireframe, lightHead, false, "axes grid 0 1 2 3 4 5 6: wires two-sided"},
      {renderLit, lightOff, false, scenery + "\n0 1 2 3 4 5 6:"},
      {renderLit, lightHead, true, "0 1 2 3 4 5 6: lit"},
      {renderTextured, lightOff, false, scenery + unlit},
      {renderTextured, lightSun, true, sky + lit},
      {3, lightSun, false, scenery},
  };
  DrawnMeshes meshes({1, 0, 2, 3, 4, 14, 8});
  for (const auto& c : cases) {
    meshes.view.settings.renderMode = c.renderMode;
    meshes.view.settings.lightMode = c.lightMode;
    meshes.view.settings.envMode = c.environment;
    meshes.view.scene.buffersBuilt = c.renderMode > renderTextured;
    EXPECT_EQ(drawn(meshes), c.drawn);
    constexpr uint32_t formats[] = {0x42, 0x52, 0x112, 0x42};
    EXPECT_EQ(meshes.device().draws.back().vertices->fvf, formats[c.renderMode]);
  }
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
