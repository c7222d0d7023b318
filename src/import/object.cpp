#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "import/readers.h"
#include "platform/parallel.h"

namespace facet {

namespace {

constexpr uint32_t objectMeshesId = 0x910;
constexpr uint32_t mostPairs = 10;
/// As much of a surface's name counts as fits a mesh's field of 260 bytes with a line feed and a NUL.
constexpr size_t longestSurfaceName = 258;
/// Indices are 16 bits wide, so the references after these are named by no mesh.
constexpr uint32_t mostReferences = 65536;
constexpr uint32_t none = UINT32_MAX;

struct Corner {
  uint32_t point, reference;
};
using Face = std::array<Corner, 3>;

/// A large array that is read whole, and whose room serves one object mesh after another.
template <class T>
struct Array {
  std::unique_ptr<T[]> data;
  uint32_t count = 0, room = 0;

  void allocate(uint32_t items) {
    if (items > room) {
      data = std::make_unique_for_overwrite<T[]>(items);
      room = items;
    }
    count = items;
  }
  std::span<const T> items() const { return {data.get(), count}; }
};

/// The entry of a vertex map that a reference takes its texture coordinates from.
struct MapEntry {
  uint32_t map = none;
  uint32_t entry = 0;
  uint32_t nextOfMap = none;  // the next reference that names the same map
};

/// An index that is out of range in every compacted mesh.
constexpr uint16_t noVertex = 65535;

/// Gives meshes their own vertices. One object serves many meshes and keeps its working memory.
class Compactor {
 public:
  /// `mesh.indices` name records of `shared` and become indices into the mesh's new vertices: the distinct
  /// records (by their bit patterns) in the order of first appearance. An index that names no record becomes
  /// noVertex. The index that brings the 65535th vertex is dropped, and all after it. Normals are 0.
  void compact(Mesh& mesh, std::span<const Vertex> shared);

 private:
  void begin(size_t sharedCount, size_t mostDistinct);
  uint16_t findOrAdd(const Vertex& vertex);

  /// Where a shared record went; it counts only for the mesh whose number it bears.
  struct Known {
    uint32_t meshNumber = 0;
    uint16_t position = 0;
  };
  std::vector<Known> known_;
  uint32_t meshNumber_ = 0;
  std::vector<uint32_t> slots_;  // open addressing: 0 is free, else 1 + a position in distinct_
  std::vector<Vertex> distinct_;
};

constexpr uint32_t mostVertices = 65535;

uint32_t hashOf(const Vertex& vertex) {
  uint64_t words[3] = {};
  std::memcpy(words, &vertex, sizeof vertex);
  uint64_t hash = 0;
  for (const uint64_t word : words) {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
    hash ^= hash >> 32;
  }
  return static_cast<uint32_t>(hash);
}

void Compactor::begin(size_t sharedCount, size_t mostDistinct) {
  ++meshNumber_;
  if (known_.size() < sharedCount) known_.resize(sharedCount);
  distinct_.clear();
  slots_.assign(std::bit_ceil(2 * mostDistinct + 1), 0);
}

uint16_t Compactor::findOrAdd(const Vertex& vertex) {
  const size_t mask = slots_.size() - 1;
  size_t slot = hashOf(vertex) & mask;
  for (; slots_[slot] != 0; slot = (slot + 1) & mask) {
    const uint32_t position = slots_[slot] - 1;
    if (std::memcmp(&distinct_[position], &vertex, sizeof vertex) == 0)  // NOLINT: equal are equal bits
      return static_cast<uint16_t>(position);
  }
  distinct_.push_back(vertex);
  slots_[slot] = static_cast<uint32_t>(distinct_.size());
  return static_cast<uint16_t>(distinct_.size() - 1);
}

void Compactor::compact(Mesh& mesh, std::span<const Vertex> shared) {
  begin(shared.size(), std::min<size_t>(mesh.indexCount, shared.size()));
  uint32_t kept = 0;
  for (; kept < mesh.indexCount; ++kept) {
    uint16_t& index = mesh.indices[kept];
    if (index >= shared.size()) {
      index = noVertex;
      continue;
    }
    Known& known = known_[index];
    if (known.meshNumber != meshNumber_) {
      known = {meshNumber_, findOrAdd(shared[index])};
      if (distinct_.size() == mostVertices) break;
    }
    index = known.position;
  }
  mesh.indexCount = kept;
  allocateVertices(mesh, static_cast<uint32_t>(distinct_.size()));
  std::copy(distinct_.begin(), distinct_.end(), mesh.vertices.get());
  clearNormals(mesh);
}

/// What stands between the texts that a surface is read for.
struct SurfaceLayout {
  uint32_t id;
  uint32_t bytesBeforeTexture, textsBeforeTexture, bytesAtEnd;
};
constexpr SurfaceLayout surfaceLayouts[] = {{0x905, 9, 0, 0}, {0x906, 0, 1, 12}, {0x907, 0, 2, 12}};

const SurfaceLayout* surfaceLayoutOf(uint32_t id) {
  const auto* layout = std::find_if(std::begin(surfaceLayouts), std::end(surfaceLayouts),
                                    [&](const SurfaceLayout& row) { return row.id == id; });
  return layout == std::end(surfaceLayouts) ? nullptr : layout;
}

class ObjectReader {
 public:
  ObjectReader(ByteSource& file, Model& model) : file_(file), model_(model) {}

  void readFile();

 private:
  using ChunkReader = void (ObjectReader::*)(const ChunkHeader& chunk);
  struct ChunkRow {
    uint32_t id;
    ChunkReader read;
  };
  static const ChunkRow chunkTable[];

  void readChunks();
  void readObjectMesh(const ChunkHeader& child);
  void readPoints(const ChunkHeader& chunk);
  void readFaces(const ChunkHeader& chunk);
  void readReferences(const ChunkHeader& chunk);
  void readFaceLists(const ChunkHeader& chunk);
  void readVertexMaps(const ChunkHeader& chunk);
  void readSurfaces(const ChunkHeader& chunk, const SurfaceLayout& layout);

  void placeReferences();
  void appendCorners(Mesh& mesh, std::span<const std::byte> faceNumbers) const;
  std::vector<uint32_t> linkReferencesByMap(size_t mapCount);
  void takeMeshes();
  void compactWaiting();

  template <class T>
  void readCounted(const ChunkHeader& chunk, Array<T>& array);
  ByteCursor readChunk(const ChunkHeader& chunk);

  ByteSource& file_;
  Model& model_;
  std::vector<std::byte> chunkBytes_;

  // Of the object mesh that is being read.
  Array<Vector3> points_;
  Array<Face> faces_;
  std::vector<Vertex> references_;
  std::vector<MapEntry> mapEntries_;  // one for each reference
  uint32_t surfaceCount_ = 0;         // its meshes are the model's last ones

  /// Object meshes that are read whole and wait to be compacted together, on all cores.
  struct ObjectMesh {
    uint32_t firstMesh, meshCount;  // of the model
    std::vector<Vertex> references;
  };
  std::vector<ObjectMesh> waiting_;
  size_t waitingReferences_ = 0;
};

// Chunk 0x1004 announces an object mesh and holds nothing that is needed.
const ObjectReader::ChunkRow ObjectReader::chunkTable[] = {
    {0x1005, &ObjectReader::readPoints},     {0x1006, &ObjectReader::readFaces},
    {0x1008, &ObjectReader::readReferences}, {0x1009, &ObjectReader::readFaceLists},
    {0x1011, &ObjectReader::readVertexMaps}, {0x1012, &ObjectReader::readVertexMaps},
};

void ObjectReader::readFile() {
  readChunks();
  compactWaiting();
}

void ObjectReader::readChunks() {
  uint32_t child = 0;  // counts through the whole file
  ChunkHeader chunk;
  file_.seek(0);
  if (!readChunkHeader(file_, chunk)) return;
  file_.claim(chunk.end());
  while (readChunkHeader(file_, chunk)) {
    if (chunk.id == objectMeshesId) {
      if (!readChunkHeader(file_, chunk)) return;
      while (chunk.id == child) {
        readObjectMesh(chunk);
        ++child;
        file_.seek(chunk.end());
        if (!readChunkHeader(file_, chunk)) return;
      }
    }
    if (const SurfaceLayout* layout = surfaceLayoutOf(chunk.id)) {
      readSurfaces(chunk, *layout);
      return;
    }
    file_.seek(chunk.end());
  }
}

void ObjectReader::readObjectMesh(const ChunkHeader& child) {
  forEachChunk(file_, child.data, child.size, [this](const ChunkHeader& chunk) {
    for (const ChunkRow& row : chunkTable)
      if (row.id == chunk.id) (this->*row.read)(chunk);
  });
}

/// The chunk's count and as many of its records as it holds.
template <class T>
void ObjectReader::readCounted(const ChunkHeader& chunk, Array<T>& array) {
  array.count = 0;
  uint32_t count;
  if (chunk.size < sizeof count || !file_.read(count)) return;
  array.allocate(std::min(count, (chunk.size - uint32_t{sizeof count}) / uint32_t{sizeof(T)}));
  file_.read(array.data.get(), uint64_t{array.count} * sizeof(T));
}

/// The data of a whole chunk, good until the next one is read.
ByteCursor ObjectReader::readChunk(const ChunkHeader& chunk) {
  const auto size = static_cast<size_t>(std::min<uint64_t>(chunk.size, file_.remaining()));
  if (chunkBytes_.size() < size) chunkBytes_.resize(size);
  file_.read(chunkBytes_.data(), size);
  return ByteCursor({chunkBytes_.data(), size});
}

void ObjectReader::readPoints(const ChunkHeader& chunk) {
  readCounted(chunk, points_);
}

void ObjectReader::readFaces(const ChunkHeader& chunk) {
  readCounted(chunk, faces_);
}

void ObjectReader::readReferences(const ChunkHeader& chunk) {
  ByteCursor bytes = readChunk(chunk);
  uint32_t count;
  if (!bytes.read(count)) return;
  count = std::min(count, mostReferences);
  references_.assign(count, Vertex{});
  mapEntries_.assign(count, MapEntry{});
  placeReferences();

  uint8_t pairCount;
  for (uint32_t reference = 0; bytes.read(pairCount); ++reference) {
    if (pairCount > mostPairs) {
      messageBox("too many submaps", "ASSERT", MB_ICONHAND | MB_SYSTEMMODAL);
      throw LoadError("too many submaps");
    }
    constexpr size_t pairSize = 2 * sizeof(uint32_t);
    const auto pairs = bytes.take(pairCount * pairSize);
    if (reference >= count || pairs.size() < pairSize) continue;
    std::memcpy(&mapEntries_[reference].map, pairs.data(), sizeof(uint32_t));
    std::memcpy(&mapEntries_[reference].entry, pairs.data() + sizeof(uint32_t), sizeof(uint32_t));
  }
}

/// Gives the references the positions of the points that face corners pair them with.
void ObjectReader::placeReferences() {
  for (const Face& face : faces_.items()) {
    for (const auto [point, reference] : face) {
      if (point >= points_.count || reference >= references_.size()) continue;
      const Vector3& position = points_.data[point];
      Vertex& vertex = references_[reference];
      vertex.x = position.x;
      vertex.y = position.y;
      vertex.z = position.z;
    }
  }
  points_.count = 0;
}

void ObjectReader::readFaceLists(const ChunkHeader& chunk) {
  ByteCursor bytes = readChunk(chunk);
  uint16_t count;
  surfaceCount_ = 0;
  if (!bytes.read(count)) return;
  for (; surfaceCount_ < count; ++surfaceCount_) {
    const std::string_view name = bytes.readText().substr(0, longestSurfaceName);
    uint32_t faceCount;
    if (!bytes.read(faceCount)) break;
    Mesh& mesh = growArray(model_.meshes, model_.meshCount);
    mesh.surfaceName = name;
    appendCorners(mesh, bytes.take(faceCount * uint64_t{sizeof(uint32_t)}));
    ++model_.meshCount;
  }
  faces_.count = 0;
}

/// The reference indices of the listed faces, three each; noVertex for faces that there are not.
void ObjectReader::appendCorners(Mesh& mesh, std::span<const std::byte> faceNumbers) const {
  const auto count = static_cast<uint32_t>(faceNumbers.size() / sizeof(uint32_t));
  allocateIndices(mesh, 3 * count);
  uint16_t* index = mesh.indices.get();
  for (uint32_t i = 0; i < count; ++i) {
    uint32_t face;
    std::memcpy(&face, faceNumbers.data() + i * sizeof face, sizeof face);
    for (size_t corner = 0; corner < 3; ++corner)
      *index++ = face < faces_.count ? static_cast<uint16_t>(faces_.data[face][corner].reference) : noVertex;
  }
}

void ObjectReader::readVertexMaps(const ChunkHeader& chunk) {
  const bool secondLayout = chunk.id == 0x1012;
  constexpr size_t pairSize = 2 * sizeof(float), smallestMap = 7;
  ByteCursor bytes = readChunk(chunk);
  uint32_t mapCount = 0;
  bytes.read(mapCount);
  mapCount = std::min(mapCount, static_cast<uint32_t>(bytes.remaining() / smallestMap));
  const std::vector<uint32_t> firstOfMap = linkReferencesByMap(mapCount);
  for (const uint32_t first : firstOfMap) {
    bytes.readText();
    uint8_t unused, polygonFlag = 0, type;
    uint32_t entryCount;
    if (!bytes.read(unused) || (secondLayout && !bytes.read(polygonFlag)) || !bytes.read(type) ||
        !bytes.read(entryCount))
      break;
    // Other maps than those of texture coordinates hold one number for each entry.
    const auto entries = bytes.take(entryCount * uint64_t{type == 0 ? pairSize : sizeof(float)});
    if (secondLayout) bytes.take(entryCount * uint64_t{polygonFlag == 0 ? 4u : 8u});
    if (type != 0) continue;
    for (uint32_t i = first; i != none; i = mapEntries_[i].nextOfMap)
      if (const size_t entry = mapEntries_[i].entry; entry < entries.size() / pairSize)
        std::memcpy(&references_[i].u, entries.data() + entry * pairSize, pairSize);
  }
  takeMeshes();
}

/// Chains the references of each map through nextOfMap; returns where each map's chain begins.
std::vector<uint32_t> ObjectReader::linkReferencesByMap(size_t mapCount) {
  std::vector<uint32_t> firstOfMap(mapCount, none);
  for (auto i = static_cast<uint32_t>(mapEntries_.size()); i-- > 0;) {
    MapEntry& entry = mapEntries_[i];
    if (entry.map < mapCount) entry.nextOfMap = std::exchange(firstOfMap[entry.map], i);
  }
  return firstOfMap;
}

/// Lets the object mesh's meshes wait until there is enough work for all cores.
void ObjectReader::takeMeshes() {
  const uint32_t first = model_.meshCount - surfaceCount_;
  for (uint32_t i = first; i < model_.meshCount; ++i) statusPrint("Compacting mesh #%u ...", i);
  waitingReferences_ += references_.size();
  waiting_.push_back({first, surfaceCount_, std::exchange(references_, {})});
  constexpr size_t enough = 1'000'000;
  if (waitingReferences_ >= enough) compactWaiting();
  surfaceCount_ = 0;
  mapEntries_.clear();
}

void ObjectReader::compactWaiting() {
  struct Work {
    Mesh* mesh;
    const std::vector<Vertex>* references;
  };
  std::vector<Work> works;
  for (const ObjectMesh& objectMesh : waiting_)
    for (uint32_t i = 0; i < objectMesh.meshCount; ++i)
      works.push_back({&model_.meshes[objectMesh.firstMesh + i], &objectMesh.references});
  std::atomic<size_t> next = 0;
  const auto compact = [&](size_t) {
    Compactor compactor;
    for (size_t i = next++; i < works.size(); i = next++)
      compactor.compact(*works[i].mesh, *works[i].references);
  };
  constexpr size_t worthAThread = 5'000;
  const size_t threads = waitingReferences_ < worthAThread ? 1 : std::min(works.size(), threadCount());
  parallelFor(threads, compact);
  waiting_.clear();
  waitingReferences_ = 0;
}

void ObjectReader::readSurfaces(const ChunkHeader& chunk, const SurfaceLayout& layout) {
  ByteCursor bytes = readChunk(chunk);
  MaterialTable materials(model_);
  std::unordered_map<std::string_view, uint32_t> materialOfSurface;
  uint32_t count = 0;
  bytes.read(count);
  for (uint32_t i = 0; i < count && bytes.remaining() > 0; ++i) {
    const std::string_view name = bytes.readText().substr(0, longestSurfaceName);
    const std::string shader(bytes.readText());
    bytes.take(layout.bytesBeforeTexture);
    for (uint32_t text = 0; text < layout.textsBeforeTexture; ++text) bytes.readText();
    const std::string texture(bytes.readText());
    bytes.readText();
    bytes.take(layout.bytesAtEnd);

    const auto [index, added] = materials.findOrAdd(texture, shader);
    if (added) statusPrint("Prefetching material #%u '%s' '%s'", index, shader.c_str(), texture.c_str());
    materialOfSurface[name] = index;
  }
  for (uint32_t i = 0; i < model_.meshCount; ++i) {
    Mesh& mesh = model_.meshes[i];
    if (const auto found = materialOfSurface.find(mesh.surfaceName); found != materialOfSurface.end())
      mesh.materialIndex = found->second;
    mesh.surfaceName = {};
  }
}

}  // namespace

void readObject(ByteSource& file, const LoadContext&, Model& model) {
  ObjectReader(file, model).readFile();
}

}  // namespace facet
