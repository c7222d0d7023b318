// Loading and writing within this process.

#include <sys/resource.h>

#include <cstring>

#include "bench.h"
#include "export/export.h"
#include "import/load.h"
#include "import/readers.h"
#include "support/format_builders.h"

namespace facet {

namespace {

/// Copies `size` bytes into memory that was just taken.
double freshCopyTime(uint64_t size) {
  const std::vector<char> source(size, 1);
  return bestOf(5, [&] {
    const auto copy = std::make_unique_for_overwrite<char[]>(size);
    std::memcpy(copy.get(), source.data(), size);
    if (copy[size / 2] != 1) throw std::runtime_error("copied wrongly");
  });
}

/// Peak memory in bytes of the largest child process so far. A process inherits the peak of the one that
/// starts it, so this one must have been small until then.
double childPeak() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024;
}

void benchHierarchies() {
  const TempFolder folder;
  struct {
    Landscape landscape;
    uint32_t format;
    double peak;
  } cases[] = {{{"400 MB, 60-byte vertices", 17, 5, 254}, 1, 0},
               {{"400 MB, 32-byte vertices", 14, 10, 254}, 0x112, 0}};
  for (auto& [landscape, format, peak] : cases) {
    writeVxm(landscape, folder / landscape.name, format);
    runFacetbench("info '" + folder / landscape.name + "' > /dev/null");
    peak = childPeak();
  }
  printHead("VXM hierarchy, loaded from the page cache", "ms", "copying the same bytes, ms", "ratio",
            "peak memory / own arrays");
  for (const auto& [landscape, format, peak] : cases) {
    const std::string path = folder / landscape.name;
    const double copy = freshCopyTime(std::filesystem::file_size(path));
    double arrays = 0;
    const double load = bestOf(5, [&] {
      const auto model = loaded(path);
      arrays = 32.0 * model->totalVertices + 2.0 * model->totalIndices;
    });
    printRow(landscape.name, load, copy, load / copy, peak / arrays);
  }
}

/// Nanoseconds for each byte of reading and finishing.
double readTime(ReadModel* read, uint32_t modelType, const std::string& bytes, uint32_t vertices) {
  const double time = bestOf(5, [&] {
    FileFinder files;
    const std::string path = "bench";
    Model model;
    model.modelType = modelType;
    const auto file = openMemory(asBytes(bytes));
    read(*file, LoadContext{path, files}, model);
    finishModel(model);
    if (model.totalVertices != vertices) throw std::runtime_error("a reader lost vertices");
  });
  return time * 1e6 / static_cast<double>(bytes.size());
}

void benchFormats() {
  const BuiltMesh grid = builtGrid(254);
  const std::vector<BuiltMesh> meshes(40, grid);
  const std::vector<ObjectMesh> objects(meshes.size(), objectMesh(grid, "surface"));
  const auto vertices = static_cast<uint32_t>(meshes.size() * grid.vertices.size());
  const struct {
    const char* name;
    ReadModel* read;
    uint32_t modelType;
    ByteWriter file;
  } cases[] = {
      {"`VXM` 4", readVxm, modelTypeVxm4, vxmHierarchy(4, meshes)},
      {"`VXM` 3", readVxm, modelTypeVxm3, vxmHierarchy(3, meshes)},
      {"editable object", readObject, modelTypeObject,
       objectFile(objects, {{"surface", "default", "stone"}})},
      {"4A", readModel4a, modelType4a, model4aMeshFile(meshes)},
      {"4A, packed", readModel4a, modelType4a, model4aMeshFile(meshes, true)},
      {"DS2MD", readDs2md, modelTypeDs2md, ds2mdFile("0.5", meshes)},
      {"DS2MD 0.6", readDs2md, modelTypeDs2md, ds2mdFile("0.6", meshes)},
      {"Orion v1", readOrion, modelTypeOrion257, orionFile(joined(meshes), "stone.dds")},
  };
  printHead("2.6 million vertices", "MB", "ns for each byte", "times `VXM` 4");
  double reference = 0;
  for (const auto& [name, read, modelType, file] : cases) {
    const double time = readTime(read, modelType, file.bytes(), vertices);
    if (reference == 0) reference = time;
    printRow(name, static_cast<double>(file.size()) / 1e6, time, time / reference);
  }
}

/// Takes bytes and keeps none: what is measured then is the writer alone.
class NoOutput : public Output {
  std::string writeSome(std::string_view) override { return {}; }
};

/// Milliseconds that a writer takes, and the bytes that it writes.
std::pair<double, double> writeNowhere(std::string_view format, Model& model) {
  double bytes = 0;
  const double time = bestOf(5, [&] {
    NoOutput out;
    findExportFormat(format)->write(model, "land", out);
    bytes = static_cast<double>(out.bytesWritten());
  });
  return {time, bytes};
}

std::unique_ptr<Model> inMemory(const Landscape& landscape) {
  const TempFolder folder;
  writeVxm(landscape, folder / "land.vxm");
  return loaded(folder / "land.vxm");
}

/// Every format's writer alone. MilkShape 3D holds no more than 65,535 triangles.
void benchWriters() {
  const auto model = inMemory({"1 million triangles", 2, 4, 250}), small = inMemory({"small", 1, 1, 179});
  const std::vector<char> from(64'000'000, 1);
  std::vector<char> to(from.size());
  const double copyTime = bestOf(5, [&] { std::memcpy(to.data(), from.data(), from.size()); });
  const double copy = static_cast<double>(from.size()) / copyTime / 1e3;
  printHead("writer", "MB/s", "of the speed of copying memory");
  for (const ExportFormat& format : exportFormats()) {
    const auto [time, bytes] = writeNowhere(format.name, format.name == "ms3d" ? *small : *model);
    printRow(format.name, bytes / time / 1e3, bytes / time / 1e3 / copy);
  }
}

void benchGrowth() {
  printHead("writing", "STL, ns for each triangle", "OBJ, ns for each triangle");
  for (const Landscape& landscape : {Landscape{"10 thousand triangles", 1, 1, 71}, landscape100k, landscape2M,
                                     Landscape{"10 million triangles", 9, 9, 248}}) {
    const auto model = inMemory(landscape);
    const auto each = [&](std::string_view format) {
      return writeNowhere(format, *model).first * 1e6 / landscape.triangles();
    };
    printRow(landscape.name, each("stl"), each("obj"));
  }
}

}  // namespace

void benchLoad() {
  benchHierarchies();
  benchFormats();
}

void benchExport() {
  benchWriters();
  benchGrowth();
}

}  // namespace facet
