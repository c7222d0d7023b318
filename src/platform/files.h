#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/progress.h"

namespace facet {

/// Bytes of known number, read from a position that moves on: a file, or memory in tests and fuzzing.
/// Small reads come from a window of 64 KiB; large ones go straight to their destination. All numbers in the
/// files are little-endian, as is every machine that this program is built for.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  uint64_t size() const { return size_; }
  uint64_t position() const { return position_; }
  uint64_t remaining() const { return position_ < size_ ? size_ - position_ : 0; }

  /// Moves to any position; one past the end makes the following reads fail.
  void seek(uint64_t position) { position_ = position; }
  void skip(uint64_t count) { position_ = count > UINT64_MAX - position_ ? UINT64_MAX : position_ + count; }

  /// Reads exactly `count` bytes and moves on; false, without moving, when fewer are left.
  bool read(void* destination, uint64_t count);

  /// Reads one value of a plain type; false, without moving, when too few bytes are left.
  template <class T>
  bool read(T& value) {
    return read(&value, sizeof value);
  }

  /// Reads `count` records of `stride` bytes, `convert(record, index)` being called for each in turn, where
  /// `record` points at its bytes. The caller has checked that the bytes are there; false when they are not.
  template <class Convert>
  bool readRecords(uint64_t count, size_t stride, Convert convert);

  /// Notes that the file says it goes on to `end`: what is missing there was cut off.
  void claim(uint64_t end) { claimed_ = std::max(claimed_, end); }
  /// How long the file says it is, as far as it has been read; more than size() when it was cut off.
  uint64_t claimed() const { return std::max(claimed_, size_); }

  /// Tells how far the reading has come: `from` at the start of the bytes, `to` at their end. Once the
  /// progress is cancelled, reads throw Cancelled. None: nobody is told.
  void watch(Progress* progress, float from, float to) {
    progress_ = progress;
    from_ = from;
    to_ = to;
  }

  /// Reads bytes up to a NUL, at most to position `end`; the NUL is passed over and not part of the text.
  std::string readText(uint64_t end);

 protected:
  explicit ByteSource(uint64_t size) : size_(size) {}

  /// Copies up to `count` bytes from `position` on; returns how many came.
  virtual size_t fetch(uint64_t position, void* destination, size_t count) = 0;

 private:
  static constexpr size_t windowSize = size_t{64} * 1024;
  static constexpr size_t mostAtOnce = size_t{4} << 20;

  /// Fetches in pieces, between which the progress is told.
  size_t fetchWatched(uint64_t position, std::byte* destination, size_t count);

  uint64_t size_;
  uint64_t position_ = 0;
  uint64_t claimed_ = 0;
  uint64_t windowStart_ = 0;
  size_t windowLength_ = 0;
  std::vector<std::byte> window_;
  Progress* progress_ = nullptr;
  float from_ = 0, to_ = 0;
};

/// Opens a regular file; none when it cannot be opened for reading, and the reason in `whyNot`: "no such
/// file".
std::unique_ptr<ByteSource> openFile(const std::filesystem::path& path, std::string* whyNot = nullptr);

/// Reads from memory that outlives the source.
std::unique_ptr<ByteSource> openMemory(std::span<const std::byte> bytes);

template <class Convert>
bool ByteSource::readRecords(uint64_t count, size_t stride, Convert convert) {
  std::vector<std::byte> block(std::clamp<uint64_t>(windowSize / stride, 1, std::max<uint64_t>(count, 1)) *
                               stride);
  for (uint64_t done = 0; done < count;) {
    const uint64_t records = std::min<uint64_t>(count - done, block.size() / stride);
    if (!read(block.data(), records * stride)) return false;
    for (uint64_t i = 0; i < records; ++i) convert(block.data() + i * stride, done + i);
    done += records;
  }
  return true;
}

/// Finds files by names as model files hold them: both separators divide folders, and letter case does not
/// count where the exact name is missing. Names are single bytes; only ASCII letters have a case.
/// Keeps the listings it has read, so one object serves one load and sees the disk as it was then.
class FileFinder {
 public:
  FileFinder();
  ~FileFinder();

  /// The path of the existing regular file that `name` means, or none. A relative name starts at the current
  /// directory. Of several names that differ in case only, the exact one wins, then the first in byte order.
  std::optional<std::filesystem::path> find(std::string_view name);

 private:
  struct Listing;
  const Listing& listing(const std::filesystem::path& folder);
  std::map<std::string, std::unique_ptr<Listing>> listings_;
};

/// The text after the last separator ('\\' or '/') of a path.
std::string_view fileName(std::string_view path);

/// The text from the last '.' of a path's file name on, in lower case (".obj"), or an empty one.
std::string lowerExtension(std::string_view path);

/// True for a path that starts with '/' or with a drive letter and a colon.
bool isRooted(std::string_view path);

}  // namespace facet
