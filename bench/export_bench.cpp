#include "export_bench.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bench.h"
#include "export/export.h"
#include "export/mesh_text.h"
#include "reference_assimp.h"
#include "reference_grid.h"
#include "reference_obj.h"

namespace facet {

namespace {

std::string fileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeFormat(std::string_view name, const std::string& path, Model& model) {
  const ExportResult result = exportModel(*findExportFormat(name), path, model);
  if (!result.error.empty()) throw std::runtime_error(path + ": " + result.error);
}

/// OBJ against the plain way to the same bytes.
void benchObj(std::ostream& out, const BenchFolder& folder) {
  out << "| OBJ of one mesh | this program | fprintf and hashed lists | ratio |\n|---|---|---|---|\n";
  for (const auto& [columns, rows] : {std::pair{256U, 128U}, {257U, 255U}}) {
    Model model = gridModel(1, columns, rows), same = gridModel(1, columns, rows);
    const std::string path = folder / "grid.obj", referencePath = folder / "reference.obj";
    const double own = bestOf(9, [&] { writeFormat("obj", path, model); });
    const double reference = bestOf(3, [&] {
      std::FILE* file = std::fopen(referencePath.c_str(), "wb");
      if (file == nullptr) throw std::runtime_error("cannot create " + referencePath);
      writeReferenceObj(same, "grid.obj", file);
      std::fclose(file);
    });
    if (fileBytes(path) != fileBytes(referencePath)) throw std::runtime_error("the two OBJ files differ");
    out << "| " << columns * rows << " distinct vertices | " << own * 1e3 << " ms | " << reference * 1e3
        << " ms | " << reference / own << " |\n";
  }
}

/// Takes bytes and keeps none: what is measured then is the writer alone.
class NoOutput : public Output {
  std::string writeSome(std::string_view) override { return {}; }
};

struct Written {
  double seconds;
  uint64_t bytes;
  double rate() const { return static_cast<double>(bytes) / seconds / 1e6; }
};

/// A format's writer alone.
Written writeNowhere(std::string_view format, Model& model, int runs) {
  uint64_t bytes = 0;
  const double seconds = bestOf(runs, [&] {
    NoOutput out;
    findExportFormat(format)->write(model, "grid", out);
    bytes = out.bytesWritten();
  });
  return {seconds, bytes};
}

uint32_t threadCount() {
  return std::max(std::thread::hardware_concurrency(), 1U);
}

/// Bytes per second of OBJ when its lists need not be collected.
double objRateWithoutLists(Model& model) {
  const Written obj = writeNowhere("obj", model, 3);
  const double lists = bestOf(3, [&] {
    for (Mesh& mesh : model.meshes) collectDistinct(mesh);
  });
  return static_cast<double>(obj.bytes) / (obj.seconds - lists / threadCount()) / 1e6;
}

double copyRate(uint64_t bytes) {
  const std::vector<char> from(bytes, 1);
  std::vector<char> to(bytes);
  return static_cast<double>(bytes) / bestOf(3, [&] { std::memcpy(to.data(), from.data(), bytes); }) / 1e6;
}

/// Every format's writer alone, beside what it is to be compared with.
void benchWriters(std::ostream& out) {
  Model model = gridModel(8, 256, 256), small = gridModel(1, 180, 180);
  const double obj = objRateWithoutLists(model);
  out << "| writer | MB/s | compared with | ratio |\n|---|---|---|---|\n";
  for (const std::string_view name : {"obj", "smd", "ase", "pov", "dae", "dxf", "stl"}) {
    const Written written = writeNowhere(name, model, 3);
    out << "| " << name << " | " << written.rate() << " | OBJ without collecting its lists, " << obj
        << " MB/s | " << written.rate() / obj << " |\n";
  }
  const double copy = copyRate(64'000'000);
  for (const std::string_view name : {"ms3d", "vxm", "glb"}) {
    const Written written = writeNowhere(name, name == "ms3d" ? small : model, 9);
    out << "| " << name << " | " << written.rate() << " | copying memory, " << copy << " MB/s | "
        << written.rate() / copy << " |\n";
  }
}

/// Cost for each triangle from 10 thousand to 10 million.
void benchGrowth(std::ostream& out) {
  out << "| triangles | STL, ns each | OBJ, ns each |\n|---|---|---|\n";
  for (const auto& [meshes, side] : {std::pair{1U, 72U}, {1U, 225U}, {8U, 251U}, {77U, 256U}}) {
    Model model = gridModel(meshes, side, side);
    const double triangles = model.totalIndices / 3.0;
    out << "| " << model.totalIndices / 3;
    for (const std::string_view name : {"stl", "obj"})
      out << " | " << writeNowhere(name, model, 3).seconds / triangles * 1e9;
    out << " |\n";
  }
}

}  // namespace

void benchExport(std::ostream& out) {
  const BenchFolder folder;
  benchObj(out, folder);
  out << '\n';
  benchWriters(out);
  out << '\n';
  benchGrowth(out);
  out << '\n';
  benchAgainstAssimp(out, folder);
}

}  // namespace facet
