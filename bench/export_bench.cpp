#include "export_bench.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>

#include "bench.h"
#include "export/export.h"
#include "reference_obj.h"

namespace facet {

namespace {

/// A height field of `columns` x `rows` vertices in which all values differ.
void addGrid(Model& model, uint32_t columns, uint32_t rows) {
  Mesh& mesh = growArray(model.meshes, model.meshCount++);
  allocateVertices(mesh, columns * rows);
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const auto x = static_cast<float>(i % columns), z = static_cast<float>(i / columns);
    const float height = 8 * std::sin(x * 0.11F) * std::cos(z * 0.07F) + static_cast<float>(model.meshCount);
    mesh.vertices[i] = {x * 0.37F - 40, height, z * 0.41F - 40, x / static_cast<float>(columns),
                        z / static_cast<float>(rows)};
    const float slopeX = std::cos(x * 0.11F), slopeZ = std::sin(z * 0.07F);
    const float length = std::sqrt(slopeX * slopeX + 1 + slopeZ * slopeZ);
    mesh.normals[i] = {-slopeX / length, 1 / length, slopeZ / length};
  }
  allocateIndices(mesh, (columns - 1) * (rows - 1) * 6);
  uint16_t* index = mesh.indices.get();
  for (uint32_t row = 0; row + 1 < rows; ++row) {
    for (uint32_t column = 0; column + 1 < columns; ++column) {
      const uint32_t a = row * columns + column;
      for (const uint32_t corner : {a, a + columns, a + 1, a + 1, a + columns, a + columns + 1})
        *index++ = static_cast<uint16_t>(corner);
    }
  }
  mesh.materialIndex = 0;
  model.totalVertices += mesh.vertexCount;
  model.totalIndices += mesh.indexCount;
}

Model gridModel(uint32_t meshes, uint32_t columns, uint32_t rows) {
  Model model;
  for (uint32_t i = 0; i < 1 + skyMaterialCount; ++i)
    growArray(model.materials, model.materialCount++).textureName = "bench\\grid";
  for (uint32_t m = 0; m < meshes; ++m) addGrid(model, columns, rows);
  return model;
}

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

}  // namespace

void benchExport(std::ostream& out) {
  const BenchFolder folder;
  benchObj(out, folder);
}

}  // namespace facet
