#include "format_bench.h"

#include <ostream>
#include <stdexcept>

#include "bench.h"
#include "import/readers.h"
#include "model/model.h"
#include "support/format_builders.h"

namespace facet {

namespace {

constexpr int meshCount = 40;

/// Nanoseconds for each byte of reading and finishing.
double loadTime(ReadModel* read, uint32_t modelType, const std::string& bytes, uint32_t vertices) {
  const double seconds = bestOf(5, [&] {
    FileFinder files;
    const std::string path = "bench";
    Model model;
    model.modelType = modelType;
    const auto file = openMemory(asBytes(bytes));
    read(*file, LoadContext{path, files}, model);
    finishModel(model);
    if (model.totalVertices != vertices) throw std::runtime_error("a reader lost vertices");
  });
  return seconds * 1e9 / static_cast<double>(bytes.size());
}

/// One mesh with the vertices of all: the format knows no second one.
BuiltMesh joined(const BuiltMesh& grid) {
  BuiltMesh mesh = grid;
  for (int i = 1; i < meshCount; ++i) {
    mesh.vertices.insert(mesh.vertices.end(), grid.vertices.begin(), grid.vertices.end());
    mesh.indices.insert(mesh.indices.end(), grid.indices.begin(), grid.indices.end());
  }
  return mesh;
}

}  // namespace

void benchFormats(std::ostream& out) {
  const BuiltMesh grid = builtGrid(254);
  const std::vector<BuiltMesh> meshes(meshCount, grid);
  const std::vector<ObjectMesh> objects(meshCount, objectMesh(grid, "surface"));
  const auto vertices = static_cast<uint32_t>(meshCount * grid.vertices.size());
  const struct {
    const char* name;
    ReadModel* read;
    uint32_t modelType;
    std::string bytes;
  } cases[] = {
      {"`VXM` 4", readVxm, modelTypeVxm4, vxmHierarchy(4, meshes).bytes()},
      {"`VXM` 3", readVxm, modelTypeVxm3, vxmHierarchy(3, meshes).bytes()},
      {"editable object", readObject, modelTypeObject,
       objectFile(objects, {{"surface", "default", "stone"}}).bytes()},
      {"4A", readModel4a, modelType4a, model4aMeshFile(meshes).bytes()},
      {"4A, packed", readModel4a, modelType4a, model4aMeshFile(meshes, true).bytes()},
      {"DS2MD", readDs2md, modelTypeDs2md, ds2mdFile("0.5", meshes).bytes()},
      {"DS2MD 0.6", readDs2md, modelTypeDs2md, ds2mdFile("0.6", meshes).bytes()},
      {"Orion v1", readOrion, modelTypeOrion257, orionFile(joined(grid), "stone.dds").bytes()},
  };
  out << "| 2.6 million vertices | MB | ns for each byte | times `VXM` 4 |\n|---|---|---|---|\n";
  double reference = 0;
  for (const auto& row : cases) {
    const double time = loadTime(row.read, row.modelType, row.bytes, vertices);
    if (reference == 0) reference = time;
    out << "| " << row.name << " | " << static_cast<double>(row.bytes.size()) / 1e6 << " | " << time << " | "
        << time / reference << " |\n";
  }
}

}  // namespace facet
