#include "import/load.h"
#include "reading.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::ElementsAre;

TEST(DdsPreview, IsAQuadOfThePicturesProportions) {
  const std::tuple<uint32_t, uint32_t, float, float> table[] = {
      {512, 256, 1, 0.5F}, {256, 512, 0.5F, 1}, {64, 64, 1, 1}, {0, 0, 1, 1}, {8, 0, 1, 0}};
  for (const auto& [width, height, x, y] : table) {
    const std::string header = ddsFile(width, height).substr(0, 128);
    const Reading reading(readDdsPreview, modelTypeDds, header, "C:\\tex\\stone.DDS");
    ASSERT_EQ(reading.vertexCounts(), std::vector<uint32_t>{4});
    EXPECT_THAT(reading.vertex(0, 0), ElementsAre(-x, -y, 0, 0, 1));
    EXPECT_THAT(reading.vertex(0, 2), ElementsAre(x, y, 0, 1, 0));
    EXPECT_THAT(reading.indices(0), ElementsAre(0, 3, 1, 1, 3, 2));
    EXPECT_EQ(reading.mesh(0).normals[3], (Vector3{0, 0, -1}));
    EXPECT_EQ(reading.mesh(0).boundsMin, (Vector3{-x, -y, 0}));
    EXPECT_THAT(reading.textures(), ElementsAre("C:\\tex\\stone"));
    EXPECT_EQ(reading.model.materials[0].shaderName, "default");
  }
}

TEST(DdsPreview, FindsItsOwnPicture) {
  const TempFolder folder;
  const LoadResult result = loadModel(folder.write("Stone.DDS", ddsFile(4, 2)), {}, nullptr);
  ASSERT_NE(result.model, nullptr);
  EXPECT_EQ(result.model->materials[0].hasTexture, 1u);
  EXPECT_EQ(result.model->modelType, 0x20534444u);
}

TEST(DdsPreview, ComesThroughShortFilesAndPaths) {
  const std::string good = ddsFile(4, 2);
  expectMalformed(readDdsPreview, modelTypeDds,
                  {{"no width", good.substr(0, 19), "19 bytes, expected at least 20"},
                   {"sizes alone", good.substr(0, 20), "", {4}}});
  for (const char* path : {"", "dds", ".dds"})
    EXPECT_THAT(Reading(readDdsPreview, modelTypeDds, good, path).textures(), ElementsAre(""));
}

}  // namespace
}  // namespace facet
