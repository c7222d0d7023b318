#include <algorithm>
#include <map>

#include "paint.h"
#include "scene.h"

namespace facet::sample {

namespace {

constexpr const char* layersText =
#include "lighthouse.layers"
    ;

Color ramp(uint32_t from, uint32_t to, float t) {
  return mix(hex(from), hex(to), t);
}

float toWhole(float x) {
  return std::abs(x - std::round(x));
}

/// A pixel that layers are laid on.
struct Pixel {
  float u, v;
  Color color;
};

using Numbers = std::span<const float>;

float lineAt(const Pixel& p, Numbers n) {
  return n[0] * p.u + n[1] * p.v + n[2];
}

/// The place of a pixel in a wall of bricks whose odd rows are moved by a part of a brick.
glm::vec2 brickAt(const Pixel& p, Numbers n, float shift) {
  float row = std::floor(p.v * n[1]);
  return {p.u * n[0] + shift * float(int(row) & 1), p.v * n[1]};
}

float noiseAt(const Pixel& p, Numbers n) {
  float sum = 0;
  for (; n.size() >= 6; n = n.subspan(6))
    sum += n[0] * tiled(p.u * n[4], p.v * n[5], int(n[1]), int(n[2]), uint32_t(n[3]));
  return sum;
}

// lighthouse.layers says what each measure and each layer is.

const std::map<std::string_view, float (*)(const Pixel& p, Numbers n)> measures = {
    {"line", [](const Pixel& p, Numbers n) { return std::abs(lineAt(p, n)); }},
    {"grid", [](const Pixel& p, Numbers n) { return toWhole(lineAt(p, n)); }},
    {"wave", [](const Pixel& p, Numbers n) { return std::cos(2 * pi * lineAt(p, n)); }},
    {"saw", [](const Pixel& p, Numbers n) { return glm::fract(lineAt(p, n)); }},
    {"rim",
     [](const Pixel& p, Numbers) {
       return std::min({p.u, 1 - p.u, p.v, 1 - p.v});
     }},
    {"round",
     [](const Pixel& p, Numbers n) {
       glm::vec2 away = glm::fract(brickAt(p, n, n[2])) - glm::vec2(n[3], n[4]);
       return std::hypot(n[5] * away.x, away.y);
     }},
    {"leaf",
     [](const Pixel& p, Numbers n) {
       glm::vec2 brick = brickAt(p, n, 0), cell = glm::floor(brick);
       auto random = [&](int k) { return cellNoise(int(cell.x), int(cell.y), k, uint32_t(n[2])); };
       glm::vec2 away = brick - cell - glm::vec2(mix(0.33f, 0.67f, random(0)), mix(0.33f, 0.67f, random(1)));
       glm::vec2 along{std::cos(pi * random(2)), std::sin(pi * random(2))};
       return std::hypot(glm::dot(away, along), n[3] * (away.x * along.y - away.y * along.x));
     }},
    {"net",
     [](const Pixel& p, Numbers n) {
       float a = toWhole((p.u + p.v) * n[0]), b = toWhole((p.u - p.v) * n[0]);
       return std::min({a, b, std::hypot(a, b) / 2});
     }},
    {"edge",
     [](const Pixel& p, Numbers n) {
       glm::vec2 brick = brickAt(p, n, 0.5f);
       return std::min(toWhole(brick.x) * n[1] / n[0], toWhole(brick.y));
     }},
    {"tone",
     [](const Pixel& p, Numbers n) {
       glm::ivec2 brick = glm::mod(glm::floor(brickAt(p, n, n[2])), glm::vec2(n[0], n[1]));
       return cellNoise(brick.x, brick.y, 0, uint32_t(n[3]));
     }},
    {"noise", noiseAt},
    {"crack", [](const Pixel& p, Numbers n) { return std::abs(noiseAt(p, n) - 0.5f); }},
};

/// Lays a layer with the parameters a and b where the measure is at t from 0, FROM, to 1, TO; `soft` is t
/// with flat ends.
const std::map<std::string_view, void (*)(Pixel& p, float a, float b, float t, float soft)> layerKinds = {
    {"ramp", [](auto& p, auto a, auto b, auto t, auto) { p.color = ramp(uint32_t(a), uint32_t(b), t); }},
    {"over",
     [](auto& p, auto a, auto b, auto, auto soft) { p.color = mix(p.color, hex(uint32_t(a)), b * soft); }},
    {"shade", [](auto& p, auto a, auto b, auto t, auto) { p.color = shaded(p.color, mix(a, b, t)); }},
    {"fade", [](auto& p, auto a, auto b, auto, auto soft) { p.color = shaded(p.color, mix(a, b, soft)); }},
    {"alpha", [](auto& p, auto a, auto b, auto, auto soft) { p.color.a *= mix(a, b, soft); }},
    {"veil", [](auto& p, auto a, auto b, auto, auto soft) { p.color *= mix(a, b, soft); }},
    {"warp",
     [](auto& p, auto a, auto b, auto t, auto) {
       p = {p.u + a * t, p.v + b * t, p.color};
     }},
};

struct Layer {
  Row row;
  UvRect part;
  decltype(measures)::mapped_type measure;
  decltype(layerKinds)::mapped_type lay;
};

Color layered(const std::vector<Layer>& layers, float u, float v) {
  Pixel pixel{u, v, {}};
  for (const auto& [row, part, measure, lay] : layers) {
    if (u < part.u0 || u >= part.u1 || v < part.v0 || v >= part.v1) continue;
    Pixel inside{(pixel.u - part.u0) / (part.u1 - part.u0), (pixel.v - part.v0) / (part.v1 - part.v0), {}};
    Numbers n(row.numbers);
    float from = n[n.size() - 2], to = n.back();
    float t = (measure(inside, n.subspan(2)) - from) / (to - from);
    lay(pixel, n[0], n[1], t, smoothstep(0, 1, t));
  }
  return pixel.color;
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

Color soilColor(float x, float z, float height, float slope) {
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

Color groundColor(float u, float v) {
  float x = mix(islandArea.left, islandArea.right, u), z = mix(islandArea.back, islandArea.front, v);
  float height = islandHeight(x, z);
  vec3 normal = islandNormal(x, z);
  float sun = std::max(0.0f, glm::dot(normal, glm::normalize(sunDirection))) * sunShare(x, z, height);
  float light = 0.52f + 0.58f * sun;
  Color wet = mix(shaded(hex(0x8F9A78), light), hex(0x16435A), smoothstep(-0.2f, -2.3f, height));
  return mix(shaded(soilColor(x, z, height, normal.y), light), wet, smoothstep(0.16f, -0.5f, height));
}

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

// Pixels of the border lie exactly on the edge of the box, so that neighbours agree there.
Color skyBoxColor(const Row& face, float u, float v) {
  glm::vec2 size(face[0], face[1]), at = (glm::vec2(u, v) * size - 0.5f) / (size - 1.0f);
  return skyColor(face.vec(2) + face.vec(5) * at.x + face.vec(8) * at.y);
}

}  // namespace

void paintTextures(const std::function<void(const char* file, const std::string& bytes)>& write) {
  std::vector<Row> rows = rowsOf(layersText);
  for (auto row = rows.begin(); row != rows.end();) {
    const Row& texture = *row++;
    std::vector<Layer> layers;
    for (UvRect part; row != rows.end() && (row->word == "part" || layerKinds.contains(row->word)); ++row) {
      if (row->word == "part")
        part = row->rect(0);
      else
        layers.push_back({*row, part, measures.at(row->names.at(0)), layerKinds.at(row->word)});
    }
    auto colorAt = [&](float u, float v) {
      if (texture.word == "sky") return skyBoxColor(texture, u, v);
      return texture.word == "ground" ? groundColor(u, v) : layered(layers, u, v);
    };
    Picture picture = paint(uint32_t(texture[0]), uint32_t(texture[1]), colorAt);
    write(texture.names[0].c_str(), encodePicture(picture, texture.names.at(1)));
  }
}

}  // namespace facet::sample
