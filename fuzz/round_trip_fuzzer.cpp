#include <cstdlib>

#include "export/export.h"
#include "fuzz_reader.h"

namespace facet {
namespace {

template <class T>
void expectSameBits(const T* a, const T* b, size_t count) {
  if (count > 0 && std::memcmp(a, b, count * sizeof(T)) != 0) std::abort();
}

void expectSame(const Model& first, const Model& second) {
  if (first.meshCount != second.meshCount || first.materialCount != second.materialCount) std::abort();
  for (uint32_t i = 0; i < first.meshCount; ++i) {
    const Mesh &a = first.meshes[i], &b = second.meshes[i];
    if (a.vertexCount != b.vertexCount || a.indexCount != b.indexCount || a.materialIndex != b.materialIndex)
      std::abort();
    expectSameBits(a.vertices.get(), b.vertices.get(), a.vertexCount);
    expectSameBits(a.normals.get(), b.normals.get(), a.vertexCount);
    expectSameBits(a.indices.get(), b.indices.get(), a.indexCount);
  }
  for (uint32_t i = 0; i < first.materialCount; ++i) {
    const Material &a = first.materials[i], &b = second.materials[i];
    if (a.textureName != b.textureName || a.shaderName != b.shaderName) std::abort();
  }
}

/// What is read from a VXM file, written as VXM and read again is the same.
void roundTrip(std::span<const std::byte> bytes) {
  const bool isVersion3 = bytes.size() > 4 && bytes[4] == std::byte{4};
  Model model, again;
  if (!readFuzzed(readVxm, isVersion3 ? modelTypeVxm3 : modelTypeVxm4, bytes, model)) return;
  if (!refuseVxm(model).empty()) return;
  OutputString out;
  exportVxm(model, "fuzzed.vxm", out);
  if (!readFuzzed(readVxm, modelTypeVxm4, std::as_bytes(std::span(out.text())), again)) std::abort();
  expectSame(model, again);
}

}  // namespace
}  // namespace facet

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  facet::roundTrip({reinterpret_cast<const std::byte*>(data), size});
  return 0;
}
