#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "import/load.h"
#include "model/model.h"
#include "platform/files.h"

// One reader for each input format. It gets the file, positioned anywhere, and the model with its modelType
// set, fills meshes and materials (names only) and throws LoadError where a load must end without a model.
// Counts are never believed beyond the bytes that stand behind them.

namespace facet {

/// Takes values and texts one after another from bytes in memory, for chunks whose records differ in length.
class ByteCursor {
 public:
  explicit ByteCursor(std::span<const std::byte> bytes) : rest_(bytes) {}

  size_t remaining() const { return rest_.size(); }

  /// False, with nothing taken, when too few bytes are left.
  template <class T>
  bool read(T& value) {
    if (rest_.size() < sizeof value) return false;
    std::memcpy(&value, rest_.data(), sizeof value);
    rest_ = rest_.subspan(sizeof value);
    return true;
  }

  /// The next `count` bytes, or as many as are left.
  std::span<const std::byte> take(uint64_t count) {
    const auto taken = rest_.first(static_cast<size_t>(std::min<uint64_t>(count, rest_.size())));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

  /// The bytes up to a NUL, which is passed over, or to the end.
  std::string_view readText() {
    const std::string_view all(reinterpret_cast<const char*>(rest_.data()), rest_.size());
    const std::string_view text = all.substr(0, all.find('\0'));
    take(text.size() + 1);
    return text;
  }

 private:
  std::span<const std::byte> rest_;
};

/// The first place at or after `from` where the bytes of `pattern` stand; none when the file ends before.
std::optional<uint64_t> findBytes(ByteSource& file, uint64_t from, std::string_view pattern);

/// Looks at single bytes of a file, quickest when it goes towards the start. Moves the source.
class BackwardView {
 public:
  explicit BackwardView(ByteSource& file) : file_(file) {}

  /// The byte at `position`, which is below the file's size.
  char operator[](uint64_t position) {
    if (position < start_ || position >= end_) load(position);
    return block_[position - start_];
  }

 private:
  void load(uint64_t position);

  ByteSource& file_;
  std::unique_ptr<char[]> block_;
  uint64_t start_ = 0, end_ = 0;  // what the block holds
};

/// The head of a chunk and where it stands in its file: 8 bytes of header at start(), `size` bytes from
/// `data`.
struct ChunkHeader {
  uint32_t id = 0;
  uint32_t size = 0;  ///< as the file claims; may run past its end
  uint64_t data = 0;

  uint64_t start() const { return data - 8; }
  uint64_t end() const { return data + size; }
};

/// Reads the header at the source's position; false at the end of the file.
inline bool readChunkHeader(ByteSource& file, ChunkHeader& chunk) {
  uint32_t head[2];
  if (!file.read(head)) return false;
  chunk = {head[0], head[1], file.position()};
  return true;
}

/// Calls `visit(chunk)` for each chunk of a list, with the source at the chunk's data. A chunk that runs past
/// the end of the list or of the file ends it.
template <class Visit>
void forEachChunk(ByteSource& file, uint64_t start, uint64_t size, Visit visit) {
  file.claim(start + size);
  const uint64_t end = std::min(start + size, file.size());
  file.seek(start);
  ChunkHeader chunk;
  while (file.position() < end && readChunkHeader(file, chunk) && chunk.end() <= end) {
    visit(chunk);
    file.seek(chunk.end());
  }
}

using ReadModel = void(ByteSource& file, const LoadContext& context, Model& model);

/// Warns when the file says that it goes on behind its end; `name` stands before the warning.
void warnWhereCutOff(const ByteSource& file, const std::string& name, Model& model);

/// Vantor VXM, versions 3 and 4 as modelType says.
ReadModel readVxm;

/// Vantor editable object.
ReadModel readObject;

/// 4A engine mesh, or model with a list of mesh files that stand beside it. A listed file that cannot be
/// opened ends the load.
ReadModel readModel4a;

/// Orion engine v1 mesh.
ReadModel readOrion;

/// DS2 Engine mesh, in both layouts.
ReadModel readDs2md;

/// A DDS picture as a flat quad of its proportions.
ReadModel readDdsPreview;

// Parts of a mesh as several formats store them, read into arrays that are already allocated. False when the
// file does not hold them.

/// vertexCount times x, y, z, in hundredths of a model unit.
bool readScaledPositions(ByteSource& file, Mesh& mesh);

/// vertexCount times x, y, z.
bool readNormals(ByteSource& file, Mesh& mesh);

/// vertexCount times u, v.
bool readTextureCoordinates(ByteSource& file, Mesh& mesh);

/// indexCount 16-bit indices.
bool readIndices(ByteSource& file, Mesh& mesh);

/// For formats without normals: finishing sets those of triangles, the others stay 0, 0, 0.
void clearNormals(Mesh& mesh);

/// A length in hundredths of a model unit, in model units.
inline float fromHundredths(float value) {
  return value / 100.0f;
}

/// Finds a model's materials by their two names in constant time; a reader keeps one for its whole run.
class MaterialTable {
 public:
  explicit MaterialTable(Model& model) : model_(model) {}

  struct Entry {
    uint32_t index;
    bool added;
  };
  /// The first material with exactly these names, or a new one at the end of the model's list.
  Entry findOrAdd(std::string_view textureName, std::string_view shaderName);

 private:
  Model& model_;
  std::unordered_map<std::string, uint32_t> indices_;
};

}  // namespace facet
