#include <array>
#include <span>

#include "bytes.h"
#include "writers.h"

namespace facet::sample {

namespace {

/// Where a vertex record holds what readers use; the rest of it stays zero.
struct VertexLayout {
  uint32_t code, stride, position, normal, uv;
};

// Large meshes come early in the scene, so the compact layout leads and returns between the wide ones.
constexpr std::array<VertexLayout, 10> layouts4{{{0x112, 32, 0, 12, 24},
                                                 {1, 60, 0, 12, 48},
                                                 {0x112, 32, 0, 12, 24},
                                                 {2, 64, 4, 16, 56},
                                                 {3, 70, 6, 18, 62},
                                                 {0x112, 32, 0, 12, 24},
                                                 {4, 76, 8, 20, 68},
                                                 {0x12071980, 60, 0, 12, 48},
                                                 {0x112, 32, 0, 12, 24},
                                                 {0x240E3300, 64, 4, 16, 56}}};
constexpr std::array<VertexLayout, 5> layouts3{{{0x112, 32, 0, 12, 24},
                                                {1, 36, 0, 12, 24},
                                                {0x112, 32, 0, 12, 24},
                                                {0x12071980, 36, 0, 12, 24},
                                                {0x240E3300, 64, 4, 16, 56}}};

// Above this count a mesh gets the compact layout, whatever its turn.
constexpr size_t wideVertexLimit = 300;

/// What differs between the versions.
struct Version {
  uint32_t number, containerId, vertexId, indexId;
  std::span<const VertexLayout> layouts;
};
constexpr Version version4{4, 9, 3, 4, layouts4};
constexpr Version version3{3, 17, 7, 8, layouts3};

constexpr uint32_t singleVisual = 0, hierarchy = 1;

Bytes headerChunk(const Version& version, uint32_t visualType, const Bounds& bounds) {
  Bytes data;
  data.u8(version.number);
  data.u8(visualType);
  data.u16(0);
  if (version.number == 4) {
    data.vec3(bounds.low);
    data.vec3(bounds.high);
    data.vec3(bounds.center);
    data.f32(bounds.radius);
  }
  return data;
}

// Who made the model from which file, three times over: its creator, its exporter, its last editor.
Bytes descriptorChunk() {
  Bytes data;
  data.text("harbour\\lighthouse.object");
  for (int i = 0; i < 3; ++i) {
    data.text("\\\\workbench\\make_sample");
    data.u32(0);
  }
  return data;
}

Bytes vertexChunk(const SampleMesh& mesh, const VertexLayout& layout) {
  Bytes data;
  data.u32(layout.code);
  data.u32(uint32_t(mesh.vertices.size()));
  for (const SampleVertex& vertex : mesh.vertices) {
    data.zeros(layout.position);
    data.vec3(vertex.position);
    data.vec3(vertex.normal);
    data.zeros(layout.uv - layout.normal - 12);
    data.f32(vertex.u);
    data.f32(vertex.v);
    data.zeros(layout.stride - layout.uv - 8);
  }
  return data;
}

Bytes indexChunk(const SampleMesh& mesh) {
  Bytes data;
  data.u32(uint32_t(mesh.indices.size()));
  for (uint16_t index : mesh.indices) data.u16(index);
  return data;
}

Bytes visual(const Scene& scene, size_t index, const Version& version) {
  const SampleMesh& mesh = scene.meshes[index];
  bool compact = mesh.vertices.size() > wideVertexLimit;
  Bounds bounds = meshBounds(mesh);
  Bytes names, box, data;
  names.text(scene.materials[mesh.material].texture);
  names.text(scene.materials[mesh.material].shader);
  data.chunk(1, headerChunk(version, singleVisual, bounds));
  data.chunk(2, names);
  if (version.number == 3) {
    box.vec3(bounds.low);
    box.vec3(bounds.high);
    data.chunk(6, box);
  }
  data.chunk(version.vertexId,
             vertexChunk(mesh, version.layouts[compact ? 0 : index % version.layouts.size()]));
  data.chunk(version.indexId, indexChunk(mesh));
  return data;
}

void writeHierarchy(const Scene& scene, const Version& version, const std::filesystem::path& path) {
  Bytes container, file;
  for (size_t i = 0; i < scene.meshes.size(); ++i) container.chunk(uint32_t(i), visual(scene, i, version));
  file.chunk(1, headerChunk(version, hierarchy, sceneBounds(scene)));
  if (version.number == 4) file.chunk(18, descriptorChunk());
  file.chunk(version.containerId, container);
  writeFile(path, file.content());
}

}  // namespace

void writeVxm4(const Scene& scene, const std::filesystem::path& path) {
  writeHierarchy(scene, version4, path);
}

void writeVxm3(const Scene& scene, const std::filesystem::path& path) {
  writeHierarchy(scene, version3, path);
}

}  // namespace facet::sample
