#include "render_bench.h"

#include <ostream>

#include "bench.h"
#include "landscape.h"

namespace facet {

namespace {

constexpr Landscape landscapes[] = {{"100 thousand triangles", 1, 224}, {"2 million triangles", 4, 250}};

bool hasCommand(const std::string& name) {
  return std::system(("command -v " + name + " > /dev/null").c_str()) == 0;
}

/// Why f3d cannot be measured; empty when it can.
std::string f3dHindrance() {
  if (!hasCommand("f3d")) return "f3d is not installed";
  return std::getenv("DISPLAY") ? "" : "f3d needs a display: xvfb-run -a facet_bench pictures";
}

}  // namespace

void benchPictures(std::ostream& out, const std::string& tool) {
  constexpr int runs = 7;
  const BenchFolder folder;
  const std::string hindrance = f3dHindrance();
  writeGroundTexture(folder / "ground.tga");
  out << "| file to picture of 1280 x 720, whole process | `facetbench render`, textured | f3d, PLY without "
         "texture | ratio |\n|---|---|---|---|\n";
  for (const Landscape& landscape : landscapes) {
    const std::string vxm = folder / "land.vxm", ply = folder / "land.ply", picture = folder / "land.png";
    writeLandscapeVxm(landscape, vxm);
    const double own = bestOf(runs, [&] {
      runCommand("'" + tool + "' render -q '" + vxm + "' -o '" + picture + "' --textures '" + (folder / "") +
                 "'");
    });
    out << "| " << landscape.name << " | " << own * 1e3 << " ms | ";
    if (!hindrance.empty()) {
      out << hindrance << " | |\n";
      continue;
    }
    writeLandscapePly(landscape, ply);
    const double other = bestOf(runs, [&] {
      runCommand("f3d --dry-run --resolution 1280,720 --output '" + picture + "' '" + ply +
                 "' > /dev/null 2>&1");
    });
    out << other * 1e3 << " ms | " << other / own << " |\n";
  }
}

}  // namespace facet
