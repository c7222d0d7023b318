#pragma once

#include <array>

#include "render/view.h"

namespace facet {

/// Shapes of a monitor that differ from its pixel grid.
struct MonitorAspect {
  const char* name;
  float factor;
};
inline constexpr std::array<MonitorAspect, 6> monitorAspects = {{{"5:4", 1.25f},
                                                                 {"4:3", 1.3333334f},
                                                                 {"3:2", 1.5f},
                                                                 {"16:10", 1.6f},
                                                                 {"5:3", 1.6666666f},
                                                                 {"16:9", 1.7777778f}}};

inline constexpr float radiansPerDegree = 0.017453292f;

/// The directions of a camera, of length 1.
struct CameraAxes {
  Vector3 forward, right;
};
CameraAxes cameraAxes(float yaw, float pitch);

/// The left-handed view transform from the eye, up being +y. Looking straight up or down, where +y says
/// nothing, the heading takes its place.
D3DMATRIX viewMatrix(const Vector3& eye, float yaw, float pitch);

/// The world transform of the sky: as large as the camera sees, turned with the hour, its centre on the eye.
D3DMATRIX skyMatrix(float envTime, const Camera& camera);

/// Applies the pending moves to the eye and clears them.
void moveCamera(ModelView& view);

/// Width by height of what the window shows, corrected for the monitor's shape.
float viewAspect(const ModelView& view);

/// Sets the projection of the current client size, unless either side is 0, of the aspect and of the camera
/// on the view's device, if there is one. The camera's field of view is between 0 and 180 degrees, and its
/// near plane, in perspective, above 0.
void setProjection(ModelView& view);

// Handlers of the window's messages; points are in client coordinates. Mouse handlers draw a frame when they
// change the camera. Of several buttons held, the first of left, right, middle counts.
void OnLButtonDown(ModelView& view, Point point);
void OnLButtonUp(ModelView& view);
void OnRButtonDown(ModelView& view, Point point);
void OnRButtonUp(ModelView& view);
void OnMButtonDown(ModelView& view, Point point);
void OnMButtonUp(ModelView& view);
void OnMouseMove(ModelView& view, Point point);
/// `delta` counts 120 a notch; away from the user is positive and moves the eye backwards.
void OnMouseWheel(ModelView& view, int16_t delta);
/// Keeps the client size and rebuilds the projection, unless either side is 0.
void OnSize(ModelView& view, int32_t cx, int32_t cy);

}  // namespace facet
