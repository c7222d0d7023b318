#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <filesystem>

#include "export/binary_blocks.h"
#include "export/written.h"
#include "import/load.h"
#include "support/model_builder.h"
#include "support/temp_folder.h"

// What each writer makes of a model, held against the files in golden/.

namespace facet {
namespace {

using testing::HasSubstr;

/// A mesh with values twice over, numbers that are none, an index that has no vertex and a partial triangle;
/// a triangle in which every number differs; and a mesh of nothing but indices, without material.
Model oddModel() {
  Model model = ModelBuilder()
                    .material("stone")
                    .material("oak&elm", "wood")
                    .mesh(1,
                          {{0, 0, 0},
                           {1e-8F, 0, 0, 0, 0, 1, 0.5F, 1},
                           {1, -2, INFINITY, NAN, 0, 0},
                           {0, 1, 0},
                           {5, 6, 7, 0, 1, 0, 0.5F, 1}},
                          {0, 2, 3, 3, 1, 9, 0})
                    .mesh(0, builtTriangle())
                    .mesh(254, {}, {0, 1, 2})
                    .build();
  model.center = {1.5F, 2.5F, 3.5F};
  return model;
}

TEST(AllFormats, AreWrittenLikeTheirGoldenFiles) {
  const std::filesystem::path golden = std::filesystem::path(TESTS_FOLDER) / "export/golden";
  for (const ExportFormat& format : saveDialogFormats()) {
    const std::string name(format.name);
    EXPECT_EQ(written(*format.write, oddModel(), "odd.obj"), readWholeFile(golden / ("odd." + name)));
    EXPECT_EQ(written(*format.write, ModelBuilder().build(), "empty.obj"),
              readWholeFile(golden / ("empty." + name)));
  }
  EXPECT_EQ(written(exportVxm, triangleModel()), readWholeFile(golden / "triangle.vxm"));
}

TEST(AllFormats, LeaveTheModelAsItWasUnlessTheySaySo) {
  for (const ExportFormat& format : exportFormats()) {
    Model model = oddModel();
    const Vertex& tiny = model.meshes[0].vertices[1];
    for (int times = 0; times < 2; ++times) {
      OutputString out;
      format.write(model, "odd.out", out);
      EXPECT_EQ(tiny.x, format.snapsModel ? 0 : 1e-8F) << format.name;
      EXPECT_EQ(out.text(), written(*format.write, oddModel(), "odd.out")) << format.name;
    }
  }
}

TEST(ExportObj, PassesListNumbersOnBetweenThreads) {
  ModelBuilder builder;
  for (int i = 0; i < 40; ++i) builder.grid(0, 40);
  const std::string text = written(exportObj, builder.build());
  // The last mesh stands behind 39 lists of 41 x 41 entries.
  EXPECT_THAT(text.substr(text.rfind("g Group")),
              HasSubstr("f 65560/65560/65560 65561/65561/65561 65601/65601/65601\n"));
}

TEST(ExportDxf, ColoursLayersInTurn) {
  for (const auto& [material, color] : {std::pair{0u, "1"}, {254u, "255"}, {255u, "1"}, {256u, "1"}})
    EXPECT_THAT(written(exportDxf, ModelBuilder().mesh(material, {}, {}).build()),
                HasSubstr(std::string(" 62\n") + color + "\n"));
}

TEST(BinaryBlocks, KeepsTheOrderOfSmallAndLargeWrites) {
  OutputString out;
  BinaryBlocks blocks(out);
  std::string expected;
  for (const size_t size : {10, 40'000, 20'000, 10'000, 65'536, 1, 65'535, 65'537, 300'000, 5}) {
    const std::string bytes(size, static_cast<char>('a' + expected.size() % 26));
    blocks.putBytes(bytes);
    blocks.put(uint16_t{0x2121});
    expected += bytes + "!!";
  }
  blocks.finish();
  EXPECT_EQ(out.text(), expected);
}

TEST(ExportMs3d, CutsNamesThatAreTooLong) {
  const std::string text = written(exportMs3d, ModelBuilder().material(std::string(200, 'x')).build());
  EXPECT_THAT(text, HasSubstr('\0' + std::string(127, 'x') + std::string(1 + 128, '\0')));
}

TEST(ExportVxm, IsReadBackBitForBit) {
  const TempFolder folder;
  Model before =
      ModelBuilder()
          .material("terrain\\grass", "default")
          .material("wall", "models\\model")
          .grid(1, 250)  // more than a block of each array
          .mesh(0, {{1, 2, 3, 0, 1, 0, 0.25F, 0.125F}, {-4, 1e-9F, 6}, {7, 8, 1e7F}}, {0, 1, 2, 2, 1, 0})
          .grid(0, 3)
          .build();
  const std::string path = folder / "model.vxm";
  EXPECT_EQ(exportModel(*findExportFormat("vxm"), path, before).error, "");
  const std::unique_ptr<Model> after = loadModel(path, {}, nullptr).model;
  ASSERT_TRUE(after);
  ASSERT_EQ(after->meshCount, before.meshCount);
  for (uint32_t m = 0; m < before.meshCount; ++m) {
    const Mesh &a = before.meshes[m], &b = after->meshes[m];
    ASSERT_EQ(std::pair(a.vertexCount, a.indexCount), std::pair(b.vertexCount, b.indexCount));
    EXPECT_EQ(std::memcmp(a.vertices.get(), b.vertices.get(), a.vertexCount * sizeof(Vertex)), 0);
    EXPECT_EQ(std::memcmp(a.normals.get(), b.normals.get(), a.vertexCount * sizeof(Vector3)), 0);
    EXPECT_EQ(std::memcmp(a.indices.get(), b.indices.get(), a.indexCount * sizeof(uint16_t)), 0);
  }
  EXPECT_EQ(written(exportVxm, std::move(*after)), readWholeFile(path));
}

TEST(BinaryFormats, RefuseWhatTheirCountsCannotTell) {
  const struct {
    std::string (*refusal)(const Model& model);
    uint32_t meshes, vertices, indices, materials;
    std::string_view reason;
  } cases[] = {
      {refuseMs3d, 65535, 65534, 65534 * 3 + 2, 65535, ""},
      {refuseMs3d, 0, 65535, 3, 0, "the format holds at most 65534 vertices, the model has 65535"},
      {refuseMs3d, 0, 3, 65535 * 3, 0, "the format holds at most 65534 triangles, the model has 65535"},
      {refuseMs3d, 65536, 0, 0, 0, "the format holds at most 65535 meshes, the model has 65536"},
      {refuseMs3d, 0, 0, 0, 65536, "the format holds at most 65535 materials, the model has 65536"},
      {refuseVxm, 65535, 0, 0, 0, ""},
      {refuseVxm, 0, 0, 0, 0, "nothing to write: the model has no meshes"},
      {refuseVxm, 65536, 0, 0, 0, "the format holds at most 65535 meshes, the model has 65536"},
  };
  for (const auto& c : cases) {
    Model model;
    model.meshCount = c.meshes;
    model.totalVertices = c.vertices;
    model.totalIndices = c.indices;
    model.materials.resize(c.materials + skyMaterialCount);
    model.materialCount = c.materials + skyMaterialCount;
    EXPECT_EQ(c.refusal(model), c.reason);
  }
  // Sizes are told before anything is read: these vertices do not exist.
  Model huge = triangleModel();
  huge.meshes[0].vertexCount = UINT32_MAX / 32;
  EXPECT_EQ(refuseVxm(huge), "the format holds at most 4 GB, the model has more");
}

}  // namespace
}  // namespace facet
