#include "noise.h"

namespace facet::sample {

namespace {

int wrapped(int i, int period) {
  return period > 0 ? (i % period + period) % period : i;
}

// Cell values, blended over each cell with flat ends.
float smoothNoise(vec3 p, uint32_t seed, int period) {
  glm::ivec3 cell = glm::floor(p);
  vec3 t = glm::smoothstep(vec3(0), vec3(1), glm::fract(p));
  auto at = [&](int i, int j, int k) {
    return cellNoise(wrapped(cell.x + i, period), wrapped(cell.y + j, period), cell.z + k, seed);
  };
  auto row = [&](int j, int k) { return mix(at(0, j, k), at(1, j, k), t.x); };
  return mix(mix(row(0, 0), row(1, 0), t.y), mix(row(0, 1), row(1, 1), t.y), t.z);
}

}  // namespace

float Random::range(float low, float high) {
  state_ ^= state_ << 13;
  state_ ^= state_ >> 17;
  state_ ^= state_ << 5;
  return mix(low, high, float(state_ >> 8) / 16777216.0f);
}

float cellNoise(int x, int y, int z, uint32_t seed) {
  uint32_t h =
      seed * 0x9E3779B9u + uint32_t(x) * 0x85EBCA6Bu + uint32_t(y) * 0xC2B2AE35u + uint32_t(z) * 0x27D4EB2Fu;
  h = (h ^ h >> 15) * 0x2C1B3C6Du;
  h = (h ^ h >> 12) * 0x297A2D39u;
  h ^= h >> 15;
  return float(h >> 8) / 16777216.0f;
}

float layeredNoise(vec3 p, int octaves, uint32_t seed, int period) {
  float sum = 0, weight = 0.5f, total = 0;
  for (int i = 0; i < octaves; ++i, p *= 2.0f, period *= 2, weight *= 0.5f) {
    sum += weight * smoothNoise(p, seed + uint32_t(i), period);
    total += weight;
  }
  return sum / total;
}

}  // namespace facet::sample
