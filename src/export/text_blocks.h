#pragma once

#include "export/text_buffer.h"
#include "platform/output.h"

namespace facet {

/// Text for an output, gathered into blocks, so that memory does not grow with it. What finish() has not
/// written is not in the output.
class TextBlocks {
 public:
  explicit TextBlocks(Output& out) : out_(out) {}

  /// As TextBuffer::put().
  template <class... Parts>
  void put(const Parts&... parts) {
    text_.put(parts...);
    if (text_.size() >= blockSize) finish();
  }

  void finish() {
    out_.write(text_.view());
    text_.clear();
  }

 private:
  static constexpr size_t blockSize = size_t{64} * 1024;

  Output& out_;
  TextBuffer text_;
};

}  // namespace facet
