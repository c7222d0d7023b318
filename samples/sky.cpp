#include "island.h"
#include "noise.h"
#include "paint.h"

namespace facet::sample {

namespace {

// The sky box is turned with the hour of the day so that this heading meets the light's.
constexpr Vec3 skySun{-0.62f, 0.3f, -0.62f};

Color horizonColor(Vec3 direction) {
  Vec3 level = normalized({direction.x, 0, direction.z});
  float toSun = 0.5f + 0.5f * dot(level, normalized({skySun.x, 0, skySun.z}));
  return mix(hex(0xB4C6D4), hex(0xF4DDB9), std::pow(toSun, 3.0f));
}

// Clouds lie on a flat layer far above, so they shrink towards the horizon.
float cloudAmount(Vec3 direction) {
  float reach = 1 / (direction.y + 0.16f);
  Vec3 p{direction.x * reach * 1.5f + 60, 7, direction.z * reach * 1.5f + 60};
  float shape = layeredNoise(p, 5, 201);
  return smoothstep(0.5f, 0.72f, shape) * smoothstep(0.02f, 0.2f, direction.y);
}

/// What is seen along a direction above the horizon.
Color skyColor(Vec3 direction) {
  direction = normalized(direction);
  float rise = std::max(0.0f, direction.y);
  Color color = mix(horizonColor(direction), hex(0x7FA9CF), smoothstep(0, 0.32f, rise));
  color = mix(color, hex(0x2F6199), smoothstep(0.2f, 1, rise));
  float toSun = dot(direction, normalized(skySun));
  color = mix(color, hex(0xFFE7B0), 0.75f * std::pow(std::max(0.0f, toSun), 24.0f));
  float cloud = cloudAmount(direction), lit = cloudAmount(direction + skySun * 0.07f);
  Color white =
      mix(hex(0xFFFBF2), hex(0x9FAEBF), clamp01(0.35f + 1.1f * (lit - 0.45f * cloud) - 0.3f * toSun));
  color = mix(color, white, 0.88f * cloud);
  color = mix(color, hex(0xFFFCEC), smoothstep(0.9982f, 0.9992f, toSun) * (1 - 0.6f * cloud));
  return color;
}

/// Below the horizon: haze at the rim, which the lower walls of the box continue, and the sea in the middle.
Color seaBelow(float x, float z) {
  float rim = std::max(std::abs(x), std::abs(z));
  return mix(hex(0x2B5568), horizonColor({x, 0, z}), smoothstep(0.55f, 1, rim));
}

// Pixels of the border lie exactly on the edge of the box, so that neighbours agree there.
Picture face(uint32_t width, uint32_t height, const std::function<Color(float across, float down)>& colorAt) {
  return paint(width, height, [&](float u, float v) {
    return colorAt((u * float(width) - 0.5f) / float(width - 1),
                   (v * float(height) - 0.5f) / float(height - 1));
  });
}

}  // namespace

std::vector<SampleTexture> skyTextures() {
  constexpr uint32_t wide = 256, high = 128;
  auto right = [](float s, float t) { return skyColor({1, 1 - t, 1 - 2 * s}); };
  auto left = [](float s, float t) { return skyColor({-1, 1 - t, 2 * s - 1}); };
  auto top = [](float s, float t) { return skyColor({2 * s - 1, 1, 2 * t - 1}); };
  auto below = [](float s, float t) { return seaBelow(2 * s - 1, 1 - 2 * t); };
  auto ahead = [](float s, float t) { return skyColor({2 * s - 1, 1 - t, 1}); };
  auto behind = [](float s, float t) { return skyColor({1 - 2 * s, 1 - t, -1}); };
  return {
      {"Sky/SKY0.dds", PictureFile::dxt1, face(wide, high, right)},
      {"Sky/Sky1.png", PictureFile::png, face(wide, high, left)},
      {"Sky/sky2.Png", PictureFile::png, face(wide, wide, top)},
      {"Sky/Sky3.bmp", PictureFile::bmp, face(64, 64, below)},
      {"Sky/SKY4.TGA", PictureFile::tga, face(wide, high, ahead)},
      {"Sky/Sky5.png", PictureFile::png, face(wide, high, behind)},
  };
}

}  // namespace facet::sample
