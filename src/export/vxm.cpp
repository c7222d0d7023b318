#include <string>

#include "export/binary_blocks.h"
#include "export/export.h"

// The engine's own chunked format, version 4: one mesh as a single visual, several as a hierarchy of them.
// Everything is written as the model holds it.

namespace facet {

namespace {

enum ChunkId : uint32_t {
  headerId = 1,
  textureId = 2,
  verticesId = 3,
  indicesId = 4,
  childrenId = 9,
  descriptorId = 18
};
enum VisualType : uint8_t { singleVisual = 0, hierarchy = 1 };

constexpr uint32_t chunkHeaderSize = 8;
constexpr uint32_t headerSize = 44;
constexpr std::string_view sourceFile = "test_level\\test_level.object";
constexpr std::string_view creator = "\\\\FACETBENCH\\converter";

void putChunkHeader(uint32_t id, uint32_t size, BinaryBlocks& file) {
  file.put(id, size);
}

void putHeader(VisualType type, const Vector3& low, const Vector3& high, const Vector3& center, float radius,
               BinaryBlocks& file) {
  constexpr uint8_t formatVersion = 4;
  constexpr uint16_t unused = 0;
  putChunkHeader(headerId, headerSize, file);
  file.put(formatVersion, type, unused, low, high, center, radius);
}

/// A text and its NUL.
void putText(std::string_view text, BinaryBlocks& file) {
  file.putBytes(text);
  file.put('\0');
}

/// Where the model came from and who made it; the creator's record stands three times.
void putDescriptor(BinaryBlocks& file) {
  constexpr uint32_t records = 3, time = 0;
  putChunkHeader(descriptorId, (sourceFile.size() + 1) + records * (creator.size() + 1 + sizeof time), file);
  putText(sourceFile, file);
  for (uint32_t i = 0; i < records; ++i) {
    putText(creator, file);
    file.put(time);
  }
}

/// The two names of a mesh's material, empty where the model has no such material.
struct Names {
  std::string_view texture, shader;
  size_t size() const { return texture.size() + 1 + shader.size() + 1; }
};
Names namesOf(const Model& model, const Mesh& mesh) {
  if (mesh.materialIndex >= model.materials.size()) return {};
  const Material& material = model.materials[mesh.materialIndex];
  return {material.textureName, material.shaderName};
}

uint64_t verticesSize(const Mesh& mesh) {
  return 8 + uint64_t{32} * mesh.vertexCount;
}
uint64_t indicesSize(const Mesh& mesh) {
  return 4 + uint64_t{2} * mesh.indexCount;
}

/// Bytes of the four chunks of a single visual.
uint64_t visualSize(const Model& model, const Mesh& mesh) {
  return 4 * chunkHeaderSize + headerSize + namesOf(model, mesh).size() + verticesSize(mesh) +
         indicesSize(mesh);
}

uint64_t childrenSize(const Model& model) {
  uint64_t size = 0;
  for (const Mesh& mesh : model.meshes) size += chunkHeaderSize + visualSize(model, mesh);
  return size;
}

void putVisual(const Model& model, const Mesh& mesh, BinaryBlocks& file) {
  constexpr uint32_t positionNormalTexture = 0x112;
  putHeader(singleVisual, mesh.boundsMin, mesh.boundsMax, mesh.center, mesh.radius, file);

  const Names names = namesOf(model, mesh);
  putChunkHeader(textureId, static_cast<uint32_t>(names.size()), file);
  putText(names.texture, file);
  putText(names.shader, file);

  putChunkHeader(verticesId, static_cast<uint32_t>(verticesSize(mesh)), file);
  file.put(positionNormalTexture, mesh.vertexCount);
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const auto& [x, y, z, u, v] = mesh.vertices[i];
    file.put(x, y, z, mesh.normals[i], u, v);
  }

  putChunkHeader(indicesId, static_cast<uint32_t>(indicesSize(mesh)), file);
  file.put(mesh.indexCount);
  file.putArray(std::span<const uint16_t>(mesh.indices.get(), mesh.indexCount));
}

}  // namespace

std::string refuseVxm(const Model& model) {
  if (model.meshCount == 0) return "nothing to write: the model has no meshes";
  if (model.meshCount > UINT16_MAX)
    return "the format holds at most 65535 meshes, the model has " + std::to_string(model.meshCount);
  if (childrenSize(model) > UINT32_MAX) return "the format holds at most 4 GB, the model has more";
  return {};
}

void exportVxm(Model& model, std::string_view, Output& out) {
  BinaryBlocks file(out);
  if (model.meshCount == 1) {
    putVisual(model, model.meshes[0], file);
  } else {
    putHeader(hierarchy, {}, {}, model.center, 0, file);
    putDescriptor(file);
    putChunkHeader(childrenId, static_cast<uint32_t>(childrenSize(model)), file);
    for (uint32_t m = 0; m < model.meshCount; ++m) {
      putChunkHeader(m, static_cast<uint32_t>(visualSize(model, model.meshes[m])), file);
      putVisual(model, model.meshes[m], file);
    }
  }
  file.finish();
}

}  // namespace facet
