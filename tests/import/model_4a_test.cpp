#include "import/load.h"
#include "reading.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::ElementsAre;

Reading readMesh(const ByteWriter& file) {
  return {readModel4a, modelType4a, file.bytes()};
}

ByteWriter geometry(const BuiltMesh& mesh) {
  return ByteWriter().write(nameChunk(mesh), model4aVertices(mesh), model4aIndices(mesh, 1));
}

TEST(Model4a, ReadsPlainVertices) {
  const Reading reading = readMesh(model4aMeshFile({builtTriangle()}));
  EXPECT_THAT(reading.vertex(0, 2), ElementsAre(7, 8, 10, 0.75F, 1));
  EXPECT_THAT(reading.indices(0), ElementsAre(0, 1, 2));
  EXPECT_EQ(reading.mesh(0).boundsMin, (Vector3{1, 2, 3}));
  EXPECT_TRUE(reading.desktop.status.empty());
}

TEST(Model4a, ReadsPackedVerticesBehindTheirLead) {
  BuiltMesh mesh;
  mesh.vertices = {{1, -1, 0.5F, 0, 0, 0, 0.5F, -2}};
  for (const uint8_t lead : {0, 1, 255}) {
    const Reading reading = readMesh(nameChunk(mesh).write(model4aPackedVertices(mesh, lead)));
    ASSERT_EQ(reading.vertexCounts(), std::vector<uint32_t>{1});
    EXPECT_THAT(reading.vertex(0, 0), ElementsAre(1, -1, 0.5F, 0.5F, -2));
    EXPECT_EQ(reading.mesh(0).normals[0], (Vector3{0, 0, 0})) << "of no triangle";
  }
}

TEST(Model4a, ALeadAbove65535LimitsTheIndices) {
  BuiltMesh mesh = builtTriangle();
  mesh.indices.assign(60, 1);
  const std::pair<uint32_t, uint32_t> table[] = {{0, 60},       {65535, 60},   {65536, 0},
                                                 {0x20010, 48}, {0x10064, 60}, {0xFFFFFFFF, 60}};
  for (const auto& [lead, kept] : table) {
    const Reading reading = readMesh(nameChunk(mesh).write(model4aIndices(mesh, lead)));
    EXPECT_EQ(reading.mesh(0).indexCount, kept) << lead;
  }
}

TEST(Model4a, WalksContainers) {
  const auto child = [](const char* name) { return geometry(builtTriangle(name)); };
  // Children end the file; those of a container with a prefix are top-level chunks, at any depth.
  ByteWriter file = ByteWriter().write(15u, 0u).raw(filler(16).bytes()).raw(child("top").bytes());
  file.write(15u, 0xFFFFFFFFu).raw(filler(16).bytes());
  file.chunk(9,
             ByteWriter().chunk(0, child("a")).chunk(1, filler(9)).chunk(2, child("b")).chunk(4, child("c")));
  file.raw(child("after").bytes());
  EXPECT_THAT(readMesh(file).textures(), ElementsAre("top", "a", "b"));
}

TEST(Model4a, SharesMaterialsAndPassesOverEarlyGeometry) {
  const BuiltMesh mesh = builtTriangle();
  const Reading reading =
      readMesh(model4aVertices(mesh).write(model4aIndices(mesh, 1), geometry(mesh), nameChunk(mesh)));
  EXPECT_EQ(reading.vertexCounts(), (std::vector<uint32_t>{3, 0}));
  EXPECT_EQ(reading.model.materialCount, 1u);
}

/// A model with a name list, and mesh files beside its "dynamic" folder.
class Model4aList : public testing::Test {
 protected:
  void SetUp() override {
    folder_.write("a.mesh", model4aMeshFile({builtTriangle("a")}).bytes());
    folder_.write("Props/B.Mesh", model4aMeshFile({builtTriangle("b")}).bytes());
    folder_.write("loop.mesh", model4aListFile("loop,a").bytes());
  }
  LoadResult loadList(std::string_view names, const std::string& under = "dynamic/units/m.model") {
    return loadModel(folder_.write(under, model4aListFile(names).bytes()), {}, nullptr);
  }
  std::string texturesOf(const LoadResult& result) {
    std::string names;
    for (const Mesh& mesh : result.model->meshes)
      names += result.model->materials[mesh.materialIndex].textureName + ' ';
    return names;
  }
  TempFolder folder_;
};

TEST_F(Model4aList, OpensTheListedMeshFiles) {
  EXPECT_EQ(texturesOf(loadList("a,props\\b,,props/b,a,")), "a b b a ");
  EXPECT_EQ(texturesOf(loadList("")), "");
  EXPECT_EQ(texturesOf(loadList("a", "dynamic/dynamic/m.model")), "a ") << "the first folder counts";
}

TEST_F(Model4aList, EndsWhenListsNameEachOther) {
  EXPECT_EQ(texturesOf(loadList("loop,a,loop")), "a ");
}

TEST_F(Model4aList, NamesTheMissingFile) {
  EXPECT_EQ(loadList("a,gone\\c,a").error, "cannot open the mesh file gone\\c.mesh: no such file");
  EXPECT_EQ(loadList("two\nlines").error, "cannot open the mesh file two?lines.mesh: no such file");
  EXPECT_THAT(loadList("a", "static/m.model").error, testing::HasSubstr("cannot open the mesh file a.mesh"));
}

TEST(Model4a, ComesThroughMalformedFiles) {
  const BuiltMesh mesh = builtTriangle();
  const std::string material = nameChunk(mesh).bytes(), plain = model4aVertices(mesh).bytes(),
                    packed = model4aPackedVertices(mesh, 1).bytes();
  constexpr uint32_t most = 0xFFFFFFFF;
  expectMalformed(readModel4a, modelType4a,
                  {
                      {"plain count", material + patched(plain, 12, most), "", {3}},
                      {"plain size", material + patched(plain, 4, 4u), "", {0}},
                      {"packed count", material + patched(packed, 8 + 62, most), "", {3}},
                      {"packed lead", material + patched(packed, 8, uint8_t{255}), "", {0}},
                      {"packed size", material + patched(packed, 4, most), "", {0}},
                      {"empty list", ByteWriter().chunk(16, {}).bytes(), "", {}},
                      {"list past the end", ByteWriter().write(16u, most, 0u).raw("a").bytes(), "a.mesh"},
                  });
  expectCutsSurvived(readModel4a, modelType4a, model4aMeshFile({mesh, mesh}).bytes());
  expectCutsSurvived(readModel4a, modelType4a, model4aMeshFile({mesh}, true).bytes());
  expectCutsSurvived(readModel4a, modelType4a, model4aListFile("a,b").bytes());
}

}  // namespace
}  // namespace facet
