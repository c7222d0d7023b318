#include "bytes.h"
#include "writers.h"

namespace facet::sample {

void writeOrion(const Scene& scene, const SampleMesh& mesh, const std::filesystem::path& path) {
  Bytes file;
  file.u32(257);
  file.zeros(20);
  file.u32(uint32_t(mesh.indices.size() / 3));
  file.u32(uint32_t(mesh.vertices.size()));
  file.zeros(72);
  for (const SampleVertex& vertex : mesh.vertices) file.vec3(vertex.position * 100);
  for (const SampleVertex& vertex : mesh.vertices) file.vec3(vertex.normal);
  for (size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
    for (size_t corner : {2, 1, 0})
      file.u16(mesh.indices[i + corner]);  // front faces wind the other way here
  }
  for (const SampleVertex& vertex : mesh.vertices) {
    file.f32(vertex.u);
    file.f32(vertex.v);
  }
  file.u32(1);
  file.zeros(4);
  file.text(scene.materials[mesh.material].texture + ".dds");
  writeFile(path, file.content());
}

}  // namespace facet::sample
