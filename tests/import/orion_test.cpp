#include "reading.h"

namespace facet {
namespace {

using testing::ElementsAre;
using namespace std::string_literals;

TEST(Orion, ReadsItsMesh) {
  for (const uint32_t magic : {257u, 258u}) {
    const Reading reading(readOrion, magic, orionFile(builtTriangle(), "", magic).bytes());
    ASSERT_EQ(reading.vertexCounts(), std::vector<uint32_t>{3});
    EXPECT_THAT(reading.vertex(0, 2), ElementsAre(7 / 100.0F, 8 / 100.0F, 10 / 100.0F, 0.75F, 1));
    EXPECT_EQ(reading.mesh(0).normals[1], (Vector3{1, 0, 0}));
    EXPECT_THAT(reading.indices(0), ElementsAre(2, 1, 0));
    EXPECT_EQ(reading.mesh(0).boundsMax, (Vector3{0, 0, 0}));
    EXPECT_EQ(reading.model.materials.at(0).shaderName, "default");
  }
}

TEST(Orion, FindsTheTextureNameInTheTrailer) {
  const std::string far(200000, 'x'), longName(300, 'n');
  const std::pair<std::string, std::string> table[] = {
      {"", ""},
      {"no name\0here"s, ""},
      {"\0rock_01.dds\0"s, "rock_01"},
      {"at_the_start.dds", "at_the_start"},
      {"one\0two.dds\0three.dds\0"s, "two"},
      {"a.DDS\0b.dds"s, "b"},
      {"a.dds.bak\0"s, "a.dds"},
      {".dds", ""},
      {"cut.dd", ""},
      {far + "\0far.dds"s, "far"},
      {"\0"s + far + ".dds", far.substr(0, 259)},
      {longName + ".dds", longName.substr(0, 259)},
  };
  for (const auto& [trailer, name] : table) {
    const Reading reading(readOrion, 257, orionFile(builtTriangle(), trailer).bytes());
    EXPECT_EQ(reading.model.materials.at(0).textureName, name);
  }
}

TEST(Orion, FindsANameAcrossTheBlocksOfItsSearch) {
  const size_t head = orionFile({}, "").size();
  for (size_t before = 65536 - head - 8; before < 65536 - head + 8; ++before) {
    const std::string trailer = std::string(before, '\0') + "name.dds";
    EXPECT_EQ(Reading(readOrion, 257, orionFile({}, trailer).bytes()).textures().at(0), "name");
  }
}

TEST(Orion, RefusesCountsBeyondTheFile) {
  const std::string good = orionFile(builtTriangle(), "").bytes();
  expectMalformed(readOrion, 257,
                  {
                      {"cut in the header", good.substr(0, 103), "103 bytes, expected at least 104"},
                      {"vertices", patched(good, 28, 0xFFFFFFFFu), "the file has 206"},
                      {"triangles", patched(good, 24, 0xFFFFFFFFu), "4294967295 triangles need"},
                      {"one triangle more", patched(good, 24, 2u), "need 212 bytes, the file has 206"},
                      {"no geometry", orionFile({}, "").bytes(), "", {0}},
                  });
  expectCutsSurvived(readOrion, 257, orionFile(builtTriangle(), "stone.dds").bytes());
}

}  // namespace
}  // namespace facet
