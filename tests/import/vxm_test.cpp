#include <numeric>

#include "reading.h"

namespace facet {
namespace {

using testing::ElementsAre;

uint32_t typeOf(int version) {
  return version == 3 ? modelTypeVxm3 : modelTypeVxm4;
}

Reading readVersion(int version, const ByteWriter& file) {
  return {readVxm, typeOf(version), file.bytes()};
}

TEST(Vxm, ReadsEveryVertexFormat) {
  const BuiltMesh triangle = builtTriangle();
  const std::pair<int, std::vector<uint32_t>> formats[] = {{3, {1, 0x12071980, 0x240E3300, 0x112}},
                                                           {4, {1, 0x12071980, 2, 0x240E3300, 3, 4, 0x112}}};
  for (const auto& [version, codes] : formats) {
    for (const uint32_t code : codes) {
      SCOPED_TRACE(testing::Message() << "version " << version << ", format " << code);
      const Reading reading = readVersion(version, vxmVisual(version, triangle, code));
      ASSERT_EQ(reading.vertexCounts(), std::vector<uint32_t>{3});
      for (size_t i = 0; i < 3; ++i) {
        const BuiltVertex& v = triangle.vertices[i];
        EXPECT_THAT(reading.vertex(0, i), ElementsAre(v.x, v.y, v.z, v.u, v.v));
        EXPECT_EQ(reading.mesh(0).normals[i], (Vector3{v.nx, v.ny, v.nz}));
      }
      EXPECT_THAT(reading.indices(0), ElementsAre(0, 1, 2));
      EXPECT_EQ(reading.mesh(0).boundsMax, (Vector3{7, 8, 10}));
      EXPECT_EQ(reading.model.center, (Vector3{4, 5, 6.5F}));
    }
  }
}

TEST(Vxm, GivesZerosForAnUnknownVertexFormat) {
  for (const uint32_t code : {2u, 3u, 4u, 99u}) {
    const Reading reading = readVersion(3, vxmVisual(3, builtTriangle(), code));
    ASSERT_EQ(reading.vertexCounts(), std::vector<uint32_t>{3});
    EXPECT_THAT(reading.vertex(0, 2), ElementsAre(0, 0, 0, 0, 0));
    EXPECT_EQ(reading.mesh(0).normals[2], (Vector3{0, 0, 0}));
  }
}

TEST(Vxm, SharesMaterialsByBothNames) {
  const Reading reading =
      readVersion(4, vxmHierarchy(4, {builtTriangle("stone", "a"), builtTriangle("stone", "b"),
                                      builtTriangle("stone", "a"), builtTriangle("Stone", "a")}));
  std::vector<uint32_t> materials;
  for (const Mesh& mesh : reading.model.meshes) materials.push_back(mesh.materialIndex);
  EXPECT_THAT(materials, ElementsAre(0, 1, 0, 2));
  EXPECT_THAT(reading.desktop.status,
              ElementsAre("Prefetching material #0 'stone' 'a'", "Prefetching material #1 'stone' 'b'",
                          "Prefetching material #2 'Stone' 'a'"));
}

TEST(Vxm, CountsChildrenThroughTheWholeFile) {
  const auto visual = [](const char* name) { return vxmVisual(4, builtTriangle(name)); };
  // The child after the gap is taken for a top-level chunk, and the next container goes on with 2.
  const ByteWriter gap = ByteWriter().chunk(0, visual("a")).chunk(1, visual("b")).chunk(3, visual("lost"));
  const ByteWriter more = ByteWriter().chunk(2, visual("c"));
  const Reading reading = readVersion(4, vxmHeader(4, {}).chunk(9, gap).chunk(9, more));
  EXPECT_THAT(reading.textures(), ElementsAre("a", "b", "c"));
}

TEST(Vxm, OpensAMeshWithItsNamesOnly) {
  const BuiltMesh triangle = builtTriangle();
  ByteWriter file = vxmVertices(4, 0x112, triangle);  // before any mesh: passed over
  BuiltMesh wide = triangle;
  wide.vertices[0].x = -9;
  file.write(vxmHeader(4, wide), vxmVisual(4, triangle));
  const Reading reading = readVersion(4, file);
  ASSERT_EQ(reading.vertexCounts(), std::vector<uint32_t>{3});
  EXPECT_EQ(reading.mesh(0).boundsMin, (Vector3{1, 2, 3})) << "the second header took over the slot";
  EXPECT_EQ(reading.model.center, (Vector3{0, 0, 0})) << "no header stands at the start of the file";
}

TEST(Vxm, PassesOverWhatItDoesNotKnow) {
  const BuiltMesh triangle = builtTriangle();
  ByteWriter child =
      vxmHeader(4, triangle).chunk(5, filler(7)).chunk(7, filler(24)).write(nameChunk(triangle));
  child.chunk(9, ByteWriter().chunk(0, vxmVisual(4, builtTriangle("nested"))));
  child.write(vxmVertices(4, 1, triangle)).chunk(0xFFFFFFFF, {});
  const Reading reading = readVersion(4, vxmHeader(4, {}).chunk(9, ByteWriter().chunk(0, child)));
  EXPECT_THAT(reading.textures(), ElementsAre("stone"));
  EXPECT_EQ(reading.vertexCounts(), std::vector<uint32_t>{3});
}

TEST(Vxm, KeepsTheFirstLevelOfDetail) {
  BuiltMesh mesh = builtTriangle();
  mesh.indices.resize(90);
  std::iota(mesh.indices.begin(), mesh.indices.end(), uint16_t{0});
  const std::tuple<uint32_t, uint16_t, std::span<const uint16_t>> table[] = {
      {30, 10, std::span(mesh.indices).subspan(30, 30)},
      {3, 28, std::span(mesh.indices).subspan(3, 84)},
      {60, 20, std::span(mesh.indices).subspan(60, 30)},
      {0xFFFFFFFF, 1, {}}};
  for (const auto& [first, triangles, kept] : table) {
    const Reading reading = readVersion(4, vxmVisual(4, mesh).write(vxmDetailLevel(first, triangles)));
    EXPECT_THAT(reading.indices(0), testing::ElementsAreArray(kept)) << first;
  }
}

TEST(Vxm, TakesTheCenterOfVersion3FromTheFirstBoxAsideOfZero) {
  ByteWriter file;
  for (const float x : {0.0F, 2.5F, 7.0F})
    file.write(vxmHeader(3, {}), nameChunk(builtTriangle()), vxmBounds({x - 3, 0, 0}, {x + 3, 4, 0}));
  const Reading reading = readVersion(3, file);
  EXPECT_EQ(reading.model.center, (Vector3{2.5F, 2, 0}));
  EXPECT_FLOAT_EQ(reading.mesh(0).radius, std::sqrt(52.0F) / 2);
}

TEST(Vxm, ComesThroughMalformedFiles) {
  const BuiltMesh triangle = builtTriangle();
  const std::string names = nameChunk(triangle).bytes(), vertices = vxmVertices(4, 0x112, triangle).bytes();
  const std::string start = vxmHeader(4, triangle).bytes() + names, indices = vxmIndices(4, triangle).bytes();
  const std::string noEnd = ByteWriter().chunk(2, ByteWriter().raw("name without end")).bytes();
  expectMalformed(
      readVxm, modelTypeVxm4,
      {
          {"only a header", vxmHeader(4, {}).bytes(), "", {}},
          {"vertex count of 2^32-1", start + patched(vertices, 12, 0xFFFFFFFFu), "", {3}},
          {"chunk size of 2^32-1", start + patched(vertices, 4, 0xFFFFFFFFu), "", {0}},
          {"chunk too small for its head", start + patched(vertices, 4, 7u), "", {0}},
          {"index count of 2^32-1", start + patched(indices, 8, 0xFFFFFFFFu) + vertices, "", {3}},
          {"names without an end", vxmHeader(4, {}).bytes() + noEnd + vertices, "", {3}},
          {"header of 4 bytes in version 4", vxmHeader(3, {}).bytes() + names + vertices, "", {3}},
          {"container without children", vxmHeader(4, {}).chunk(9, {}).bytes() + names, "", {0}},
      });
  for (const int version : {3, 4})
    expectCutsSurvived(readVxm, typeOf(version), vxmHierarchy(version, {triangle, triangle}).bytes());
}

}  // namespace
}  // namespace facet
