#include "fuzz_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  facet::fuzzReader(facet::readDs2md, facet::modelTypeDs2md, data, size);
  return 0;
}
