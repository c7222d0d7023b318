#include "shapes.h"

#include <span>

namespace facet::sample {

namespace {

// Coordinates lie on a fine grid, so that the last bits of a maths library never reach a file.
float snapped(float value) {
  return std::round(value * 4096) / 4096;
}

Vec3 snapped(Vec3 p) {
  return {snapped(p.x), snapped(p.y), snapped(p.z)};
}

Vec3 turned(const Placement& at, Vec3 v) {
  float c = std::cos(at.yaw), s = std::sin(at.yaw);
  return {v.x * c + v.z * s, v.y, v.z * c - v.x * s};
}

uint16_t addVertex(SampleMesh& mesh, const Placement& at, Vec3 position, Vec3 normal, float u, float v) {
  mesh.vertices.push_back(
      {snapped(toWorld(at, position)), snapped(normalized(turned(at, normal))), snapped(u), snapped(v)});
  return uint16_t(mesh.vertices.size() - 1);
}

void addTriangle(SampleMesh& mesh, uint16_t a, uint16_t b, uint16_t c) {
  Vec3 p = mesh.vertices[a].position;
  Vec3 area = cross(mesh.vertices[b].position - p, mesh.vertices[c].position - p);
  if (length(area) > 0) mesh.indices.insert(mesh.indices.end(), {a, b, c});
}

struct Box {
  Vec3 low, high;
};

// The corners of one face, from its top left on, as seen from outside.
struct Face {
  Vec3 corners[4];
  float width, height;
};

std::vector<Face> boxFaces(Box box) {
  Vec3 a = box.low, b = box.high, size = b - a;
  return {
      {{{a.x, b.y, a.z}, {b.x, b.y, a.z}, {b.x, a.y, a.z}, {a.x, a.y, a.z}}, size.x, size.y},
      {{{b.x, b.y, b.z}, {a.x, b.y, b.z}, {a.x, a.y, b.z}, {b.x, a.y, b.z}}, size.x, size.y},
      {{{a.x, b.y, b.z}, {a.x, b.y, a.z}, {a.x, a.y, a.z}, {a.x, a.y, b.z}}, size.z, size.y},
      {{{b.x, b.y, a.z}, {b.x, b.y, b.z}, {b.x, a.y, b.z}, {b.x, a.y, a.z}}, size.z, size.y},
      {{{a.x, b.y, b.z}, {b.x, b.y, b.z}, {b.x, b.y, a.z}, {a.x, b.y, a.z}}, size.x, size.z},
      {{{a.x, a.y, a.z}, {b.x, a.y, a.z}, {b.x, a.y, b.z}, {a.x, a.y, b.z}}, size.x, size.z},
  };
}

void addFace(SampleMesh& mesh, const Placement& at, const Face& face, UvRect uv) {
  addQuad(mesh, at, face.corners[0], face.corners[1], face.corners[2], face.corners[3], uv);
}

// The outward direction of the band above ring i, as radius and height.
Vec3 bandNormal(std::span<const Ring> rings, size_t i) {
  return normalized({rings[i + 1].y - rings[i].y, rings[i].radius - rings[i + 1].radius, 0});
}

// Whether the bands below and above ring i go over into each other.
bool isSoft(std::span<const Ring> rings, size_t i) {
  return i > 0 && i + 1 < rings.size() && dot(bandNormal(rings, i - 1), bandNormal(rings, i)) > 0.77f;
}

// The vertices of one ring, with a normal that is the same all around; returns the first.
uint16_t addRing(SampleMesh& mesh, const Placement& at, const Ring& ring, Vec3 normal, int segments,
                 float turns) {
  auto first = uint16_t(mesh.vertices.size());
  for (int i = 0; i <= segments; ++i) {
    float part = float(i) / float(segments), c = std::cos(2 * pi * part), s = std::sin(2 * pi * part);
    addVertex(mesh, at, {ring.radius * c, ring.y, ring.radius * s}, {normal.x * c, normal.y, normal.x * s},
              turns * part, ring.v);
  }
  return first;
}

}  // namespace

Vec3 toWorld(const Placement& at, Vec3 local) {
  return at.origin + turned(at, local);
}

void addQuad(SampleMesh& mesh, const Placement& at, Vec3 topLeft, Vec3 topRight, Vec3 bottomRight,
             Vec3 bottomLeft, UvRect uv) {
  Vec3 normal = cross(bottomRight - topLeft, bottomLeft - topRight);
  uint16_t a = addVertex(mesh, at, topLeft, normal, uv.u0, uv.v0);
  uint16_t b = addVertex(mesh, at, topRight, normal, uv.u1, uv.v0);
  uint16_t c = addVertex(mesh, at, bottomRight, normal, uv.u1, uv.v1);
  uint16_t d = addVertex(mesh, at, bottomLeft, normal, uv.u0, uv.v1);
  addTriangle(mesh, a, b, c);
  addTriangle(mesh, a, c, d);
}

void addBox(SampleMesh& mesh, const Placement& at, Vec3 low, Vec3 high, float uvPerUnit) {
  for (const Face& face : boxFaces({low, high}))
    addFace(mesh, at, face, {0, 0, face.width * uvPerUnit, face.height * uvPerUnit});
}

void addCrate(SampleMesh& mesh, const Placement& at, Vec3 low, Vec3 high, UvRect uv) {
  for (const Face& face : boxFaces({low, high})) addFace(mesh, at, face, uv);
}

void addBeam(SampleMesh& mesh, const Placement& at, Vec3 from, Vec3 to, float thickness, float uvPerUnit) {
  Vec3 along = normalized(to - from);
  Vec3 reference = std::abs(along.y) > 0.9f ? Vec3{0, 0, 1} : Vec3{0, 1, 0};
  Vec3 side = normalized(cross(reference, along)) * (thickness / 2);
  Vec3 up = normalized(cross(along, side)) * (thickness / 2);
  Vec3 around[5] = {side + up, side - up, up * -1 - side, up - side, side + up};
  size_t first = mesh.vertices.size();
  for (int i = 0; i < 5; ++i) {
    for (Vec3 end : {from, to}) {
      float u = length(end - from) * uvPerUnit, v = float(i) * thickness * uvPerUnit;
      addVertex(mesh, at, end + around[i], around[i], u, v);
    }
  }
  for (int i = 0; i < 4; ++i) {
    auto a = uint16_t(first + size_t(i) * 2);
    addTriangle(mesh, a, uint16_t(a + 1), uint16_t(a + 3));
    addTriangle(mesh, a, uint16_t(a + 3), uint16_t(a + 2));
  }
}

void addLathe(SampleMesh& mesh, const Placement& at, std::initializer_list<Ring> rings, int segments,
              float turns) {
  std::span<const Ring> all(rings.begin(), rings.size());
  uint16_t low = addRing(mesh, at, all[0], bandNormal(all, 0), segments, turns);
  for (size_t band = 0; band + 1 < all.size(); ++band) {
    bool soft = isSoft(all, band + 1);
    Vec3 normal = bandNormal(all, band);
    if (soft) normal = normalized(normal + bandNormal(all, band + 1));
    uint16_t high = addRing(mesh, at, all[band + 1], normal, segments, turns);
    for (int i = 0; i < segments; ++i) {
      auto a = uint16_t(high + i), c = uint16_t(low + i);
      addTriangle(mesh, a, uint16_t(a + 1), uint16_t(c + 1));
      addTriangle(mesh, a, uint16_t(c + 1), c);
    }
    bool last = band + 2 == all.size();
    low = soft || last ? high : addRing(mesh, at, all[band + 1], bandNormal(all, band + 1), segments, turns);
  }
}

void addSheet(SampleMesh& mesh, const Placement& at, int columns, int rows,
              const std::function<Vec3(float, float)>& point, UvRect uv) {
  size_t first = mesh.vertices.size();
  float ds = 0.5f / float(columns), dt = 0.5f / float(rows);
  for (int row = 0; row <= rows; ++row) {
    for (int column = 0; column <= columns; ++column) {
      float s = float(column) / float(columns), t = float(row) / float(rows);
      // A side may shrink to a point: directions are taken a little inside.
      float is = std::clamp(s, ds, 1 - ds), it = std::clamp(t, dt, 1 - dt);
      Vec3 across = point(std::min(s + ds, 1.0f), it) - point(std::max(s - ds, 0.0f), it);
      Vec3 down = point(is, std::min(t + dt, 1.0f)) - point(is, std::max(t - dt, 0.0f));
      addVertex(mesh, at, point(s, t), cross(across, down), mix(uv.u0, uv.u1, s), mix(uv.v0, uv.v1, t));
    }
  }
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      auto a = uint16_t(first + size_t(row * (columns + 1) + column)), c = uint16_t(a + columns + 1);
      addTriangle(mesh, a, uint16_t(a + 1), uint16_t(c + 1));
      addTriangle(mesh, a, uint16_t(c + 1), c);
    }
  }
}

void addCrossedCards(SampleMesh& mesh, const Placement& at, int count, float width, float height, UvRect uv) {
  for (int i = 0; i < count; ++i) {
    float angle = pi * float(i) / float(count);
    Vec3 half{std::cos(angle) * width / 2, 0, std::sin(angle) * width / 2}, up{0, height, 0};
    addQuad(mesh, at, up - half, up + half, half, half * -1, uv);
  }
}

}  // namespace facet::sample
