#include <algorithm>

#include "island.h"
#include "paint.h"

// What people made: walls, roofs, boats, things in the harbour, and lights.

namespace facet::sample {

namespace {

using enum PictureFile;

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

const Texture textures[] = {
    // White with two red bands; the sun's side is brighter, since the tower alone uses this picture.
    {"Build/Tower.dds", dxt1, 256,
     [](float u, float v) {
       float facing = std::cos(2 * pi * u) * sunDirection.x + std::sin(2 * pi * u) * sunDirection.z;
       float band = smoothstep(0.005f, 0, std::abs(std::abs(v - 0.47f) - 0.2f) - 0.085f);
       auto [tone, edge] = brickAt(u, v, 28, 44, 3);
       float streaks = tiledNoise(u, v * 0.06f, 40, 3, 5) * 0.6f + tiledNoise(u, v, 8, 4, 14) * 0.4f;
       Color color = shaded(mix(hex(0xF2EEE2), hex(0xC23A2B), band),
                            mix(0.94f, 1.03f, tone) * mix(0.93f, 1, smoothstep(0, 0.12f, edge)));
       color = mix(color, hex(0x8C7F6A), 0.5f * smoothstep(0.52f, 0.8f, streaks));
       color = mix(color, hex(0x6E6A58), 0.6f * smoothstep(0.86f, 1, v));
       for (float top : {0.16f, 0.44f, 0.7f}) {  // windows
         float x = std::abs(u - 0.66f - 0.08f * (top - 0.4f)) * 14, y = (v - top - 0.03f) * 10;
         Color pane = mix(hex(0x1B2733), hex(0x55708A), smoothstep(0.3f, -0.3f, y));
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
       Color color =
           shaded(hex(0x9C3428), mix(0.86f, 1.1f, cellNoise(int(std::floor(boards)), front, 0, 7)) *
                                     mix(0.8f, 1.04f, tiledNoise(u, v * 8, 6, 4, 2)) *
                                     mix(0.6f, 1, smoothstep(0, 0.22f, boards - std::floor(boards))));
       color = mix(color, hex(0x5E2A22), 0.55f * smoothstep(0.8f, 1, y));
       if (toEdge(x) < (front ? 0.025f : 0.036f))
         color = shaded(hex(0xEDE8DA), mix(0.86f, 1, tiledNoise(u, v, 16, 3, 8)));
       return shaded(color, front ? 1 - 0.4f * smoothstep(0.1f, 0, y) : 1);
     }},
    // Rows of round tiles that overlap downwards.
    {"Build/Roof_Tiles.png", png, 128,
     [](float u, float v) {
       float row = std::floor(v * 8), tile = u * 8 + 0.5f * float(int(row) & 1);
       float inTile = tile - std::floor(tile), down = v * 8 - row;
       float rim = 0.72f + 0.25f * std::sqrt(clamp01(1 - (2 * inTile - 1) * (2 * inTile - 1)));
       Color color = mix(hex(0x39424C), hex(0x5C6872), cellNoise(int(tile) % 8, int(row), 0, 21));
       color = shaded(color, mix(0.8f, 1.2f, tiledNoise(u, v, 16, 3, 22)));
       color = mix(color, hex(0x7C7A52), 0.5f * smoothstep(0.56f, 0.75f, tiledNoise(u, v, 5, 4, 23)));
       float side = smoothstep(0, 0.12f, toEdge(inTile));
       return shaded(color, down > rim ? 0.45f : mix(0.72f, 1.12f, down) * mix(0.65f, 1, side));
     }},
    // Four boards, their grain along u.
    {"Build/PLANKS.tga", tga, 128,
     [](float u, float v) {
       float board = std::floor(v * 4), inBoard = v * 4 - board;
       float grain =
           tiledNoise(u, v, 4, 2, 31) * 0.3f + tiledNoise(u + 0.37f * board, v * 12, 3, 4, 32) * 0.7f;
       Color color = mix(hex(0x6F5A43), hex(0xB79B76), grain * 1.25f - 0.1f);
       color = mix(shaded(color, mix(0.85f, 1.1f, cellNoise(int(board), 2, 0, 33))), hex(0x8A8A80), 0.35f);
       float nail = std::hypot((toEdge(u) - 0.06f) * 4, inBoard - 0.5f);
       return shaded(color, mix(0.4f, 1, smoothstep(0, 0.07f, toEdge(inBoard))) *
                                mix(0.55f, 1, smoothstep(0.04f, 0.07f, nail)));
     }},
    {"Build/Stone.dds", dxt1, 128,
     [](float u, float v) {
       float warpU = u + 0.05f * (tiledNoise(u, v, 4, 2, 41) - 0.5f),
             warpV = v + 0.08f * (tiledNoise(u, v, 4, 2, 42) - 0.5f);
       auto [tone, edge] = brickAt(warpU + 1, clamp01(warpV), 4, 6, 43);
       Color color =
           shaded(mix(hex(0x77736B), hex(0xA39C8E), tone), mix(0.75f, 1.2f, tiledNoise(u, v, 12, 4, 44)));
       return mix(hex(0x565049), color, smoothstep(0.03f, 0.16f, edge));
     }},
    // A white frame with four panes that let the wall shine through.
    {"Build/Window.tga", tga, 64,
     [](float u, float v) {
       float border = std::min(toEdge(u), toEdge(v));
       if (border < 0.11f || std::abs(u - 0.5f) < 0.035f || std::abs(v - 0.42f) < 0.035f)
         return shaded(hex(0xF3EFE4), mix(0.78f, 1, smoothstep(0, 0.06f, border)));
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
       Color color = mix(hex(0xA8281F), hex(0xC93B2C), tiledNoise(u, v, 3, 3, 52));
       color = mix(color, hex(0x5A3524), smoothstep(0.62f, 0.74f, tiledNoise(u, v, 6, 4, 51)));
       return shaded(color, mix(1.05f, 0.8f, v));
     }},
    // Blue boats use the left half, red ones the right; v runs from one gunwale around the keel to the other.
    {"props/Boat_Hull.dds", dxt1, 128,
     [](float u, float v) {
       float deep = 1 - std::abs(2 * v - 1);
       Color color = u < 0.5f ? hex(0x2F5D8C) : hex(0xB5402F);
       if (deep < 0.09f || deep > 0.36f)
         color = hex(deep < 0.09f ? 0xE9E2CF : deep < 0.42f ? 0xF1ECDD : 0x54302A);
       color = shaded(color, mix(0.78f, 1, smoothstep(0, 0.12f, toWhole(deep * 14))) *
                                 mix(0.85f, 1.08f, tiledNoise(u, v, 8, 4, 121)));
       return mix(color, hex(0x6A5B45), 0.5f * smoothstep(0.6f, 0.75f, tiledNoise(u, v, 6, 4, 122)));
     }},
    {"props/Crate.bmp", bmp, 64,
     [](float u, float v) {
       float border = std::min(toEdge(u), toEdge(v));
       bool frame = border < 0.13f, brace = std::abs(u - v) < 0.09f;
       bool upright = toEdge(u) < 0.13f;
       float grain = upright ? tiledNoise(u * 8, v, 4, 3, 131) : tiledNoise(u, v * 8, 4, 3, 132);
       float gap = frame   ? smoothstep(0.13f, 0.115f, border)
                   : brace ? 1
                           : smoothstep(0, 0.1f, toWhole(v * 5));
       Color color = shaded(mix(hex(0x7B5B36), hex(0xC39A63), grain), frame || brace ? 1.08f : 0.86f);
       return shaded(color, mix(0.5f, 1, gap) * mix(0.7f, 1, smoothstep(0, 0.03f, border)));
     }},
    // Staves with hoops of iron.
    {"props/Barrel.dds", dxt1, 64,
     [](float u, float v) {
       Color color = shaded(mix(hex(0x6B4A2B), hex(0xA87C4A), tiledNoise(u, v * 0.3f, 16, 3, 141)),
                            mix(0.55f, 1, smoothstep(0, 0.12f, toWhole(u * 8))));
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
       Color color = mix(hex(0xE7DCC0), hex(0xF6F0DE), tiledNoise(u, v, 4, 3, 152));
       if (std::abs(v - 0.5f) < 0.07f) color = mix(color, hex(0xB5503A), 0.85f);
       return shaded(color, weave * mix(0.86f, 1, smoothstep(0, 0.06f, seam)) * mix(0.85f, 1, edge));
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
       return shaded(hex(0xFFE9A8), 0.32f * across * along * mix(0.75f, 1.1f, tiledNoise(u, v, 4, 4, 191)));
     }},
    {"Effects/GLOW.png", png, 64,
     [](float u, float v) {
       float distance = 2 * std::hypot(u - 0.5f, v - 0.5f), angle = std::atan2(v - 0.5f, u - 0.5f);
       float strength = std::pow(clamp01(1 - distance), 2.2f) * (0.85f + 0.15f * std::cos(angle * 12));
       Color light = shaded(mix(hex(0xFFC860), hex(0xFFFBE8), strength * 1.4f), strength * 0.9f);
       return Color(vec3(light), strength * 0.5f);
     }},
    {"Effects/Lamp_Glass.bmp", bmp, 32,
     [](float u, float v) {
       float ring = std::abs(std::sin(v * 9 * pi));
       return mix(hex(0xFFD972), hex(0xFFFDF0), 0.6f * ring + 0.4f * tiledNoise(u, v, 4, 2, 195));
     }},
};

}  // namespace

std::span<const Texture> builtTextures() {
  return textures;
}

}  // namespace facet::sample
