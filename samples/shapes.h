#pragma once

#include <functional>
#include <span>

#include "noise.h"
#include "support/format_builders.h"

// Shapes are added to meshes. Front faces are clockwise as seen, normals point outward.

namespace facet::sample {

/// Where a shape stands: turned by yaw about +y (0 keeps +z forward), then moved.
struct Placement {
  vec3 origin{};
  float yaw = 0;
};

vec3 toWorld(const Placement& at, vec3 local);

/// A part of a texture; v grows downwards.
struct UvRect {
  float u0 = 0, v0 = 0, u1 = 1, v1 = 1;
};

/// The zero vector stays what it is.
vec3 unit(vec3 v);

/// Corners as seen from the front. A triangle is a quad whose top corners are the same.
void addQuad(BuiltMesh& mesh, const Placement& at, vec3 topLeft, vec3 topRight, vec3 bottomRight,
             vec3 bottomLeft, UvRect uv = {});

/// Six faces; the texture repeats `uvPerUnit` times a unit, or for 0 has the part `uv` on each face.
void addBox(BuiltMesh& mesh, const Placement& at, vec3 low, vec3 high, float uvPerUnit, UvRect uv = {});

/// A smooth sheet of columns x rows cells: `point(s, t)` in 0..1, s to the right and t downwards as seen from
/// the front.
void addSheet(BuiltMesh& mesh, const Placement& at, int columns, int rows,
              const std::function<vec3(float s, float t)>& point, UvRect uv = {});

/// A thin bar between two points: four sides without end faces, shaded round; the texture runs along it.
void addBeam(BuiltMesh& mesh, const Placement& at, vec3 from, vec3 to, float thickness,
             float uvPerUnit = 0.5f);

/// One ring of a turned shape: radius, height, and the texture's v there.
struct Ring {
  float radius, y, v;
};

/// A shape turned about +y: rings from the bottom to the top, so that the outside is on the outer side of the
/// walk. The texture goes `turns` times around. Edges sharper than about 40 degrees stay sharp.
void addLathe(BuiltMesh& mesh, const Placement& at, std::span<const Ring> rings, int segments, float turns);

/// `count` upright cards that cross in their middle, standing on the origin.
void addCrossedCards(BuiltMesh& mesh, const Placement& at, int count, float width, float height);

}  // namespace facet::sample
