#include "noise.h"
#include "paint.h"

namespace facet::sample {

namespace {

// Drawn as "source + destination x (1 - alpha)": colours are scaled by their alpha.
Color premultiplied(Color color) {
  return {color.r * color.a, color.g * color.a, color.b * color.a, color.a};
}

Color seaColor(float u, float v) {
  float swell = tiledNoise(u, v, 3, 3, 171), ripple = tiledNoise(u, v, 7, 4, 172),
        warp = tiledNoise(u, v, 5, 2, 173);
  float wave = 0.5f + 0.5f * std::sin(2 * pi * (3 * v + u + 1.1f * warp));
  Color color = mix(hex(0x1A5266), hex(0x3A8493), 0.3f * wave + 0.7f * (swell * 1.6f - 0.3f));
  float crest =
      smoothstep(0.075f, 0.0f, std::abs(ripple - 0.5f)) * smoothstep(0.45f, 0.7f, swell * 0.7f + wave * 0.3f);
  color = mix(color, hex(0x9CCBD0), 0.5f * crest);
  color.a = mix(0.76f, 0.9f, crest);
  return premultiplied(color);
}

// Surf: dense at the shore (v = 1), torn towards the sea.
Color foamColor(float u, float v) {
  float torn = tiledNoise(u, v, 8, 4, 181), fine = tiledNoise(u, v, 24, 2, 182);
  float amount =
      smoothstep(0.32f, 0.6f, torn * 0.7f + fine * 0.3f + 0.45f * (v - 0.6f)) * smoothstep(0, 0.4f, v);
  return premultiplied(hex(0xEFF6F4, 0.75f * amount * smoothstep(1, 0.85f, v)));
}

// Beams are drawn as "source + destination x alpha": with full alpha they only add light.
Color beamColor(float u, float v) {
  float across = std::pow(std::sin(pi * u), 2.2f), along = std::pow(v, 1.6f);
  float dust = mix(0.75f, 1.1f, tiledNoise(u, v, 4, 4, 191));
  return shaded(hex(0xFFE9A8), 0.32f * across * along * dust);
}

Color glowColor(float u, float v) {
  float distance = 2 * std::hypot(u - 0.5f, v - 0.5f), angle = std::atan2(v - 0.5f, u - 0.5f);
  float rays = 0.85f + 0.15f * std::cos(angle * 12);
  float strength = std::pow(clamp01(1 - distance), 2.2f) * rays;
  Color light = mix(hex(0xFFC860), hex(0xFFFBE8), strength * 1.4f);
  return {light.r * strength * 0.9f, light.g * strength * 0.9f, light.b * strength * 0.9f, strength * 0.5f};
}

Color lampColor(float u, float v) {
  float ring = std::abs(std::sin(v * 9 * pi));
  return mix(hex(0xFFD972), hex(0xFFFDF0), 0.6f * ring + 0.4f * tiledNoise(u, v, 4, 2, 195));
}

}  // namespace

std::vector<SampleTexture> effectTextures() {
  return {
      {"Effects/SEA.dds", PictureFile::dxt5, paint(128, 128, seaColor)},
      {"Effects/Foam.tga", PictureFile::tga, paint(64, 64, foamColor)},
      {"Effects/Beam.dds", PictureFile::argbDds, paint(64, 64, beamColor)},
      {"Effects/GLOW.png", PictureFile::png, paint(64, 64, glowColor)},
      {"Effects/Lamp_Glass.bmp", PictureFile::bmp, paint(32, 32, lampColor)},
  };
}

}  // namespace facet::sample
