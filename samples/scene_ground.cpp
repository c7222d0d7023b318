#include "island.h"
#include "scene.h"

namespace facet::sample {

namespace {

constexpr float horizon = 44;  // radius of the round sea
constexpr Vec3 seaMiddle{0, 0, 12};
constexpr float seabedAtHorizon = -0.4f;  // so that no gap shows between the sea and its bed far away

// Grid lines of the ground, seen from the middle of the sea: even over the island, and two more far out on
// each side.
std::vector<float> gridLines(float from, float to, int cells) {
  float reach = from < to ? horizon : -horizon;
  std::vector<float> lines{-reach, -0.62f * reach};
  for (int i = 0; i <= cells; ++i) lines.push_back(mix(from, to, float(i) / float(cells)));
  lines.insert(lines.end(), {0.62f * reach, reach});
  return lines;
}

// Bends the square that reaches from -horizon to horizon into the disc of the sea.
Vec3 onSea(Vec3 p) {
  float size = length(p);
  return size > 0 ? seaMiddle + p * (std::max(std::abs(p.x), std::abs(p.z)) / size) : seaMiddle;
}

void addTerrain(SampleMesh& mesh) {
  std::vector<float> xs = gridLines(islandArea.left, islandArea.right, 37);
  std::vector<float> zs = gridLines(islandArea.back - seaMiddle.z, islandArea.front - seaMiddle.z, 29);
  auto columns = int(xs.size()) - 1, rows = int(zs.size()) - 1;
  auto ground = [&](float s, float t) {
    float column = s * float(columns), row = t * float(rows);
    auto i = std::min(size_t(column), xs.size() - 2), j = std::min(size_t(row), zs.size() - 2);
    float x = mix(xs[i], xs[i + 1], column - float(i)), z = mix(zs[j], zs[j + 1], row - float(j));
    Vec3 place = Vec3{x, 0, z} + seaMiddle;
    if (std::max(std::abs(x), std::abs(z)) < horizon)
      return place + Vec3{0, islandHeight(place.x, place.z), 0};
    return onSea({x, 0, z}) + Vec3{0, seabedAtHorizon, 0};
  };
  addSheet(mesh, {}, columns, rows, ground);
  float width = islandArea.right - islandArea.left, depth = islandArea.back - islandArea.front;
  for (SampleVertex& vertex : mesh.vertices) {
    vertex.u = clamp01((vertex.position.x - islandArea.left) / width);
    vertex.v = clamp01((islandArea.back - vertex.position.z) / depth);
    if (vertex.position.y != seabedAtHorizon)
      vertex.normal = islandNormal(vertex.position.x, vertex.position.z);
  }
}

// How far from the middle of the island its shore lies; the search comes from the sea.
float shoreDistance(Vec3 middle, float angle) {
  float distance = 24;
  while (distance > 2 && islandHeight(middle.x + distance * std::cos(angle),
                                      middle.z + distance * std::sin(angle)) < -0.05f) {
    distance -= 0.1f;
  }
  return distance;
}

// A band of surf along the shore, torn where the shore jumps from one rock to the next.
void addSurf(SampleMesh& mesh) {
  constexpr int parts = 110;
  constexpr Vec3 middle{0, 0, 15};
  auto place = [&](float angle, float distance) {
    return middle + Vec3{distance * std::cos(angle), 0.05f, distance * std::sin(angle)};
  };
  for (int i = 0; i < parts; ++i) {
    float here = 2 * pi * float(i) / parts, next = 2 * pi * float(i + 1) / parts;
    float a = shoreDistance(middle, here), b = shoreDistance(middle, next);
    if (std::abs(a - b) > 1.6f) continue;
    UvRect uv{float(i) * 0.5f, 0, float(i + 1) * 0.5f, 1};
    addQuad(mesh, {}, place(next, b + 1.1f), place(here, a + 1.1f), place(here, a - 0.4f),
            place(next, b - 0.4f), uv);
  }
}

}  // namespace

void addGround(Scene& scene) {
  addTerrain(addMesh(scene, "ground", "terrain", terrainMaterial));
}

void addSea(Scene& scene) {
  SampleMesh& water = addMesh(scene, "sea", "water", waterMaterial);
  auto surface = [](float s, float t) { return onSea({(s * 2 - 1) * horizon, 0, (1 - t * 2) * horizon}); };
  addSheet(water, {}, 16, 16, surface);
  for (SampleVertex& vertex : water.vertices) {
    vertex.u = vertex.position.x / 8;
    vertex.v = vertex.position.z / -8;
  }
  addSurf(addMesh(scene, "sea", "surf", foamMaterial));
}

}  // namespace facet::sample
