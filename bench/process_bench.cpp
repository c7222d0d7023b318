// Whole processes, from a file to a file, against other programs and against the system itself.

#include <fcntl.h>
#include <unistd.h>

#include "bench.h"

namespace facet {

namespace {

/// Writes `size` bytes into a new file in blocks of 400 KB.
void writeBlocks(const std::string& path, uint64_t size) {
  static const std::vector<char> block(400'000, 'x');
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  for (ssize_t written = 1; size > 0 && written > 0; size -= static_cast<uint64_t>(written))
    written = std::max<ssize_t>(write(file, block.data(), std::min<uint64_t>(size, block.size())), 0);
  close(file);
  if (size > 0) throw std::runtime_error("cannot write " + path);
}

/// The shell's words for a conversion.
std::string conversion(const std::string& from, const std::string& to) {
  return "convert -q '" + from + "' -o '" + to + "'";
}

void benchLargeModel() {
  const TempFolder folder("/dev/shm");
  const std::string vxm = folder / "land.vxm", ply = folder / "land.ply";
  const bool compares = hasCommand("assimp");
  if (!compares) std::cout << "\nLeft out: assimp, which is not installed.\n";
  writeVxm(landscape2M, vxm);
  writePly(landscape2M, ply);
  printHead(std::string(landscape2M.name) + " to, in memory", "MB", "`facetbench convert`, ms",
            "write() of as many bytes, ms", "ratio", "assimp, from PLY, ms", "ratio");
  for (const std::string format : {"stl", "obj", "dae"}) {
    const std::string path = folder / ("land." + format);
    const auto remove = [&] { std::filesystem::remove(path); };
    const auto convert = [&] { runFacetbench(conversion(vxm, path)); };
    const auto assimp = [&] { runCommand("assimp export " + ply + ' ' + path + " > /dev/null 2>&1"); };
    const double own = bestOf(5, convert, remove);
    const uint64_t size = std::filesystem::file_size(path);
    const double plain = bestOf(
        5, [&] { writeBlocks(path, size); }, remove);
    const double other = bestOf(compares ? 1 : 0, assimp, remove);
    printRow(format, static_cast<double>(size) / 1e6, own, plain, own / plain, other, other / own);
    remove();
  }
}

void benchSmallFile() {
  const TempFolder folder;
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
  benchLargeModel();
  benchSmallFile();
}

void benchPictures() {
  constexpr int runs = 7;
  const TempFolder folder;
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
