#include "noise.h"
#include "paint.h"

namespace facet::sample {

namespace {

// Blue boats use the left half, red ones the right; v runs from one gunwale around the keel to the other.
Color hullColor(float u, float v) {
  float deep = 1 - std::abs(2 * v - 1);
  Color paintwork = u < 0.5f ? hex(0x2F5D8C) : hex(0xB5402F);
  Color color = deep < 0.09f   ? hex(0xE9E2CF)
                : deep < 0.36f ? paintwork
                : deep < 0.42f ? hex(0xF1ECDD)
                               : hex(0x54302A);
  float strakes = deep * 14, seam = std::abs(strakes - std::round(strakes));
  color = shaded(color,
                 mix(0.78f, 1, smoothstep(0, 0.12f, seam)) * mix(0.85f, 1.08f, tiledNoise(u, v, 8, 4, 121)));
  return mix(color, hex(0x6A5B45), 0.5f * smoothstep(0.6f, 0.75f, tiledNoise(u, v, 6, 4, 122)));
}

Color crateColor(float u, float v) {
  float border = std::min(std::min(u, 1 - u), std::min(v, 1 - v));
  bool frame = border < 0.13f, brace = std::abs(u - v) < 0.09f;
  float boards = v * 5, inBoard = boards - std::floor(boards);
  float grain =
      frame && std::min(u, 1 - u) < 0.13f ? tiledNoise(u * 8, v, 4, 3, 131) : tiledNoise(u, v * 8, 4, 3, 132);
  Color color = shaded(mix(hex(0x7B5B36), hex(0xC39A63), grain), frame || brace ? 1.08f : 0.86f);
  float gap = frame   ? smoothstep(0.13f, 0.115f, border)
              : brace ? 1
                      : smoothstep(0, 0.1f, std::min(inBoard, 1 - inBoard));
  return shaded(color, mix(0.5f, 1, gap) * mix(0.7f, 1, smoothstep(0, 0.03f, border)));
}

Color barrelColor(float u, float v) {
  float staves = u * 8, inStave = staves - std::floor(staves);
  Color color = mix(hex(0x6B4A2B), hex(0xA87C4A), tiledNoise(u * 1, v * 0.3f, 16, 3, 141));
  color = shaded(color, mix(0.55f, 1, smoothstep(0, 0.12f, std::min(inStave, 1 - inStave))));
  for (float hoop : {0.2f, 0.38f, 0.62f, 0.82f}) {
    if (std::abs(v - hoop) < 0.035f)
      color = shaded(hex(0x4C4F52), mix(0.8f, 1.3f, smoothstep(0.035f, -0.035f, v - hoop)));
  }
  return color;
}

// Sailcloth on the left, a striped flag on the right.
Color sailColor(float u, float v) {
  float weave = mix(0.96f, 1.03f, cellNoise(int(u * 128), int(v * 128), 0, 151));
  if (u > 0.755f) {
    float x = (u - 0.76f) / 0.24f;
    bool stripe = std::abs(v - 0.5f) < 0.17f;
    return shaded(stripe ? hex(0xF4EBD6) : hex(0x2E6A7A),
                  weave * mix(0.9f, 1.08f, 0.5f + 0.5f * std::sin(x * 9)));
  }
  float seam = v * 7 - std::floor(v * 7), edge = smoothstep(0, 0.03f, std::min(u, 0.74f - u));
  Color color = mix(hex(0xE7DCC0), hex(0xF6F0DE), tiledNoise(u, v, 4, 3, 152));
  if (v > 0.43f && v < 0.57f) color = mix(color, hex(0xB5503A), 0.85f);
  return shaded(color, weave * mix(0.86f, 1, smoothstep(0, 0.06f, seam)) * mix(0.85f, 1, edge));
}

// A net is drawn as "source + destination x alpha": holes are black and opaque, threads nearly transparent.
Color netColor(float u, float v) {
  float a = (u + v) * 8, b = (u - v) * 8;
  float thread = std::min(std::abs(a - std::round(a)), std::abs(b - std::round(b)));
  float knot = std::hypot(a - std::round(a), b - std::round(b));
  if (thread < 0.1f || knot < 0.2f)
    return shaded(hex(0x6F7F62, 0.06f), mix(0.8f, 1.2f, cellNoise(int(u * 64), int(v * 64), 0, 161)));
  return hex(0x000000, 1);
}

}  // namespace

std::vector<SampleTexture> propTextures() {
  return {
      {"props/Boat_Hull.dds", PictureFile::dxt1, paint(128, 128, hullColor)},
      {"props/Crate.bmp", PictureFile::bmp, paint(64, 64, crateColor)},
      {"props/Barrel.dds", PictureFile::dxt1, paint(64, 64, barrelColor)},
      {"props/SAIL.Png", PictureFile::png, paint(128, 128, sailColor)},
      {"props/Net.dds", PictureFile::dxt5, paint(128, 128, netColor)},
  };
}

}  // namespace facet::sample
