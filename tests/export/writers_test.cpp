#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>

#include "export/binary_blocks.h"
#include "export/written.h"
#include "import/load.h"
#include "support/byte_writer.h"
#include "support/model_builder.h"
#include "support/temp_folder.h"

// What each writer makes of a model. The texts stand beside these tests in golden/, a file for each format.

namespace facet {
namespace {

using testing::HasSubstr;

/// A mesh with values twice over, numbers that are none, an index that has no vertex and a partial triangle,
/// so that its lists are of three sizes; a triangle in which every number differs; and a mesh of nothing but
/// indices, without material.
Model oddModel() {
  return ModelBuilder()
      .material("stone")
      .material("oak&elm", "wood")
      .mesh(1,
            {{0, 0, 0},
             {1e-8F, 0, 0, 0, 0, 1, 0.5F, 1},
             {1, -2, INFINITY, NAN, 0, 0},
             {0, 1, 0},
             {5, 6, 7, 0, 1, 0, 0.5F, 1}},
            {0, 2, 3, 3, 1, 9, 0})
      .mesh(
          0,
          {{1, 2, 3, 0, 1, 0, 0.25F, 0.125F}, {4, 5, 6, 1, 0, 0, 0.5F, 0.25F}, {7, 8, 10, 0, 0, 1, 0.75F, 1}},
          {0, 1, 2})
      .mesh(254, {}, {0, 1, 2})
      .build();
}

Model emptyModel() {
  return ModelBuilder().build();
}

TEST(TextFormats, AreWrittenLikeTheirGoldenFiles) {
  const std::filesystem::path golden = std::filesystem::path(TESTS_FOLDER) / "export/golden";
  for (const std::string name : {"obj", "smd", "ase", "pov", "dae", "dxf", "stl"}) {
    WriteModel& write = *findExportFormat(name)->write;
    EXPECT_EQ(written(write, oddModel(), "odd.obj"), readWholeFile(golden / ("odd." + name)));
    EXPECT_EQ(written(write, emptyModel(), "empty.obj"), readWholeFile(golden / ("empty." + name)));
  }
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

/// A name in a field of this many bytes.
ByteWriter field(std::string_view name, size_t width) {
  return ByteWriter().raw(name).zeros(width - name.size());
}

TEST(ExportMs3d, WritesEveryRecord) {
  using i8 = int8_t;
  using u8 = uint8_t;
  using u16 = uint16_t;
  const std::string longName(200, 'x');
  Model model = oddModel();
  model.materials[1].textureName = longName;
  ByteWriter expected;
  expected.raw("MS3D000000").write(int32_t{4}, u16{8});
  const Vector3 places[] = {{0, 0, 0}, {1e-8F, 0, 0}, {1, -2, INFINITY}, {0, 1, 0},
                            {5, 6, 7}, {1, 2, 3},     {4, 5, 6},         {7, 8, 10}};
  for (const Vector3& at : places) expected.write(u8{0}, at.x, at.y, -at.z, i8{-1}, u8{0});

  expected.write(u16{4});
  const Vector3 up{0, 1, -0.0F}, back{0, 0, -1}, none{0, 0, -0.0F}, noNumber{NAN, 0, -0.0F},
      right{1, 0, -0.0F};
  expected.write(u16{0}, u16{0}, u16{3}, u16{2}, up, up, noNumber).zeros(24).write(u8{0}, u8{0});
  expected.write(u16{0}, u16{3}, u16{9}, u16{1}, up, none, back);
  expected.write(0.0F, 0.0F, 0.5F, 0.0F, 0.0F, 1.0F, u8{0}, u8{0});
  expected.write(u16{0}, u16{5}, u16{7}, u16{6}, up, back, right);
  expected.write(0.25F, 0.75F, 0.5F, 0.125F, 1.0F, 0.25F, u8{0}, u8{1});
  expected.write(u16{0}, u16{8}, u16{10}, u16{9}, none, none, none).zeros(24).write(u8{0}, u8{2});

  expected.write(u16{3}, u8{0}).raw(field("Mesh00000", 32).bytes()).write(u16{2}, u16{0}, u16{1}, u8{1});
  expected.write(u8{0}).raw(field("Mesh00001", 32).bytes()).write(u16{1}, u16{2}, u8{0});
  expected.write(u8{0}).raw(field("Mesh00002", 32).bytes()).write(u16{1}, u16{3}, u8{254});

  expected.write(u16{2});
  for (const auto& [name, texture] : {std::pair<std::string, std::string>{"Material000", "stone"},
                                      {"Material001", longName.substr(0, 127)}}) {
    expected.raw(field(name, 32).bytes()).write(0.3F, 0.3F, 0.3F, 0.0F, 1.0F, 1.0F, 1.0F, 0.0F);
    expected.zeros(36).write(1.0F, i8{0}).raw(field(texture, 128).bytes()).zeros(128);
  }
  expected.write(30.0F, 0.0F, int32_t{30}, u16{0});
  EXPECT_EQ(written(exportMs3d, std::move(model)), expected.bytes());
}

/// The four chunks of a mesh.
ByteWriter visual(const Mesh& mesh, std::string_view texture, std::string_view shader) {
  ByteWriter vertices, indices;
  vertices.write(uint32_t{274}, mesh.vertexCount);
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const Vertex& v = mesh.vertices[i];
    vertices.write(v.x, v.y, v.z, mesh.normals[i], v.u, v.v);
  }
  indices.write(mesh.indexCount);
  for (uint32_t k = 0; k < mesh.indexCount; ++k) indices.write(mesh.indices[k]);
  return ByteWriter()
      .chunk(1, ByteWriter().write(uint8_t{4}, uint8_t{0}, uint16_t{0}, mesh.boundsMin, mesh.boundsMax,
                                   mesh.center, mesh.radius))
      .chunk(2, ByteWriter().text(texture).text(shader))
      .chunk(3, vertices)
      .chunk(4, indices);
}

TEST(ExportVxm, WritesOneMeshAsASingleVisualAndSeveralAsAHierarchy) {
  Model model = ModelBuilder().material("t").grid(0, 250).build();  // more than a block of each array
  const std::string single = visual(model.meshes[0], "t", "default").bytes();
  EXPECT_EQ(written(exportVxm, std::move(model)), single);

  model = oddModel();
  model.center = {1.5F, 2.5F, 3.5F};
  ByteWriter descriptor;
  descriptor.text("test_level\\test_level.object");
  for (int i = 0; i < 3; ++i) descriptor.text("\\\\FACETBENCH\\converter").write(uint32_t{0});
  const ByteWriter expected =
      ByteWriter()
          .chunk(1,
                 ByteWriter().write(uint8_t{4}, uint8_t{1}, uint16_t{0}).zeros(24).write(model.center, 0.0F))
          .chunk(18, descriptor)
          .chunk(9, ByteWriter()
                        .chunk(0, visual(model.meshes[0], "oak&elm", "wood"))
                        .chunk(1, visual(model.meshes[1], "stone", "default"))
                        .chunk(2, visual(model.meshes[2], "", "")));
  EXPECT_EQ(written(exportVxm, std::move(model)), expected.bytes());
}

TEST(ExportVxm, IsReadBackBitForBit) {
  const TempFolder folder;
  Model before =
      ModelBuilder()
          .material("terrain\\grass", "default")
          .material("wall", "models\\model")
          .grid(1, 20)
          .mesh(0, {{1, 2, 3, 0, 1, 0, 0.25F, 0.125F}, {-4, 1e-9F, 6}, {7, 8, 1e7F}}, {0, 1, 2, 2, 1, 0})
          .grid(0, 3)
          .build();
  EXPECT_EQ(exportModel(*findExportFormat("vxm"), folder / "model.vxm", before).error, "");
  const std::unique_ptr<Model> after = loadModel(folder / "model.vxm", {}, nullptr).model;
  ASSERT_TRUE(after);
  ASSERT_EQ(after->meshCount, before.meshCount);
  for (uint32_t m = 0; m < before.meshCount; ++m) {
    const Mesh &a = before.meshes[m], &b = after->meshes[m];
    const Material &material = before.materials[a.materialIndex], &found = after->materials[b.materialIndex];
    EXPECT_EQ(visual(b, found.textureName, found.shaderName).bytes(),
              visual(a, material.textureName, material.shaderName).bytes());
  }
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
