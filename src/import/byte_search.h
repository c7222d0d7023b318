#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "platform/byte_source.h"

namespace facet {

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

}  // namespace facet
