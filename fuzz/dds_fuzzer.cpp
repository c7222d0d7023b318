#include "image_fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  facet::decodeAllLevels({reinterpret_cast<const std::byte*>(data), size}, facet::decodeDds);
  return 0;
}
