#pragma once

#include <algorithm>
#include <cmath>

namespace facet::sample {

inline constexpr float pi = 3.14159265f;

struct Vec3 {
  float x = 0, y = 0, z = 0;
};

constexpr Vec3 operator+(Vec3 a, Vec3 b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr Vec3 operator-(Vec3 a, Vec3 b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr Vec3 operator*(Vec3 a, float s) {
  return {a.x * s, a.y * s, a.z * s};
}
inline float dot(Vec3 a, Vec3 b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline float length(Vec3 a) {
  return std::sqrt(dot(a, a));
}

/// For a triangle a, b, c that is clockwise as seen, cross(b - a, c - a) points at the viewer.
inline Vec3 cross(Vec3 a, Vec3 b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// The zero vector stays what it is.
inline Vec3 normalized(Vec3 a) {
  float size = length(a);
  return size > 0 ? a * (1 / size) : a;
}

inline float mix(float a, float b, float t) {
  return a + (b - a) * t;
}
inline Vec3 mix(Vec3 a, Vec3 b, float t) {
  return a + (b - a) * t;
}
inline float clamp01(float t) {
  return std::clamp(t, 0.0f, 1.0f);
}

/// 0 at `from`, 1 at `to` (which may be the smaller one), with flat ends.
inline float smoothstep(float from, float to, float value) {
  float t = clamp01((value - from) / (to - from));
  return t * t * (3 - 2 * t);
}

/// Distance of the point (x, z) from the segment a - b on the ground plane.
inline float segmentDistance(float x, float z, Vec3 a, Vec3 b) {
  float dx = b.x - a.x, dz = b.z - a.z;
  float t = clamp01(((x - a.x) * dx + (z - a.z) * dz) / (dx * dx + dz * dz));
  return std::hypot(x - a.x - dx * t, z - a.z - dz * t);
}

}  // namespace facet::sample
