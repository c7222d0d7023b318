#include "reference_assimp.h"

#include <cstdlib>
#include <ostream>
#include <stdexcept>
#include <string>

#include "export/binary_blocks.h"
#include "export/export.h"
#include "export/mesh_text.h"
#include "import/load.h"
#include "reference_grid.h"

namespace facet {

namespace {

#ifdef _WIN32
constexpr const char* nowhere = "NUL 2>&1";
#else
constexpr const char* nowhere = "/dev/null 2>&1";
#endif

/// Binary STL: 80 bytes, the triangle count, and for each triangle its normal, three corners and two bytes.
void writeBinaryStl(const Model& model, const std::string& path) {
  OutputFile out(path);
  BinaryBlocks file(out);
  file.putZeros(80);
  file.put(model.totalIndices / 3);
  for (const Mesh& mesh : model.meshes) {
    forTriangles(mesh, 0, triangleCount(mesh), [&](uint32_t, uint16_t a, uint16_t b, uint16_t c) {
      file.put(cornerAt(mesh, a).normal);
      for (const uint16_t index : {a, b, c}) {
        const Vertex corner = cornerAt(mesh, index).vertex;
        file.put(corner.x, corner.y, corner.z);
      }
      file.put(uint16_t{0});
    });
  }
  file.finish();
  if (!out.commit()) throw std::runtime_error(path + ": " + out.error());
}

void write(std::string_view format, const std::string& path, Model& model) {
  const ExportResult result = exportModel(*findExportFormat(format), path, model);
  if (!result.error.empty()) throw std::runtime_error(path + ": " + result.error);
}

/// What `facetbench convert` does, in this process.
void convert(const std::string& from, std::string_view format, const std::string& to) {
  const LoadResult loaded = loadModel(from, {}, nullptr);
  if (!loaded.model) throw std::runtime_error(from + ": " + loaded.error);
  write(format, to, *loaded.model);
}

void runAssimp(const std::string& arguments) {
  const std::string command = "assimp " + arguments + " > " + nowhere;
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

}  // namespace

void benchAgainstAssimp(std::ostream& out, const BenchFolder& folder) {
  const std::string probe = std::string("assimp version > ") + nowhere;
  if (std::system(probe.c_str()) != 0) {
    out << "Left out: the comparison with assimp, which is not installed.\n";
    return;
  }
  Model model = gridModel(12, 256, 256);
  const std::string own = folder / "grid.vxm", same = folder / "grid.stl";
  write("vxm", own, model);
  writeBinaryStl(model, same);
  out << "| " << model.totalIndices / 3
      << " triangles to | this program | assimp | ratio |\n|---|---|---|---|\n";
  for (const char* format : {"obj", "stl", "dae"}) {
    const std::string to = folder / (std::string("own.") + format).c_str();
    const std::string other = folder / (std::string("assimp.") + format).c_str();
    const double seconds = bestOf(3, [&] { convert(own, format, to); });
    const double assimp = bestOf(1, [&] { runAssimp("export " + same + ' ' + other); });
    out << "| " << format << " | " << seconds << " s | " << assimp << " s | " << assimp / seconds << " |\n";
  }
}

}  // namespace facet
