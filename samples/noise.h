#pragma once

#include <cmath>
#include <cstdint>
#include <glm/glm.hpp>

// Numbers of the scene: interpolation, and noise that is the same on every machine.

namespace facet::sample {

using glm::vec3;

inline constexpr float pi = 3.14159265f;

/// Without glm's insistence that all three are of one type.
inline float mix(float a, float b, float t) {
  return a + (b - a) * t;
}
inline float clamp01(float t) {
  return glm::clamp(t, 0.0f, 1.0f);
}
/// 0 at `from`, 1 at `to` (which may be the smaller one), with flat ends.
inline float smoothstep(float from, float to, float value) {
  return glm::smoothstep(from, to, value);
}

/// A small generator that gives the same numbers everywhere.
class Random {
 public:
  explicit Random(uint32_t seed) : state_(seed * 2654435761u + 1) {}
  float range(float low, float high);

 private:
  uint32_t state_;
};

/// A fixed random value in 0..1 for each cell of a grid.
float cellNoise(int x, int y, int z, uint32_t seed);

/// `octaves` layers of smooth noise, each twice as fine and half as strong; the coarsest has one feature per
/// unit. In 0..1, mostly around 0.5. With a period it repeats after that many units of x and y.
float layeredNoise(vec3 p, int octaves, uint32_t seed, int period = 0);

/// Layered noise on a picture (u, v in 0..1) that repeats without a seam; `cells` features across.
inline float tiled(float u, float v, int cells, int octaves, uint32_t seed) {
  return layeredNoise(vec3(u, v, 0) * float(cells), octaves, seed, cells);
}

}  // namespace facet::sample
