#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "vec.h"

namespace facet::sample {

struct SampleVertex {
  Vec3 position, normal;
  float u = 0, v = 0;
};

/// Triangles of one material; front faces are clockwise as seen, normals point outward.
struct SampleMesh {
  std::string name;
  std::string group;  ///< the object that the mesh is a part of
  uint32_t material = 0;
  std::vector<SampleVertex> vertices;
  std::vector<uint16_t> indices;
};

/// Where a shape stands: turned by yaw about +y (0 keeps +z forward), then moved.
struct Placement {
  Vec3 origin;
  float yaw = 0;
};

Vec3 toWorld(const Placement& at, Vec3 local);

/// A part of a texture; v grows downwards.
struct UvRect {
  float u0 = 0, v0 = 0, u1 = 1, v1 = 1;
};

/// Corners as seen from the front. A triangle is a quad whose top corners are the same.
void addQuad(SampleMesh& mesh, const Placement& at, Vec3 topLeft, Vec3 topRight, Vec3 bottomRight,
             Vec3 bottomLeft, UvRect uv = {});

/// Six faces; the texture repeats `uvPerUnit` times a unit.
void addBox(SampleMesh& mesh, const Placement& at, Vec3 low, Vec3 high, float uvPerUnit);

/// Six faces with the same part of the texture on each.
void addCrate(SampleMesh& mesh, const Placement& at, Vec3 low, Vec3 high, UvRect uv = {});

/// A thin bar between two points: four sides without end faces, shaded round; the texture runs along it.
void addBeam(SampleMesh& mesh, const Placement& at, Vec3 from, Vec3 to, float thickness, float uvPerUnit);

/// One ring of a turned shape: radius, height, and the texture's v there.
struct Ring {
  float radius, y, v;
};

/// A shape turned about +y: rings from the bottom to the top, so that the outside is on the outer side of the
/// walk. The texture goes `turns` times around. Edges sharper than about 40 degrees stay sharp.
void addLathe(SampleMesh& mesh, const Placement& at, std::initializer_list<Ring> rings, int segments,
              float turns);

/// A smooth sheet of columns x rows cells: `point(s, t)` in 0..1, s to the right and t downwards as seen from
/// the front.
void addSheet(SampleMesh& mesh, const Placement& at, int columns, int rows,
              const std::function<Vec3(float, float)>& point, UvRect uv = {});

/// `count` upright cards that cross in their middle, standing on the origin.
void addCrossedCards(SampleMesh& mesh, const Placement& at, int count, float width, float height,
                     UvRect uv = {});

}  // namespace facet::sample
