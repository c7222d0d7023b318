#include <utility>

#include "import/readers.h"

namespace facet {

namespace {

struct Header {
  uint32_t magic;
  uint32_t unused[5];
  uint32_t triangleCount, vertexCount;
  uint32_t unused2[18];
};
static_assert(sizeof(Header) == 104);

/// What a file with these counts needs before its trailing data.
uint64_t sizeFor(const Header& header) {
  return sizeof header + 32 * uint64_t{header.vertexCount} + 6 * uint64_t{header.triangleCount};
}

Header readHeader(ByteSource& file) {
  Header header;
  file.seek(0);
  if (!file.read(header))
    throw LoadError("cut off in its header: " + std::to_string(file.size()) + " bytes, expected at least " +
                    std::to_string(sizeof header));
  // What comes after the geometry is found by its size, so a part of the geometry would be taken wrongly.
  if (sizeFor(header) > file.size())
    throw LoadError(std::to_string(header.vertexCount) + " vertices and " +
                    std::to_string(header.triangleCount) + " triangles need " +
                    std::to_string(sizeFor(header)) + " bytes, the file has " + std::to_string(file.size()));
  return header;
}

void reverseWinding(Mesh& mesh) {
  for (uint32_t k = 0; k + 3 <= mesh.indexCount; k += 3) std::swap(mesh.indices[k], mesh.indices[k + 2]);
}

/// The first text of the trailing data that holds ".dds", without its last four characters, at most 259
/// bytes; empty when there is none.
std::string findTextureName(ByteSource& file, uint64_t trailer) {
  constexpr size_t extensionLength = 4, nameRoom = 259;
  const auto extension = findBytes(file, trailer, ".dds");
  if (!extension) return {};
  BackwardView bytes(file);
  uint64_t start = *extension;
  while (start > trailer && bytes[start - 1] != '\0') --start;
  file.seek(start);
  std::string name = file.readText(start + nameRoom + extensionLength);
  name.resize(name.size() - extensionLength);
  return name;
}

}  // namespace

void readOrion(ByteSource& file, const LoadContext&, Model& model) {
  const Header header = readHeader(file);
  Mesh& mesh = growArray(model.meshes, model.meshCount);
  allocateVertices(mesh, header.vertexCount);
  allocateIndices(mesh, header.triangleCount * 3);
  readScaledPositions(file, mesh);
  readNormals(file, mesh);
  readIndices(file, mesh);
  reverseWinding(mesh);
  readTextureCoordinates(file, mesh);
  ++model.meshCount;

  Material& material = growArray(model.materials, model.materialCount);
  material.textureName = findTextureName(file, sizeFor(header));
  material.shaderName = "default";
  ++model.materialCount;
}

}  // namespace facet
