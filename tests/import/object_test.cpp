#include "reading.h"

namespace facet {
namespace {

using testing::ElementsAre;

/// Four points in a square; two faces, each corner with the reference of its point.
ObjectMesh square(const std::string& surface = "skin") {
  BuiltMesh mesh;
  for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}})
    mesh.vertices.push_back({float(x), float(y), 0, 0, 1, 0, float(x) / 2, float(y) / 4});
  mesh.indices = {0, 1, 2, 2, 1, 3};
  return objectMesh(mesh, surface);
}

Reading readFile(const std::vector<ObjectMesh>& meshes, const std::vector<ObjectSurface>& surfaces,
                 uint32_t layout = 0x907, uint32_t mapLayout = 0x1012) {
  return {readObject, modelTypeObject, objectFile(meshes, surfaces, layout, mapLayout).bytes()};
}

TEST(Object, ReadsEveryLayout) {
  for (const uint32_t layout : {0x905u, 0x906u, 0x907u}) {
    for (const uint32_t mapLayout : {0x1011u, 0x1012u}) {
      SCOPED_TRACE(testing::Message() << std::hex << layout << ' ' << mapLayout);
      const Reading reading =
          readFile({square()}, {{"other", "o", "none"}, {"skin", "shader", "stone"}}, layout, mapLayout);
      ASSERT_EQ(reading.vertexCounts(), std::vector<uint32_t>{4});
      EXPECT_THAT(reading.vertex(0, 3), ElementsAre(1, 1, 0, 0.5F, 0.25F));
      EXPECT_THAT(reading.indices(0), ElementsAre(0, 1, 2, 2, 1, 3));
      EXPECT_EQ(reading.mesh(0).normals[0], (Vector3{0, 0, 1}));
      EXPECT_EQ(reading.mesh(0).boundsMax, (Vector3{1, 1, 0}));
      EXPECT_EQ(reading.mesh(0).materialIndex, 1u);
      EXPECT_THAT(reading.desktop.status,
                  ElementsAre("Compacting mesh #0 ...", "Prefetching material #0 'o' 'none'",
                              "Prefetching material #1 'shader' 'stone'"));
    }
  }
}

TEST(Object, MakesAMeshOfEverySurface) {
  ObjectMesh two = square();
  two.surfaces = {{"left", {0}}, {"empty", {}}, {"right", {1, 1}}};
  const Reading reading =
      readFile({two, square("left")}, {{"right", "s", "t"}, {"left", "s", "t"}, {"empty", "s", "u"}});
  EXPECT_EQ(reading.vertexCounts(), (std::vector<uint32_t>{3, 0, 3, 4}));
  EXPECT_THAT(reading.indices(2), ElementsAre(0, 1, 2, 0, 1, 2)) << "numbered anew in each mesh";
  std::vector<uint32_t> materials;
  for (const Mesh& mesh : reading.model.meshes) materials.push_back(mesh.materialIndex);
  EXPECT_THAT(materials, ElementsAre(0, 1, 0, 0));
  EXPECT_THAT(reading.desktop.status,
              ElementsAre("Compacting mesh #0 ...", "Compacting mesh #1 ...", "Compacting mesh #2 ...",
                          "Compacting mesh #3 ...", "Prefetching material #0 's' 't'",
                          "Prefetching material #1 's' 'u'"));
}

TEST(Object, TheLastSurfaceOfANameCountsAndUnlistedOnesGetTheFirst) {
  const Reading reading = readFile({square("twice"), square("unlisted")},
                                   {{"first", "s", "a"}, {"twice", "s", "b"}, {"twice", "s", "c"}});
  EXPECT_EQ(reading.mesh(0).materialIndex, 2u);
  EXPECT_EQ(reading.mesh(1).materialIndex, 0u);
}

TEST(Object, KeepsReferencesWithoutAnEntry) {
  ObjectMesh mesh = square();
  mesh.references.resize(2);
  std::string bytes = objectFile({mesh}, {}).bytes();
  bytes = patched(bytes, bytes.find(ByteWriter().write(0x1008u).bytes()) + 8, 4u);
  const Reading reading(readObject, modelTypeObject, bytes);
  EXPECT_EQ(reading.vertexCounts(), std::vector<uint32_t>{4});
  EXPECT_THAT(reading.vertex(0, 3), ElementsAre(1, 1, 0, 0, 0));
}

TEST(Object, ComparesLongSurfaceNamesAsFarAsTheyFit) {
  const std::string fits(258, 'n');
  const Reading reading = readFile({square(fits + "one"), square(fits.substr(1) + "one")},
                                   {{"other", "s", "a"}, {fits + "two", "s", "b"}});
  EXPECT_EQ(reading.mesh(0).materialIndex, 1u);
  EXPECT_EQ(reading.mesh(1).materialIndex, 0u);
}

TEST(Object, MergesVerticesOfEqualBitsOnly) {
  ObjectMesh mesh = square();
  mesh.points.push_back({-0.0F, 0, 0});  // equal to the first in value, not in bits
  mesh.points.push_back({0, 0, 0});
  mesh.references.push_back({{0, 0}});
  mesh.references.push_back({{0, 0}});
  mesh.faces.push_back({{{4, 4}, {5, 5}, {0, 0}}});
  mesh.surfaces[0].second = {2};
  const Reading reading = readFile({mesh}, {});
  EXPECT_EQ(reading.vertexCounts(), std::vector<uint32_t>{2});
  EXPECT_THAT(reading.indices(0), ElementsAre(0, 1, 1));
}

TEST(Object, TakesTextureCoordinatesFromTheFirstPairOnly) {
  ObjectMesh mesh = square();
  mesh.maps = {{{9, 9, 9}, 1, 0},      // three numbers of another kind
               {{0.5F, 0.75F}, 0, 1},  // one pair
               {{0.1F, 0.2F}, 0, 0}};
  mesh.references = {{{1, 0}, {2, 0}}, {{0, 0}}, {{1, 1}}, {}};
  const Reading reading = readFile({mesh}, {});
  ASSERT_EQ(reading.vertexCounts(), std::vector<uint32_t>{4});
  EXPECT_THAT(reading.vertex(0, 0), ElementsAre(0, 0, 0, 0.5F, 0.75F));
  EXPECT_THAT(reading.vertex(0, 1), ElementsAre(1, 0, 0, 0, 0)) << "a map of another type";
  EXPECT_THAT(reading.vertex(0, 2), ElementsAre(0, 1, 0, 0, 0)) << "an entry that is not there";
  EXPECT_THAT(reading.vertex(0, 3), ElementsAre(1, 1, 0, 0, 0)) << "no pair";
}

TEST(Object, StopsAtElevenPairs) {
  ObjectMesh mesh = square();
  mesh.references[0] = ObjectReference(10, {0, 0});
  EXPECT_EQ(readFile({mesh}, {}).vertexCounts(), std::vector<uint32_t>{4});
  mesh.references[3] = ObjectReference(11, {0, 0});
  const Reading reading = readFile({mesh}, {});
  EXPECT_EQ(reading.error, "too many submaps");
  EXPECT_THAT(reading.desktop.boxes,
              ElementsAre(RecordingDesktop::Box{"too many submaps", "ASSERT", 0x1010}));
}

/// Faces whose corners are the references 0, 1, 2 ... of `count` different points.
ObjectMesh manyCorners(uint32_t count) {
  ObjectMesh mesh;
  mesh.references.resize(count);
  mesh.surfaces = {{"skin", {}}};
  for (uint32_t i = 0; i < count; ++i) mesh.points.push_back({float(i), 0, 0});
  for (uint32_t i = 0; i < count / 3; ++i) {
    mesh.faces.push_back({{{3 * i, 3 * i}, {3 * i + 1, 3 * i + 1}, {3 * i + 2, 3 * i + 2}}});
    mesh.surfaces[0].second.push_back(i);
  }
  return mesh;
}

TEST(Object, TheVertexThatFillsAMeshStaysAndItsIndexDoesNot) {
  const Reading full = readFile({manyCorners(65535)}, {});
  EXPECT_EQ(full.mesh(0).vertexCount, 65535u);
  EXPECT_EQ(full.mesh(0).indexCount, 65534u);
  const Reading below = readFile({manyCorners(65532)}, {});
  EXPECT_EQ(below.mesh(0).vertexCount, 65532u);
  EXPECT_EQ(below.mesh(0).indexCount, 65532u);
}

TEST(Object, IndicesOfReferencesAre16BitsWide) {
  ObjectMesh mesh = manyCorners(65541);
  mesh.surfaces[0].second = {21846, 0};  // references 65538 ... 65540 become 2, 3, 4
  const Reading reading = readFile({mesh}, {});
  EXPECT_THAT(reading.indices(0), ElementsAre(0, 1, 2, 3, 4, 0));
  EXPECT_THAT(reading.vertex(0, 0), ElementsAre(2, 0, 0, 0, 0));
}

TEST(Object, FindsItsChunksAmongOthers) {
  const auto child = [](const char* surface) { return objectMeshChunks(square(surface)); };
  const ByteWriter first = ByteWriter().chunk(7, filler(1)).chunk(0, child("lost"));
  const ByteWriter second = ByteWriter().chunk(0, child("a")).chunk(1, child("b"));
  const ByteWriter third = ByteWriter().chunk(2, child("c"));
  ByteWriter data;
  data.chunk(0x910, first).chunk(0x911, filler(5)).chunk(0x910, second).chunk(0x911, filler(0));
  data.chunk(0x910, third).raw(objectSurfaces({{"a", "s", "t"}}).bytes());
  data.chunk(0x910, ByteWriter().chunk(3, child("after the surfaces")));
  const Reading reading(readObject, modelTypeObject, ByteWriter().chunk(0x7777, data).bytes());
  EXPECT_EQ(reading.vertexCounts(), (std::vector<uint32_t>{4, 4, 4}));
}

TEST(Object, ComesThroughMalformedFiles) {
  const std::string good = objectFile({square()}, {{"skin", "s", "t"}}).bytes();
  const auto chunkAt = [&](uint32_t id) { return good.find(ByteWriter().write(id).bytes()); };
  const auto count = [&](uint32_t id, auto value) { return patched(good, chunkAt(id) + 8, value); };
  const auto size = [&](uint32_t id, uint32_t value) { return patched(good, chunkAt(id) + 4, value); };
  constexpr uint32_t most = 0xFFFFFFFF;
  ObjectMesh wild = square();
  wild.faces[0] = {{{99, 0}, {1, 99}, {most, most}}};
  wild.surfaces[0].second = {0, 1, 2, most};
  wild.references[2] = {{77, most}};

  expectMalformed(readObject, modelTypeObject,
                  {
                      {"only the outer header", ByteWriter().chunk(0x7777, {}).bytes(), "", {}},
                      {"point count", count(0x1005, most), "", {4}},
                      {"face count", count(0x1006, most), "", {4}},
                      {"reference count", count(0x1008, most), "", {4}},
                      {"no references", count(0x1008, 0u), "", {0}},
                      {"surface count of a mesh", count(0x1009, uint16_t{0xFFFF}), "", {4}},
                      {"map count", count(0x1012, most), "", {4}},
                      {"map count 0", count(0x1012, 0u), "", {4}},
                      {"surface count", count(0x907, most), "", {4}},
                      {"points past the end", size(0x1005, most), "", {}},
                      {"face lists of size 0", size(0x1009, 0), "", {}},
                      {"maps past the end", size(0x1012, most), "", {0}},
                      {"surfaces past the end", size(0x907, most), "", {4}},
                      {"indices out of range", objectFile({wild}, {}).bytes(), "", {4}},
                  });
  expectCutsSurvived(readObject, modelTypeObject, good);
}

}  // namespace
}  // namespace facet
