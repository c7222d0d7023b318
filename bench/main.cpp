#include <exception>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include "device_bench.h"
#include "export_bench.h"
#include "format_bench.h"
#include "load_bench.h"
#include "render_bench.h"

namespace facet {

namespace {

struct Bench {
  const char* name;
  void (*run)(const std::string& tool);
};

constexpr Bench benches[] = {
    {"load", [](const std::string& tool) { benchLoad(std::cout, tool); }},
    {"formats", [](const std::string&) { benchFormats(std::cout); }},
    {"export", [](const std::string&) { benchExport(std::cout); }},
    {"pictures", [](const std::string& tool) { benchPictures(std::cout, tool); }},
    {"frames", [](const std::string&) { benchFrames(std::cout); }},
};

int usage() {
  std::cerr << "usage: facet_bench [load|formats|export|pictures|frames]\n"
               "       facet_bench agreement DIR [TEXTURES]...\n";
  return 2;
}

/// Without a name all of them, with an empty line between two.
int runBenches(const std::string& wanted, const std::string& tool) {
  bool any = false;
  for (const Bench& bench : benches) {
    if (!wanted.empty() && wanted != bench.name) continue;
    if (any) std::cout << '\n';
    any = true;
    bench.run(tool);
  }
  return any ? 0 : usage();
}

}  // namespace

}  // namespace facet

// Prints what the README claims about speed, as tables of ratios measured in this run.
int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  const std::string tool = (std::filesystem::absolute(argv[0]).parent_path() / "facetbench").string();
  std::cout << std::fixed << std::setprecision(2);
  try {
    if (words.size() >= 2 && words[0] == "agreement") {
      facet::compareDevices(std::cout, words[1], {words.begin() + 2, words.end()});
      return 0;
    }
    return words.size() > 1 ? facet::usage() : facet::runBenches(words.empty() ? "" : words[0], tool);
  } catch (const std::exception& error) {
    std::cerr << "facet_bench: " << error.what() << '\n';
    return 1;
  }
}
