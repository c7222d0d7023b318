#pragma once

#include <algorithm>

#include "platform/byte_source.h"

namespace facet {

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
