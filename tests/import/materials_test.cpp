#include "import/load.h"

#include <gmock/gmock.h>

#include "support/model_builder.h"
#include "support/recording_desktop.h"
#include "support/recording_device.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

namespace fs = std::filesystem;

TEST(ResolveTexture, TriesEveryExtensionUnderOneBaseBeforeTheNext) {
  const TempFolder folder;
  for (const char* file : {"a/x.bmp", "b/x.dds", "b/y.png", "b/y.tga", "b/sub/Z.PNG", "prop_fake.dds",
                           "w_fuflo.dds", "a/prefixed.dds", "a/dot.dds.dds"})
    folder.write(file, "");
  const CurrentFolder current(folder.path());
  const BasePaths both = {"a\\", "b/"};
  const std::string rooted = folder / "b/x", rootedPng = folder / "b/y";
  const std::tuple<std::string, BasePaths, std::string> table[] = {
      {"x", both, "a/x.bmp"},
      {"y", both, "b/y.tga"},
      {"sub\\z", both, "b/sub/Z.PNG"},
      {"X", both, "a/x.bmp"},
      {"none", both, ""},
      {"b\\x", {}, "b/x.dds"},                 // no base at all is one empty prefix
      {"fixed", {"a/pre"}, "a/prefixed.dds"},  // a base is a plain prefix
      {"dot.dds", both, "a/dot.dds.dds"},
      {"prop_fake", {""}, ""},
      {"w_fuflo", {""}, ""},
      {rooted, both, rooted + ".dds"},
      {rootedPng, both, ""},  // the base is dropped for .dds only
      {rootedPng, {""}, rootedPng + ".tga"},
  };
  for (const auto& [name, bases, file] : table) {
    FileFinder files;
    EXPECT_EQ(resolveTextureFile(name, bases, files).value_or("").generic_string(), file) << name;
  }
}

TEST(TextureSearch, LooksNearTheModelForWhatNoBaseHolds) {
  const TempFolder folder;
  for (const char* file :
       {"game/gamedata/textures/Build/Stone.DDS", "game/models/stone.bmp", "game/textures/deep/wood.tga",
        "game/models/ships/Hull.png", "game/models/ships/HULL.dds", "game/mod/skins/pre_sail.png",
        "a/b/c/d/e/f/g/h/i/own.dds", "a/high.dds", "too_high.dds", "game/models/ships/x_fuflo.dds"})
    folder.write(file, "");
  const BasePaths bases = {"mod\\skins\\pre_", "/nowhere/"};
  const fs::path ships = folder.path() / "game/models/ships", low = folder.path() / "a/b/c/d/e/f/g/h/i";
  const std::tuple<const char*, fs::path, std::string> table[] = {
      {"build\\stone", ships,
       "game/gamedata/textures/Build/Stone.DDS"},  // the whole name before its last part
      {"other\\stone", ships, "game/models/stone.bmp"},
      {"C:\\art\\stone", ships, "game/models/stone.bmp"},
      {"deep/wood", ships, "game/textures/deep/wood.tga"},
      {"Hull", ships, "game/models/ships/HULL.dds"},
      {"sail", ships, "game/mod/skins/pre_sail.png"},
      {"..\\stone", ships, "game/models/stone.bmp"},
      {"x_fuflo", ships, ""},
      {"", ships, ""},
      {"own", low, "a/b/c/d/e/f/g/h/i/own.dds"},
      {"high", low, "a/high.dds"},
      {"too_high", low, ""},
  };
  TextureSearch search, stated(false);
  for (const auto& [name, model, file] : table) {
    const auto found = search.find(name, bases, model);
    EXPECT_EQ(found ? found->lexically_relative(folder.path()).generic_string() : "", file) << name;
    EXPECT_EQ(stated.find(name, bases, model), std::nullopt) << name;
  }
  folder.write("stated/stone.tga", "");
  EXPECT_EQ(TextureSearch().find("stone", {folder / "stated/"}, ships), folder / "stated/stone.tga");
}

TEST(ClassifyMaterial, FollowsTheTwoNames) {
  const std::tuple<const char*, const char*, int> table[] = {
      {"t", "models\\model", 0},
      {"t", "model", 0},
      {"t", "models\\model_x", 1},
      {"t", "default", 0},
      {"t", "def_vertex", 0},
      {"terrain\\t", "models\\x", 0},
      {"Terrain\\t", "models\\x", 1},
      {"t", "x_trans", 1 | 2},
      {"t", "wallmark", 1 | 2},
      {"t", "default_window", 2},
      {"t", "weapons", 1 | 2},
      {"t", "lightplanes", 1 | 4 | 8},
      {"t", "water", 1 | 4},
      {"t", "trans_water", 1 | 2 | 4},
      {"t", "selflight", 15},
      {"t", "pautina", 1 | 6},
      {"terrain", "selflight", 6 | 8},
      {"t", "x_selflightl_trans", 1},
      {"terrain", "default_selflightl", 1},
      {"t", "Light", 1},
      {"", "", 1},
  };
  for (const auto& [texture, shader, flags] : table)
    EXPECT_EQ(classifyMaterial(texture, shader), flags) << texture << ' ' << shader;
}

/// A model with materials only, loaded from a folder of textures.
class LoadMaterials : public testing::Test {
 protected:
  void load(const std::vector<std::pair<std::string, std::string>>& names) {
    for (const auto& [texture, shader] : names) builder_.material(texture, shader);
    model_ = builder_.build();
    model_.materialCount -= skyMaterialCount;
    model_.materials.resize(model_.materialCount);
    model_.device = &device_;
    TextureSearch files;
    loadMaterials(model_, {folder_ / ""}, files, folder_.path());
  }
  TempFolder folder_;
  RecordingDevice device_;
  RecordingDesktop desktop_;
  ModelBuilder builder_;
  Model model_;
};

TEST_F(LoadMaterials, SharesByNameEvenWhatIsMissing) {
  folder_.write("stone.dds", ddsFile(4, 4));
  load({{"stone", "a"}, {"gone", "a"}, {"stone", "b"}, {"gone", "b"}, {"Stone", "a"}});
  const auto& m = model_.materials;
  EXPECT_NE(m[0].texture, nullptr);
  EXPECT_EQ(m[2].texture, m[0].texture);
  EXPECT_EQ(m[2].hasTexture, 1u);
  EXPECT_EQ(m[2].textureFile, m[0].textureFile);
  EXPECT_NE(m[4].texture, m[0].texture) << "names compare byte for byte, files in any letter case";
  for (const size_t missing : {1, 3}) {
    EXPECT_EQ(m[missing].hasTexture, 0u);
    EXPECT_EQ(m[missing].renderFlags, 0);
  }
  EXPECT_EQ(device_.created, 2u);
  EXPECT_EQ(desktop_.status.front(), "Loading material #1 of 5 'a' 'stone'");
  EXPECT_EQ(desktop_.status.size(), 5u);
}

TEST_F(LoadMaterials, GivesEveryMaterialAColor) {
  load({{"gone", "a"}, {"gone", "b"}});
  for (const Material& material : ownMaterials(model_)) {
    for (int i = 0; i < 3; ++i)
      EXPECT_THAT(material.color[i] / 0.003921569F, testing::AllOf(testing::Ge(129), testing::Le(192)));
    EXPECT_EQ(material.color[3], 1.0F);
  }
}

TEST_F(LoadMaterials, HalvesPicturesTooLargeForTheDevice) {
  device_.caps.MaxTextureWidth = 32;
  folder_.write("wide.dds", ddsFile(128, 16));
  folder_.write("high.dds", ddsFile(1, 64));
  folder_.write("fits.dds", ddsFile(32, 32));
  load({{"wide", "a"}, {"high", "a"}, {"fits", "a"}});
  std::vector<std::pair<uint32_t, uint32_t>> sizes;
  for (const Material& material : ownMaterials(model_)) {
    const ImageLevel& level = static_cast<RecordedTexture&>(*material.texture).levels[0];
    sizes.emplace_back(level.width, level.height);
  }
  EXPECT_THAT(sizes, testing::ElementsAre(std::pair{32, 4}, std::pair{1, 32}, std::pair{32, 32}));
}

TEST_F(LoadMaterials, DoesWithoutTexturesThatCannotBeMade) {
  device_.creationsLeft = 0;
  folder_.write("good.dds", ddsFile(4, 4));
  folder_.write("bad.dds", "DDS and no picture");
  load({{"good", "selflight"}, {"bad", "selflight"}});
  for (const Material& material : ownMaterials(model_)) {
    EXPECT_EQ(material.hasTexture, 0u);
    EXPECT_EQ(material.renderFlags, 0);
  }
  EXPECT_EQ(missingTexturesCount(model_), "2 of 2 textures missing");
  EXPECT_THAT(model_.missingTextures[0].reason, testing::EndsWith("the graphics device does not take it"));
  EXPECT_THAT(model_.missingTextures[1].reason, testing::StartsWith(folder_ / "bad.dds: "));
  EXPECT_EQ(model_.texturePlaces.front(), folder_ / "");
}

TEST_F(LoadMaterials, AppendsTheSky) {
  folder_.write("sky/SKY3.dds", ddsFile(8, 8));
  load({});
  ASSERT_EQ(model_.materialCount, 6u);
  for (uint32_t n = 0; n < 6; ++n) {
    const Material& sky = model_.materials[n];
    EXPECT_EQ(sky.textureName, "sky\\sky" + std::to_string(n));
    EXPECT_EQ(sky.shaderName, "default");
    EXPECT_EQ(sky.hasTexture, n == 3 ? 1u : 0u);
    EXPECT_EQ(sky.renderFlags, 0);
  }
  EXPECT_TRUE(desktop_.status.empty());
}

}  // namespace
}  // namespace facet
