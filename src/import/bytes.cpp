#include "import/bytes.h"

#include <algorithm>

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

}  // namespace facet
