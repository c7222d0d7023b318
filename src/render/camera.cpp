#include "render/camera.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/mat4x4.hpp>

#include "render/glm_vector.h"
#include "render/view.h"

namespace facet {

namespace {

struct Angle {
  float sine, cosine;
};

Angle angle(float degrees) {
  const double radians = degrees * 3.1415926535 / 180;
  return {static_cast<float>(std::sin(radians)), static_cast<float>(std::cos(radians))};
}

/// Columns of GLM lie in memory like the rows of a matrix for row vectors.
D3DMATRIX toMatrix(const glm::mat4& matrix) {
  D3DMATRIX result;
  static_assert(sizeof result == sizeof matrix);
  std::memcpy(result.m.data(), &matrix, sizeof result);
  return result;
}

}  // namespace

CameraAxes cameraAxes(float yaw, float pitch) {
  const Angle y = angle(yaw), p = angle(pitch);
  return {{p.cosine * y.sine, -p.sine, p.cosine * y.cosine}, {y.cosine, 0, -y.sine}};
}

D3DMATRIX viewMatrix(const Vector3& eye, float yaw, float pitch) {
  const glm::vec3 forward = toGlm(cameraAxes(yaw, pitch).forward);
  glm::vec3 up(0, 1, 0);
  constexpr float tooSteep = 1e-6f;  // of the horizontal part of `forward`
  if (std::hypot(forward.x, forward.z) < tooSteep)
    up = std::copysign(1.0f, -forward.y) * toGlm(cameraAxes(yaw, 0).forward);
  // Turned at the origin and moved there afterwards: far from it, eye + forward would be the eye.
  const glm::mat4 turned = glm::lookAtLH(glm::vec3(0), forward, up);
  return toMatrix(glm::translate(turned, -toGlm(eye)));
}

D3DMATRIX skyMatrix(float envTime, const Camera& camera) {
  const float radians = (envTime * 360.0f / 24.0f - 45.0f) * radiansPerDegree;
  const glm::vec3 size(std::max(1.0f, camera.farZ / farPlane));
  const glm::mat4 moved = glm::translate(glm::mat4(1), toGlm(camera.eyePosition));
  return toMatrix(glm::scale(glm::rotate(moved, radians, glm::vec3(0, 1, 0)), size));
}

void moveCamera(ModelView& view) {
  const CameraAxes axes = cameraAxes(view.camera.yaw, view.camera.pitch);
  const auto moved = [&](float at, float forward, float right) {
    return at - view.camera.moveForward * forward - view.camera.moveSide * right;
  };
  view.camera.eyePosition = {
      moved(view.camera.eyePosition.x, axes.forward.x, axes.right.x),
      moved(view.camera.eyePosition.y, axes.forward.y, axes.right.y) - view.camera.moveUp,
      moved(view.camera.eyePosition.z, axes.forward.z, axes.right.z)};
  view.camera.moveSide = view.camera.moveUp = view.camera.moveForward = 0;
}

float viewAspect(const ModelView& view) {
  const float screen =
      static_cast<float>(view.window.screenHeight) / static_cast<float>(view.window.screenWidth);
  const float client = static_cast<float>(view.clientWidth) / static_cast<float>(view.clientHeight);
  const auto index = static_cast<uint8_t>(view.settings.aspectIndex);
  return screen * client * (index < monitorAspects.size() ? monitorAspects[index].factor : 1.0f) *
         view.window.pixelAspect;
}

void setProjection(ModelView& view) {
  if (!view.system.p_device || view.clientWidth == 0 || view.clientHeight == 0) return;
  const Camera& camera = view.camera;
  const float aspect = viewAspect(view), up = camera.orthoHeight / 2, side = up * aspect;
  view.system.p_device->state.projection =
      toMatrix(camera.orthoHeight > 0 ? glm::orthoLH_ZO(-side, side, -up, up, camera.nearZ, camera.farZ)
                                      : glm::perspectiveLH_ZO(camera.fovDegrees * radiansPerDegree, aspect,
                                                              camera.nearZ, camera.farZ));
}

void OnLButtonDown(ModelView& view, Point point) {
  view.mouse.left = {true, point};
}
void OnLButtonUp(ModelView& view) {
  view.mouse.left.down = false;
}
void OnRButtonDown(ModelView& view, Point point) {
  view.mouse.right = {true, point};
}
void OnRButtonUp(ModelView& view) {
  view.mouse.right.down = false;
}
void OnMButtonDown(ModelView& view, Point point) {
  view.mouse.middle = {true, point};
}
void OnMButtonUp(ModelView& view) {
  view.mouse.middle.down = false;
}

void OnMouseMove(ModelView& view, Point point) {
  Mouse& mouse = view.mouse;
  Mouse::Button& held = mouse.left.down ? mouse.left : mouse.right.down ? mouse.right : mouse.middle;
  if (!held.down) return;
  const auto x = static_cast<float>(held.dragPos.x - point.x),
             y = static_cast<float>(held.dragPos.y - point.y);
  if (&held == &mouse.left) {
    view.camera.yaw += x / 10.0f;
    view.camera.pitch += y / 10.0f;
  } else if (&held == &mouse.right) {
    view.camera.moveForward -= y / 50.0f;
  } else {
    view.camera.moveForward += y / 50.0f;
    view.camera.moveSide -= x / 50.0f;
  }
  renderFrame(view);
  held.dragPos = point;
}

void OnMouseWheel(ModelView& view, int16_t delta) {
  if (delta == 0) return;
  view.camera.moveForward += static_cast<float>(delta) * view.camera.moveSpeed / 120.0f;
  renderFrame(view);
}

void OnSize(ModelView& view, int32_t cx, int32_t cy) {
  view.clientWidth = cx;
  view.clientHeight = cy;
  setProjection(view);
}

}  // namespace facet
