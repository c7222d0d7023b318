#include "shapes.h"

namespace facet::sample {

namespace {

vec3 turned(const Placement& at, vec3 v) {
  float c = std::cos(at.yaw), s = std::sin(at.yaw);
  return {v.x * c + v.z * s, v.y, v.z * c - v.x * s};
}

// Values lie on a fine grid, so that the last bits of a maths library never reach a file.
template <class T>
T snapped(T value) {
  return glm::round(value * 4096.0f) / 4096.0f;
}

void addVertex(BuiltMesh& mesh, const Placement& at, vec3 position, vec3 normal, float u, float v) {
  vec3 p = snapped(toWorld(at, position)), n = snapped(unit(turned(at, normal)));
  mesh.vertices.push_back({p.x, p.y, p.z, n.x, n.y, n.z, snapped(u), snapped(v)});
}

// Triangles without area are left out.
void addTriangle(BuiltMesh& mesh, size_t a, size_t b, size_t c) {
  vec3 p = mesh.vertices[a].position();
  if (glm::cross(mesh.vertices[b].position() - p, mesh.vertices[c].position() - p) == vec3(0)) return;
  for (size_t corner : {a, b, c}) mesh.indices.push_back(uint16_t(corner));
}

// Fills the band between two rows of vertices, the upper from `top` on and the lower from `bottom` on.
void addBand(BuiltMesh& mesh, size_t top, size_t bottom, int cells) {
  for (int i = 0; i < cells; ++i, ++top, ++bottom) {
    addTriangle(mesh, top, top + 1, bottom + 1);
    addTriangle(mesh, top, bottom + 1, bottom);
  }
}

// The outward direction of the band above ring i, as radius and height.
vec3 bandNormal(std::span<const Ring> rings, size_t i) {
  return unit({rings[i + 1].y - rings[i].y, rings[i].radius - rings[i + 1].radius, 0});
}

// The vertices of one ring, with a normal that is the same all around; returns the first.
size_t addRing(BuiltMesh& mesh, const Placement& at, const Ring& ring, vec3 normal, int segments,
               float turns) {
  size_t first = mesh.vertices.size();
  for (int i = 0; i <= segments; ++i) {
    float part = float(i) / float(segments), c = std::cos(2 * pi * part), s = std::sin(2 * pi * part);
    addVertex(mesh, at, {ring.radius * c, ring.y, ring.radius * s}, {normal.x * c, normal.y, normal.x * s},
              turns * part, ring.v);
  }
  return first;
}

}  // namespace

vec3 toWorld(const Placement& at, vec3 local) {
  return at.origin + turned(at, local);
}

vec3 unit(vec3 v) {
  return v == vec3(0) ? v : glm::normalize(v);
}

void addQuad(BuiltMesh& mesh, const Placement& at, vec3 topLeft, vec3 topRight, vec3 bottomRight,
             vec3 bottomLeft, UvRect uv) {
  vec3 normal = glm::cross(bottomRight - topLeft, bottomLeft - topRight);
  size_t first = mesh.vertices.size();
  addVertex(mesh, at, topLeft, normal, uv.u0, uv.v0);
  addVertex(mesh, at, topRight, normal, uv.u1, uv.v0);
  addVertex(mesh, at, bottomRight, normal, uv.u1, uv.v1);
  addVertex(mesh, at, bottomLeft, normal, uv.u0, uv.v1);
  addTriangle(mesh, first, first + 1, first + 2);
  addTriangle(mesh, first, first + 2, first + 3);
}

void addBox(BuiltMesh& mesh, const Placement& at, vec3 low, vec3 high, float uvPerUnit, UvRect uv) {
  // The corners of each face from its top left on; bit 0, 1, 2 of a corner stand for high x, y, z.
  constexpr int faces[6][4] = {{2, 3, 1, 0}, {7, 6, 4, 5}, {6, 2, 0, 4},
                               {3, 7, 5, 1}, {6, 7, 3, 2}, {0, 1, 5, 4}};
  for (const int(&face)[4] : faces) {
    vec3 p[4];
    for (int i = 0; i < 4; ++i) p[i] = glm::mix(low, high, glm::bvec3(face[i] & 1, face[i] & 2, face[i] & 4));
    if (uvPerUnit > 0)
      uv = {0, 0, glm::length(p[1] - p[0]) * uvPerUnit, glm::length(p[3] - p[0]) * uvPerUnit};
    addQuad(mesh, at, p[0], p[1], p[2], p[3], uv);
  }
}

void addSheet(BuiltMesh& mesh, const Placement& at, int columns, int rows,
              const std::function<vec3(float, float)>& point, UvRect uv) {
  size_t first = mesh.vertices.size();
  float ds = 0.5f / float(columns), dt = 0.5f / float(rows);
  for (int row = 0; row <= rows; ++row) {
    for (int column = 0; column <= columns; ++column) {
      float s = float(column) / float(columns), t = float(row) / float(rows);
      // A side may shrink to a point: directions are taken a little inside.
      float is = glm::clamp(s, ds, 1 - ds), it = glm::clamp(t, dt, 1 - dt);
      vec3 across = point(std::min(s + ds, 1.0f), it) - point(std::max(s - ds, 0.0f), it);
      vec3 down = point(is, std::min(t + dt, 1.0f)) - point(is, std::max(t - dt, 0.0f));
      addVertex(mesh, at, point(s, t), glm::cross(across, down), mix(uv.u0, uv.u1, s), mix(uv.v0, uv.v1, t));
    }
  }
  auto step = size_t(columns) + 1;
  for (int row = 0; row < rows; ++row, first += step) addBand(mesh, first, first + step, columns);
}

void addBeam(BuiltMesh& mesh, const Placement& at, vec3 from, vec3 to, float thickness, float uvPerUnit) {
  vec3 along = unit(to - from);
  vec3 side = unit(glm::cross(std::abs(along.y) > 0.9f ? vec3(0, 0, 1) : vec3(0, 1, 0), along));
  vec3 up = glm::cross(along, side);
  auto around = [&](float s, float t) {
    float angle = 2 * pi * (0.125f + t), radius = thickness * 0.7071f;
    return glm::mix(from, to, s) + (side * std::cos(angle) - up * std::sin(angle)) * radius;
  };
  addSheet(mesh, at, 1, 4, around, {0, 0, glm::length(to - from) * uvPerUnit, 4 * thickness * uvPerUnit});
}

void addLathe(BuiltMesh& mesh, const Placement& at, std::span<const Ring> rings, int segments, float turns) {
  size_t low = addRing(mesh, at, rings[0], bandNormal(rings, 0), segments, turns);
  for (size_t i = 1; i < rings.size(); ++i) {
    bool last = i + 1 == rings.size();
    vec3 below = bandNormal(rings, i - 1), above = last ? below : bandNormal(rings, i);
    bool soft = glm::dot(below, above) > 0.77f;
    size_t high = addRing(mesh, at, rings[i], soft ? unit(below + above) : below, segments, turns);
    addBand(mesh, high, low, segments);
    low = soft ? high : addRing(mesh, at, rings[i], above, segments, turns);
  }
}

void addCrossedCards(BuiltMesh& mesh, const Placement& at, int count, float width, float height) {
  for (int i = 0; i < count; ++i) {
    float angle = pi * float(i) / float(count);
    vec3 half = vec3(std::cos(angle), 0, std::sin(angle)) * (width / 2), up{0, height, 0};
    addQuad(mesh, at, up - half, up + half, half, -half);
  }
}

}  // namespace facet::sample
