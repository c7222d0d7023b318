#include "render/camera.h"

#include <gmock/gmock.h>

#include <cmath>

#include "render/recorded_view.h"

namespace facet {
namespace {

/// A point as a row vector times the matrix, divided by its last component.
Vector3 transformed(const D3DMATRIX& matrix, const Vector3& p) {
  float out[4];
  for (size_t i = 0; i < 4; ++i)
    out[i] = p.x * matrix.m[0][i] + p.y * matrix.m[1][i] + p.z * matrix.m[2][i] + matrix.m[3][i];
  return {out[0] / out[3], out[1] / out[3], out[2] / out[3]};
}

void expectNear(const Vector3& actual, const Vector3& expected, float tolerance = 1e-4f) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
  EXPECT_NEAR(actual.z, expected.z, tolerance);
}

TEST(ViewMatrix, LooksAlongTheAngles) {
  const Vector3 eye{1, 2, 3};
  for (const float yaw : {0.0f, 30.0f, -100.0f}) {
    for (const float pitch : {0.0f, 40.0f, -80.0f}) {
      const D3DMATRIX matrix = viewMatrix(eye, yaw, pitch);
      const CameraAxes axes = cameraAxes(yaw, pitch);
      expectNear(transformed(matrix, eye), {0, 0, 0});
      expectNear(
          transformed(matrix, {eye.x + axes.forward.x, eye.y + axes.forward.y, eye.z + axes.forward.z}),
          {0, 0, 1});
      expectNear(transformed(matrix, {eye.x + axes.right.x, eye.y, eye.z + axes.right.z}), {1, 0, 0});
    }
  }
  expectNear(cameraAxes(90, 30).forward, {std::cos(0.5235988f), -0.5f, 0});
}

TEST(ViewMatrix, StraightDownAndUpKeepTheHeading) {
  // Ahead of the heading is at the top of the picture looking down, and at its bottom looking up.
  expectNear(transformed(viewMatrix({0, 10, 0}, 90, 90), {5, 0, 0}), {0, 5, 10});
  expectNear(transformed(viewMatrix({0, 0, 0}, 90, -90), {5, 10, 0}), {0, -5, 10});
  EXPECT_THAT(viewMatrix({1e9f, 3, -1e9f}, 10, 20).m[0],
              testing::Each(testing::Truly([](float v) { return std::isfinite(v); })));
}

TEST(Projection, FollowsClientScreenAndMonitorButNotAMinimisedWindow) {
  const struct {
    const char* name;
    int32_t cx, cy;
    uint32_t screenWidth, screenHeight;
    int8_t aspectIndex;
    float aspect;
  } cases[] = {
      {"monitor as its pixels", 800, 600, 1920, 1080, 5, 800.0f / 600},
      {"wide pixels", 1000, 1000, 1280, 1024, 1, 1.3333334f * 1024 / 1280},
      {"no factor", 300, 100, 1000, 1000, 6, 3},
      {"negative index", 300, 100, 1000, 1000, -1, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    RecordedView recorded;
    ModelView& view = recorded.view;
    view.window.screenWidth = c.screenWidth;
    view.window.screenHeight = c.screenHeight;
    view.settings.aspectIndex = c.aspectIndex;
    view.camera.fovDegrees = 90;
    OnSize(view, c.cx, c.cy);
    OnSize(view, 0, 200);
    OnSize(view, 200, 0);
    EXPECT_EQ(std::pair(view.clientWidth, view.clientHeight), std::pair(200, 0));
    const D3DMATRIX& projection = recorded.device().state.projection;
    expectNear(transformed(projection, {2 * c.aspect, 2, 2}), {1, 1, 350.0f / 349 / 2});
    expectNear(transformed(projection, {0, 0, 1}), {0, 0, 0});
    expectNear(transformed(projection, {0, 0, 350}), {0, 0, 1});
  }
}

TEST(Mouse, TheFirstHeldButtonOfLeftRightMiddleCounts) {
  RecordedView recorded;
  ModelView& view = recorded.view;
  OnMouseMove(view, {5, 5});
  EXPECT_EQ(recorded.device().presents, 0u) << "no button, no frame";
  OnLButtonDown(view, {100, 100});
  OnRButtonDown(view, {100, 100});
  OnMButtonDown(view, {100, 100});
  OnMouseMove(view, {120, 90});
  OnMouseMove(view, {130, 90});
  EXPECT_FLOAT_EQ(view.camera.yaw, -3);
  EXPECT_FLOAT_EQ(view.camera.pitch, 1);
  EXPECT_EQ(view.camera.moveForward, 0);
  EXPECT_EQ(recorded.device().presents, 2u);
  OnLButtonUp(view);
  OnMouseMove(view, {130, 150});
  EXPECT_FLOAT_EQ(view.camera.moveForward, 1) << "down, from the press on: backwards";
  OnMouseMove(view, {130, 100});
  EXPECT_FLOAT_EQ(view.camera.moveForward, 0) << "up, from there";
  OnRButtonUp(view);
  OnMouseMove(view, {150, 150});
  EXPECT_FLOAT_EQ(view.camera.moveForward, -1) << "down: forwards";
  EXPECT_FLOAT_EQ(view.camera.moveSide, 1) << "right: to the left";
  OnMouseMove(view, {150, 100});
  EXPECT_FLOAT_EQ(view.camera.moveForward, 0) << "up, from there";
  OnMButtonUp(view);
  EXPECT_FLOAT_EQ(view.camera.yaw, -3);
}

TEST(Mouse, TheWheelMovesAlongTheView) {
  RecordedView recorded;
  recorded.show(triangleModel());
  OnMouseWheel(recorded.view, 0);
  EXPECT_EQ(recorded.device().presents, 0u);
  OnMouseWheel(recorded.view, -240);
  EXPECT_FLOAT_EQ(recorded.view.camera.eyePosition.z, -9.8f);
}

}  // namespace
}  // namespace facet
