#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>

#include "export/written.h"
#include "picture/image.h"
#include "support/model_builder.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::SizeIs;
using Json = nlohmann::json;

/// A file taken apart: its document and its binary chunk.
struct Glb {
  Json document;
  std::string binary;

  /// The values of type T that an accessor's view holds, without regard to strides.
  template <class T>
  std::vector<T> values(size_t accessor) const {
    const Json& view = document["bufferViews"][document["accessors"][accessor]["bufferView"].get<size_t>()];
    std::vector<T> values(view["byteLength"].get<size_t>() / sizeof(T));
    std::memcpy(values.data(), binary.data() + view["byteOffset"].get<size_t>(), values.size() * sizeof(T));
    return values;
  }
};

uint32_t wordAt(const std::string& bytes, size_t offset) {
  uint32_t word = 0;
  std::memcpy(&word, bytes.data() + offset, 4);
  return word;
}

Glb writtenGlb(Model model) {
  const std::string bytes = written(exportGlb, std::move(model));
  EXPECT_EQ(bytes.substr(0, 4), "glTF");
  EXPECT_EQ(wordAt(bytes, 4), 2U);
  EXPECT_EQ(wordAt(bytes, 8), bytes.size());
  const uint32_t length = wordAt(bytes, 12);
  EXPECT_EQ(length % 4, 0U);
  EXPECT_EQ(bytes.substr(16, 4), "JSON");
  Glb glb{Json::parse(bytes.substr(20, length)), {}};
  if (bytes.size() > 20 + length) {
    EXPECT_EQ(wordAt(bytes, 20 + length), bytes.size() - 28 - length);
    EXPECT_EQ(bytes.substr(24 + length, 4), std::string_view("BIN\0", 4));
    glb.binary = bytes.substr(28 + length);
    EXPECT_EQ(glb.document["buffers"][0]["byteLength"], glb.binary.size());
  }
  return glb;
}

TEST(ExportGlb, WritesATriangleMirrored) {
  const Glb glb = writtenGlb(triangleModel());
  EXPECT_THAT(glb.values<float>(0), ElementsAre(1, 2, -3, 0, 1, 0, 0.25F, 0.125F,  //
                                                4, 5, -6, 1, 0, 0, 0.5F, 0.25F,    //
                                                7, 8, -10, 0, 0, -1, 0.75F, 1.0F));
  EXPECT_THAT(glb.values<uint16_t>(3), ElementsAre(0, 2, 1));
  EXPECT_EQ(glb.document["accessors"][0]["min"], (Json{1, 2, -10}));
  EXPECT_EQ(glb.document["accessors"][0]["max"], (Json{7, 8, -3}));
  EXPECT_EQ(glb.document["meshes"][0]["primitives"][0]["material"], 0);
  EXPECT_EQ(glb.document["materials"][0]["name"], "stone");
  EXPECT_NEAR(glb.document["materials"][0]["pbrMetallicRoughness"]["baseColorFactor"][0], std::pow(0.5, 2.2),
              1e-6);
}

TEST(ExportGlb, LeavesOutWhatTheFormatForbids) {
  Model model = ModelBuilder()
                    .mesh(0, {{NAN, INFINITY, 1, 0, 0, 0}, {2, 0, 0, 3, 0, 4, NAN, 1}, {0, 3, 0, NAN, 0, 0}},
                          {0, 1, 9, 0, 1, 2, 0, 1})
                    .mesh(0, {{1, 1, 1}}, {0, 1, 2})
                    .mesh(0, {}, {0, 1, 2})
                    .build();
  const Glb glb = writtenGlb(std::move(model));
  EXPECT_THAT(glb.document["meshes"], SizeIs(1));
  EXPECT_THAT(glb.values<uint16_t>(3), ElementsAre(0, 2, 1));
  EXPECT_THAT(glb.values<float>(0), ElementsAre(0, 0, -1, 0, 1, 0, 0, 0,        //
                                                2, 0, 0, 0.6F, 0, -0.8F, 0, 1,  //
                                                0, 3, 0, 0, 1, 0, 0, 0));
}

TEST(ExportGlb, WritesWideIndicesForTheLastVertexNumber) {
  Model model = ModelBuilder().mesh(0, std::vector<BuiltVertex>(65536), {0, 1, 65535}).build();
  const Glb glb = writtenGlb(std::move(model));
  EXPECT_EQ(glb.document["accessors"][3]["componentType"], 5125);
  EXPECT_THAT(glb.values<uint32_t>(3), ElementsAre(0, 65535, 1));
}

TEST(ExportGlb, MakesAlphaModesOfRenderFlags) {
  const std::tuple<uint8_t, Json, double> cases[] = {{0, nullptr, 0},          {8, nullptr, 0},
                                                     {1, "MASK", 128 / 255.0}, {9, "MASK", 1 / 255.0},
                                                     {3, "BLEND", 0},          {14, "BLEND", 0}};
  for (const auto& [flags, mode, cutoff] : cases) {
    Model model = triangleModel();
    model.materials[0].renderFlags = flags;
    const Json material = writtenGlb(std::move(model)).document["materials"][0];
    EXPECT_EQ(material.value("alphaMode", Json()), mode) << int{flags};
    EXPECT_EQ(material.value("alphaCutoff", 0.0), cutoff) << int{flags};
    EXPECT_EQ(material.value("doubleSided", false), !mode.is_null()) << int{flags};
  }
}

TEST(ExportGlb, EmbedsEachTextureOnce) {
  const TempFolder folder;
  const std::vector<uint8_t> pixels(4 * 4 * 4, 200);
  const std::vector<std::byte> png = encodePng(pixels, 4, 4);
  const std::string bytes(reinterpret_cast<const char*>(png.data()), png.size());
  Model model = ModelBuilder().material("a").material("b").material("broken").grid(0, 1).build();
  model.materials[0].textureFile = model.materials[1].textureFile = folder.write("a.png", bytes);
  model.materials[2].textureFile = folder.write("broken.png", "no picture");
  for (int i = 0; i < 3; ++i) model.materials[i].hasTexture = 1;

  const Glb glb = writtenGlb(std::move(model));
  const Json& materials = glb.document["materials"];
  ASSERT_THAT(glb.document["images"], SizeIs(1));
  EXPECT_EQ(materials[0]["pbrMetallicRoughness"]["baseColorTexture"]["index"], 0);
  EXPECT_EQ(materials[1]["pbrMetallicRoughness"]["baseColorTexture"]["index"], 0);
  EXPECT_TRUE(materials[2]["pbrMetallicRoughness"].contains("baseColorFactor"));
  const Json& view = glb.document["bufferViews"][glb.document["images"][0]["bufferView"].get<size_t>()];
  EXPECT_EQ(glb.binary.substr(view["byteOffset"], view["byteLength"]), bytes) << "a PNG file stands as it is";
}

TEST(ExportGlb, WritesAnEmptyModelAndNamesThatAreNoUtf8) {
  const Glb glb = writtenGlb(ModelBuilder().material("\xE8\xEB").build());
  EXPECT_TRUE(glb.binary.empty());
  EXPECT_FALSE(glb.document.contains("buffers"));
  EXPECT_FALSE(glb.document["scenes"][0].contains("nodes"));
  EXPECT_EQ(glb.document["materials"][0]["name"], "\uFFFD\uFFFD");
}

}  // namespace
}  // namespace facet
