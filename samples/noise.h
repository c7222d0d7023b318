#pragma once

#include <cstdint>

#include "vec.h"

namespace facet::sample {

/// A small generator that gives the same numbers everywhere.
class Random {
 public:
  explicit Random(uint32_t seed) : state_(seed * 2654435761u + 1) {}
  uint32_t next();
  float range(float low, float high);

 private:
  uint32_t state_;
};

/// A fixed random value in 0..1 for each cell of a grid.
float cellNoise(int x, int y, int z, uint32_t seed);

/// Smooth noise in 0..1 with one feature per unit.
float smoothNoise(Vec3 p, uint32_t seed);

/// `octaves` layers of smoothNoise, each twice as fine and half as strong; in 0..1, mostly around 0.5.
float layeredNoise(Vec3 p, int octaves, uint32_t seed);

/// Layered noise on a picture (u, v in 0..1) that repeats without a seam; `cells` features across.
float tiledNoise(float u, float v, int cells, int octaves, uint32_t seed);

}  // namespace facet::sample
