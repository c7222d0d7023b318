#include "render/frame.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>

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
  recorded.view.camera.moveForward = -3;
  EXPECT_THAT(recorded.frame(), IsEmpty());
  EXPECT_EQ(recorded.device().cleared, 0xFF7F7F7F);
  EXPECT_EQ(recorded.device().presents, 1u);
  EXPECT_EQ(recorded.view.overlay.size(), 1u);
  EXPECT_EQ(recorded.view.camera.moveForward, -3);
}

TEST(Frame, MovesTheEyeAlongItsAxes) {
  RecordedView recorded;
  recorded.show(triangleModel());
  recorded.view.camera.eyePosition = {0, 0, 0};
  recorded.view.camera.yaw = 90;  // looks along +x, its right is -z
  recorded.view.camera.moveForward = -2;
  recorded.view.camera.moveSide = 3;
  recorded.view.camera.moveUp = 5;
  recorded.frame();
  EXPECT_NEAR(recorded.view.camera.eyePosition.x, 2, 1e-5);
  EXPECT_NEAR(recorded.view.camera.eyePosition.y, -5, 1e-5);
  EXPECT_NEAR(recorded.view.camera.eyePosition.z, 3, 1e-5);
}

TEST(Frame, ShowsItsFiguresOverThePicture) {
  RecordedView recorded;
  int64_t ticks = 0;
  recorded.view.counter = {10'000'000, [&] { return ticks += 3'000'000; }};
  recorded.show(triangleModel());
  recorded.view.settings.envTime = 7;
  recorded.view.camera.pitch = -2.5f;
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

  recorded.view.settings.envMode = true;
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
    recorded.view.camera.eyePosition = {0, 0, 0};
    recorded.view.settings.noDistanceCut = c.noDistanceCut;
    EXPECT_EQ(recorded.meshesDrawn().size(), c.after == 0 ? 0u : 1u);
    EXPECT_EQ(recorded.view.scene.model->meshes[0].visibility, c.after);
  }
}

/// Diffuse / ambient / direction, in thousandths.
std::string told(const D3DLIGHT9& light) {
  const auto& [diffuse, specular, ambient, direction] = light;
  std::string text;
  const auto tell = [&](std::initializer_list<float> values) {
    for (const float value : values) text += std::to_string(std::lround(value * 1000)) + " ";
  };
  tell({diffuse.r, diffuse.g, diffuse.b, diffuse.a});
  text += "/ ";
  tell({ambient.r, ambient.g, ambient.b, ambient.a});
  text += "/ ";
  tell({direction.x, direction.y, direction.z});
  return text;
}

TEST(Light, ComesFromTheModesAndTheHour) {
  struct {
    uint8_t renderMode, lightMode;
    bool environment;
    float hour;
    const char* light;
  } const cases[] = {
      {renderLit, lightHead, false, 18, "1000 1000 1000 1000 / 300 300 300 1000 / 0 -1000 0 "},
      {renderTextured, lightHead, false, 18, "1000 1000 400 1000 / 100 200 300 0 / 0 -1000 0 "},
      {renderTextured, lightHead, true, 18, "1000 1000 400 1000 / 400 400 400 1000 / 0 -1000 0 "},
      {renderTextured, lightSun, true, 0, "250 100 50 1000 / 100 100 100 1000 / 0 1000 1000 "},
      {renderTextured, lightSun, true, 11, "1000 650 325 1000 / 650 650 650 1000 / 259 -966 -966 "},
      {renderTextured, lightSun, true, 12, "1000 1000 700 1000 / 700 700 700 1000 / 0 -1000 -1000 "},
      {renderTextured, lightSun, true, 18, "1000 1000 400 1000 / 400 400 400 1000 / -1000 0 0 "},
  };
  RecordedView recorded;
  recorded.show(triangleModel());
  recorded.view.camera.pitch = 90;
  recorded.view.settings.clearColor = {0.1f, 0.2f, 0.3f, 0.0f};
  const DeviceState& state = recorded.device().state;
  for (const auto& c : cases) {
    recorded.view.settings.renderMode = c.renderMode;
    recorded.view.settings.lightMode = c.lightMode;
    recorded.view.settings.envMode = c.environment;
    recorded.view.settings.envTime = c.hour;
    recorded.frame();
    EXPECT_TRUE(state.lightEnable);
    EXPECT_EQ(told(state.light), c.light);
  }
  recorded.view.settings.renderMode = renderWireframe;
  recorded.frame();
  EXPECT_FALSE(state.lightEnable);
}

TEST(MeshBuffers, HoldTheVerticesAndComeWithTheMaterialOfTheMode) {
  RecordedView recorded;
  recorded.show(triangleModel());
  ModelView& view = recorded.view;
  const size_t created = recorded.device().created;
  /// The floats of one vertex after a rebuild.
  const auto vertex = [&](uint8_t mode, size_t floats, size_t index) {
    view.settings.renderMode = mode;
    view.scene.buffersBuilt = false;
    recorded.frame();
    const auto all = contents<float>(view.scene.model->meshes[0].vertexBuffer);
    EXPECT_EQ(all.size(), floats * 3);
    return std::vector<float>(all.begin() + index * floats, all.begin() + (index + 1) * floats);
  };
  const auto colorOf = [](const std::vector<float>& v) { return std::bit_cast<uint32_t>(v.back()); };
  const D3DMATERIAL9& material = recorded.device().state.material;

  view.settings.backgroundIndex = 0;
  EXPECT_EQ(colorOf(vertex(renderWireframe, 4, 2)), 0x00FFFF00u);
  view.settings.backgroundIndex = 1;
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
  view.system.p_device = device;
  renderFrame(view);
  EXPECT_EQ(device->presents, 1u);
  EXPECT_TRUE(view.frameIdle);
}

}  // namespace
}  // namespace facet
