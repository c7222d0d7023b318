#include "noise.h"

namespace facet::sample {

namespace {

float fade(float t) {
  return t * t * (3 - 2 * t);
}

int wrapped(int i, int period) {
  return (i % period + period) % period;
}

// One layer that repeats after `cellsX` by `cellsY` cells.
float tiledLayer(float x, float y, int cells, uint32_t seed) {
  int ix = int(std::floor(x)), iy = int(std::floor(y));
  auto at = [&](int i, int j) { return cellNoise(wrapped(ix + i, cells), wrapped(iy + j, cells), 0, seed); };
  float tx = fade(x - float(ix)), ty = fade(y - float(iy));
  return mix(mix(at(0, 0), at(1, 0), tx), mix(at(0, 1), at(1, 1), tx), ty);
}

}  // namespace

uint32_t Random::next() {
  state_ ^= state_ << 13;
  state_ ^= state_ >> 17;
  state_ ^= state_ << 5;
  return state_;
}

float Random::range(float low, float high) {
  return mix(low, high, float(next() >> 8) / 16777216.0f);
}

float cellNoise(int x, int y, int z, uint32_t seed) {
  uint32_t h =
      seed * 0x9E3779B9u + uint32_t(x) * 0x85EBCA6Bu + uint32_t(y) * 0xC2B2AE35u + uint32_t(z) * 0x27D4EB2Fu;
  h ^= h >> 15;
  h *= 0x2C1B3C6Du;
  h ^= h >> 12;
  h *= 0x297A2D39u;
  h ^= h >> 15;
  return float(h >> 8) / 16777216.0f;
}

float smoothNoise(Vec3 p, uint32_t seed) {
  int x = int(std::floor(p.x)), y = int(std::floor(p.y)), z = int(std::floor(p.z));
  float tx = fade(p.x - float(x)), ty = fade(p.y - float(y)), tz = fade(p.z - float(z));
  auto row = [&](int j, int k) {
    return mix(cellNoise(x, y + j, z + k, seed), cellNoise(x + 1, y + j, z + k, seed), tx);
  };
  return mix(mix(row(0, 0), row(1, 0), ty), mix(row(0, 1), row(1, 1), ty), tz);
}

float layeredNoise(Vec3 p, int octaves, uint32_t seed) {
  float sum = 0, weight = 0.5f, total = 0;
  for (int i = 0; i < octaves; ++i, p = p * 2, weight *= 0.5f) {
    sum += weight * smoothNoise(p, seed + uint32_t(i));
    total += weight;
  }
  return sum / total;
}

float tiledNoise(float u, float v, int cells, int octaves, uint32_t seed) {
  float sum = 0, weight = 0.5f, total = 0;
  for (int i = 0; i < octaves; ++i, cells *= 2, weight *= 0.5f) {
    sum += weight * tiledLayer(u * float(cells), v * float(cells), cells, seed + uint32_t(i));
    total += weight;
  }
  return sum / total;
}

}  // namespace facet::sample
