#include <algorithm>

#include "scene.h"

// The ground and what grows on it, and the sea around it.

namespace facet::sample {

namespace {

constexpr float horizon = 44;  // radius of the round sea
constexpr vec3 seaMiddle{0, 0, 12};
constexpr float seabedAtHorizon = -0.4f;  // so that no gap shows between the sea and its bed far away

void setNormal(BuiltVertex& v, vec3 normal) {
  v = {v.x, v.y, v.z, normal.x, normal.y, normal.z, v.u, v.v};
}

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
vec3 onSea(vec3 p) {
  return seaMiddle + unit(p) * std::max(std::abs(p.x), std::abs(p.z));
}

void addTerrain(BuiltMesh& mesh) {
  std::vector<float> xs = gridLines(islandArea.left, islandArea.right, 32);
  std::vector<float> zs = gridLines(islandArea.back - seaMiddle.z, islandArea.front - seaMiddle.z, 25);
  auto columns = int(xs.size()) - 1, rows = int(zs.size()) - 1;
  auto line = [](const std::vector<float>& lines, float at) {
    auto i = std::min(size_t(at), lines.size() - 2);
    return mix(lines[i], lines[i + 1], at - float(i));
  };
  auto ground = [&](float s, float t) {
    vec3 p{line(xs, s * float(columns)), 0, line(zs, t * float(rows))};
    if (std::max(std::abs(p.x), std::abs(p.z)) < horizon)
      return onGround(p.x + seaMiddle.x, p.z + seaMiddle.z);
    return onSea(p) + vec3(0, seabedAtHorizon, 0);
  };
  addSheet(mesh, {}, columns, rows, ground);
  for (BuiltVertex& v : mesh.vertices) {
    v.u = clamp01((v.x - islandArea.left) / (islandArea.right - islandArea.left));
    v.v = clamp01((islandArea.back - v.z) / (islandArea.back - islandArea.front));
    if (v.y != seabedAtHorizon) setNormal(v, islandNormal(v.x, v.z));
  }
}

void addWater(BuiltMesh& mesh) {
  addSheet(mesh, {}, 16, 16, [](float s, float t) { return onSea(vec3(s * 2 - 1, 0, 1 - t * 2) * horizon); });
  for (BuiltVertex& v : mesh.vertices) {
    v.u = v.x / 8;
    v.v = v.z / -8;
  }
}

// A band of surf along the shore, torn where the shore jumps from one rock to the next.
void addSurf(BuiltMesh& mesh) {
  constexpr int parts = 110;
  auto place = [&](float turn, float distance) {
    return vec3(distance * std::cos(2 * pi * turn / parts), 0.05f,
                15 + distance * std::sin(2 * pi * turn / parts));
  };
  auto shore = [&](float turn) {  // how far away; the search comes from the sea
    float distance = 24;
    for (vec3 p = place(turn, distance); distance > 2 && islandHeight(p.x, p.z) < -0.05f;
         p = place(turn, distance))
      distance -= 0.1f;
    return distance;
  };
  for (float i = 0; i < parts; ++i) {
    float a = shore(i), b = shore(i + 1);
    if (std::abs(a - b) > 1.6f) continue;
    addQuad(mesh, {}, place(i + 1, b + 1.1f), place(i, a + 1.1f), place(i, a - 0.4f), place(i + 1, b - 0.4f),
            {i * 0.5f, 0, (i + 1) * 0.5f, 1});
  }
}

struct Spot {
  vec3 place;
  float size, yaw;
};

// Ground where a plant of some width can stand: dry, not steep, and clear of paths and buildings.
bool isFree(float x, float z, float width) {
  auto away = [&](vec3 place, float radius) { return std::hypot(x - place.x, z - place.z) > radius + width; };
  return islandHeight(x, z) > 1.0f && islandNormal(x, z).y > 0.75f && pathDistance(x, z) > 0.6f + width &&
         away(housePlace, 3.6f) && away(towerPlace, 2.8f) && away(shedPlace, 1.9f);
}

// Random free spots in a circle; none when there is no more room.
std::vector<Spot> scatter(const Row& row) {
  float radius = row[4], width = row[5], apart = row[6];
  Random random{uint32_t(row[0])};
  std::vector<Spot> spots;
  for (float tries = 0; tries < row[1] * 30 && float(spots.size()) < row[1]; ++tries) {
    float x = row[2] + random.range(-radius, radius), z = row[3] + random.range(-radius, radius);
    float size = random.range(0.75f, 1.25f), yaw = random.range(0, 2 * pi);
    bool crowded = std::ranges::any_of(
        spots, [&](const Spot& s) { return std::hypot(s.place.x - x, s.place.z - z) < apart; });
    if (!crowded && isFree(x, z, width)) spots.push_back({onGround(x, z), size, yaw});
  }
  return spots;
}

void addTrunk(BuiltMesh& mesh, const Spot& spot, float radius, float height) {
  Ring rings[] = {{radius * spot.size, 0, 2}, {radius * 0.45f * spot.size, height * spot.size, 0}};
  addLathe(mesh, {spot.place - vec3(0, 0.3f, 0), spot.yaw}, rings, 5, 1);
}

// Three skirts of branches, each a cone with a ragged rim.
void addPine(BuiltMesh& mesh, const Spot& spot) {
  for (float layer : {0.0f, 1.0f, 2.0f}) {
    float low = 0.9f + 1.35f * layer, radius = 1.6f - 0.4f * layer, scale = spot.size * 1.15f;
    Ring rings[] = {{radius * scale, low * scale, 1}, {0, (low + 2.5f) * scale, 0}};
    addLathe(mesh, {spot.place, spot.yaw + layer}, rings, 6, 2);
  }
}

// Cards with leaves, facing all ways around a crown and lit like a ball.
void addCrown(BuiltMesh& mesh, const Spot& spot, float height, float radius, int cards) {
  size_t first = mesh.vertices.size();
  vec3 center = spot.place + vec3(0, height * spot.size, 0);
  Random random(uint32_t(spot.place.x * 100 + 5000));
  for (float i = 0; i < float(cards); ++i) {
    float turn = 2.4f * i, rise = 1 - 2 * (i + 0.5f) / float(cards), level = std::sqrt(1 - rise * rise);
    vec3 out{level * std::cos(turn), rise * 0.7f, level * std::sin(turn)};
    vec3 middle = center + out * (radius * 0.55f * spot.size);
    float size = radius * spot.size * random.range(1.3f, 1.7f);
    addCrossedCards(mesh, {middle - vec3(0, size / 2, 0), turn + random.range(0, 1)}, 1, size, size);
  }
  for (size_t i = first; i < mesh.vertices.size(); ++i)
    setNormal(mesh.vertices[i], unit(mesh.vertices[i].position() - center));
}

void addRock(BuiltMesh& mesh, vec3 place, float size, uint32_t seed) {
  auto surface = [&](float s, float t) {
    float angle = 2 * pi * s, rise = pi * (0.5f - t);
    vec3 direction{std::cos(rise) * std::cos(angle), std::sin(rise), std::cos(rise) * std::sin(angle)};
    float bulge = 0.6f + 0.8f * layeredNoise(direction * 1.4f + 30.0f, 3, seed);
    return direction * vec3(1, 0.7f, 1) * (bulge * size);
  };
  addSheet(mesh, {place, float(seed)}, 8, 4, surface, {0, 0, 2, 1});
}

// On the shore and on cliffs.
void addRocks(BuiltMesh& mesh) {
  Random random(77);
  for (uint32_t i = 1; i <= 400 && mesh.indices.size() < 3 * 650; ++i) {
    float x = random.range(-19, 19), z = random.range(-3, 31), size = random.range(0.3f, 1.1f);
    float height = islandHeight(x, z);
    bool shore = height > -0.9f && height<0.5f, cliff = height> 1 && islandNormal(x, z).y < 0.68f;
    bool free = pathDistance(x, z) > 1.5f && std::abs(x - 0.6f) > 2.5f;
    if ((shore || cliff) && free) addRock(mesh, {x, height - size * 0.25f, z}, size, i);
  }
}

}  // namespace

void addPlants(Scene& scene, const Row& row) {
  const std::string& kind = row.names.at(0);
  for (const Spot& spot : scatter(row)) {
    if (kind == "grass") {
      BuiltMesh& grass = scene["grass"];
      addCrossedCards(grass, {spot.place - vec3(0, 0.06f, 0), spot.yaw}, 2, spot.size, 0.55f * spot.size);
    } else if (kind == "pine") {
      addTrunk(scene["trunks"], spot, 0.2f, 3.6f);
      addPine(scene["pines"], spot);
    } else {
      bool tree = kind == "tree";
      if (tree) addTrunk(scene["trunks"], spot, 0.24f, 2.6f);
      addCrown(scene["broadleaf_crowns"], spot, tree ? 2.9f : 0.3f, tree ? 1.7f : 0.7f, tree ? 14 : 4);
    }
  }
}

void addLand(Scene& scene) {
  addTerrain(scene["terrain"]);
  addWater(scene["water"]);
  addSurf(scene["surf"]);
  addRocks(scene["rocks"]);
  for (BuiltVertex& v : scene["grass"].vertices) setNormal(v, {0, 1, 0});  // lit like the ground
}

}  // namespace facet::sample
