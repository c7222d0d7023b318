#include <algorithm>

#include "island.h"
#include "paint.h"

// The ground, plants, the sea and the sky.

namespace facet::sample {

namespace {

using enum PictureFile;

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
  Color grass = mix(hex(0x4F6B2A), hex(0x93A04B), patch * 1.6f - 0.3f);
  grass = mix(grass, hex(0x3D5527), 0.5f * smoothstep(0.5f, 0.65f, noise(5, 63)));
  Color sand = mix(hex(0xC2A878), hex(0xE2CFA0), fine);
  float layers = smoothstep(0.4f, 0.6f, layeredNoise({x / 3, height * 1.6f + 20, z / 3}, 3, 64));
  Color rock = shaded(mix(hex(0x625D55), hex(0x9C958A), fine * 1.4f - 0.2f), mix(0.8f, 1.1f, layers));
  Color color = mix(sand, grass, smoothstep(0.75f, 1.25f, height + 0.9f * (patch - 0.5f)));
  color = mix(color, rock, smoothstep(0.82f, 0.66f, slope + 0.25f * (patch - 0.5f)));
  float path = smoothstep(0.75f, 0.35f, pathDistance(x, z) + 0.5f * (patch - 0.5f));
  color = mix(color, mix(hex(0xA58B63), hex(0xCBB387), fine), height > 0.2f ? path * 0.9f : 0);
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
    Color color = mix(hex(0x4E7A2C), hex(0x8DAA45), random.range(0, 1));
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

const Texture textures[] = {
    {"Terrain/Terrain_Island.DDS", dxt1, 256, terrainColor},
    {"NATURE/Rock.dds", dxt1, 128,
     [](float u, float v) {
       float crack = std::abs(tiledNoise(u, v, 4, 4, 71) - 0.5f);
       Color color = mix(hex(0x5D5851), hex(0xA59C8E), tiledNoise(u, v, 6, 5, 72) * 1.5f - 0.25f);
       color = mix(color, hex(0x8C8A5A), 0.5f * smoothstep(0.58f, 0.7f, tiledNoise(u, v, 5, 3, 73)));
       return shaded(color, mix(0.72f, 1, smoothstep(0, 0.07f, crack)) * mix(1.12f, 0.72f, v));
     }},
    {"NATURE/Bark.TGA", tga, 64,
     [](float u, float v) {
       float ridge = tiledNoise(u, v * 0.25f, 8, 3, 81) + 0.3f * tiledNoise(u, v, 8, 3, 82);
       return shaded(mix(hex(0x3B2E23), hex(0x8C735A), ridge * 1.5f - 0.4f),
                     mix(1, 0.7f, std::abs(2 * u - 1)));
     }},
    // Twigs that hang down from the top edge and end ragged; the picture repeats along u.
    {"NATURE/Pine_Needles.dds", dxt5, 128,
     [](float u, float v) {
       float twig = std::floor(u * 9), aside = std::abs(u * 9 - twig - 0.5f);
       float reach = 0.72f + 0.26f * cellNoise(int(twig), 0, 0, 91),
             width = mix(0.75f, 0.12f, smoothstep(0.35f, reach, v));
       float fringe = 0.35f * (tiledNoise(u, v, 32, 2, 92) - 0.5f);
       bool inside =
           v < 0.4f + 0.2f * tiledNoise(u, v, 9, 3, 93) || (v < reach && aside + fringe < width * 0.6f);
       Color color = mix(hex(0x1E3B24), hex(0x4F7A3E), tiledNoise(u, v, 24, 3, 94) * 1.5f - 0.35f);
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
           color = shaded(mix(hex(0x4C6B28), hex(0xA9B456), rise), mix(0.75f, 1.1f, i / 34));
       }
       return color;
     }},
    {"Effects/SEA.dds", dxt5, 128,
     [](float u, float v) {
       float swell = tiledNoise(u, v, 3, 3, 171), ripple = tiledNoise(u, v, 7, 4, 172),
             warp = tiledNoise(u, v, 5, 2, 173);
       float wave = 0.5f + 0.5f * std::sin(2 * pi * (3 * v + u + 1.1f * warp));
       Color color = mix(hex(0x1A5266), hex(0x3A8493), 0.3f * wave + 0.7f * (swell * 1.6f - 0.3f));
       float crest = smoothstep(0.075f, 0.0f, std::abs(ripple - 0.5f)) *
                     smoothstep(0.45f, 0.7f, swell * 0.7f + wave * 0.3f);
       color = mix(color, hex(0x9CCBD0), 0.5f * crest);
       color.a = mix(0.76f, 0.9f, crest);
       return premultiplied(color);
     }},
    // Surf: dense at the shore (v = 1), torn towards the sea.
    {"Effects/Foam.tga", tga, 64,
     [](float u, float v) {
       float torn = tiledNoise(u, v, 8, 4, 181) * 0.7f + tiledNoise(u, v, 24, 2, 182) * 0.3f;
       float amount = smoothstep(0.32f, 0.6f, torn + 0.45f * (v - 0.6f)) * smoothstep(0, 0.4f, v);
       return premultiplied(hex(0xEFF6F4, 0.75f * amount * smoothstep(1, 0.85f, v)));
     }},
};

constexpr uint32_t wide = 256, high = 128;
constexpr SkyFace faces[] = {
    {"Sky/SKY0.dds", dxt1, wide, high, {1, 1, 1}, {0, 0, -2}, {0, -1, 0}},
    {"Sky/Sky1.png", png, wide, high, {-1, 1, -1}, {0, 0, 2}, {0, -1, 0}},
    {"Sky/sky2.Png", png, wide, wide, {-1, 1, -1}, {2, 0, 0}, {0, 0, 2}},
    {"Sky/Sky3.bmp", bmp, 64, 64, {-1, -1, 1}, {2, 0, 0}, {0, 0, -2}},
    {"Sky/SKY4.TGA", tga, wide, high, {-1, 1, 1}, {2, 0, 0}, {0, -1, 0}},
    {"Sky/Sky5.png", png, wide, high, {1, 1, -1}, {-2, 0, 0}, {0, -1, 0}},
};

// The sky box is turned with the hour of the day so that this heading meets the light's.
constexpr vec3 skySun{-0.62f, 0.3f, -0.62f};

Color horizonColor(vec3 direction) {
  constexpr vec3 level(1, 0, 1);
  float toSun = glm::dot(glm::normalize(direction * level), glm::normalize(skySun * level));
  return mix(hex(0xB4C6D4), hex(0xF4DDB9), std::pow(0.5f + 0.5f * toSun, 3.0f));
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
  Color white = mix(hex(0xFFFBF2), hex(0x9FAEBF), 0.35f + 1.1f * (lit - 0.45f * cloud) - 0.3f * toSun);
  color = mix(color, white, 0.88f * cloud);
  return mix(color, hex(0xFFFCEC), smoothstep(0.9982f, 0.9992f, toSun) * (1 - 0.6f * cloud));
}

}  // namespace

std::span<const Texture> naturalTextures() {
  return textures;
}

std::span<const SkyFace> skyFaces() {
  return faces;
}

// Pixels of the border lie exactly on the edge of the box, so that neighbours agree there.
Picture paintSky(const SkyFace& face) {
  return paint(face.width, face.height, [&](float u, float v) {
    float s = (u * float(face.width) - 0.5f) / float(face.width - 1),
          t = (v * float(face.height) - 0.5f) / float(face.height - 1);
    return skyColor(face.corner + face.across * s + face.down * t);
  });
}

}  // namespace facet::sample
