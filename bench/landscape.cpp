#include "bench.h"

#include "import/load.h"
#include "paint.h"
#include "support/format_builders.h"

namespace facet {

namespace {

/// Long waves with short ones on them.
float heightAt(float x, float z) {
  return 0.6f * std::sin(x * 0.9f) * std::cos(z * 0.7f) + 0.08f * std::sin(x * 7) * std::cos(z * 9);
}

BuiltVertex hillAt(float x, float z, float u, float v) {
  constexpr float step = 1e-3f;
  const float across = heightAt(x + step, z) - heightAt(x - step, z),
              along = heightAt(x, z + step) - heightAt(x, z - step);
  const glm::vec3 normal = glm::normalize(glm::vec3(-across, 2 * step, -along));
  return {x, heightAt(x, z), z, normal.x, normal.y, normal.z, u, v};
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

}  // namespace

void writeVxm(const Landscape& landscape, const std::string& path, uint32_t format) {
  std::ofstream file(path, std::ios::binary);
  for (uint32_t i = 0; i < landscape.meshes(); ++i) {
    const BuiltMesh tile = tileOf(landscape, i);
    const ByteWriter child = ByteWriter().chunk(i, vxmVisual(4, tile, format));
    if (i == 0) {  // all children have the size of the first
      file << vxmHeader(4, tile).bytes();
      file << ByteWriter().write(9u, static_cast<uint32_t>(child.size()) * landscape.meshes()).bytes();
    }
    file << child.bytes();
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
  file << vertices.bytes();
  file << faces.bytes();
}

void writeGroundTexture(const std::string& path) {
  const auto color = [](float u, float v) {
    const bool odd = (int(u * 64) + int(v * 64)) % 2 != 0;
    return sample::Color(odd ? 0.2f : 0.4f, 0.5f + 0.4f * std::sin(v * 25), 0.5f + 0.4f * std::sin(u * 25),
                         1);
  };
  std::ofstream file(path, std::ios::binary);
  file << sample::encodePicture(sample::paint(1024, 1024, color), "tga");
}

std::unique_ptr<Model> loaded(const std::string& path) {
  LoadResult result = loadModel(path, {});
  if (!result.model) throw std::runtime_error(path + ": " + result.error);
  return std::move(result.model);
}

}  // namespace facet
