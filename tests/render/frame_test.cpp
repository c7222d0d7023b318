#include "render/frame.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>

#include "render/camera.h"
#include "render/light.h"
#include "render/recorded_view.h"
#include "support/failing_memory.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> textsOf(const ModelView& view) {
  std::vector<std::string> texts;
  for (const OverlayLine& line : view.overlay) texts.push_back(line.text);
  return texts;
}

TEST(Frame, WithoutModelClearsPresentsAndWaitsWithTheMoves) {
  RecordedView recorded;
  recorded.view.moveForward = -3;
  EXPECT_THAT(recorded.frame(), IsEmpty());
  EXPECT_EQ(recorded.device().cleared, 0xFF7F7F7F);
  EXPECT_EQ(recorded.device().presents, 1u);
  EXPECT_EQ(recorded.view.overlay.size(), 1u);
  EXPECT_EQ(recorded.view.moveForward, -3);
}

TEST(Frame, DrawsAxesAndGridBeforeTheModel) {
  RecordedView recorded;
  recorded.show(triangleModel());
  const auto& draws = recorded.frame();
  ASSERT_EQ(draws.size(), 3u);
  EXPECT_EQ(draws[0].vertices, recorded.view.axesBuffer);
  EXPECT_EQ(draws[0].primitiveCount, 3u);
  EXPECT_EQ(draws[1].vertices, recorded.view.gridBuffer);
  EXPECT_EQ(draws[1].primitiveCount, 82u);
  EXPECT_EQ(draws[2].indices, recorded.view.model->meshes[0].indexBuffer);
  for (const RecordedDraw& draw : draws) {
    EXPECT_EQ(draw.type, draw.indices ? D3DPT_TRIANGLELIST : D3DPT_LINELIST);
    EXPECT_EQ(draw.vertices->fvf, 0x42u);
    EXPECT_EQ(draw.state.cullMode, D3DCULL_NONE);
    EXPECT_EQ(draw.state.fillMode, D3DFILL_WIREFRAME);
    EXPECT_FALSE(draw.state.lighting || draw.state.lightEnable);
    EXPECT_EQ(draw.state.view.m, viewMatrix({0, 3, -10}, 0, 0).m);
  }
}

TEST(Frame, MovesTheEyeAlongItsAxes) {
  RecordedView recorded;
  recorded.show(triangleModel());
  recorded.view.eyePosition = {0, 0, 0};
  recorded.view.yaw = 90;  // looks along +x, its right is -z
  recorded.view.moveForward = -2;
  recorded.view.moveSide = 3;
  recorded.view.moveUp = 5;
  recorded.frame();
  EXPECT_NEAR(recorded.view.eyePosition.x, 2, 1e-5);
  EXPECT_NEAR(recorded.view.eyePosition.y, -5, 1e-5);
  EXPECT_NEAR(recorded.view.eyePosition.z, 3, 1e-5);
}

TEST(Frame, ShowsItsFiguresOverThePicture) {
  RecordedView recorded;
  int64_t ticks = 0;
  recorded.view.counter = {10'000'000, [&] { return ticks += 3'000'000; }};
  recorded.show(triangleModel());
  recorded.view.envTime = 7;
  recorded.view.pitch = -2.5f;
  recorded.frame();
  EXPECT_THAT(textsOf(recorded.view), ElementsAre("000003.00 FPS, 000333.33 ms",
                                                  "materials 7, meshes 1 ( verts 3, indices 3, tris 1 )",
                                                  "POS: 000000.00 000003.00 -00010.00",
                                                  "ROT: -00002.50 000000.00 000000.00", "ENVTIME: 07:00"));
  std::vector<int> rows;
  for (const OverlayLine& line : recorded.view.overlay) {
    EXPECT_EQ(line.x, 8);
    EXPECT_EQ(line.color, rows.empty() ? 0xFF00FFFF : 0xFFFFFFFF);
    rows.push_back(line.y);
  }
  EXPECT_THAT(rows, ElementsAre(8, 24, 44, 54, 64));

  recorded.view.envMode = true;
  recorded.view.counter = {1000, [] { return 5; }};
  recorded.frame();
  EXPECT_THAT(textsOf(recorded.view), ElementsAre("001000.00 FPS, 000001.00 ms")) << "a clock that stands";
}

TEST(Frame, CutsMeshesByTheirDistanceOnTheGround) {
  struct Case {
    const char* name;
    Vector3 center;
    float radius;
    uint8_t before;
    bool noDistanceCut;
    uint8_t after;
  };
  // The eye is at 0, 0, 0 and looks along +z, so distances count from z = 69.3.
  const Case cases[] = {
      {"at the point ahead", {0, 0, 69.3f}, 0, 0, false, 1},
      {"exactly at the limit", {0, 0, 0}, 0, 0, false, 1},
      {"its sphere reaches in", {0, 0, -10}, 10.5f, 1, false, 1},
      {"behind the limit", {0, 0, -1}, 0.5f, 1, false, 0},
      {"beside the limit", {69.5f, 0, 69.3f}, 0, 1, false, 0},
      {"far above", {0, 10000, 69.3f}, 1, 0, false, 1},
      {"without the cut", {0, 0, -5000}, 1, 0, true, 1},
      {"never culled", {0, 0, -5000}, 1, 2, false, 2},
      {"a center that is no number", {NAN, 0, 0}, 1, 1, false, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    RecordedView recorded;
    Model model = triangleModel();
    model.meshes[0].center = c.center;
    model.meshes[0].radius = c.radius;
    model.meshes[0].visibility = c.before;
    recorded.show(std::move(model));
    recorded.view.eyePosition = {0, 0, 0};
    recorded.view.noDistanceCut = c.noDistanceCut;
    EXPECT_EQ(recorded.meshesDrawn().size(), c.after == 0 ? 0u : 1u);
    EXPECT_EQ(recorded.view.model->meshes[0].visibility, c.after);
  }
}

TEST(Frame, DrawsTheSkyAroundTheEye) {
  RecordedView recorded;
  recorded.show(triangleModel());
  const Material* sky = &recorded.view.model->materials[1];
  for (uint32_t n = 0; n < skyMaterialCount; ++n) recorded.dress(recorded.view.model->materials[1 + n]);
  recorded.view.envMode = true;
  recorded.view.envTime = 9;  // turned by 90 degrees
  for (const uint8_t mode : {renderWireframe, renderLit}) {
    recorded.view.renderMode = mode;
    EXPECT_EQ(recorded.frame().size(), 1u) << "neither grid nor sky, mode " << int{mode};
  }
  recorded.view.renderMode = renderTextured;
  const auto& draws = recorded.frame();
  ASSERT_EQ(draws.size(), 10u);
  const uint32_t pictures[] = {0, 1, 2, 3, 4, 5, 3, 3, 3, 3};
  constexpr float turned[4][4] = {{0, 0, -1, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}, {0, 3, -10, 1}};
  for (uint32_t quad = 0; quad < 10; ++quad) {
    const auto& [state, vertices, indices, type, startVertex, primitiveCount] = draws[quad];
    EXPECT_EQ(state.texture, sky[pictures[quad]].texture);
    EXPECT_EQ(vertices, recorded.view.skyBuffer);
    EXPECT_EQ(std::tuple(type, startVertex, primitiveCount), std::tuple(D3DPT_TRIANGLESTRIP, quad * 4, 2u));
    EXPECT_EQ(std::tuple(state.address, state.cullMode, state.fillMode),
              std::tuple(D3DTADDRESS_CLAMP, D3DCULL_CCW, D3DFILL_SOLID));
    for (size_t i = 0; i < 16; ++i) EXPECT_NEAR(state.world.m[i / 4][i % 4], turned[i / 4][i % 4], 1e-5);
  }
  const DeviceState& after = recorded.device().state;
  EXPECT_EQ(after.address, D3DTADDRESS_WRAP);
  EXPECT_EQ(after.world.m, identityMatrix.m);
  recorded.view.model->materials.resize(5);
  EXPECT_THAT(recorded.frame(), IsEmpty());
}

TEST(Light, FollowsTheHour) {
  struct Case {
    float hour, level, red, green, blue, x, y;
  };
  const Case cases[] = {{0, 0.1f, 0.25f, 0.1f, 0.05f, 0, 1},
                        {11, 0.65f, 1.0f, 0.65f, 0.325f, 0.2588f, -0.9659f},
                        {12, 0.7f, 1.0f, 1.0f, 0.7f, 0, -1},
                        {18, 0.4f, 1.0f, 1.0f, 0.4f, -1, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hour);
    const Daylight day = daylight(c.hour);
    EXPECT_NEAR(day.level, c.level, 1e-6);
    EXPECT_NEAR(day.diffuse.r, c.red, 1e-6);
    EXPECT_NEAR(day.diffuse.g, c.green, 1e-6);
    EXPECT_NEAR(day.diffuse.b, c.blue, 1e-6);

    RecordedView recorded;
    recorded.show(triangleModel());
    recorded.view.renderMode = renderTextured;
    recorded.view.lightMode = lightSun;
    recorded.view.envTime = c.hour;
    recorded.frame();
    const D3DVECTOR& direction = recorded.device().state.light.Direction;
    EXPECT_NEAR(direction.x, c.x, 1e-4);
    EXPECT_NEAR(direction.y, c.y, 1e-4);
    EXPECT_EQ(direction.y, direction.z);
  }
}

TEST(Light, TakesItsColoursFromTheModes) {
  RecordedView recorded;
  recorded.show(triangleModel());
  ModelView& view = recorded.view;
  view.lightMode = lightHead;
  view.pitch = 90;
  view.envTime = 18;
  view.clearColor = {0.1f, 0.2f, 0.3f, 0.0f};
  struct {
    uint8_t mode;
    bool environment;
    std::array<float, 4> diffuse, ambient;
  } const cases[] = {{renderLit, false, {1, 1, 1, 1}, {0.3f, 0.3f, 0.3f, 1}},
                     {renderTextured, false, {1, 1, 0.4f, 1}, {0.1f, 0.2f, 0.3f, 0}},
                     {renderTextured, true, {1, 1, 0.4f, 1}, {0.4f, 0.4f, 0.4f, 1}}};
  for (const auto& c : cases) {
    view.renderMode = c.mode;
    view.envMode = c.environment;
    recorded.frame();
    const D3DLIGHT9& light = recorded.device().state.light;
    const float told[] = {light.Diffuse.r, light.Diffuse.g, light.Diffuse.b, light.Diffuse.a,
                          light.Ambient.r, light.Ambient.g, light.Ambient.b, light.Ambient.a};
    for (size_t i = 0; i < 8; ++i) EXPECT_NEAR(told[i], i < 4 ? c.diffuse[i] : c.ambient[i - 4], 1e-6) << i;
    EXPECT_NEAR(light.Direction.y, -1, 1e-6);
    EXPECT_TRUE(recorded.device().state.lightEnable);
  }
}

TEST(MeshBuffers, HoldTheVerticesAndComeWithTheMaterialOfTheMode) {
  RecordedView recorded;
  recorded.show(triangleModel());
  ModelView& view = recorded.view;
  const size_t created = recorded.device().created;
  /// The floats of one vertex after a rebuild.
  const auto vertex = [&](uint8_t mode, size_t floats, size_t index) {
    view.renderMode = mode;
    view.buffersBuilt = false;
    recorded.frame();
    const auto all = contents<float>(view.model->meshes[0].vertexBuffer);
    EXPECT_EQ(all.size(), floats * 3);
    return std::vector<float>(all.begin() + index * floats, all.begin() + (index + 1) * floats);
  };
  const auto colorOf = [](const std::vector<float>& v) { return std::bit_cast<uint32_t>(v.back()); };
  const D3DMATERIAL9& material = recorded.device().state.material;

  view.backgroundIndex = 0;
  EXPECT_EQ(colorOf(vertex(renderWireframe, 4, 2)), 0x00FFFF00u);
  view.backgroundIndex = 1;
  recorded.frame();
  EXPECT_EQ(recorded.device().created, created + 1) << "built once, and followed with the next rebuild only";
  EXPECT_EQ(colorOf(vertex(renderWireframe, 4, 2)), 0u);
  EXPECT_EQ(material.Diffuse.r, 0);

  auto lit = vertex(renderLit, 7, 1);
  EXPECT_EQ(colorOf(lit), 0xFF809FBFu);
  lit.pop_back();
  EXPECT_THAT(lit, ElementsAre(4, 5, 6, 1, 0, 0));
  EXPECT_EQ(std::pair(material.Diffuse.g, material.Ambient.b), std::pair(0.8f, 0.2f));

  EXPECT_THAT(vertex(renderTextured, 8, 2), ElementsAre(7, 8, 10, 0, 0, 1, 0.75f, 1));
  EXPECT_EQ(std::pair(material.Diffuse.g, material.Ambient.b), std::pair(1.0f, 1.0f));
  EXPECT_EQ(material.Power, 8);
  EXPECT_EQ(recorded.device().liveObjects(), 5) << "the old buffers are gone";
}

TEST(MeshBuffers, AMeshWithoutOneIsNotDrawn) {
  RecordedView recorded;
  recorded.show(ModelBuilder().material("a").grid(0, 1).grid(0, 2).grid(0, 3).build());
  recorded.device().creationsLeft = 1;
  EXPECT_THAT(recorded.meshesDrawn(), ElementsAre(0));
}

TEST(MeshBuffers, AreNotBuiltWithinTheTimeOfTheFrame) {
  RecordedView recorded;
  std::vector<size_t> created;
  recorded.view.counter = {1000, [&] { return created.push_back(recorded.device().created), 0; }};
  recorded.show(triangleModel());
  recorded.frame();
  EXPECT_THAT(created, ElementsAre(recorded.device().created, recorded.device().created));
}

TEST(Frame, GoesOnAfterALossOrLackOfMemory) {
  RecordedView recorded;
  RecordingDevice& device = recorded.device();
  recorded.show(triangleModel());
  device.cooperativeLevel = D3DERR_DEVICELOST;
  recorded.frame();
  EXPECT_EQ(device.clears + device.resets, 0u);
  EXPECT_THAT(recorded.view.overlay, IsEmpty());
  device.cooperativeLevel = D3DERR_DEVICENOTRESET;
  for (int allocations = 0; device.presents == 0; ++allocations) {
    ASSERT_LT(allocations, 100);
    const FailingMemory memory(allocations);
    recorded.frame();
    EXPECT_TRUE(device.presents == 1 || device.draws.empty()) << "a picture that is not whole";
  }
  EXPECT_GT(device.resets, 1u);
  EXPECT_TRUE(recorded.view.frameIdle);
  EXPECT_THAT(recorded.meshesDrawn(), ElementsAre(0));
  EXPECT_FALSE(device.state.texture);
}

/// A device whose present asks for another frame, as a window that repaints would.
class RepaintingDevice : public RecordingDevice {
 public:
  explicit RepaintingDevice(ModelView& view) : view_(view) {}
  void Present() override {
    renderFrame(view_);
    RecordingDevice::Present();
  }

 private:
  ModelView& view_;
};

TEST(Frame, IsNotStartedWhileAnotherIsDrawn) {
  ModelView view;
  const auto device = std::make_shared<RepaintingDevice>(view);
  view.p_device = device;
  renderFrame(view);
  EXPECT_EQ(device->presents, 1u);
  EXPECT_TRUE(view.frameIdle);
}

}  // namespace
}  // namespace facet
