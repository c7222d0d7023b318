#include "island.h"
#include "noise.h"
#include "paint.h"

namespace facet::sample {

namespace {

// How much of the sun reaches the ground: hills between it and the place, and the buildings' shadows.
float sunShare(float x, float z, float height) {
  float share = 1;
  for (int i = 1; i <= 12; ++i) {
    float way = 0.5f * float(i);
    float over =
        islandHeight(x + sunDirection.x * way, z + sunDirection.z * way) - height - sunDirection.y * way;
    share = std::min(share, 1 - smoothstep(-0.1f, 0.35f, over));
  }
  auto shadow = [&](Vec3 place, float start, float reach, float width) {
    Vec3 from = place - Vec3{sunDirection.x, 0, sunDirection.z} * start;
    Vec3 to = place - Vec3{sunDirection.x, 0, sunDirection.z} * reach;
    return smoothstep(width, width + 0.7f, segmentDistance(x, z, from, to));
  };
  share = std::min(share, shadow(towerPlace, 0, 15, 1.5f));
  share = std::min(share, shadow(housePlace, 0, 3.6f, 2.6f));
  return std::min(share, shadow(shedPlace, 0, 2, 1.3f));
}

Color groundColor(float x, float z, float height, float slope) {
  auto noise = [&](float size, uint32_t seed) {
    return layeredNoise({x / size + 50, 2, z / size + 50}, 4, seed);
  };
  float patch = noise(2.2f, 61), fine = noise(0.45f, 62);
  Color grass = mix(hex(0x4F6B2A), hex(0x93A04B), patch * 1.6f - 0.3f);
  grass = mix(grass, hex(0x3D5527), 0.5f * smoothstep(0.5f, 0.65f, noise(5, 63)));
  Color sand = mix(hex(0xC2A878), hex(0xE2CFA0), fine);
  Color rock = mix(hex(0x625D55), hex(0x9C958A), fine * 1.4f - 0.2f);
  rock = shaded(
      rock, mix(0.8f, 1.1f, smoothstep(0.4f, 0.6f, layeredNoise({x / 3, height * 1.6f + 20, z / 3}, 3, 64))));
  Color color = mix(sand, grass, smoothstep(0.75f, 1.25f, height + 0.9f * (patch - 0.5f)));
  color = mix(color, rock, smoothstep(0.82f, 0.66f, slope + 0.25f * (patch - 0.5f)));
  float path = smoothstep(0.75f, 0.35f, pathDistance(x, z) + 0.5f * (patch - 0.5f));
  color = mix(color, mix(hex(0xA58B63), hex(0xCBB387), fine), height > 0.2f ? path * 0.9f : 0);
  return shaded(color, mix(0.82f, 1.14f, fine));
}

Color terrainColor(float u, float v) {
  float x = mix(islandArea.left, islandArea.right, u), z = mix(islandArea.back, islandArea.front, v);
  float height = islandHeight(x, z);
  Vec3 normal = islandNormal(x, z);
  float light =
      0.52f + 0.58f * std::max(0.0f, dot(normal, normalized(sunDirection))) * sunShare(x, z, height);
  Color color = shaded(groundColor(x, z, height, normal.y), light);
  Color wet = mix(shaded(hex(0x8F9A78), light), hex(0x16435A), smoothstep(-0.2f, -2.3f, height));
  return mix(color, wet, smoothstep(0.16f, -0.5f, height));
}

Color rockColor(float u, float v) {
  float crack = std::abs(tiledNoise(u, v, 4, 4, 71) - 0.5f);
  Color color = mix(hex(0x5D5851), hex(0xA59C8E), tiledNoise(u, v, 6, 5, 72) * 1.5f - 0.25f);
  color = mix(color, hex(0x8C8A5A), 0.5f * smoothstep(0.58f, 0.7f, tiledNoise(u, v, 5, 3, 73)));
  return shaded(color, mix(0.72f, 1, smoothstep(0, 0.07f, crack)) * mix(1.12f, 0.72f, v));
}

Color barkColor(float u, float v) {
  float ridge = tiledNoise(u, v * 0.25f, 8, 3, 81) + 0.3f * tiledNoise(u, v, 8, 3, 82);
  return shaded(mix(hex(0x3B2E23), hex(0x8C735A), ridge * 1.5f - 0.4f),
                mix(0.7f, 1, clamp01(u < 0.5f ? 2 * u : 2 - 2 * u)));
}

// Twigs that hang down from the top edge and end ragged; the picture repeats along u.
Color needleColor(float u, float v) {
  float twig = u * 9, inTwig = twig - std::floor(twig);
  float reach = 0.72f + 0.26f * cellNoise(int(twig) % 9, 0, 0, 91);
  float width = mix(0.75f, 0.12f, smoothstep(0.35f, reach, v));
  float fringe = 0.35f * (tiledNoise(u, v, 32, 2, 92) - 0.5f);
  bool inside = v < 0.4f + 0.2f * tiledNoise(u, v, 9, 3, 93) ||
                (v < reach && std::abs(inTwig - 0.5f) + fringe < width * 0.6f);
  Color color = mix(hex(0x1E3B24), hex(0x4F7A3E), tiledNoise(u, v, 24, 3, 94) * 1.5f - 0.35f);
  color = shaded(color, mix(0.55f, 1.25f, v) * mix(0.8f, 1.1f, 1 - std::abs(2 * inTwig - 1)));
  return {color.r, color.g, color.b, inside ? 1.0f : 0.0f};
}

/// One leaf of the foliage picture, in parts of the picture.
struct Leaf {
  float x, y, cosine, sine;
  Color color;
};

// Later leaves cover earlier ones and are brighter.
std::vector<Leaf> scatteredLeaves() {
  Random random(101);
  std::vector<Leaf> leaves;
  for (int i = 0; i < 150; ++i) {
    float turn = random.range(0, 2 * pi), out = 0.44f * std::sqrt(random.range(0, 1)),
          lean = random.range(0, pi);
    Color color = mix(hex(0x4E7A2C), hex(0x8DAA45), random.range(0, 1));
    leaves.push_back({0.5f + out * std::cos(turn), 0.5f + out * std::sin(turn), std::cos(lean),
                      std::sin(lean), shaded(color, mix(0.55f, 1.15f, float(i) / 150))});
  }
  return leaves;
}

// Many small leaves around the middle.
Picture paintLeaves() {
  return paint(128, 128, [leaves = scatteredLeaves()](float u, float v) {
    Color color = hex(0x35511F, 0);
    for (const Leaf& leaf : leaves) {
      float x = u - leaf.x, y = v - leaf.y;
      float along = x * leaf.cosine + y * leaf.sine, across = y * leaf.cosine - x * leaf.sine;
      if (std::hypot(along / 0.062f, across / 0.034f) > 1) continue;
      color = shaded(leaf.color, (std::abs(across) < 0.004f ? 0.85f : 1.0f) * mix(1.15f, 0.8f, v));
    }
    return color;
  });
}

// Blades that bend to both sides.
Color grassColor(float u, float v) {
  Color color = hex(0x5B7A30, 0);
  Random random(111);
  for (int i = 0; i < 34; ++i) {
    float foot = random.range(0.12f, 0.88f), bend = random.range(-0.3f, 0.3f),
          tall = random.range(0.45f, 0.97f);
    float rise = (1 - v) / tall;
    if (rise > 1) continue;
    float middle = foot + bend * rise * rise;
    if (std::abs(u - middle) > 0.024f * (1.05f - rise)) continue;
    color = shaded(mix(hex(0x4C6B28), hex(0xA9B456), rise), mix(0.75f, 1.1f, float(i) / 34));
  }
  return color;
}

}  // namespace

std::vector<SampleTexture> natureTextures() {
  return {
      {"Terrain/Terrain_Island.DDS", PictureFile::dxt1, paint(256, 256, terrainColor)},
      {"NATURE/Rock.dds", PictureFile::dxt1, paint(128, 128, rockColor)},
      {"NATURE/Bark.TGA", PictureFile::tga, paint(64, 64, barkColor)},
      {"NATURE/Pine_Needles.dds", PictureFile::dxt5, paint(128, 128, needleColor)},
      {"NATURE/leaves.Dds", PictureFile::dxt5, paintLeaves()},
      {"NATURE/Grass.PNG", PictureFile::png, paint(64, 64, grassColor)},
  };
}

}  // namespace facet::sample
