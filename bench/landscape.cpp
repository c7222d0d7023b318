#include "landscape.h"

#include <cmath>
#include <fstream>
#include <stdexcept>

#include "import/load.h"
#include "support/format_builders.h"

namespace facet {

namespace {

/// Height and normal of the hills: long waves with short ones on them.
BuiltVertex hillAt(float x, float z, float u, float v) {
  const float height =
      0.6f * std::sin(x * 0.9f) * std::cos(z * 0.7f) + 0.08f * std::sin(x * 7) * std::cos(z * 9);
  const float slopeX =
      0.54f * std::cos(x * 0.9f) * std::cos(z * 0.7f) + 0.56f * std::cos(x * 7) * std::cos(z * 9);
  const float slopeZ =
      -0.42f * std::sin(x * 0.9f) * std::sin(z * 0.7f) - 0.72f * std::sin(x * 7) * std::sin(z * 9);
  const glm::vec3 normal = glm::normalize(glm::vec3(-slopeX, 1, -slopeZ));
  return {x, height, z, normal.x, normal.y, normal.z, u, v};
}

BuiltMesh tileOf(const Landscape& landscape, uint32_t tile) {
  constexpr float side = 10;
  BuiltMesh mesh = builtGrid(landscape.cells);
  mesh.texture = "ground";
  const float size = side / static_cast<float>(landscape.columns);
  const auto column = static_cast<float>(tile % landscape.columns),
             row = static_cast<float>(tile / landscape.columns);
  for (BuiltVertex& v : mesh.vertices) v = hillAt((column + v.u) * size, (row + v.v) * size, v.u, v.v);
  return mesh;
}

void put(std::ofstream& file, const std::string& bytes) {
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

void writeVxm(const Landscape& landscape, const std::string& path, uint32_t format) {
  std::ofstream file(path, std::ios::binary);
  for (uint32_t i = 0; i < landscape.meshes(); ++i) {
    const BuiltMesh tile = tileOf(landscape, i);
    const ByteWriter child = ByteWriter().chunk(i, vxmVisual(4, tile, format));
    if (i == 0) {  // all children have the size of the first
      put(file, vxmHeader(4, tile).bytes());
      put(file, ByteWriter().write(9u, static_cast<uint32_t>(child.size()) * landscape.meshes()).bytes());
    }
    put(file, child.bytes());
  }
}

void writePly(const Landscape& landscape, const std::string& path) {
  ByteWriter vertices, faces;
  uint32_t first = 0;
  for (uint32_t i = 0; i < landscape.meshes(); ++i) {
    const BuiltMesh tile = tileOf(landscape, i);
    for (const BuiltVertex& v : tile.vertices) vertices.write(v.position(), v.normal());
    for (size_t k = 0; k < tile.indices.size(); k += 3) {
      faces.write(uint8_t{3});
      for (size_t corner = k; corner < k + 3; ++corner) faces.write(first + tile.indices[corner]);
    }
    first += static_cast<uint32_t>(tile.vertices.size());
  }
  std::ofstream file(path, std::ios::binary);
  file << "ply\nformat binary_little_endian 1.0\nelement vertex " << first
       << "\nproperty float x\nproperty float y\nproperty float z\n"
          "property float nx\nproperty float ny\nproperty float nz\nelement face "
       << landscape.triangles() << "\nproperty list uchar uint vertex_indices\nend_header\n";
  put(file, vertices.bytes());
  put(file, faces.bytes());
}

void writeGroundTexture(const std::string& path) {
  constexpr uint32_t size = 1024;
  std::string bytes("\0\0\2\0\0\0\0\0\0\0\0\0\0\4\0\4\x18\x20", 18);
  const auto wave = [](uint32_t at) {
    return static_cast<char>(127 + 100 * std::sin(static_cast<float>(at) / 40));
  };
  for (uint32_t i = 0; i < size * size; ++i) {
    const uint32_t x = i % size, y = i / size;
    bytes += {wave(x), wave(y), (x / 16 + y / 16) % 2 ? '\x30' : '\x60'};
  }
  std::ofstream file(path, std::ios::binary);
  put(file, bytes);
}

std::unique_ptr<Model> loaded(const std::string& path) {
  LoadResult result = loadModel(path, {});
  if (!result.model) throw std::runtime_error(path + ": " + result.error);
  return std::move(result.model);
}

}  // namespace facet
