#include "island.h"
#include "noise.h"
#include "scene.h"

namespace facet::sample {

namespace {

struct Spot {
  Vec3 place;
  float size, yaw;
};

// Ground where a plant of some width can stand: dry, not steep, and clear of paths and buildings.
bool isFree(float x, float z, float width) {
  return islandHeight(x, z) > 1.0f && islandNormal(x, z).y > 0.75f && pathDistance(x, z) > 0.6f + width &&
         std::hypot(x - housePlace.x, z - housePlace.z) > 3.6f + width &&
         std::hypot(x - towerPlace.x, z - towerPlace.z) > 2.8f + width &&
         std::hypot(x - shedPlace.x, z - shedPlace.z) > 1.9f + width;
}

// Random free spots in a circle, at least `apart` from each other.
std::vector<Spot> scatter(uint32_t seed, int count, Vec3 center, float radius, float width, float apart) {
  Random random(seed);
  std::vector<Spot> spots;
  for (int tries = 0; tries < count * 30 && int(spots.size()) < count; ++tries) {
    float x = center.x + random.range(-radius, radius), z = center.z + random.range(-radius, radius);
    float size = random.range(0.75f, 1.25f), yaw = random.range(0, 2 * pi);
    bool crowded = std::any_of(spots.begin(), spots.end(), [&](const Spot& s) {
      return std::hypot(s.place.x - x, s.place.z - z) < apart;
    });
    if (!crowded && isFree(x, z, width)) spots.push_back({{x, islandHeight(x, z), z}, size, yaw});
  }
  return spots;
}

void addTrunk(SampleMesh& mesh, const Spot& spot, float radius, float height) {
  addLathe(mesh, {spot.place - Vec3{0, 0.3f, 0}, spot.yaw},
           {{radius * spot.size, 0, 2}, {radius * 0.45f * spot.size, height * spot.size, 0}}, 5, 1);
}

// Three skirts of branches, each a cone with a ragged rim.
void addPine(SampleMesh& mesh, const Spot& spot) {
  for (int layer = 0; layer < 3; ++layer) {
    float low = 0.9f + 1.35f * float(layer), radius = 1.6f - 0.4f * float(layer), height = 2.5f;
    Placement at{spot.place, spot.yaw + float(layer)};
    float s = spot.size * 1.15f;
    addLathe(mesh, at, {{radius * s, low * s, 1}, {0, (low + height) * s, 0}}, 6, 2);
  }
}

// Cards with leaves, facing all ways around a crown and lit like a ball.
void addCrown(SampleMesh& mesh, const Spot& spot, float height, float radius, int cards, uint32_t seed) {
  size_t first = mesh.vertices.size();
  Vec3 center = spot.place + Vec3{0, height * spot.size, 0};
  Random random(seed);
  for (int i = 0; i < cards; ++i) {
    float turn = 2.4f * float(i), rise = 1 - 2 * (float(i) + 0.5f) / float(cards);
    float level = std::sqrt(1 - rise * rise);
    Vec3 out{level * std::cos(turn), rise * 0.7f, level * std::sin(turn)};
    Vec3 middle = center + out * (radius * 0.55f * spot.size);
    float size = radius * spot.size * random.range(1.3f, 1.7f);
    addCrossedCards(mesh, {middle - Vec3{0, size / 2, 0}, turn + random.range(0, 1)}, 1, size, size);
  }
  for (size_t i = first; i < mesh.vertices.size(); ++i) {
    mesh.vertices[i].normal = normalized(mesh.vertices[i].position - center);
  }
}

void addRock(SampleMesh& mesh, Vec3 place, float size, uint32_t seed) {
  auto surface = [&](float s, float t) {
    float angle = 2 * pi * s, rise = pi * (0.5f - t);
    Vec3 direction{std::cos(rise) * std::cos(angle), std::sin(rise), std::cos(rise) * std::sin(angle)};
    float bulge = 0.6f + 0.8f * layeredNoise(direction * 1.4f + Vec3{30, 30, 30}, 3, seed);
    return Vec3{direction.x * bulge, direction.y * bulge * 0.7f, direction.z * bulge} * size;
  };
  addSheet(mesh, {place, float(seed)}, 8, 4, surface, {0, 0, 2, 1});
}

void addRocks(SampleMesh& mesh) {
  Random random(77);
  for (int i = 0; i < 400 && mesh.indices.size() < 3 * 650; ++i) {
    float x = random.range(-19, 19), z = random.range(-3, 31), size = random.range(0.3f, 1.1f);
    float height = islandHeight(x, z);
    bool shore = height > -0.9f && height<0.5f, cliff = height> 1 && islandNormal(x, z).y < 0.68f;
    bool free = pathDistance(x, z) > 1.5f && std::abs(x - 0.6f) > 2.5f;
    if ((shore || cliff) && free) addRock(mesh, {x, height - size * 0.25f, z}, size, uint32_t(i + 1));
  }
}

}  // namespace

void addNature(Scene& scene) {
  std::vector<Spot> pines = scatter(21, 15, {-10, 0, 23.5f}, 7.5f, 0.4f, 1.9f);
  for (const Spot& spot : scatter(22, 7, {4.5f, 0, 26}, 6, 0.4f, 2.1f)) pines.push_back(spot);
  std::vector<Spot> broad = scatter(23, 4, {-14, 0, 14}, 4.5f, 0.5f, 3);
  for (const Spot& spot : scatter(24, 4, {2.0f, 0, 19}, 4, 0.8f, 2.6f)) broad.push_back(spot);

  SampleMesh& trunks = addMesh(scene, "nature", "trunks", barkMaterial);
  for (const Spot& spot : pines) addTrunk(trunks, spot, 0.2f, 3.6f);
  for (const Spot& spot : broad) addTrunk(trunks, spot, 0.24f, 2.6f);

  SampleMesh& needles = addMesh(scene, "nature", "pines", pineMaterial);
  for (const Spot& spot : pines) addPine(needles, spot);

  SampleMesh& leaves = addMesh(scene, "nature", "broadleaf_crowns", leafMaterial);
  uint32_t seed = 31;
  for (const Spot& spot : broad) addCrown(leaves, spot, 2.9f, 1.7f, 14, seed++);
  for (const Spot& spot : scatter(25, 14, {0, 0, 15}, 12, 0.2f, 1.5f))
    addCrown(leaves, spot, 0.3f, 0.7f, 4, seed++);

  addRocks(addMesh(scene, "nature", "rocks", rockMaterial));

  SampleMesh& grass = addMesh(scene, "nature", "grass", grassMaterial);
  for (const Spot& spot : scatter(26, 56, {-1, 0, 13}, 12, -0.2f, 0.6f))
    addCrossedCards(grass, {spot.place - Vec3{0, 0.06f, 0}, spot.yaw}, 2, 1.0f * spot.size,
                    0.55f * spot.size);
  for (SampleVertex& vertex : grass.vertices) vertex.normal = {0, 1, 0};
}

}  // namespace facet::sample
