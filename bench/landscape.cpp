#include "landscape.h"

#include <cmath>
#include <fstream>
#include <vector>

#include "support/format_builders.h"

namespace facet {

namespace {

constexpr float side = 10;

/// Height and normal of the hills: long waves with short ones on them.
BuiltVertex hillAt(float x, float z, float u, float v) {
  const float height =
      0.6f * std::sin(x * 0.9f) * std::cos(z * 0.7f) + 0.08f * std::sin(x * 7) * std::cos(z * 9);
  const float slopeX =
      0.54f * std::cos(x * 0.9f) * std::cos(z * 0.7f) + 0.56f * std::cos(x * 7) * std::cos(z * 9);
  const float slopeZ =
      -0.42f * std::sin(x * 0.9f) * std::sin(z * 0.7f) - 0.72f * std::sin(x * 7) * std::sin(z * 9);
  const float scale = 1 / std::sqrt(slopeX * slopeX + 1 + slopeZ * slopeZ);
  return {x, height, z, -slopeX * scale, scale, -slopeZ * scale, u, v};
}

BuiltMesh tileOf(const Landscape& landscape, uint32_t column, uint32_t row) {
  BuiltMesh mesh = builtGrid(landscape.cells);
  mesh.texture = "ground";
  const float size = side / static_cast<float>(landscape.tiles);
  for (BuiltVertex& vertex : mesh.vertices) {
    vertex = hillAt((static_cast<float>(column) + vertex.u) * size,
                    (static_cast<float>(row) + vertex.v) * size, vertex.u, vertex.v);
  }
  return mesh;
}

std::vector<BuiltMesh> tilesOf(const Landscape& landscape) {
  std::vector<BuiltMesh> tiles;
  for (uint32_t i = 0; i < landscape.tiles * landscape.tiles; ++i)
    tiles.push_back(tileOf(landscape, i % landscape.tiles, i / landscape.tiles));
  return tiles;
}

void writeFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

void writeLandscapeVxm(const Landscape& landscape, const std::string& path) {
  writeFile(path, vxmHierarchy(4, tilesOf(landscape)).bytes());
}

void writeLandscapePly(const Landscape& landscape, const std::string& path) {
  ByteWriter vertices, faces;
  uint32_t first = 0;
  for (const BuiltMesh& tile : tilesOf(landscape)) {
    for (const BuiltVertex& v : tile.vertices) vertices.write(v.x, v.y, v.z, v.nx, v.ny, v.nz);
    for (size_t i = 0; i < tile.indices.size(); i += 3) {
      faces.write(uint8_t{3}, first + tile.indices[i], first + tile.indices[i + 1],
                  first + tile.indices[i + 2]);
    }
    first += static_cast<uint32_t>(tile.vertices.size());
  }
  const std::string head = "ply\nformat binary_little_endian 1.0\nelement vertex " + std::to_string(first) +
                           "\nproperty float x\nproperty float y\nproperty float z\n"
                           "property float nx\nproperty float ny\nproperty float nz\nelement face " +
                           std::to_string(landscape.triangles()) +
                           "\nproperty list uchar uint vertex_indices\nend_header\n";
  writeFile(path, head + vertices.bytes() + faces.bytes());
}

void writeGroundTexture(const std::string& path) {
  constexpr uint32_t size = 1024;
  std::string bytes("\0\0\2\0\0\0\0\0\0\0\0\0\0\4\0\4\x18\x20", 18);
  for (uint32_t y = 0; y < size; ++y) {
    for (uint32_t x = 0; x < size; ++x) {
      const auto wave = [](uint32_t at) {
        return static_cast<char>(127 + 100 * std::sin(static_cast<float>(at) / 40));
      };
      bytes += wave(x);
      bytes += wave(y);
      bytes += (x / 16 + y / 16) % 2 ? '\x30' : '\x60';
    }
  }
  writeFile(path, bytes);
}

}  // namespace facet
