#include "fuzz_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  for (const uint32_t version : {facet::modelTypeVxm3, facet::modelTypeVxm4})
    facet::fuzzReader(facet::readVxm, version, data, size);
  return 0;
}
