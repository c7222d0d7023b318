#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "platform/files.h"

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

}  // namespace facet
