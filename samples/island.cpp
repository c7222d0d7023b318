#include "island.h"

#include <algorithm>

namespace facet::sample {

namespace {

constexpr float deepSea = -6;

float bump(float x, float z, float centerX, float centerZ, float sizeX, float sizeZ) {
  float dx = (x - centerX) / sizeX, dz = (z - centerZ) / sizeZ;
  return std::exp(-dx * dx - dz * dz);
}

float groundNoise(float x, float z, float size, uint32_t seed) {
  return layeredNoise({x / size + 40, 0.5f, z / size + 40}, 4, seed) - 0.5f;
}

// The rock under the lighthouse: steep and rough towards the sea.
float cape(float x, float z) {
  float distance = std::hypot(x - towerPlace.x, (z - towerPlace.z) * 1.1f) + 4.5f * groundNoise(x, z, 4, 11);
  return smoothstep(7.2f, 3.4f, distance);
}

}  // namespace

float islandHeight(float x, float z) {
  float distance = std::hypot(x / 21, (z - 15) / 15.5f) + 0.35f * groundNoise(x, z, 9, 3);
  float height = mix(deepSea, 2.3f, smoothstep(1.3f, 0.62f, distance));
  height += 1.6f * groundNoise(x, z, 8, 5) * smoothstep(-3, 1, height);
  height -= 4.0f * bump(x, z, 0.6f, 1.0f, 7.0f, 5.5f);
  height += 3.8f * bump(x, z, -10, 24, 8, 6) + 2.2f * bump(x, z, 5, 27, 7, 4);
  height = mix(height, towerPlace.y + 0.8f * groundNoise(x, z, 3, 13), cape(x, z));
  for (auto [place, radius] : {std::pair{housePlace, 4.2f}, {shedPlace, 1.9f}, {towerPlace, 2.4f}}) {
    float away = std::hypot(x - place.x, z - place.z);
    height = mix(place.y, height, smoothstep(radius, radius * 1.7f, away));
  }
  float toEdge =
      std::min({x - islandArea.left, islandArea.right - x, z - islandArea.front, islandArea.back - z});
  return mix(deepSea, height, smoothstep(0, 4, toEdge));
}

vec3 onGround(float x, float z, float above) {
  return {x, islandHeight(x, z) + above, z};
}

vec3 islandNormal(float x, float z) {
  constexpr float step = 0.25f;
  float across = islandHeight(x + step, z) - islandHeight(x - step, z);
  float along = islandHeight(x, z + step) - islandHeight(x, z - step);
  return glm::normalize(vec3(-across, 2 * step, -along));
}

float segmentDistance(float x, float z, vec3 a, vec3 b) {
  glm::vec2 p(x - a.x, z - a.z), way(b.x - a.x, b.z - a.z);
  return glm::length(p - way * clamp01(glm::dot(p, way) / glm::dot(way, way)));
}

float pathDistance(float x, float z) {
  constexpr vec3 points[] = {{0.6f, 0, 5.2f}, {1.2f, 0, 9.4f}, {-2.2f, 0, 10.4f}, {-5.6f, 0, 10.2f}};
  constexpr vec3 climb[] = {{1.2f, 0, 9.4f}, {3.6f, 0, 13.6f}, {6.2f, 0, 15.8f}, {9.0f, 0, 14.6f}};
  float nearest = 1e6f;
  for (int i = 0; i < 3; ++i) {
    nearest = std::min({nearest, segmentDistance(x, z, points[i], points[i + 1]),
                        segmentDistance(x, z, climb[i], climb[i + 1])});
  }
  return nearest;
}

}  // namespace facet::sample
