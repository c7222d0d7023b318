#include "import/readers.h"

#include <algorithm>
#include <cstring>

namespace facet {

namespace {
constexpr uint64_t blockSize = uint64_t{64} * 1024;
}

std::optional<uint64_t> findBytes(ByteSource& file, uint64_t from, std::string_view pattern) {
  const auto block = std::make_unique_for_overwrite<char[]>(blockSize);
  file.seek(from);
  while (file.remaining() >= pattern.size()) {
    const uint64_t start = file.position();
    const uint64_t length = std::min(blockSize, file.remaining());
    if (!file.read(block.get(), length)) break;
    const size_t found = std::string_view(block.get(), length).find(pattern);
    if (found != std::string_view::npos) return start + found;
    file.seek(start + length - (pattern.size() - 1));  // it may begin in this block and end in the next
  }
  return {};
}

void BackwardView::load(uint64_t position) {
  if (!block_) block_ = std::make_unique<char[]>(blockSize);
  end_ = position + 1;
  start_ = end_ - std::min(end_, blockSize);
  file_.seek(start_);
  file_.read(block_.get(), end_ - start_);
}

bool readScaledPositions(ByteSource& file, Mesh& mesh) {
  return file.readRecords(mesh.vertexCount, sizeof(Vector3),
                          [vertices = mesh.vertices.get()](const std::byte* record, uint64_t i) {
                            Vector3 position;
                            std::memcpy(&position, record, sizeof position);
                            vertices[i].x = fromHundredths(position.x);
                            vertices[i].y = fromHundredths(position.y);
                            vertices[i].z = fromHundredths(position.z);
                          });
}

bool readNormals(ByteSource& file, Mesh& mesh) {
  return file.read(mesh.normals.get(), uint64_t{mesh.vertexCount} * sizeof(Vector3));
}

bool readTextureCoordinates(ByteSource& file, Mesh& mesh) {
  constexpr size_t stride = 2 * sizeof(float);
  return file.readRecords(mesh.vertexCount, stride,
                          [vertices = mesh.vertices.get()](const std::byte* record, uint64_t i) {
                            std::memcpy(&vertices[i].u, record, stride);
                          });
}

bool readIndices(ByteSource& file, Mesh& mesh) {
  return file.read(mesh.indices.get(), uint64_t{mesh.indexCount} * sizeof(uint16_t));
}

void clearNormals(Mesh& mesh) {
  std::fill_n(mesh.normals.get(), mesh.vertexCount, Vector3{});
}

MaterialTable::Entry MaterialTable::findOrAdd(std::string_view textureName, std::string_view shaderName) {
  // Names hold no NUL, so one between them keeps different pairs apart.
  std::string key(textureName);
  key += '\0';
  key += shaderName;
  const auto [entry, added] = indices_.try_emplace(std::move(key), model_.materialCount);
  if (added) {
    Material& material = growArray(model_.materials, model_.materialCount);
    material.textureName = textureName;
    material.shaderName = shaderName;
    ++model_.materialCount;
  }
  return {entry->second, added};
}

}  // namespace facet
