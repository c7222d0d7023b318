#include "scene.h"

// What people built that needs more than a shape for a row: houses, fences, boats.

namespace facet::sample {

namespace {

/// An open boat with its bow towards +z and the water line at y = 0.
struct Boat {
  float length, halfWidth, height;
};

float halfWidthAt(const Boat& boat, float along) {
  return boat.halfWidth * std::sqrt(clamp01(1 - std::pow(std::max(0.0f, along * 1.45f - 0.45f), 2.4f))) *
         mix(0.78f, 1, smoothstep(0, 0.4f, along));
}

float gunwaleAt(const Boat& boat, float along) {
  return boat.height * (1 + 0.5f * along * along * along);
}

// A point of the hull: `along` from stern to bow, `around` from the port gunwale over the keel to starboard.
vec3 hullPoint(const Boat& boat, float along, float around) {
  float top = gunwaleAt(boat, along), depth = top + boat.height * 0.7f * (1 - along * 0.4f);
  float belly = std::pow(std::max(0.0f, std::sin(pi * around)), 0.75f);
  return {-std::cos(pi * around) * halfWidthAt(boat, along), top - depth * belly,
          (along - 0.5f) * boat.length};
}

void addHull(BuiltMesh& hull, const Placement& at, const Boat& boat, UvRect paint) {
  auto skin = [&](float s, float t) { return hullPoint(boat, 1 - s, t); };
  addSheet(hull, at, 8, 6, skin, paint);
  auto transom = [&](float s, float t) { return hullPoint(boat, 0, t / 2) * vec3(1 - 2 * s, 1, 1); };
  addSheet(hull, at, 1, 4, transom, {paint.u0, 0, paint.u1, 0.5f});
}

// The deck, the inner side of the hull above it, and two benches.
void addDeck(BuiltMesh& wood, const Placement& at, const Boat& boat) {
  float level = boat.height * 0.42f, planks = boat.length * 0.5f;
  auto edge = [&](float along, float side, float y) {
    return vec3(side * halfWidthAt(boat, along) * 0.97f, y, (along - 0.5f) * boat.length);
  };
  addSheet(wood, at, 2, 8, [&](float s, float t) { return edge(1 - t, 2 * s - 1, level); },
           {0, 0, planks, planks});
  for (float side : {-1.0f, 1.0f}) {
    auto wall = [&](float s, float t) {
      float along = side < 0 ? s : 1 - s;
      return edge(along, side, mix(gunwaleAt(boat, along), level, t));
    };
    addSheet(wood, at, 8, 1, wall, {0, 0, planks, 0.25f});
  }
  for (float along : {0.3f, 0.58f}) {
    vec3 end = edge(along, 0.98f, boat.height * 0.8f);
    addBox(wood, at, {-end.x, end.y - 0.05f, end.z - 0.12f}, end + vec3(0, 0, 0.12f), 0.5f);
  }
}

}  // namespace

void addHouse(Scene& scene, const Row& row) {
  const Placement& at = scene.placeOf(row);
  BuiltMesh &walls = scene[row.names[0]], &roof = scene["roofs"];
  float w = row[0], d = row[1], h = row[2], top = row[3], foot = -0.5f;
  UvRect front = row.rect(4), gable = row.rect(8);
  float eavesV = mix(gable.v0, gable.v1, (top - h) / (top - foot));
  float over = 0.35f, slope = (top - h) / d, ridge = top + 0.12f, rw = w + over, rd = d + over;
  float side = std::hypot(rd, rd * slope) / 2;  // of the roof's texture
  vec3 a{-rw, ridge, 0}, b{rw, ridge, 0}, c{rw, ridge - slope * rd, -rd}, e{-rw, c.y, -rd},
      down{0, -0.12f, 0};
  for (float turn : {0.0f, pi}) {
    Placement half{at.origin, at.yaw + turn};
    addQuad(walls, half, {-w, h, -d}, {w, h, -d}, {w, foot, -d}, {-w, foot, -d}, front);
    addQuad(walls, half, {-w, h, d}, {-w, h, -d}, {-w, foot, -d}, {-w, foot, d},
            {gable.u0, eavesV, gable.u1, gable.v1});
    addQuad(walls, half, {-w, top, 0}, {-w, top, 0}, {-w, h, -d}, {-w, h, d},
            {gable.u0, gable.v0, gable.u1, eavesV});
    walls.vertices[walls.vertices.size() - 4].u = (gable.u0 + gable.u1) / 2;  // the ridge
    addQuad(roof, half, a, b, c, e, {0, 0, rw, side});
    addQuad(roof, half, e + down, c + down, b + down, a + down, {0, 0, rw, side});
    addQuad(roof, half, e, c, c + down, e + down, {0, 0, rw, 0.06f});
    addQuad(roof, half, a, e, e + down, a + down, {0, 0, side, 0.06f});
    addQuad(roof, half, c, b, b + down, c + down, {0, 0, side, 0.06f});
  }
}

void addWindows(Scene& scene, const Row& row) {
  const Placement& at = scene.placeOf(row);
  Placement wall{at.origin, at.yaw + 0.5f * pi * row[0]};
  vec3 right{row[3] / 2, 0, 0}, up{0, row[4] / 2, 0};
  for (size_t i = 5; i < row.numbers.size(); ++i) {
    vec3 middle{row[i], row[2], -row[1] - 0.03f};
    addQuad(scene[row.names[0]], wall, middle - right + up, middle + right + up, middle + right - up,
            middle - right - up);
  }
}

// Posts with two rails.
void addFence(Scene& scene, const Row& row) {
  BuiltMesh& mesh = scene["fence"];
  for (size_t k = 0; k + 3 < row.numbers.size(); k += 2) {
    glm::vec2 from{row[k], row[k + 1]}, to{row[k + 2], row[k + 3]};
    float spans = std::round(glm::length(to - from) / 1.3f);
    for (float i = 0; i < spans; ++i) {
      glm::vec2 p = glm::mix(from, to, i / spans), q = glm::mix(from, to, (i + 1) / spans);
      addBeam(mesh, {}, onGround(p.x, p.y, -0.2f), onGround(p.x, p.y, 0.9f), 0.12f);
      for (float y : {0.4f, 0.75f}) addBeam(mesh, {}, onGround(p.x, p.y, y), onGround(q.x, q.y, y), 0.08f);
    }
  }
}

void addBoat(Scene& scene, const Row& row) {
  const Placement& at = scene.placeOf(row);
  Boat boat{row[0], row[1], row[2]};
  addHull(scene[row.names[0]], at, boat, row.rect(3));
  addDeck(scene["boat_decks"], at, boat);
}

}  // namespace facet::sample
