#include "island.h"

#include "noise.h"

namespace facet::sample {

namespace {

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

float flattened(float height, float x, float z, Vec3 place, float radius) {
  float distance = std::hypot(x - place.x, z - place.z);
  return mix(place.y, height, smoothstep(radius, radius * 1.7f, distance));
}

}  // namespace

float islandHeight(float x, float z) {
  float distance = std::hypot(x / 21, (z - 15) / 15.5f) + 0.35f * groundNoise(x, z, 9, 3);
  float height = mix(deepSea, 2.3f, smoothstep(1.3f, 0.62f, distance));
  height += 1.6f * groundNoise(x, z, 8, 5) * smoothstep(-3, 1, height);
  height -= 4.0f * bump(x, z, 0.6f, 1.0f, 7.0f, 5.5f);
  height += 3.8f * bump(x, z, -10, 24, 8, 6) + 2.2f * bump(x, z, 5, 27, 7, 4);
  height = mix(height, towerPlace.y + 0.8f * groundNoise(x, z, 3, 13), cape(x, z));
  height = flattened(height, x, z, housePlace, 4.2f);
  height = flattened(height, x, z, shedPlace, 1.9f);
  height = flattened(height, x, z, towerPlace, 2.4f);
  float toEdge = std::min(std::min(x - islandArea.left, islandArea.right - x),
                          std::min(z - islandArea.front, islandArea.back - z));
  return mix(deepSea, height, smoothstep(0, 4, toEdge));
}

Vec3 islandNormal(float x, float z) {
  constexpr float step = 0.25f;
  float across = islandHeight(x + step, z) - islandHeight(x - step, z);
  float along = islandHeight(x, z + step) - islandHeight(x, z - step);
  return normalized({-across, 2 * step, -along});
}

float pathDistance(float x, float z) {
  constexpr Vec3 points[] = {{0.6f, 0, 5.2f}, {1.2f, 0, 9.4f}, {-2.2f, 0, 10.4f}, {-5.6f, 0, 10.2f}};
  constexpr Vec3 climb[] = {{1.2f, 0, 9.4f}, {3.6f, 0, 13.6f}, {6.2f, 0, 15.8f}, {9.0f, 0, 14.6f}};
  float nearest = 1e6f;
  for (int i = 0; i < 3; ++i) {
    nearest = std::min(nearest, segmentDistance(x, z, points[i], points[i + 1]));
    nearest = std::min(nearest, segmentDistance(x, z, climb[i], climb[i + 1]));
  }
  return nearest;
}

}  // namespace facet::sample
