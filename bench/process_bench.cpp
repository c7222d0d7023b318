// Whole processes, from a file to a file, against other programs and against the system itself.

#include <fcntl.h>
#include <unistd.h>

#include "bench.h"
#include "landscape.h"

namespace facet {

namespace {

/// Writes `size` bytes into a new file in blocks of 400 KB.
void writeBlocks(const std::string& path, uint64_t size) {
  static const std::vector<char> block(400'000, 'x');
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  bool good = file >= 0;
  while (good && size > 0) {
    const ssize_t written = write(file, block.data(), std::min<uint64_t>(size, block.size()));
    good = written > 0;
    size -= good ? static_cast<uint64_t>(written) : 0;
  }
  if (file >= 0) close(file);
  if (!good) throw std::runtime_error("cannot write " + path);
}

/// The shell's words for a conversion of the landscape to a file.
std::string conversion(const std::string& from, const std::string& to) {
  return "convert -q '" + from + "' -o '" + to + "'";
}

void benchMemoryFiles() {
  const BenchFolder folder("/dev/shm");
  const std::string vxm = folder / "land.vxm";
  writeVxm(landscape2M, vxm);
  printHead(std::string(landscape2M.name) + " to, in memory", "MB", "`facetbench convert`, ms",
            "write() of as many bytes, ms", "ratio");
  for (const std::string format : {"stl", "obj", "dae"}) {
    const std::string path = folder / ("land." + format);
    const auto remove = [&] { std::filesystem::remove(path); };
    const double own = bestOf(
        5, [&] { runFacetbench(conversion(vxm, path)); }, remove);
    const uint64_t size = std::filesystem::file_size(path);
    const double plain = bestOf(
        5, [&] { writeBlocks(path, size); }, remove);
    printRow(format, static_cast<double>(size) / 1e6, own, plain, own / plain);
    remove();
  }
}

void benchAgainstAssimp() {
  if (!hasCommand("assimp")) {
    std::cout << "\nLeft out: the comparison with assimp, which is not installed.\n";
    return;
  }
  const BenchFolder folder;
  const std::string vxm = folder / "land.vxm", ply = folder / "land.ply";
  writeVxm(landscape2M, vxm);
  writePly(landscape2M, ply);
  printHead(std::string(landscape2M.name) + " to", "`facetbench convert`, ms", "assimp, from PLY, ms",
            "ratio");
  for (const std::string format : {"obj", "stl", "dae"}) {
    const double own = bestOf(3, [&] { runFacetbench(conversion(vxm, folder / ("own." + format))); });
    const std::string other = folder / ("assimp." + format);
    const double assimp =
        bestOf(1, [&] { runCommand("assimp export " + ply + ' ' + other + " > /dev/null 2>&1"); });
    printRow(format, own, assimp, assimp / own);
  }
}

void benchSmallFile() {
  const BenchFolder folder;
  writeVxm({"small", 1, 1, 1}, folder / "small.vxm");
  const double empty = bestOf(20, [] { runCommand("true"); });
  const double convert =
      bestOf(20, [&] { runFacetbench(conversion(folder / "small.vxm", folder / "small.obj")); });
  printHead("whole process", "ms");
  printRow("empty", empty);
  printRow("convert of one small file", convert);
}

}  // namespace

void benchConvert() {
  benchMemoryFiles();
  benchAgainstAssimp();
  benchSmallFile();
}

void benchPictures() {
  constexpr int runs = 7;
  const BenchFolder folder;
  const bool compares = hasCommand("f3d") && std::getenv("DISPLAY") != nullptr;
  if (!compares)
    std::cout << "\nLeft out: f3d, which has to be installed and to have a display (xvfb-run -a).\n";
  writeGroundTexture(folder / "ground.tga");
  printHead("file to picture of 1280 x 720, whole process", "`facetbench render`, textured, ms",
            "f3d, PLY without texture, ms", "ratio");
  for (const Landscape& landscape : {landscape100k, landscape2M}) {
    const std::string vxm = folder / "land.vxm", ply = folder / "land.ply", picture = folder / "land.png";
    writeVxm(landscape, vxm);
    writePly(landscape, ply);
    const double own = bestOf(runs, [&] {
      runFacetbench("render -q '" + vxm + "' -o '" + picture + "' --textures '" + folder / "" + "'");
    });
    const double other = bestOf(compares ? runs : 0, [&] {
      runCommand("f3d --dry-run --resolution 1280,720 --output '" + picture + "' '" + ply +
                 "' > /dev/null 2>&1");
    });
    printRow(landscape.name, own, other, other / own);
  }
}

}  // namespace facet
