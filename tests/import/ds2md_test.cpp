#include "reading.h"

namespace facet {
namespace {

using testing::ElementsAre;

Reading readFile(const ByteWriter& file) {
  return {readDs2md, modelTypeDs2md, file.bytes()};
}

TEST(Ds2md, ReadsBothLayouts) {
  for (const char* version : {"0.5", "0.6", "0.61", "0.", "v0.6", ""}) {
    SCOPED_TRACE(version);
    const Reading reading =
        readFile(ds2mdFile(version, {builtTriangle("a", "shade"), builtTriangle("a", "shade")}));
    ASSERT_EQ(reading.vertexCounts(), (std::vector<uint32_t>{3, 3}));
    EXPECT_THAT(reading.vertex(1, 2), ElementsAre(7 / 100.0F, 8 / 100.0F, 10 / 100.0F, 0.75F, 1));
    EXPECT_EQ(reading.mesh(1).normals[1], (Vector3{1, 0, 0}));
    EXPECT_THAT(reading.indices(1), ElementsAre(0, 1, 2));
    EXPECT_EQ(reading.mesh(1).boundsMax, (Vector3{7 / 100.0F, 8 / 100.0F, 10 / 100.0F}));
    EXPECT_FLOAT_EQ(reading.mesh(1).radius, std::sqrt(36.0F + 36 + 49) / 200);
    EXPECT_THAT(reading.textures(), ElementsAre("a", "a")) << "materials are not shared";
    EXPECT_EQ(reading.mesh(1).materialIndex, 1u);
    EXPECT_EQ(reading.model.materials[1].shaderName, "shade");
  }
}

TEST(Ds2md, ReducesTexturePathsToNames) {
  using namespace std::string_literals;
  const std::pair<std::string, std::string> table[] = {
      {"art\\textures\\wall_01.dds", "wall_01"},
      {"stone", "stone"},
      {"a.b.c", "a.b"},
      {"art\\.hidden", ".hidden"},  // the byte after a backslash is not looked at
      {"art\\\\stone.raw", "\\stone"},
      {"ends.with\\", ""},
      {"dot.before\\name", "name"},
      {".raw", ""},
      {"", ""},
      {"nul\0inside.raw"s, "nul"},
  };
  for (const auto& [path, name] : table) {
    BuiltMesh mesh = builtTriangle("@");
    std::string bytes = ds2mdFile("0.5", {mesh}).bytes();
    const std::string built = ds2mdText("art\\tex\\@.raw").bytes();
    bytes.replace(bytes.find(built), built.size(), ds2mdText(path).bytes());
    const Reading reading(readDs2md, modelTypeDs2md, bytes);
    EXPECT_THAT(reading.textures(), ElementsAre(name)) << path;
  }
}

TEST(Ds2md, FindsTheNextRecord) {
  using namespace std::string_literals;
  const std::pair<const char*, std::string> gaps[] = {
      {"zeros", std::string(4, '\0')},
      {"none at all", ""},
      {"noise, then zeros", std::string(100000, 'x') + "\0no\0not\0"s + std::string(4, '\0')},
      {"zeros with a cut word behind", std::string(70000, '\0') + "not" + std::string(8, '\0')},
  };
  for (const auto& [name, gap] : gaps) {
    ByteWriter file = ds2mdHead("0.5", 2).write(ds2mdRecord("0.5", builtTriangle("a"))).raw(gap);
    file.write(ds2mdRecord("0.5", builtTriangle("b")));
    EXPECT_THAT(readFile(file).vertexCounts(), ElementsAre(3, 3)) << name;
  }
}

TEST(Ds2md, LooksForTheNextRecordsStartWithinTheRecordBeforeToo) {
  BuiltMesh first = builtTriangle("a");
  first.vertices.back().u = first.vertices.back().v = 0.1F;  // no byte of it is zero
  for (const auto& [gap, meshes] : {std::pair{4, 2u}, {0, 1u}}) {
    ByteWriter file = ds2mdHead("0.5", 2).raw(ds2mdRecord("0.5", first).bytes()).zeros(gap);
    file.raw(ds2mdRecord("0.5", builtTriangle("b", "note")).bytes());
    EXPECT_EQ(readFile(file).model.meshCount, meshes) << gap;
  }
}

TEST(Ds2md, BoundsTheMemoryOfRecordsThatAreReadAgainAndAgain) {
  // The way back from the last word finds this record's own start each time.
  const auto text = [](uint16_t length) { return ByteWriter().write(length).raw(std::string(length, 'x')); };
  ByteWriter file = ds2mdHead("0.5", 255);
  for (const uint16_t length : {5, 5, 5, 257, 257, 257}) file.raw(text(length).bytes());
  constexpr uint32_t indexCount = 0x01010101;
  file.raw(std::string(24 + 9, '?')).write(indexCount).raw(std::string(2 * indexCount, '?'));
  file.write(uint16_t{0x0101}).raw(std::string(32 * 0x0101, '?')).raw("note");
  const Reading reading = readFile(file);
  EXPECT_GT(reading.model.meshCount, 1u);
  EXPECT_LT(reading.model.meshCount, 10u);
  EXPECT_THAT(reading.model.warnings, ElementsAre(testing::HasSubstr("records overlap")));
}

TEST(Ds2md, ReadsUntilItsCountIsReached) {
  const std::string record = ds2mdRecord("0.5", builtTriangle()).bytes();
  const std::pair<uint8_t, size_t> table[] = {{0, 1}, {1, 1}, {2, 2}, {9, 3}};
  for (const auto& [count, meshes] : table) {
    ByteWriter file = ds2mdHead("0.5", count);
    for (int i = 0; i < 3; ++i) file.raw(record).zeros(4);
    EXPECT_EQ(readFile(file).model.meshCount, meshes);
  }
}

TEST(Ds2md, ComesThroughMalformedFiles) {
  constexpr uint32_t most = 0xFFFFFFFF;
  for (const std::string version : {"0.5", "0.6"}) {
    const std::string good = ds2mdFile(version, {builtTriangle(), builtTriangle()}).bytes();
    const size_t toCount = version == "0.5" ? 7 + 33 : 7 + 4;  // from a record's third note
    const size_t first = good.find("three") + toCount, second = good.rfind("three") + toCount;
    expectMalformed(readDs2md, modelTypeDs2md,
                    {
                        {"cut in the head", good.substr(0, 17), "cut off in its head"},
                        {"version past the end", patched(good, 16, uint16_t{0xFFFF}), "cut off in its head"},
                        {"first count", patched(good, first, most), "cut off in its first mesh"},
                        {"second record", patched(good, second, most), "", {3}},
                        {"a note and nothing else", good + "note", "", {3, 3}},
                    });
    expectCutsSurvived(readDs2md, modelTypeDs2md, good);
  }
}

}  // namespace
}  // namespace facet
