#include "render/view.h"

#include <gmock/gmock.h>

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
  const struct {
    const char* name;
    Vector3 center;
    float radius;
    uint8_t before;
    bool noDistanceCut;
    uint8_t after;
  } cases[] = {
      // the eye is at 0, 0, 0 and looks along +z, so distances count from z = 69.3
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
  for (const auto& c : cases) {
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

TEST(MeshBuffers, AMeshWithoutOneIsNotDrawn) {
  RecordedView recorded;
  recorded.show(ModelBuilder().material("a").grid(0, 1).grid(0, 2).grid(0, 3).build());
  recorded.device().creationsLeft = 1;
  EXPECT_THAT(recorded.meshesDrawn(), ElementsAre(0));
}

TEST(MeshBuffers, AreBuiltOnceAndNotWithinTheTimeOfAFrame) {
  RecordedView recorded;
  recorded.show(triangleModel());
  const size_t before = recorded.device().created;
  std::vector<size_t> built;  // at the begin and end of each frame
  recorded.view.counter = {1000, [&] { return built.push_back(recorded.device().created - before), 0; }};
  recorded.frame();
  recorded.view.settings.backgroundIndex = 0;
  recorded.frame();
  EXPECT_THAT(built, ElementsAre(1, 1, 1, 1));
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
    device.draws = {};  // and the memory they had
    recorded.view.scene.buffersBuilt = false;
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

TEST(Quality, ActsOnceAndTouchesFiltersOnlyWhereTexturesAreDrawn) {
  RecordedView recorded;
  ModelView& view = recorded.view;
  const DeviceState& state = recorded.device().state;
  view.settings.filterMode = 5;
  for (const uint32_t mode : {6u, 8u, 0xFFFFFFFFu}) applyFiltering(view, mode);  // two that are none
  setQuality(view, false);
  EXPECT_EQ(state.shadeMode, D3DSHADE_FLAT);
  view.settings.renderMode = renderTextured;
  setQuality(view, false);  // asked twice
  EXPECT_EQ(std::pair(state.filter, state.mipFilter), std::pair(D3DTEXF_ANISOTROPIC, D3DTEXF_POINT));
  setQuality(view, true);
  EXPECT_EQ(state.shadeMode, D3DSHADE_GOURAUD);
  EXPECT_EQ(std::pair(state.filter, state.mipFilter), std::pair(D3DTEXF_LINEAR, D3DTEXF_LINEAR));
  setQuality(view, false);
  EXPECT_EQ(std::pair(state.filter, state.mipFilter), std::pair(D3DTEXF_POINT, D3DTEXF_NONE));
}

TEST(Color, BytesRoundAndClipAndBackgroundsAreWhole255ths) {
  EXPECT_EQ(packColor({1.5f, -1.0f, 0.5f, 0.0f}), 0x00FF0080u);
  EXPECT_EQ(packColor(startClearColor), 0xFF7F7F7Fu);
  EXPECT_EQ(packColor({NAN, NAN, NAN, NAN}), 0u);
  EXPECT_EQ(backgroundColor(2),
            (std::array<float, 4>{startClearColor[0], startClearColor[0], startClearColor[0], 0.0f}));
  EXPECT_EQ(packColor(backgroundColor(8)), 0x00020F4Fu);
  EXPECT_EQ(packColor(backgroundColor(21)), 0x0099E5FFu);
}

}  // namespace
}  // namespace facet
