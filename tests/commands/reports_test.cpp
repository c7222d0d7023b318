#include "commands/commands.h"

#include <gmock/gmock.h>

#include "commands/recorded_viewer.h"
#include "support/model_builder.h"

namespace facet {
namespace {

using testing::HasSubstr;

Model shipModel() {
  Model model = triangleModel();
  model.name = "C:\\ship.vxm";
  model.center = {1.5f, -2.005f, 3};
  Material& material = model.materials[0];
  material.shaderName = "models\\glass";
  material.color = {0xA0 / 255.0f, 0xB0 / 255.0f, 0xC0 / 255.0f, 1.0f};
  material.hasTexture = 1;
  material.renderFlags = 11;
  model.meshes[0].radius = 12.345f;
  model.meshes[0].visibility = 1;
  return model;
}

/// A tree as lines, each a blank deeper than its parent; a '+' marks an expanded item.
std::string lines(const TextTree& tree, const std::string& indent = "") {
  std::string text = indent + (tree.expanded ? "+" : "") + tree.text + "\n";
  for (const TextTree& child : tree.children) text += lines(child, indent + " ");
  return text;
}

TEST(ModelData, ShowsMaterialsAndMeshes) {
  const ListAndTree shown = modelData(shipModel());
  EXPECT_EQ(shown.title, "VXMViewer - ModelData");
  EXPECT_EQ(lines(shown.tree), golden("model_data.txt"));
  ASSERT_EQ(shown.list.size(), 9u);
  EXPECT_EQ(shown.list[0], "LIST_ROOT");
  EXPECT_EQ(shown.list[1], "Materials");
  EXPECT_EQ(shown.list[2], "#000 (stone, models\\glass) ID: 001, flags: 0x0B");
  EXPECT_EQ(shown.list[8], "#006 (sky\\sky5, default) ID: 000, flags: 0x00");
}

TEST(StatisticsLog, TellsTheModelLineByLineAndWrapsAt32Bits) {
  Model model = shipModel();
  EXPECT_EQ(statisticsLog(model, {"C:\\game\\textures\\", "D:\\"}), golden("object.log"));
  model.materials.resize(model.materialCount = 1024 + skyMaterialCount);
  model.totalVertices = 0x10000000;
  const std::string log = statisticsLog(model, {});
  EXPECT_THAT(log, HasSubstr("[007] 0x00, '', '' - NOT FOUND\n"));
  EXPECT_THAT(log, HasSubstr("RGBA texture 1024x1024 memory use         0 bytes\n"));
  EXPECT_THAT(log, HasSubstr("vertices memory use 0 bytes\n"));
  EXPECT_THAT(log, HasSubstr("base path to textures ''\n"));
}

TEST(SystemInformation, TellsAdapterAndCapabilities) {
  RecordingDirect3D direct3d;
  direct3d.hardwareCaps = {0, 0, 0, 0xFFFE0200, 0xFFFF0201};
  direct3d.referenceCaps = {0, 0, 0, 0xFFFE0101, 0xFFFF0104};
  direct3d.identifier = {"driver.so", "Some adapter", 0x0001000200030004, 0x8086, 0x5A84, 0x12345678, 0xB};
  direct3d.device->caps = {8192, 4096, 16, 0xFFFE0300, 0xFFFF0300};
  direct3d.device->availableTextureMem = 4294967295u;
  EXPECT_EQ(systemInformation(direct3d, *direct3d.device),
            "Driver:Some adapter\rLib:driver.so (1.2.3.4)\rPCIID:8086.5A84.12345678.000B\r"
            "VS:300, PS:300 (HW 200:201, SW 101:104)\rMax.tex.: 8192x4096, aniso.: 16\r"
            "Texture mem: 4294967295 bytes");
}

TEST(Gamma, CyclesIn21StepsOfRampsEqualForAllChannels) {
  float gamma = nextGamma(1.0f);
  EXPECT_EQ(gamma, 1.1f);
  for (int i = 2; i <= 20; ++i) gamma = nextGamma(gamma);
  EXPECT_NEAR(gamma, 3.0f, 1e-5f);
  EXPECT_EQ(nextGamma(gamma), 1.0f);
  const GammaRamp straight = rampOfGamma(1.0f), two = rampOfGamma(2.0f);
  for (uint32_t i = 0; i < 256; ++i) EXPECT_EQ(straight.red[i], i << 8);
  EXPECT_THAT((std::array{two.red[0], two.red[64], two.red[255]}), testing::ElementsAre(0, 32512, 65280));
  EXPECT_EQ(two.green, two.red);
  EXPECT_EQ(two.blue, two.red);
}

}  // namespace
}  // namespace facet
