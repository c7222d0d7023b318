#include "image_fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const facet::Bytes file(reinterpret_cast<const std::byte*>(data), size);
  if (facet::isTga(file)) facet::decodeAllLevels(file, facet::decodeTga);
  return 0;
}
