// Prints what the README claims about speed, as tables of ratios measured in this run.

#include <iomanip>

#include "bench.h"

namespace {

constexpr std::pair<const char*, void (*)()> benches[] = {
    {"load", facet::benchLoad},         {"export", facet::benchExport}, {"convert", facet::benchConvert},
    {"pictures", facet::benchPictures}, {"frames", facet::benchFrames},
};

/// Without a name all of them.
int runBenches(const std::vector<std::string>& words) {
  bool any = false;
  for (const auto& [name, run] : benches) {
    if (words.size() > 1 || (words.size() == 1 && words[0] != name)) continue;
    run();
    any = true;
  }
  if (any) return 0;
  std::cerr << "usage: facet_bench [load|export|convert|pictures|frames]\n"
               "       facet_bench agreement DIR [TEXTURES]...\n";
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  std::cout << std::fixed << std::setprecision(2);
  try {
    if (words.size() < 2 || words[0] != "agreement") return runBenches(words);
    facet::compareDevices(words[1], {words.begin() + 2, words.end()});
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "facet_bench: " << error.what() << '\n';
    return 1;
  }
}
