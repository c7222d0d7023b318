#include "bytes.h"
#include "writers.h"

namespace facet::sample {

namespace {

constexpr float positionScale = 2720, uvScale = 2048;

// The scaled value of a packed field is a signed 16-bit number.
bool fits(float value, float scale) {
  return std::abs(value * scale) < 32767;
}

bool canBePacked(const SampleMesh& mesh) {
  for (const SampleVertex& vertex : mesh.vertices) {
    Vec3 p = vertex.position;
    if (!fits(p.x, positionScale) || !fits(p.y, positionScale) || !fits(p.z, positionScale)) return false;
    if (!fits(vertex.u, uvScale) || !fits(vertex.v, uvScale)) return false;
  }
  return true;
}

void addScaled(Bytes& data, float value, float scale) {
  data.u16(uint32_t(std::lround(value * scale)) & 0xFFFF);
}

Bytes packedVertices(const SampleMesh& mesh) {
  Bytes data;
  data.u8(0);  // no bones
  data.u32(uint32_t(mesh.vertices.size()));
  for (const SampleVertex& vertex : mesh.vertices) {
    for (float value : {vertex.position.x, vertex.position.y, vertex.position.z})
      addScaled(data, value, positionScale);
    data.zeros(22);
    for (float value : {vertex.u, vertex.v}) addScaled(data, value, uvScale);
  }
  return data;
}

Bytes plainVertices(const SampleMesh& mesh) {
  Bytes data;
  data.u32(0);
  data.u32(uint32_t(mesh.vertices.size()));
  for (const SampleVertex& vertex : mesh.vertices) {
    data.vec3(vertex.position);
    data.vec3(vertex.normal);
    data.f32(vertex.u);
    data.f32(vertex.v);
  }
  return data;
}

// Packed meshes count their triangles in the lower half of the first word, and the same in the upper half.
Bytes indexChunk(const SampleMesh& mesh, bool packed) {
  auto count = uint32_t(mesh.indices.size()), triangles = count / 3;
  Bytes data;
  data.u32(packed ? triangles << 16 | triangles : count);
  for (uint16_t index : mesh.indices) data.u16(index);
  return data;
}

Bytes meshChunks(const Scene& scene, const SampleMesh& mesh) {
  bool packed = canBePacked(mesh);
  const SampleMaterial& material = scene.materials[mesh.material];
  Bytes names, data;
  names.text(material.texture);
  names.text(material.shader);
  data.chunk(2, names);
  packed ? data.chunk(5, packedVertices(mesh)) : data.chunk(3, plainVertices(mesh));
  data.chunk(4, indexChunk(mesh, packed));
  return data;
}

std::string fileWithHeader(uint32_t id, const Bytes& content) {
  Bytes header, file;
  header.zeros(64);
  file.chunk(1, header);
  file.chunk(id, content);
  return file.content();
}

}  // namespace

void write4a(const Scene& scene, const std::filesystem::path& folder) {
  std::string names;
  for (std::span<const SampleMesh> group : meshGroups(scene)) {
    Bytes children;
    uint32_t child = 0;
    for (const SampleMesh& mesh : group) children.chunk(child++, meshChunks(scene, mesh));
    const std::string& name = group[0].group;
    writeFile(folder / "lighthouse" / (name + ".mesh"), fileWithHeader(9, children));
    names += (names.empty() ? "" : ",") + ("dynamic\\lighthouse\\" + name);
  }
  Bytes list;
  list.u32(0);
  list.text(names);
  writeFile(folder / "lighthouse.model", fileWithHeader(16, list));
}

}  // namespace facet::sample
