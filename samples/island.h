#pragma once

#include "noise.h"

namespace facet::sample {

/// The ground of the scene: an island in a sea whose level is y = 0. All of it is a function of x and z, so
/// the terrain mesh, its texture and everything that stands on it agree.

/// The ground that the terrain texture covers; outside it the sea is deep.
struct IslandArea {
  float left = -23, right = 23, front = -1, back = 35;
};
inline constexpr IslandArea islandArea{};

/// Where things stand, on flat ground.
inline constexpr vec3 towerPlace{10.5f, 6.0f, 15.0f};
inline constexpr vec3 housePlace{-6.0f, 2.6f, 13.0f};
inline constexpr vec3 shedPlace{-1.2f, 1.5f, 8.6f};

/// Towards the sun that the textures are painted for.
inline constexpr vec3 sunDirection{-0.53f, 0.66f, -0.53f};

float islandHeight(float x, float z);

/// The ground at x, z, and so much above it.
vec3 onGround(float x, float z, float above = 0);

/// Unit normal of the ground.
vec3 islandNormal(float x, float z);

/// Distance of x, z from the segment a - b, whose heights do not matter.
float segmentDistance(float x, float z, vec3 a, vec3 b);

/// Distance from the nearest foot path.
float pathDistance(float x, float z);

}  // namespace facet::sample
