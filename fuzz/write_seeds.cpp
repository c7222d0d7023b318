// Writes the seeds of the reader targets: write_seeds fuzz/seeds

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "support/format_builders.h"

namespace facet {
namespace {

struct Seed {
  const char* target;
  const char* name;
  ByteWriter bytes;
};

std::vector<Seed> seeds() {
  const BuiltMesh stone = builtTriangle(), wall = builtTriangle("wall", "models\\model");
  ByteWriter detail = vxmVisual(4, builtGrid(2), 1);
  detail.raw(vxmDetailLevel(6, 2).bytes());
  ObjectMesh two = objectMesh(builtGrid(2), "a");
  two.surfaces = {{"a", {0, 1, 2}}, {"b", {3, 4, 5, 6, 7}}};
  two.references[3].push_back({1, 0});
  two.maps.push_back({{1, 2, 3}, 1, 1});
  const std::vector<ObjectSurface> surfaces = {{"a", "default", "stone"}, {"b", "models\\model", "wall"}};
  const std::string trailer("\0tex\\stone.dds\0", 15);
  return {
      {"vxm_fuzzer", "single4", vxmVisual(4, stone, 3)},
      {"vxm_fuzzer", "detail", detail},
      {"vxm_fuzzer", "hierarchy4", vxmHierarchy(4, {stone, wall}, {0x240E3300})},
      {"vxm_fuzzer", "hierarchy3", vxmHierarchy(3, {stone, wall})},
      {"round_trip_fuzzer", "detail", detail},
      {"round_trip_fuzzer", "hierarchy4", vxmHierarchy(4, {stone, wall}, {0x240E3300})},
      {"round_trip_fuzzer", "hierarchy3", vxmHierarchy(3, {stone, wall})},
      {"object_fuzzer", "layout905", objectFile({objectMesh(stone, "a")}, surfaces, 0x905, 0x1011)},
      {"object_fuzzer", "layout906", objectFile({objectMesh(stone, "a")}, surfaces, 0x906)},
      {"object_fuzzer", "layout907", objectFile({two, objectMesh(wall, "a")}, surfaces)},
      {"model_4a_fuzzer", "plain", model4aMeshFile({stone, wall})},
      {"model_4a_fuzzer", "packed", model4aMeshFile({stone}, true)},
      {"model_4a_fuzzer", "list", model4aListFile("a,b\\c")},
      {"orion_fuzzer", "named", orionFile(stone, trailer)},
      {"ds2md_fuzzer", "version5", ds2mdFile("0.5", {stone, wall})},
      {"ds2md_fuzzer", "version6", ds2mdFile("0.6", {stone, wall})},
      {"dds_preview_fuzzer", "wide", ByteWriter().raw(ddsFile(4, 2).substr(0, 32))},
  };
}

}  // namespace
}  // namespace facet

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: write_seeds FOLDER\n", stderr);
    return 2;
  }
  for (const facet::Seed& seed : facet::seeds()) {
    const auto folder = std::filesystem::path(argv[1]) / seed.target;
    std::filesystem::create_directories(folder);
    std::ofstream(folder / seed.name, std::ios::binary) << seed.bytes.bytes();
  }
}
