#pragma once

#include <optional>
#include <span>

#include "render/view.h"

// Looking at a model from all sides: framing it, turning about a pivot, and finding what lies under the
// pointer. These change the camera and its projection and draw nothing. Points are in client coordinates.

namespace facet {

/// A sphere around the vertices of the meshes that are not hidden, or of `only` these: their box's centre,
/// the farthest vertex. Positions that are no numbers, or beyond 1e15, do not count. Where there is one point
/// or none the radius is 1.
Sphere boundingSphere(const Model& model, std::span<const uint32_t> only = {});

/// Moves the eye back along its view direction until the sphere fills the picture, chooses clip planes and a
/// sky that hold it, and turns about its centre from now on. The view has its angles, field of view and
/// client size.
void frameSphere(ModelView& view, const Sphere& sphere);

/// Frames what is selected, or else all that is not hidden, whatever the distance cut says. Without a model,
/// does nothing.
void frameVisible(ModelView& view);

/// Turns the eye about the pivot: a pixel is 0.4 degrees. Up stays up: the pitch stays between -90 and 90.
void orbit(ModelView& view, Point drag);

/// Moves eye and pivot so that what is as deep as the pivot follows the pointer.
void pan(ModelView& view, Point drag);

/// Comes nearer by a sixth for each notch, to what is under `at` as deep as the pivot; negative notches go
/// back.
void zoom(ModelView& view, float notches, Point at);

/// The sides that a model can be looked at from: yaw and pitch in degrees.
struct Side {
  float yaw, pitch;
};
/// Frames what is visible as it is seen from a side.
void lookFrom(ModelView& view, const Side& side);

/// Between perspective and parallel projection; what is as deep as the pivot keeps its size.
void toggleOrthographic(ModelView& view);

/// Something of the model under a point.
struct Hit {
  uint32_t mesh = 0;
  Vector3 position{};
  float depth = 0;  ///< from 0 at the near clip plane to 1 at the far one, evenly
};

/// The nearest place under the point of a triangle that is drawn as the settings are; none where there is
/// nothing, no device or no window. Of two equally near the first mesh counts.
std::optional<Hit> pick(const ModelView& view, Point point);

/// Where a position is seen, none for one that is not between the clip planes.
std::optional<Point> project(const ModelView& view, const Vector3& position);

}  // namespace facet
