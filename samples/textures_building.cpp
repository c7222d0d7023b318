#include "island.h"
#include "noise.h"
#include "paint.h"

namespace facet::sample {

namespace {

// Weather marks that run down a wall.
float streaks(float u, float v, int across, uint32_t seed) {
  return tiledNoise(u, v * 0.06f, across, 3, seed) * 0.6f + tiledNoise(u, v, 8, 4, seed + 9) * 0.4f;
}

// White with two red bands; the sun's side is brighter, since the tower alone uses this picture.
Color towerColor(float u, float v) {
  float angle = 2 * pi * u;
  float facing = std::cos(angle) * sunDirection.x + std::sin(angle) * sunDirection.z;
  float light = mix(0.55f, 1.0f, smoothstep(-0.75f, 0.7f, facing));
  float band = smoothstep(0.005f, 0, std::abs(std::abs(v - 0.47f) - 0.2f) - 0.085f);
  Color color = mix(hex(0xF2EEE2), hex(0xC23A2B), band);
  Brick brick = brickAt(u, v, 28, 44);
  float mark = streaks(u, v, 40, 5);
  color = shaded(color, mix(0.94f, 1.03f, cellNoise(brick.column, brick.row, 0, 3)) *
                            mix(0.93f, 1, smoothstep(0, 0.12f, brick.edge)));
  color = mix(color, hex(0x8C7F6A), 0.5f * smoothstep(0.52f, 0.8f, mark));
  color = mix(color, hex(0x6E6A58), 0.6f * smoothstep(0.86f, 1, v));
  for (float top : {0.16f, 0.44f, 0.7f}) {
    float x = std::abs(u - 0.66f - 0.08f * (top - 0.4f)) * 14, y = std::abs(v - top - 0.03f) * 10;
    float frame = std::max(x / 0.33f, y / 0.36f), pane = std::max(x / 0.2f, y / 0.26f);
    if (frame < 1)
      color = pane < 1 ? mix(hex(0x1B2733), hex(0x55708A), smoothstep(0.3f, -0.3f, (v - top - 0.03f) * 10))
                       : hex(0xB9AE97);
  }
  return shaded(color, light * mix(1, 0.86f, smoothstep(0.05f, 0, v)));
}

// Red weatherboards with white corners: the long wall above, a gable below it on the left.
Color houseColor(float u, float v) {
  bool front = v < 0.455f;
  float y = front ? v / 0.45f : (v - 0.46f) / 0.54f, x = front ? u : u / 0.64f;
  float boards = front ? y * 15 : y * 23, board = std::floor(boards), inBoard = boards - board;
  Color color = shaded(hex(0x9C3428), mix(0.86f, 1.1f, cellNoise(int(board), front, 0, 7)));
  color = shaded(
      color, mix(0.8f, 1.04f, tiledNoise(u, v * 8, 6, 4, 2)) * mix(0.6f, 1, smoothstep(0, 0.22f, inBoard)));
  color = mix(color, hex(0x5E2A22), 0.55f * smoothstep(0.8f, 1, y));
  float corner = front ? 0.025f : 0.036f;
  if (x < corner || x > 1 - corner) color = shaded(hex(0xEDE8DA), mix(0.86f, 1, tiledNoise(u, v, 16, 3, 8)));
  float eaves = front ? smoothstep(0.1f, 0, y) * 0.4f : 0;
  return shaded(color, 1 - eaves);
}

// Rows of round tiles that overlap downwards.
Color roofColor(float u, float v) {
  constexpr int rows = 8, columns = 8;
  int row = int(v * rows);
  float x = u * columns + 0.5f * float(row & 1), inTile = x - std::floor(x), down = v * rows - float(row);
  float curve = 0.25f * std::sqrt(clamp01(1 - (2 * inTile - 1) * (2 * inTile - 1)));
  float rim = down - (0.72f + curve);
  Color color = mix(hex(0x39424C), hex(0x5C6872), cellNoise(int(x) % columns, row, 0, 21));
  color = shaded(color, mix(0.8f, 1.2f, tiledNoise(u, v, 16, 3, 22)));
  color = mix(color, hex(0x7C7A52), 0.5f * smoothstep(0.56f, 0.75f, tiledNoise(u, v, 5, 4, 23)));
  float side = smoothstep(0, 0.12f, std::min(inTile, 1 - inTile));
  float light = rim > 0 ? 0.45f : mix(0.72f, 1.12f, clamp01(down)) * mix(0.65f, 1, side);
  return shaded(color, light);
}

// Four boards, their grain along u.
Color plankColor(float u, float v) {
  int board = int(v * 4);
  float inBoard = v * 4 - float(board), shift = 0.37f * float(board);
  float grain = tiledNoise(u * 0.999f, v, 4, 2, 31) * 0.3f +
                tiledNoise(std::fmod(u + shift, 1.0f), v * 12, 3, 4, 32) * 0.7f;
  Color color = mix(hex(0x6F5A43), hex(0xB79B76), grain * 1.25f - 0.1f);
  color = shaded(color, mix(0.85f, 1.1f, cellNoise(board, 2, 0, 33)));
  color = mix(color, hex(0x8A8A80), 0.35f);
  float gap = smoothstep(0, 0.07f, std::min(inBoard, 1 - inBoard));
  float nail =
      std::min(std::hypot((u - 0.06f) * 4, inBoard - 0.5f), std::hypot((u - 0.94f) * 4, inBoard - 0.5f));
  return shaded(color, mix(0.4f, 1, gap) * mix(0.55f, 1, smoothstep(0.04f, 0.07f, nail)));
}

Color stoneColor(float u, float v) {
  float warpU = u + 0.05f * (tiledNoise(u, v, 4, 2, 41) - 0.5f),
        warpV = v + 0.08f * (tiledNoise(u, v, 4, 2, 42) - 0.5f);
  Brick brick = brickAt(warpU + 1, clamp01(warpV), 4, 6);
  Color color = mix(hex(0x77736B), hex(0xA39C8E), cellNoise(brick.column, brick.row % 6, 0, 43));
  color = shaded(color, mix(0.75f, 1.2f, tiledNoise(u, v, 12, 4, 44)));
  return mix(hex(0x565049), color, smoothstep(0.03f, 0.16f, brick.edge));
}

// A white frame with four panes that let the wall shine through.
Color windowColor(float u, float v) {
  float border = std::min(std::min(u, 1 - u), std::min(v, 1 - v));
  bool frame = border < 0.11f || std::abs(u - 0.5f) < 0.035f || std::abs(v - 0.42f) < 0.035f;
  if (frame) return shaded(hex(0xF3EFE4), mix(0.78f, 1, smoothstep(0, 0.06f, border)));
  float gleam = smoothstep(0.12f, 0.02f, std::abs(u + v * 0.7f - 0.75f));
  Color pane = mix(hex(0x34516B), hex(0x8FB4CE), clamp01(1.1f - v));
  return mix(Color{pane.r, pane.g, pane.b, 0.82f}, hex(0xF4FAFF, 0.95f), 0.7f * gleam);
}

Color glassColor(float u, float v) {
  bool bar = std::min(u, 1 - u) < 0.05f;
  if (bar) return hex(0x3A2420, 0.95f);
  float gleam = smoothstep(0.2f, 0, std::abs(u + v * 0.5f - 0.7f));
  return mix(hex(0xBFE0EA, 0.18f), hex(0xFFFFFF, 0.6f), gleam);
}

Color redMetalColor(float u, float v) {
  float wear = tiledNoise(u, v, 6, 4, 51);
  Color color = mix(hex(0xA8281F), hex(0xC93B2C), tiledNoise(u, v, 3, 3, 52));
  color = mix(color, hex(0x5A3524), smoothstep(0.62f, 0.74f, wear));
  return shaded(color, mix(1.05f, 0.8f, v));
}

}  // namespace

std::vector<SampleTexture> buildingTextures() {
  return {
      {"Build/Tower.dds", PictureFile::dxt1, paint(256, 256, towerColor)},
      {"Build/House.DDS", PictureFile::dxt1, paint(256, 256, houseColor)},
      {"Build/Roof_Tiles.png", PictureFile::png, paint(128, 128, roofColor)},
      {"Build/PLANKS.tga", PictureFile::tga, paint(128, 128, plankColor)},
      {"Build/Stone.dds", PictureFile::dxt1, paint(128, 128, stoneColor)},
      {"Build/Window.tga", PictureFile::tga, paint(64, 64, windowColor)},
      {"Build/glass.dds", PictureFile::dxt5, paint(64, 64, glassColor)},
      {"Build/Red_Metal.BMP", PictureFile::bmp, paint(64, 64, redMetalColor)},
  };
}

}  // namespace facet::sample
