#include <cstdio>
#include <exception>

#include "sample.h"

int main(int argc, char** argv) {
  if (argc != 2 || argv[1][0] == '-') {
    std::fprintf(stderr, "usage: make_sample OUTDIR\n");
    return 2;
  }
  try {
    facet::sample::writeSampleModels(argv[1]);
    facet::sample::writeSampleTextures(argv[1]);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "make_sample: %s\n", failure.what());
    return 1;
  }
  return 0;
}
