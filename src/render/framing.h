#pragma once

#include "render/view.h"

namespace facet {

struct Sphere {
  Vector3 center{};
  float radius = 1;
};

/// A sphere around all vertices of the model: their box's centre, the farthest vertex. Positions that are no
/// numbers, or beyond 1e15, do not count. A model of one point or none has radius 1.
Sphere boundingSphere(const Model& model);

/// Moves the eye back along its view direction until the sphere fills the picture, and chooses clip planes
/// and a sky that hold it. The view has its angles, field of view and client size.
void frameSphere(ModelView& view, const Sphere& sphere);

}  // namespace facet
