#include "commands/statistics_log.h"

#include <gmock/gmock.h>

namespace facet {
namespace {

/// A model with `count` own materials and the six of the sky.
Model modelWithMaterials(uint32_t count) {
  Model model;
  model.materials.resize(count + skyMaterialCount);
  model.materialCount = count + skyMaterialCount;
  model.modelType = modelTypeVxm4;
  model.name = "C:\\models\\ship.vxm";
  return model;
}

TEST(StatisticsLog, TellsTheModelLineByLine) {
  Model model = modelWithMaterials(2);
  model.meshCount = 3;
  model.totalVertices = 100;
  model.totalIndices = 302;
  model.center = {1.5f, -2.0f, 0.0f};
  model.materials[0].textureName = "wall";
  model.materials[0].shaderName = "models\\glass";
  model.materials[0].renderFlags = 11;
  model.materials[0].hasTexture = 1;
  model.materials[1].textureName = "floor";
  model.materials[1].shaderName = "default";
  EXPECT_EQ(statisticsLog(model, {"C:\\game\\textures\\", "D:\\"}),
            "-- init --\n"
            "model name 'C:\\models\\ship.vxm'\n"
            "model type 0x4444\n"
            "base path to textures 'C:\\game\\textures\\'\n"
            "center 1.500000, -2.000000, 0.000000\n"
            "meshes 3 ( verts 100, indices 302 tris 100 )\n"
            "materials 2\n"
            "[000] 0x0B, 'wall', 'models\\glass' - OK (001)\n"
            "[001] 0x00, 'floor', 'default' - NOT FOUND\n"
            "- memory -\n"
            "vertices memory use 3200 bytes\n"
            "indices memory use 604 bytes\n"
            "RGB texture 256x256 memory use    393216 bytes\n"
            "RGBA texture 256x256 memory use    524288 bytes\n"
            "RGB texture 512x512 memory use   1572864 bytes\n"
            "RGBA texture 512x512 memory use   2097152 bytes\n"
            "RGB texture 1024x1024 memory use   6291456 bytes\n"
            "RGBA texture 1024x1024 memory use   8388608 bytes\n"
            "-- done --\n");
}

TEST(StatisticsLog, WrapsAt32Bits) {
  Model model = modelWithMaterials(1024);
  model.totalVertices = 0x10000000;
  const std::string log = statisticsLog(model, {});
  EXPECT_THAT(log, testing::HasSubstr("RGBA texture 1024x1024 memory use         0 bytes\n"));
  EXPECT_THAT(log, testing::HasSubstr("vertices memory use 0 bytes\n"));
  EXPECT_THAT(log, testing::HasSubstr("base path to textures ''\n"));
}

}  // namespace
}  // namespace facet
