#include <algorithm>

#include "island.h"
#include "paint.h"

namespace facet::sample {

namespace {

using enum PictureFile;

Color ramp(uint32_t from, uint32_t to, float t) {
  return mix(hex(from), hex(to), t);
}

/// From `low` at 0 to 1 at `end`.
float fadeIn(float low, float end, float x) {
  return mix(low, 1, smoothstep(0, end, x));
}

/// How far x is from the nearer end of 0..1, and from the nearest whole number.
float toEdge(float x) {
  return std::min(x, 1 - x);
}
float toWhole(float x) {
  return std::abs(x - std::round(x));
}

/// The place of (u, v) in a wall of bricks whose rows are shifted by half a brick.
struct Brick {
  float tone;  ///< random in 0..1
  float edge;  ///< distance from the brick's border, 0 at it, in parts of a brick's height
};
Brick brickAt(float u, float v, int columns, int rows, uint32_t seed) {
  float y = v * float(rows), row = std::floor(y), x = u * float(columns) + 0.5f * float(int(row) & 1);
  float aspect = float(rows) / float(columns);
  float edge = std::min(toEdge(y - row), toEdge(x - std::floor(x)) * aspect);
  return {cellNoise(int(x) % columns, int(row) % rows, 0, seed), edge};
}

// How much of the sun reaches the ground: hills between it and the place, and the buildings' shadows.
float sunShare(float x, float z, float height) {
  float share = 1;
  for (float way = 0.5f; way <= 6; way += 0.5f) {
    vec3 p = vec3(x, height, z) + sunDirection * way;
    share = std::min(share, 1 - smoothstep(-0.1f, 0.35f, islandHeight(p.x, p.z) - p.y));
  }
  for (auto [place, reach, width] :
       {std::tuple{towerPlace, 15.0f, 1.5f}, {housePlace, 3.6f, 2.6f}, {shedPlace, 2.0f, 1.3f}}) {
    float away = segmentDistance(x, z, place, place - sunDirection * reach);
    share = std::min(share, smoothstep(width, width + 0.7f, away));
  }
  return share;
}

Color groundColor(float x, float z, float height, float slope) {
  auto noise = [&](float size, uint32_t seed) {
    return layeredNoise({x / size + 50, 2, z / size + 50}, 4, seed);
  };
  float patch = noise(2.2f, 61), fine = noise(0.45f, 62);
  Color grass = ramp(0x4F6B2A, 0x93A04B, patch * 1.6f - 0.3f);
  grass = mix(grass, hex(0x3D5527), 0.5f * smoothstep(0.5f, 0.65f, noise(5, 63)));
  Color sand = ramp(0xC2A878, 0xE2CFA0, fine);
  float layers = smoothstep(0.4f, 0.6f, layeredNoise({x / 3, height * 1.6f + 20, z / 3}, 3, 64));
  Color rock = shaded(ramp(0x625D55, 0x9C958A, fine * 1.4f - 0.2f), mix(0.8f, 1.1f, layers));
  Color color = mix(sand, grass, smoothstep(0.75f, 1.25f, height + 0.9f * (patch - 0.5f)));
  color = mix(color, rock, smoothstep(0.82f, 0.66f, slope + 0.25f * (patch - 0.5f)));
  float path = smoothstep(0.75f, 0.35f, pathDistance(x, z) + 0.5f * (patch - 0.5f));
  color = mix(color, ramp(0xA58B63, 0xCBB387, fine), height > 0.2f ? path * 0.9f : 0);
  return shaded(color, mix(0.82f, 1.14f, fine));
}

Color terrainColor(float u, float v) {
  float x = mix(islandArea.left, islandArea.right, u), z = mix(islandArea.back, islandArea.front, v);
  float height = islandHeight(x, z);
  vec3 normal = islandNormal(x, z);
  float sun = std::max(0.0f, glm::dot(normal, glm::normalize(sunDirection))) * sunShare(x, z, height);
  float light = 0.52f + 0.58f * sun;
  Color wet = mix(shaded(hex(0x8F9A78), light), hex(0x16435A), smoothstep(-0.2f, -2.3f, height));
  return mix(shaded(groundColor(x, z, height, normal.y), light), wet, smoothstep(0.16f, -0.5f, height));
}

/// One leaf of the foliage picture, in parts of the picture.
struct Leaf {
  glm::vec2 place, along;
  Color color;
};

// Later leaves cover earlier ones and are brighter.
std::vector<Leaf> scatteredLeaves() {
  Random random(101);
  std::vector<Leaf> leaves;
  for (float i = 0; i < 150; ++i) {
    float turn = random.range(0, 2 * pi), out = 0.44f * std::sqrt(random.range(0, 1)),
          lean = random.range(0, pi);
    Color color = ramp(0x4E7A2C, 0x8DAA45, random.range(0, 1));
    leaves.push_back({{0.5f + out * std::cos(turn), 0.5f + out * std::sin(turn)},
                      {std::cos(lean), std::sin(lean)},
                      shaded(color, mix(0.55f, 1.15f, i / 150))});
  }
  return leaves;
}

// Drawn as "source + destination x (1 - alpha)": colours are scaled by their alpha.
Color premultiplied(Color color) {
  return shaded(color, color.a);
}

/// A texture: its file, in the letter case that the disk shall have, its pixels on each side, and its
/// colours.
const struct {
  const char* file;
  PictureFile kind;
  uint32_t size;
  Color (*colorAt)(float u, float v);
} textures[] = {
    // White with two red bands; the sun's side is brighter, since the tower alone uses this picture.
    {"Build/Tower.dds", dxt1, 256,
     [](float u, float v) {
       float facing = std::cos(2 * pi * u) * sunDirection.x + std::sin(2 * pi * u) * sunDirection.z;
       float band = smoothstep(0.005f, 0, std::abs(std::abs(v - 0.47f) - 0.2f) - 0.085f);
       auto [tone, edge] = brickAt(u, v, 28, 44, 3);
       float streaks = tiled(u, v * 0.06f, 40, 3, 5) * 0.6f + tiled(u, v, 8, 4, 14) * 0.4f;
       Color color =
           shaded(ramp(0xF2EEE2, 0xC23A2B, band), mix(0.94f, 1.03f, tone) * fadeIn(0.93f, 0.12f, edge));
       color = mix(color, hex(0x8C7F6A), 0.5f * smoothstep(0.52f, 0.8f, streaks));
       color = mix(color, hex(0x6E6A58), 0.6f * smoothstep(0.86f, 1, v));
       for (float top : {0.16f, 0.44f, 0.7f}) {  // windows
         float x = std::abs(u - 0.66f - 0.08f * (top - 0.4f)) * 14, y = (v - top - 0.03f) * 10;
         Color pane = ramp(0x1B2733, 0x55708A, smoothstep(0.3f, -0.3f, y));
         if (std::max(x / 0.2f, std::abs(y) / 0.26f) < 1)
           color = pane;
         else if (std::max(x / 0.33f, std::abs(y) / 0.36f) < 1)
           color = hex(0xB9AE97);
       }
       return shaded(
           color, mix(0.55f, 1, smoothstep(-0.75f, 0.7f, facing)) * mix(1, 0.86f, smoothstep(0.05f, 0, v)));
     }},
    // Red weatherboards with white corners: the long wall above, a gable below it on the left.
    {"Build/House.DDS", dxt1, 256,
     [](float u, float v) {
       bool front = v < 0.455f;
       float y = front ? v / 0.45f : (v - 0.46f) / 0.54f, x = front ? u : u / 0.64f,
             boards = y * (front ? 15 : 23);
       Color color = shaded(hex(0x9C3428), mix(0.86f, 1.1f, cellNoise(int(std::floor(boards)), front, 0, 7)) *
                                               mix(0.8f, 1.04f, tiled(u, v * 8, 6, 4, 2)) *
                                               fadeIn(0.6f, 0.22f, boards - std::floor(boards)));
       color = mix(color, hex(0x5E2A22), 0.55f * smoothstep(0.8f, 1, y));
       if (toEdge(x) < (front ? 0.025f : 0.036f))
         color = shaded(hex(0xEDE8DA), mix(0.86f, 1, tiled(u, v, 16, 3, 8)));
       return shaded(color, front ? 1 - 0.4f * smoothstep(0.1f, 0, y) : 1);
     }},
    // Rows of round tiles that overlap downwards.
    {"Build/Roof_Tiles.png", png, 128,
     [](float u, float v) {
       float row = std::floor(v * 8), tile = u * 8 + 0.5f * float(int(row) & 1);
       float inTile = tile - std::floor(tile), down = v * 8 - row;
       float rim = 0.72f + 0.25f * std::sqrt(clamp01(1 - (2 * inTile - 1) * (2 * inTile - 1)));
       Color color = ramp(0x39424C, 0x5C6872, cellNoise(int(tile) % 8, int(row), 0, 21));
       color = shaded(color, mix(0.8f, 1.2f, tiled(u, v, 16, 3, 22)));
       color = mix(color, hex(0x7C7A52), 0.5f * smoothstep(0.56f, 0.75f, tiled(u, v, 5, 4, 23)));
       float side = smoothstep(0, 0.12f, toEdge(inTile));
       return shaded(color, down > rim ? 0.45f : mix(0.72f, 1.12f, down) * mix(0.65f, 1, side));
     }},
    // Four boards, their grain along u.
    {"Build/PLANKS.tga", tga, 128,
     [](float u, float v) {
       float board = std::floor(v * 4), inBoard = v * 4 - board;
       float grain = tiled(u, v, 4, 2, 31) * 0.3f + tiled(u + 0.37f * board, v * 12, 3, 4, 32) * 0.7f;
       Color color = ramp(0x6F5A43, 0xB79B76, grain * 1.25f - 0.1f);
       color = mix(shaded(color, mix(0.85f, 1.1f, cellNoise(int(board), 2, 0, 33))), hex(0x8A8A80), 0.35f);
       float nail = std::hypot((toEdge(u) - 0.06f) * 4, inBoard - 0.5f);
       return shaded(color,
                     fadeIn(0.4f, 0.07f, toEdge(inBoard)) * mix(0.55f, 1, smoothstep(0.04f, 0.07f, nail)));
     }},
    {"Build/Stone.dds", dxt1, 128,
     [](float u, float v) {
       float warpU = u + 0.05f * (tiled(u, v, 4, 2, 41) - 0.5f),
             warpV = v + 0.08f * (tiled(u, v, 4, 2, 42) - 0.5f);
       auto [tone, edge] = brickAt(warpU + 1, clamp01(warpV), 4, 6, 43);
       Color color = shaded(ramp(0x77736B, 0xA39C8E, tone), mix(0.75f, 1.2f, tiled(u, v, 12, 4, 44)));
       return mix(hex(0x565049), color, smoothstep(0.03f, 0.16f, edge));
     }},
    // A white frame with four panes that let the wall shine through.
    {"Build/Window.tga", tga, 64,
     [](float u, float v) {
       float border = std::min(toEdge(u), toEdge(v));
       if (border < 0.11f || std::abs(u - 0.5f) < 0.035f || std::abs(v - 0.42f) < 0.035f)
         return shaded(hex(0xF3EFE4), fadeIn(0.78f, 0.06f, border));
       float gleam = smoothstep(0.12f, 0.02f, std::abs(u + v * 0.7f - 0.75f));
       Color pane = mix(hex(0x34516B, 0.82f), hex(0x8FB4CE, 0.82f), 1.1f - v);
       return mix(pane, hex(0xF4FAFF, 0.95f), 0.7f * gleam);
     }},
    {"Build/glass.dds", dxt5, 64,
     [](float u, float v) {
       float gleam = smoothstep(0.2f, 0, std::abs(u + v * 0.5f - 0.7f));
       return toEdge(u) < 0.05f ? hex(0x3A2420, 0.95f)
                                : mix(hex(0xBFE0EA, 0.18f), hex(0xFFFFFF, 0.6f), gleam);
     }},
    {"Build/Red_Metal.BMP", bmp, 64,
     [](float u, float v) {
       Color color = ramp(0xA8281F, 0xC93B2C, tiled(u, v, 3, 3, 52));
       color = mix(color, hex(0x5A3524), smoothstep(0.62f, 0.74f, tiled(u, v, 6, 4, 51)));
       return shaded(color, mix(1.05f, 0.8f, v));
     }},
    // Blue boats use the left half, red ones the right; v runs from one gunwale around the keel to the other.
    {"props/Boat_Hull.dds", dxt1, 128,
     [](float u, float v) {
       float deep = 1 - std::abs(2 * v - 1);
       Color color = u < 0.5f ? hex(0x2F5D8C) : hex(0xB5402F);
       if (deep < 0.09f || deep > 0.36f)
         color = hex(deep < 0.09f ? 0xE9E2CF : deep < 0.42f ? 0xF1ECDD : 0x54302A);
       color = shaded(color,
                      fadeIn(0.78f, 0.12f, toWhole(deep * 14)) * mix(0.85f, 1.08f, tiled(u, v, 8, 4, 121)));
       return mix(color, hex(0x6A5B45), 0.5f * smoothstep(0.6f, 0.75f, tiled(u, v, 6, 4, 122)));
     }},
    {"props/Crate.bmp", bmp, 64,
     [](float u, float v) {
       float border = std::min(toEdge(u), toEdge(v));
       bool frame = border < 0.13f, brace = std::abs(u - v) < 0.09f;
       bool upright = toEdge(u) < 0.13f;
       float grain = upright ? tiled(u * 8, v, 4, 3, 131) : tiled(u, v * 8, 4, 3, 132);
       float gap = frame   ? smoothstep(0.13f, 0.115f, border)
                   : brace ? 1
                           : smoothstep(0, 0.1f, toWhole(v * 5));
       Color color = shaded(ramp(0x7B5B36, 0xC39A63, grain), frame || brace ? 1.08f : 0.86f);
       return shaded(color, mix(0.5f, 1, gap) * fadeIn(0.7f, 0.03f, border));
     }},
    // Staves with hoops of iron.
    {"props/Barrel.dds", dxt1, 64,
     [](float u, float v) {
       Color color = shaded(ramp(0x6B4A2B, 0xA87C4A, tiled(u, v * 0.3f, 16, 3, 141)),
                            fadeIn(0.55f, 0.12f, toWhole(u * 8)));
       for (float hoop : {0.2f, 0.38f, 0.62f, 0.82f})
         if (std::abs(v - hoop) < 0.035f)
           color = shaded(hex(0x4C4F52), mix(0.8f, 1.3f, smoothstep(0.035f, -0.035f, v - hoop)));
       return color;
     }},
    // Sailcloth on the left, a striped flag on the right.
    {"props/SAIL.Png", png, 128,
     [](float u, float v) {
       float weave = mix(0.96f, 1.03f, cellNoise(int(u * 128), int(v * 128), 0, 151));
       if (u > 0.755f)
         return shaded(hex(std::abs(v - 0.5f) < 0.17f ? 0xF4EBD6 : 0x2E6A7A),
                       weave * mix(0.9f, 1.08f, 0.5f + 0.5f * std::sin((u - 0.76f) / 0.24f * 9)));
       float seam = v * 7 - std::floor(v * 7), edge = smoothstep(0, 0.03f, std::min(u, 0.74f - u));
       Color color = ramp(0xE7DCC0, 0xF6F0DE, tiled(u, v, 4, 3, 152));
       if (std::abs(v - 0.5f) < 0.07f) color = mix(color, hex(0xB5503A), 0.85f);
       return shaded(color, weave * fadeIn(0.86f, 0.06f, seam) * mix(0.85f, 1, edge));
     }},
    // Drawn as "source + destination x alpha": holes are black and opaque, threads nearly transparent.
    {"props/Net.dds", dxt5, 128,
     [](float u, float v) {
       float a = toWhole((u + v) * 8), b = toWhole((u - v) * 8);
       if (std::min(a, b) >= 0.1f && std::hypot(a, b) >= 0.2f) return hex(0x000000, 1);
       return shaded(hex(0x6F7F62, 0.06f), mix(0.8f, 1.2f, cellNoise(int(u * 64), int(v * 64), 0, 161)));
     }},
    // Beams are drawn in the same way: with full alpha they only add light.
    {"Effects/Beam.dds", argbDds, 64,
     [](float u, float v) {
       float across = std::pow(std::sin(pi * u), 2.2f), along = std::pow(v, 1.6f);
       return shaded(hex(0xFFE9A8), 0.32f * across * along * mix(0.75f, 1.1f, tiled(u, v, 4, 4, 191)));
     }},
    {"Effects/GLOW.png", png, 64,
     [](float u, float v) {
       float distance = 2 * std::hypot(u - 0.5f, v - 0.5f), angle = std::atan2(v - 0.5f, u - 0.5f);
       float strength = std::pow(clamp01(1 - distance), 2.2f) * (0.85f + 0.15f * std::cos(angle * 12));
       Color light = shaded(ramp(0xFFC860, 0xFFFBE8, strength * 1.4f), strength * 0.9f);
       return Color(vec3(light), strength * 0.5f);
     }},
    {"Effects/Lamp_Glass.bmp", bmp, 32,
     [](float u, float v) {
       float ring = std::abs(std::sin(v * 9 * pi));
       return ramp(0xFFD972, 0xFFFDF0, 0.6f * ring + 0.4f * tiled(u, v, 4, 2, 195));
     }},
    {"Terrain/Terrain_Island.DDS", dxt1, 256, terrainColor},
    {"NATURE/Rock.dds", dxt1, 128,
     [](float u, float v) {
       float crack = std::abs(tiled(u, v, 4, 4, 71) - 0.5f);
       Color color = ramp(0x5D5851, 0xA59C8E, tiled(u, v, 6, 5, 72) * 1.5f - 0.25f);
       color = mix(color, hex(0x8C8A5A), 0.5f * smoothstep(0.58f, 0.7f, tiled(u, v, 5, 3, 73)));
       return shaded(color, fadeIn(0.72f, 0.07f, crack) * mix(1.12f, 0.72f, v));
     }},
    {"NATURE/Bark.TGA", tga, 64,
     [](float u, float v) {
       float ridge = tiled(u, v * 0.25f, 8, 3, 81) + 0.3f * tiled(u, v, 8, 3, 82);
       return shaded(ramp(0x3B2E23, 0x8C735A, ridge * 1.5f - 0.4f), mix(1, 0.7f, std::abs(2 * u - 1)));
     }},
    // Twigs that hang down from the top edge and end ragged; the picture repeats along u.
    {"NATURE/Pine_Needles.dds", dxt5, 128,
     [](float u, float v) {
       float twig = std::floor(u * 9), aside = std::abs(u * 9 - twig - 0.5f);
       float reach = 0.72f + 0.26f * cellNoise(int(twig), 0, 0, 91),
             width = mix(0.75f, 0.12f, smoothstep(0.35f, reach, v));
       float fringe = 0.35f * (tiled(u, v, 32, 2, 92) - 0.5f);
       bool inside = v < 0.4f + 0.2f * tiled(u, v, 9, 3, 93) || (v < reach && aside + fringe < width * 0.6f);
       Color color = ramp(0x1E3B24, 0x4F7A3E, tiled(u, v, 24, 3, 94) * 1.5f - 0.35f);
       color.a = inside ? 1 : 0;
       return shaded(color, mix(0.55f, 1.25f, v) * mix(1.1f, 0.8f, 2 * aside));
     }},
    {"NATURE/leaves.Dds", dxt5, 128,
     [](float u, float v) {
       static const std::vector<Leaf> leaves = scatteredLeaves();
       Color color = hex(0x35511F, 0);
       for (const Leaf& leaf : leaves) {
         glm::vec2 p = glm::vec2(u, v) - leaf.place;
         float along = glm::dot(p, leaf.along), across = p.y * leaf.along.x - p.x * leaf.along.y;
         if (std::hypot(along / 0.062f, across / 0.034f) < 1)
           color = shaded(leaf.color, (std::abs(across) < 0.004f ? 0.85f : 1.0f) * mix(1.15f, 0.8f, v));
       }
       return color;
     }},
    // Blades that bend to both sides.
    {"NATURE/Grass.PNG", png, 64,
     [](float u, float v) {
       Color color = hex(0x5B7A30, 0);
       Random random(111);
       for (float i = 0; i < 34; ++i) {
         float foot = random.range(0.12f, 0.88f), bend = random.range(-0.3f, 0.3f);
         float rise = (1 - v) / random.range(0.45f, 0.97f), middle = foot + bend * rise * rise;
         if (rise < 1 && std::abs(u - middle) < 0.024f * (1.05f - rise))
           color = shaded(ramp(0x4C6B28, 0xA9B456, rise), mix(0.75f, 1.1f, i / 34));
       }
       return color;
     }},
    {"Effects/SEA.dds", dxt5, 128,
     [](float u, float v) {
       float swell = tiled(u, v, 3, 3, 171), ripple = tiled(u, v, 7, 4, 172), warp = tiled(u, v, 5, 2, 173);
       float wave = 0.5f + 0.5f * std::sin(2 * pi * (3 * v + u + 1.1f * warp));
       Color color = ramp(0x1A5266, 0x3A8493, 0.3f * wave + 0.7f * (swell * 1.6f - 0.3f));
       float crest = smoothstep(0.075f, 0.0f, std::abs(ripple - 0.5f)) *
                     smoothstep(0.45f, 0.7f, swell * 0.7f + wave * 0.3f);
       color = mix(color, hex(0x9CCBD0), 0.5f * crest);
       color.a = mix(0.76f, 0.9f, crest);
       return premultiplied(color);
     }},
    // Surf: dense at the shore (v = 1), torn towards the sea.
    {"Effects/Foam.tga", tga, 64,
     [](float u, float v) {
       float torn = tiled(u, v, 8, 4, 181) * 0.7f + tiled(u, v, 24, 2, 182) * 0.3f;
       float amount = smoothstep(0.32f, 0.6f, torn + 0.45f * (v - 0.6f)) * smoothstep(0, 0.4f, v);
       return premultiplied(hex(0xEFF6F4, 0.75f * amount * smoothstep(1, 0.85f, v)));
     }},
};

/// One picture of the sky box: what is seen in the direction of its top left corner, and how that changes
/// over its width and height.
constexpr struct {
  const char* file;
  PictureFile kind;
  uint32_t width, height;
  vec3 corner, across, down;
} skyFaces[] = {
    {"Sky/SKY0.dds", dxt1, 256, 128, {1, 1, 1}, {0, 0, -2}, {0, -1, 0}},
    {"Sky/Sky1.png", png, 256, 128, {-1, 1, -1}, {0, 0, 2}, {0, -1, 0}},
    {"Sky/sky2.Png", png, 256, 256, {-1, 1, -1}, {2, 0, 0}, {0, 0, 2}},
    {"Sky/Sky3.bmp", bmp, 64, 64, {-1, -1, 1}, {2, 0, 0}, {0, 0, -2}},
    {"Sky/SKY4.TGA", tga, 256, 128, {-1, 1, 1}, {2, 0, 0}, {0, -1, 0}},
    {"Sky/Sky5.png", png, 256, 128, {1, 1, -1}, {-2, 0, 0}, {0, -1, 0}},
};

// The sky box is turned with the hour of the day so that this heading meets the light's.
constexpr vec3 skySun{-0.62f, 0.3f, -0.62f};

Color horizonColor(vec3 direction) {
  constexpr vec3 level(1, 0, 1);
  float toSun = glm::dot(glm::normalize(direction * level), glm::normalize(skySun * level));
  return ramp(0xB4C6D4, 0xF4DDB9, std::pow(0.5f + 0.5f * toSun, 3.0f));
}

// Clouds lie on a flat layer far above, so they shrink towards the horizon.
float cloudAmount(vec3 direction) {
  float reach = 1.5f / (direction.y + 0.16f);
  float shape = layeredNoise({direction.x * reach + 60, 7, direction.z * reach + 60}, 5, 201);
  return smoothstep(0.5f, 0.72f, shape) * smoothstep(0.02f, 0.2f, direction.y);
}

/// What is seen along a direction. Below the horizon that is haze at the rim, which the lower walls of the
/// box continue, and the sea in the middle.
Color skyColor(vec3 direction) {
  float rim = std::max(std::abs(direction.x), std::abs(direction.z));
  if (direction.y < 0) return mix(hex(0x2B5568), horizonColor(direction), smoothstep(0.55f, 1, rim));
  direction = glm::normalize(direction);
  float toSun = glm::dot(direction, glm::normalize(skySun));
  Color color = mix(horizonColor(direction), hex(0x7FA9CF), smoothstep(0, 0.32f, direction.y));
  color = mix(color, hex(0x2F6199), smoothstep(0.2f, 1, direction.y));
  color = mix(color, hex(0xFFE7B0), 0.75f * std::pow(std::max(0.0f, toSun), 24.0f));
  float cloud = cloudAmount(direction), lit = cloudAmount(direction + skySun * 0.07f);
  Color white = ramp(0xFFFBF2, 0x9FAEBF, 0.35f + 1.1f * (lit - 0.45f * cloud) - 0.3f * toSun);
  color = mix(color, white, 0.88f * cloud);
  return mix(color, hex(0xFFFCEC), smoothstep(0.9982f, 0.9992f, toSun) * (1 - 0.6f * cloud));
}

}  // namespace

void paintTextures(const std::function<void(const char* file, const std::string& bytes)>& write) {
  for (const auto& row : textures)
    write(row.file, encodePicture(paint(row.size, row.size, row.colorAt), row.kind));
  for (const auto& face : skyFaces) {
    // Pixels of the border lie exactly on the edge of the box, so that neighbours agree there.
    glm::vec2 size(face.width, face.height);
    auto colorAt = [&](float u, float v) {
      glm::vec2 at = (glm::vec2(u, v) * size - 0.5f) / (size - 1.0f);
      return skyColor(face.corner + face.across * at.x + face.down * at.y);
    };
    write(face.file, encodePicture(paint(face.width, face.height, colorAt), face.kind));
  }
}

}  // namespace facet::sample
