#include "bytes.h"
#include "writers.h"

namespace facet::sample {

namespace {

constexpr float fileUnits = 100;  // a unit of the model in units of the file

Bytes fileHead(std::string_view version) {
  Bytes head;
  head.u32(0x5344000E);
  head.zeros(12);
  head.countedText(version);
  return head;
}

// The texture's path stands with its source extension. The text that follows it starts with "note": readers
// find the next record by that word.
void addNames(Bytes& record, const SampleMesh& mesh, const SampleMaterial& material) {
  record.countedText(material.shader);
  record.countedText("art\\harbour\\" + material.texture + ".raw");
  record.countedText("note: " + mesh.name);
  record.countedText(mesh.group);
  record.countedText("none");
  record.countedText("none");
}

Bytes record(const SampleMesh& mesh, const SampleMaterial& material) {
  Bytes data;
  addNames(data, mesh, material);
  Bounds bounds = meshBounds(mesh);
  data.vec3(bounds.low * fileUnits);
  data.vec3(bounds.high * fileUnits);
  data.zeros(9);
  data.u32(uint32_t(mesh.indices.size()));
  for (uint16_t index : mesh.indices) data.u16(index);
  data.u16(uint32_t(mesh.vertices.size()));
  for (const SampleVertex& vertex : mesh.vertices) data.vec3(vertex.position * fileUnits);
  for (const SampleVertex& vertex : mesh.vertices) data.vec3(vertex.normal);
  for (const SampleVertex& vertex : mesh.vertices) {
    data.f32(vertex.u);
    data.f32(vertex.v);
  }
  data.zeros(16);
  return data;
}

Bytes record06(const SampleMesh& mesh, const SampleMaterial& material) {
  Bytes data;
  addNames(data, mesh, material);
  data.u32(0);
  data.u32(uint32_t(mesh.vertices.size()));
  data.u32(uint32_t(mesh.indices.size()));
  data.u8(0);
  for (const SampleVertex& vertex : mesh.vertices) {
    data.vec3(vertex.position * fileUnits);
    data.vec3(vertex.normal);
    data.f32(vertex.u);
    data.f32(vertex.v);
  }
  for (uint16_t index : mesh.indices) data.u16(index);
  data.zeros(16);
  return data;
}

}  // namespace

void writeDs2md(const Scene& scene, const std::filesystem::path& path) {
  Bytes file = fileHead("0.5");
  file.countedText("lighthouse");
  file.u8(uint32_t(scene.meshes.size()));
  for (const SampleMesh& mesh : scene.meshes)
    file.raw(record(mesh, scene.materials[mesh.material]).content());
  writeFile(path, file.content());
}

void writeDs2md06(const Scene& scene, const std::filesystem::path& path) {
  Bytes file = fileHead("0.6");
  file.u32(0);
  file.u8(uint32_t(scene.meshes.size()));
  file.u8(0);
  file.countedText("lighthouse");
  for (const SampleMesh& mesh : scene.meshes)
    file.raw(record06(mesh, scene.materials[mesh.material]).content());
  writeFile(path, file.content());
}

}  // namespace facet::sample
