#include "fuzz_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  facet::fuzzReader(facet::readOrion, facet::modelTypeOrion257, data, size);
  return 0;
}
