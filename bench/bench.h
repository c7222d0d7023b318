#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/model.h"
#include "support/temp_folder.h"

// What every measurement uses: one clock, one way to print. Files stand in a TempFolder.

namespace facet {

/// Milliseconds since it was made.
class Stopwatch {
 public:
  double passed() const { return std::chrono::duration<double, std::milli>(Clock::now() - start_).count(); }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point start_ = Clock::now();
};

/// Milliseconds of the fastest of `runs` runs; `prepare` comes before each and does not count.
template <class Run, class Prepare = void (*)()>
double bestOf(
    int runs, Run run, Prepare prepare = [] {}) {
  double best = INFINITY;
  for (int i = 0; i < runs; ++i) {
    prepare();
    const Stopwatch watch;
    run();
    best = std::min(best, watch.passed());
  }
  return best;
}

/// A row of a Markdown table, at once on standard output.
template <class... Cells>
void printRow(const Cells&... cells) {
  ((std::cout << "| " << cells << ' '), ...);
  std::cout << '|' << std::endl;
}

/// The head of a table, an empty line before it.
template <class... Names>
void printHead(const Names&... names) {
  std::cout << '\n';
  printRow(names...);
  ((static_cast<void>(names), std::cout << "|---"), ...);
  std::cout << "|\n";
}

/// Runs a command of the shell. Throws std::runtime_error when it fails.
inline void runCommand(const std::string& command) {
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

inline bool hasCommand(const std::string& name) {
  return std::system(("command -v " + name + " > /dev/null").c_str()) == 0;
}

/// Runs the program facetbench that lies beside this one; what it says of textures that are not there is not
/// shown.
inline void runFacetbench(const std::string& arguments) {
  static const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  runCommand("'" + (folder / "facetbench").string() + "' " + arguments + " 2> /dev/null");
}

// Models to measure with.

/// A hilly ground of `columns` x `rows` meshes of `cells` x `cells` cells (at most 254), two triangles each.
/// All of its vertices differ. Its one texture is "ground".
struct Landscape {
  const char* name;
  uint32_t columns, rows, cells;

  uint32_t meshes() const { return columns * rows; }
  uint32_t triangles() const { return meshes() * cells * cells * 2; }
};

inline constexpr Landscape landscape100k{"100 thousand triangles", 1, 1, 224};
inline constexpr Landscape landscape2M{"2 million triangles", 4, 4, 250};

/// As a VXM model in a vertex format, a mesh at a time: memory does not grow with it.
void writeVxm(const Landscape& landscape, const std::string& path, uint32_t format = 0x112);

/// The same triangles and normals as a binary PLY file, all in one mesh.
void writePly(const Landscape& landscape, const std::string& path);

/// A texture of 1024 x 1024 pixels as a TGA file.
void writeGroundTexture(const std::string& path);

/// Loads a model file, without textures. Throws std::runtime_error when that fails.
std::unique_ptr<Model> loaded(const std::string& path);

// The measurements. Each prints its tables, and throws std::exception where something does not work.

/// A hierarchy of 400 MB from the page cache, and the same mesh in every input format.
void benchLoad();
/// The writers alone, and against Assimp.
void benchExport();
/// Whole runs of `facetbench convert` into a memory file system.
void benchConvert();
/// Whole runs of `facetbench render` against f3d.
void benchPictures();
/// Frames of the software device, on one thread and on all, and of OpenGL, the reading of the picture
/// included.
void benchFrames();
/// Draws every model below a folder on both devices, in all modes and filters, and prints how far the
/// pictures are apart at most. `textures` are base paths, as `facetbench --textures` takes them.
void compareDevices(const std::string& folder, const std::vector<std::string>& textures);

}  // namespace facet
