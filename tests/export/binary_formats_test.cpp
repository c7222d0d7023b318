#include <gmock/gmock.h>

#include "export/binary_blocks.h"
#include "export/written.h"
#include "support/byte_writer.h"
#include "support/model_builder.h"

namespace facet {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

ByteWriter& putName(ByteWriter& bytes, std::string_view name, size_t width) {
  return bytes.raw(name).zeros(width - name.size());
}

/// Two materials, and two meshes of 3 vertices; every vertex of the second has its number in its values.
Model twoMeshes() {
  return ModelBuilder()
      .material("stone", "s")
      .material("oak", "wood")
      .mesh(1, {{1, 2, 3, 0.5F, 1, 2, 0.25F, 0.125F}, {4, 5, 6}, {7, 8, 9}}, {0, 1, 2})
      .mesh(0, {{10, 0, 0}, {11, 0, 0}, {12, 0, 0}}, {2, 1, 0, 0, 1, 9})
      .build();
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

TEST(ExportMs3d, WritesEveryRecord) {
  ByteWriter expected;
  expected.raw("MS3D000000").write(int32_t{4}, uint16_t{6});
  const auto vertex = [&](float x, float y, float z) {
    expected.write(uint8_t{0}, x, y, -z, int8_t{-1}, uint8_t{0});
  };
  vertex(1, 2, 3), vertex(4, 5, 6), vertex(7, 8, 9), vertex(10, 0, 0), vertex(11, 0, 0), vertex(12, 0, 0);

  expected.write(uint16_t{3});
  const auto normal = [&](float x, float y, float z) { expected.write(x, y, -z); };
  expected.write(uint16_t{0}, uint16_t{0}, uint16_t{2}, uint16_t{1});
  normal(0.5F, 1, 2), normal(0, 1, 0), normal(0, 1, 0);
  expected.write(0.25F, 0.0F, 0.0F, 0.125F, 0.0F, 0.0F, uint8_t{0}, uint8_t{0});
  expected.write(uint16_t{0}, uint16_t{5}, uint16_t{3}, uint16_t{4});
  normal(0, 1, 0), normal(0, 1, 0), normal(0, 1, 0);
  expected.zeros(24).write(uint8_t{0}, uint8_t{1});
  expected.write(uint16_t{0}, uint16_t{3}, uint16_t{12}, uint16_t{4});  // index 9 has no vertex
  normal(0, 1, 0), normal(0, 0, 0), normal(0, 1, 0);
  expected.zeros(24).write(uint8_t{0}, uint8_t{1});

  expected.write(uint16_t{2}, uint8_t{0});
  putName(expected, "Mesh00000", 32).write(uint16_t{1}, uint16_t{0}, int8_t{1}, uint8_t{0});
  putName(expected, "Mesh00001", 32).write(uint16_t{2}, uint16_t{1}, uint16_t{2}, int8_t{0});

  expected.write(uint16_t{2});
  for (const auto& [name, texture] : {std::pair{"Material000", "stone"}, {"Material001", "oak"}}) {
    putName(expected, name, 32).write(0.3F, 0.3F, 0.3F, 0.0F, 1.0F, 1.0F, 1.0F, 0.0F);
    expected.zeros(36).write(1.0F, int8_t{0});
    putName(expected, texture, 128).zeros(128);
  }
  expected.write(30.0F, 0.0F, int32_t{30}, uint16_t{0});
  EXPECT_EQ(written(exportMs3d, twoMeshes()), expected.bytes());
}

TEST(ExportMs3d, CutsLongTextureNames) {
  const std::string text = written(exportMs3d, ModelBuilder().material(std::string(200, 'x')).build());
  EXPECT_EQ(text.size(), 16U + 2 + 2 + 2 + 361 + 14);
  EXPECT_THAT(text, HasSubstr(std::string(127, 'x') + '\0'));
}

TEST(ExportMs3d, RefusesMoreThanItsCountsHold) {
  const struct {
    uint32_t vertices, indices;
    std::string_view reason;
  } cases[] = {
      {65534, 65534 * 3 + 2, ""},
      {65535, 3, "the format holds at most 65534 vertices, the model has 65535"},
      {3, 65535 * 3, "the format holds at most 65534 triangles, the model has 65535"},
  };
  for (const auto& [vertices, indices, reason] : cases) {
    Model model;
    model.totalVertices = vertices;
    model.totalIndices = indices;
    EXPECT_EQ(refuseMs3d(model), reason);
  }
  Model model;
  model.meshCount = 65536;
  EXPECT_EQ(refuseMs3d(model), "the format holds at most 65535 meshes, the model has 65536");
}

/// The four chunks of mesh `m` of twoMeshes().
ByteWriter visual(const Mesh& mesh, std::string_view texture, std::string_view shader) {
  ByteWriter chunks;
  chunks.chunk(1, ByteWriter().write(uint8_t{4}, uint8_t{0}, uint16_t{0}, mesh.boundsMin, mesh.boundsMax,
                                     mesh.center, mesh.radius));
  chunks.chunk(2, ByteWriter().text(texture).text(shader));
  ByteWriter vertices;
  vertices.write(uint32_t{274}, mesh.vertexCount);
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const Vertex& v = mesh.vertices[i];
    vertices.write(v.x, v.y, v.z, mesh.normals[i], v.u, v.v);
  }
  chunks.chunk(3, vertices);
  ByteWriter indices;
  indices.write(mesh.indexCount);
  for (uint32_t k = 0; k < mesh.indexCount; ++k) indices.write(mesh.indices[k]);
  return chunks.chunk(4, indices);
}

TEST(ExportVxm, WritesOneMeshAsASingleVisual) {
  const Model model = triangleModel();
  EXPECT_EQ(written(exportVxm, triangleModel()), visual(model.meshes[0], "stone", "default").bytes());
}

TEST(ExportVxm, WritesSeveralMeshesAsAHierarchy) {
  Model model = twoMeshes();
  model.center = {1.5F, 2.5F, 3.5F};
  ByteWriter expected, descriptor, children;
  expected.chunk(1,
                 ByteWriter().write(uint8_t{4}, uint8_t{1}, uint16_t{0}).zeros(24).write(model.center, 0.0F));
  descriptor.text("test_level\\test_level.object");
  for (int i = 0; i < 3; ++i) descriptor.text("\\\\FACETBENCH\\converter").write(uint32_t{0});
  ASSERT_EQ(descriptor.size(), 110U);
  expected.chunk(18, descriptor);
  children.chunk(0, visual(model.meshes[0], "oak", "wood")).chunk(1, visual(model.meshes[1], "stone", "s"));
  expected.chunk(9, children);
  EXPECT_EQ(written(exportVxm, std::move(model)), expected.bytes());
}

TEST(ExportVxm, KeepsLargeArraysWhole) {
  Model model = ModelBuilder().material("t").grid(0, 250).build();
  const std::string expected = visual(model.meshes[0], "t", "default").bytes();
  EXPECT_EQ(written(exportVxm, std::move(model)), expected);
}

TEST(ExportVxm, RefusesWhatItsHeaderCannotTell) {
  EXPECT_EQ(refuseVxm(ModelBuilder().build()), "nothing to write: the model has no meshes");
  EXPECT_THAT(refuseVxm(triangleModel()), IsEmpty());
  Model model;
  model.meshCount = 65536;
  EXPECT_EQ(refuseVxm(model), "the format holds at most 65535 meshes, the model has 65536");
  // Sizes are told before anything is read: these vertices do not exist.
  model = triangleModel();
  model.meshes[0].vertexCount = UINT32_MAX / 32;
  EXPECT_EQ(refuseVxm(model), "the format holds at most 4 GB, the model has more");
}

}  // namespace
}  // namespace facet
