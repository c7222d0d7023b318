#include <algorithm>
#include <cmath>
#include <cstring>

#include "import/readers.h"

namespace facet {

namespace {

/// Offsets of what is read within one vertex record.
struct VertexFormat {
  uint32_t modelType;
  uint32_t code;
  uint32_t stride, position, normal, texture;
};

constexpr VertexFormat vertexFormats[] = {
    {modelTypeVxm4, 1, 60, 0, 12, 48},          {modelTypeVxm4, 0x12071980, 60, 0, 12, 48},
    {modelTypeVxm4, 2, 64, 4, 16, 56},          {modelTypeVxm4, 0x240E3300, 64, 4, 16, 56},
    {modelTypeVxm4, 3, 70, 6, 18, 62},          {modelTypeVxm4, 4, 76, 8, 20, 68},
    {modelTypeVxm4, 0x112, 32, 0, 12, 24},      {modelTypeVxm3, 1, 36, 0, 12, 24},
    {modelTypeVxm3, 0x12071980, 36, 0, 12, 24}, {modelTypeVxm3, 0x240E3300, 64, 4, 16, 56},
    {modelTypeVxm3, 0x112, 32, 0, 12, 24},
};

/// A record of an unknown format holds at least a position; this bounds the count that its chunk can claim.
constexpr uint32_t leastStride = 12;

Vector3 middle(const Vector3& low, const Vector3& high) {
  return {(low.x + high.x) / 2, (low.y + high.y) / 2, (low.z + high.z) / 2};
}

class VxmReader {
 public:
  VxmReader(ByteSource& file, Model& model) : file_(file), model_(model), materials_(model) {}

  void readFile();

 private:
  using ChunkReader = void (VxmReader::*)(const ChunkHeader& chunk);
  struct ChunkRow {
    uint32_t modelType;
    uint32_t id;
    ChunkReader read;
  };
  static const ChunkRow chunkTable[];

  void readChunks(uint64_t start, uint64_t size);
  void readHeader(const ChunkHeader& chunk);
  void readNames(const ChunkHeader& chunk);
  void readVertices(const ChunkHeader& chunk);
  void readIndices(const ChunkHeader& chunk);
  void readDetailLevels(const ChunkHeader& chunk);
  void readBounds(const ChunkHeader& chunk);

  /// The mesh that the last names chunk opened, none before the first.
  Mesh* currentMesh() { return model_.meshCount == 0 ? nullptr : &model_.meshes[model_.meshCount - 1]; }
  /// The record after the counted meshes, as the header before it left it.
  Mesh& slot() {
    return model_.meshes.size() > model_.meshCount ? model_.meshes[model_.meshCount]
                                                   : growArray(model_.meshes, model_.meshCount);
  }

  ByteSource& file_;
  Model& model_;
  MaterialTable materials_;
};

constexpr uint32_t containerOf(uint32_t modelType) {
  return modelType == modelTypeVxm4 ? 9 : 17;
}

const VxmReader::ChunkRow VxmReader::chunkTable[] = {
    {modelTypeVxm4, 1, &VxmReader::readHeader},       {modelTypeVxm4, 2, &VxmReader::readNames},
    {modelTypeVxm4, 3, &VxmReader::readVertices},     {modelTypeVxm4, 4, &VxmReader::readIndices},
    {modelTypeVxm4, 6, &VxmReader::readDetailLevels}, {modelTypeVxm3, 1, &VxmReader::readHeader},
    {modelTypeVxm3, 2, &VxmReader::readNames},        {modelTypeVxm3, 6, &VxmReader::readBounds},
    {modelTypeVxm3, 7, &VxmReader::readVertices},     {modelTypeVxm3, 8, &VxmReader::readIndices},
};

void VxmReader::readFile() {
  uint32_t child = 0;  // counts through the whole file
  file_.seek(0);
  ChunkHeader chunk;
  if (!readChunkHeader(file_, chunk)) return;
  while (true) {
    while (chunk.id == containerOf(model_.modelType)) {
      file_.claim(chunk.end());
      if (!readChunkHeader(file_, chunk)) return;
      while (chunk.id == child) {
        readChunks(chunk.data, chunk.size);
        ++child;
        file_.seek(chunk.end());
        if (!readChunkHeader(file_, chunk)) return;
      }
    }
    readChunks(chunk.start(), chunk.end() - chunk.start());
    file_.seek(chunk.end());
    if (!readChunkHeader(file_, chunk)) return;
  }
}

void VxmReader::readChunks(uint64_t start, uint64_t size) {
  forEachChunk(file_, start, size, [this](const ChunkHeader& chunk) {
    for (const ChunkRow& row : chunkTable)
      if (row.modelType == model_.modelType && row.id == chunk.id) (this->*row.read)(chunk);
  });
}

void VxmReader::readHeader(const ChunkHeader& chunk) {
  Mesh& mesh = growArray(model_.meshes, model_.meshCount);
  struct {
    uint32_t unused;
    Vector3 boundsMin, boundsMax;
    uint32_t unused2[3];
    float radius;
  } header;
  static_assert(sizeof header == 44);
  if (model_.modelType != modelTypeVxm4 || chunk.size < sizeof header || !file_.read(header)) return;
  mesh.boundsMin = header.boundsMin;
  mesh.boundsMax = header.boundsMax;
  mesh.center = middle(header.boundsMin, header.boundsMax);
  mesh.radius = header.radius;
  if (chunk.start() == 0) model_.center = mesh.center;
}

void VxmReader::readNames(const ChunkHeader& chunk) {
  const std::string texture = file_.readText(chunk.end());
  const std::string shader = file_.readText(chunk.end());
  Mesh& mesh = slot();
  const auto [index, added] = materials_.findOrAdd(texture, shader);
  if (added) statusPrint("Prefetching material #%u '%s' '%s'", index, texture.c_str(), shader.c_str());
  mesh.materialIndex = index;
  ++model_.meshCount;
}

void VxmReader::readVertices(const ChunkHeader& chunk) {
  struct {
    uint32_t format, count;
  } head;
  Mesh* mesh = currentMesh();
  if (mesh == nullptr || chunk.size < sizeof head || !file_.read(head)) return;
  const auto* format = std::find_if(
      std::begin(vertexFormats), std::end(vertexFormats),
      [&](const VertexFormat& row) { return row.modelType == model_.modelType && row.code == head.format; });
  const bool known = format != std::end(vertexFormats);
  const uint32_t fits = (chunk.size - uint32_t{sizeof head}) / (known ? format->stride : leastStride);
  allocateVertices(*mesh, std::min(head.count, fits));
  if (!known) {
    std::fill_n(mesh->vertices.get(), mesh->vertexCount, Vertex{});
    std::fill_n(mesh->normals.get(), mesh->vertexCount, Vector3{});
    return;
  }
  file_.readRecords(mesh->vertexCount, format->stride,
                    [vertices = mesh->vertices.get(), normals = mesh->normals.get(), row = *format](
                        const std::byte* record, uint64_t i) {
                      std::memcpy(&vertices[i].x, record + row.position, sizeof(Vector3));
                      std::memcpy(&vertices[i].u, record + row.texture, 2 * sizeof(float));
                      std::memcpy(&normals[i], record + row.normal, sizeof(Vector3));
                    });
}

void VxmReader::readIndices(const ChunkHeader& chunk) {
  uint32_t count;
  Mesh* mesh = currentMesh();
  if (mesh == nullptr || chunk.size < sizeof count || !file_.read(count)) return;
  const uint32_t fits = (chunk.size - uint32_t{sizeof count}) / uint32_t{sizeof(uint16_t)};
  allocateIndices(*mesh, std::min(count, fits));
  file_.read(mesh->indices.get(), uint64_t{mesh->indexCount} * sizeof(uint16_t));
}

/// Keeps the first level of detail only.
void VxmReader::readDetailLevels(const ChunkHeader& chunk) {
  struct {
    uint32_t unused[4];
    uint32_t recordCount;
    uint32_t firstIndex;
    uint16_t triangleCount, vertexCount;
  } head;
  static_assert(sizeof head == 28);
  Mesh* mesh = currentMesh();
  if (mesh == nullptr || chunk.size < sizeof head || !file_.read(head) || head.recordCount == 0) return;
  const uint32_t first = std::min(head.firstIndex, mesh->indexCount);
  const uint32_t count = std::min<uint32_t>(head.triangleCount * 3u, mesh->indexCount - first);
  if (count > 0) std::memmove(mesh->indices.get(), mesh->indices.get() + first, count * sizeof(uint16_t));
  mesh->indexCount = count;
}

void VxmReader::readBounds(const ChunkHeader& chunk) {
  struct {
    Vector3 boundsMin, boundsMax;
  } box;
  Mesh* mesh = currentMesh();
  if (mesh == nullptr || chunk.size < sizeof box || !file_.read(box)) return;
  mesh->boundsMin = box.boundsMin;
  mesh->boundsMax = box.boundsMax;
  mesh->center = middle(box.boundsMin, box.boundsMax);
  const Vector3 size = {box.boundsMax.x - box.boundsMin.x, box.boundsMax.y - box.boundsMin.y,
                        box.boundsMax.z - box.boundsMin.z};
  mesh->radius = std::sqrt((size.x * size.x + size.y * size.y) + size.z * size.z) / 2;
  if (model_.center.x == 0.0f) model_.center = mesh->center;
}

}  // namespace

void readVxm(ByteSource& file, const LoadContext&, Model& model) {
  VxmReader(file, model).readFile();
}

}  // namespace facet
