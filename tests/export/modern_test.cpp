#include "export/modern.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>

#include "picture/image.h"
#include "platform/parallel.h"
#include "support/model_builder.h"
#include "support/picture_files.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using Json = nlohmann::json;

/// A PNG file of one pixel.
std::string pngOf(const std::vector<uint8_t>& rgba) {
  const std::vector<std::byte> png = encodePng(rgba, 1, 1);
  return {reinterpret_cast<const char*>(png.data()), png.size()};
}

std::vector<uint8_t> pixelOf(const std::string& file) {
  return imagePixels(*loadImage(file).image, 0);
}

/// Folders "in" and "out", and what is written from one to the other with one store.
struct Modern {
  TempFolder folder;
  PictureStore store{folder / "out/textures"};
  ModernOptions options;

  Modern() { fs::create_directory(folder / "out"); }

  ModernResult write(Model& model, const std::string& name) {
    const std::string format = name.substr(name.rfind('.') + 1);
    return exportModern(*findModernFormat(format), folder / ("out/" + name), model, options, store);
  }
  std::string read(std::string_view name) const { return readWholeFile(folder.path() / "out" / name); }
  Json readJson(std::string_view name) const { return Json::parse(read(name)); }

  /// Names of all files below "out".
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder / "out"))
      names.push_back(entry.path().lexically_relative(folder / "out").string());
    return names;
  }
};

/// A triangle for each of these files, which are its materials' textures.
Model texturedModel(const std::vector<std::string>& textureFiles, uint8_t flags = 0) {
  ModelBuilder builder;
  const BuiltMesh triangle = builtTriangle();
  for (uint32_t i = 0; i < textureFiles.size(); ++i)
    builder.material("stone").mesh(i, triangle.vertices, triangle.indices);
  Model model = builder.build();
  for (size_t i = 0; i < textureFiles.size(); ++i) {
    model.materials[i].hasTexture = 1;
    model.materials[i].textureFile = textureFiles[i];
    model.materials[i].renderFlags = flags;
  }
  return model;
}

TEST(ModernObj, HasNamesALibraryAndOnlyWholeTriangles) {
  Modern modern;
  const BuiltMesh triangle = builtTriangle();
  Model model = ModelBuilder()
                    .material("build\\red metal")
                    .material("RED_METAL")
                    .mesh(0, triangle.vertices, {0, 1, 2, 0, 1, 3})
                    .mesh(0, triangle.vertices, {0, 1, 3})
                    .mesh(1, {{NAN, 0, -1}, {0, INFINITY, 0}, {0, 0, 0}}, {0, 1, 2, 0})
                    .build();
  model.materials[0].hasTexture = 1;
  model.materials[0].textureFile = modern.folder.write("in/Red Metal.png", pngOf({1, 2, 3, 4}));
  model.materials[0].renderFlags = renderAlphaTest;
  const ModernResult result = modern.write(model, "modern.obj");
  EXPECT_EQ(result.error, "");
  const fs::path golden = fs::path(TESTS_FOLDER) / "export/golden";
  EXPECT_EQ(modern.read("modern.obj"), readWholeFile(golden / "modern.obj"));
  EXPECT_EQ(modern.read("modern.mtl"), readWholeFile(golden / "modern.mtl"));
  EXPECT_EQ(modern.read("textures/Red_Metal.png"), readWholeFile(model.materials[0].textureFile));
  EXPECT_THAT(result.files, ElementsAre(modern.folder / "out/textures/Red_Metal.png",
                                        modern.folder / "out/modern.mtl", modern.folder / "out/modern.obj"));
}

TEST(ModernStl, IsBinaryWithTheNormalsOfItsFacets) {
  for (const UpAxis up : {UpAxis::z, UpAxis::y}) {
    Model model = ModelBuilder()
                      .material("")
                      .mesh(0, {{0, 0, 1}, {2, 0, 1}, {0, 3, 1}}, {0, 1, 2, 0, 0, 0, 0, 1, 9})
                      .build();
    OutputString out;
    ASSERT_EQ(exportModern(*findModernFormat("STL"), "a.stl", model, {.up = up}, out).error, "");
    ASSERT_EQ(out.text().size(), 84 + 2 * 50U);
    EXPECT_THAT(out.text(), testing::Not(StartsWith("solid")));
    EXPECT_EQ(out.text().substr(80, 4), std::string("\2\0\0\0", 4));
    std::vector<float> facet(12);
    std::memcpy(facet.data(), &out.text()[84], 48);
    if (up == UpAxis::z)
      EXPECT_THAT(facet, ElementsAre(0, 1, 0, 0, 1, 0, 0, 1, 3, 2, 1, 0));
    else
      EXPECT_THAT(facet, ElementsAre(0, 0, -1, 0, 0, -1, 0, 3, -1, 2, 0, -1));
    EXPECT_EQ(out.text().substr(132, 14), std::string(14, '\0')) << "no meaning, and a facet without area";
  }
}

TEST(ModernGltf, KeepsLooksAndNamesAndPutsPicturesBesideIt) {
  Modern modern;
  Model model = texturedModel({modern.folder.write("in/a.png", pngOf({9, 9, 9, 9})),
                               modern.folder.write("in/plain.png", pngOf({9, 9, 9, 255}))},
                              renderLightPlane);
  model.materials[0].textureName = "fx\\\xE9 \"beam\"";
  modern.options.up = UpAxis::z;
  ASSERT_EQ(modern.write(model, "my ship.gltf").error, "");
  const Json json = modern.readJson("my ship.gltf");
  EXPECT_EQ(json["buffers"][0]["uri"], "my%20ship.bin");
  EXPECT_EQ(json["buffers"][0]["byteLength"], modern.read("my ship.bin").size());
  EXPECT_EQ(json["images"][0], Json::parse(R"({"name":"a-glow.png","uri":"textures/a-glow.png"})"));
  EXPECT_EQ(json["materials"][0]["name"], "é_\"beam\"");
  EXPECT_EQ(json["materials"][0]["alphaMode"], "BLEND");
  EXPECT_TRUE(json["materials"][0]["doubleSided"]);
  EXPECT_EQ(json["materials"][0]["emissiveTexture"]["index"], 0) << "it adds light";
  EXPECT_FALSE(json["materials"][0].contains("extensions"));
  EXPECT_TRUE(json["materials"][1]["extensions"].contains("KHR_materials_unlit"));
  EXPECT_FALSE(json["materials"][1].contains("alphaMode")) << "nothing shows through it";
  EXPECT_THAT(json["extensionsUsed"], ElementsAre("KHR_materials_unlit"));
  EXPECT_EQ(json["nodes"][0]["name"], "00000_é_\"beam\"");
  EXPECT_EQ(json["nodes"][0]["matrix"], Json::parse("[1,0,0,0, 0,0,1,0, 0,-1,0,0, 0,0,0,1]"));
}

TEST(ModernPictures, GlowAsTheScreenShowsThem) {
  const struct {
    uint8_t flags;
    std::vector<uint8_t> pixel, glow;
  } cases[] = {{renderLightPlane, {40, 20, 0, 80}, {128, 64, 0, 80}},  // covers by its alpha
               {renderLightPlane, {40, 20, 0, 0}, {255, 128, 0, 40}},  // adds
               {renderSelfLight, {40, 20, 0, 255}, {255, 128, 0, 40}},
               {renderSelfLight, {0, 0, 0, 255}, {0, 0, 0, 0}},
               {renderSelfLight, {51, 0, 0, 0}, {51, 0, 0, 255}},
               {renderBlend, {40, 20, 0, 80}, {40, 20, 0, 80}}};
  for (const auto& [flags, pixel, glow] : cases) {
    Modern modern;
    Model model = texturedModel({modern.folder.write("in/a.png", pngOf(pixel))}, flags);
    const ModernResult result = modern.write(model, "a.dae");
    ASSERT_THAT(result.files, SizeIs(2));
    EXPECT_EQ(pixelOf(result.files[0]), glow) << int{flags};
  }
}

/// Every file that an output names.
std::vector<std::string> namedFiles(const std::string& text) {
  std::vector<std::string> names;
  for (const std::string_view before : {"mtllib ", "map_Kd ", "map_d ", "<init_from>", "\"uri\":\""})
    for (size_t at = text.find(before); at != text.npos; at = text.find(before, at)) {
      at += before.size();
      const std::string name = text.substr(at, text.find_first_of("\"<\n", at) - at);
      if (name.find('.') != name.npos) names.push_back(name);  // in COLLADA surfaces name images by their ids
    }
  return names;
}

TEST(ModernPictures, StandUnderTheNamesThatTheOutputsGive) {
  Modern modern;
  const std::string bmp = BmpFile{.data = std::string(8, '\x40')};
  Model model =
      texturedModel({modern.folder.write("in/Stone.BMP", bmp), modern.folder.write("in/stone.bmp", bmp),
                     modern.folder.write("in/leaf.PNG", pngOf({1, 2, 3, 4}))},
                    renderBlend);
  fs::create_directory(modern.folder / "out/sub");
  for (const auto textures : {TexturesOut::png, TexturesOut::copy, TexturesOut::none}) {
    modern.options.textures = textures;
    for (const std::string name : {"a.obj", "a.gltf", "a.dae", "sub/a.obj"}) {
      EXPECT_EQ(modern.write(model, name).error, "");
      std::string text = modern.read(name);
      if (name.ends_with("obj")) text += modern.read(name.substr(0, name.size() - 3) + "mtl");
      for (const std::string& named : namedFiles(text))
        EXPECT_THAT(modern.files(), Contains((fs::path(name).parent_path() / named).lexically_normal()));
      EXPECT_EQ(text.find("textures/") == std::string::npos, textures == TexturesOut::none) << name;
    }
  }
  for (const std::string name : {"Stone.png", "in_stone.png", "Stone.BMP", "leaf.png"})
    EXPECT_THAT(modern.files(), Contains("textures/" + name));
  EXPECT_THAT(modern.files(), SizeIs(14)) << "each picture once for all outputs";
}

TEST(ModernPictures, GetNamesThatAreSafeOnEveryDisk) {
  Modern modern;
  std::vector<std::string> files;
  for (const std::string& name : {std::string("..\\..\\up"), std::string("C:con"), std::string("Con.x"),
                                  std::string("...a b\xE9..."), std::string(240, 'n')})
    files.push_back(modern.folder.write("in/" + name + ".png", pngOf({1, 1, 1, 1})));
  Model model = texturedModel(files);
  model.materials[0].textureName = "..\\..\\..\\evil";
  model.materials[1].textureName = std::string("C:\\nul\0", 7) + std::string(300, 'x');
  model.materials[2].textureName = "";
  ASSERT_EQ(modern.write(model, "a.obj").error, "");
  fs::remove_all(modern.folder / "in");
  EXPECT_THAT(modern.files(),
              UnorderedElementsAre("a.obj", "a.mtl", "textures", "textures/_.._up.png", "textures/C_con.png",
                                   "textures/_Con.x.png", "textures/a_b_.png",
                                   "textures/" + std::string(80, 'n') + ".png"));
  EXPECT_EQ(std::distance(fs::directory_iterator(modern.folder.path()), {}), 1);
}

TEST(ModernPictures, AreLeftOutAndNamedWhereTheyCannotBeRead) {
  for (const auto textures : {TexturesOut::png, TexturesOut::copy}) {
    Modern modern;
    modern.options.textures = textures;
    Model model =
        texturedModel({modern.folder.write("in/broken.dds", "DDS no picture"),
                       modern.folder.write("in/good.dds", ddsFile(4, 4)), modern.folder / "in/gone.dds"});
    for (const std::string name : {"a.gltf", "a.glb"}) {
      const ModernResult result = modern.write(model, name);
      EXPECT_EQ(result.error, "");
      EXPECT_THAT(result.warnings, ElementsAre(StartsWith("broken.dds: cannot be read: "),
                                               "gone.dds: cannot be read: no such file; left out"));
    }
    const Json json = modern.readJson("a.gltf");
    EXPECT_TRUE(json["materials"][0]["pbrMetallicRoughness"].contains("baseColorFactor"));
    EXPECT_EQ(json["materials"][1]["pbrMetallicRoughness"]["baseColorTexture"]["index"], 0);
    EXPECT_THAT(json["images"], SizeIs(1));
  }
}

TEST(ModernPictures, NeverReplaceWhatStandsThere) {
  Modern modern;
  Model model = texturedModel({modern.folder.write("in/stone.png", pngOf({1, 2, 3, 4}))});
  modern.folder.write("out/textures/STONE.png", "a drawing of the user's");
  ASSERT_EQ(modern.write(model, "a.obj").error, "");
  EXPECT_EQ(modern.read("textures/STONE.png"), "a drawing of the user's");
  EXPECT_THAT(modern.read("a.mtl"), HasSubstr("map_Kd textures/in_stone.png\n"));

  PictureStore again(modern.folder / "out/textures");
  const ModernFormat& dae = *findModernFormat("dae");
  EXPECT_THAT(exportModern(dae, modern.folder / "out/b.dae", model, {}, again).files,
              ElementsAre(modern.folder / "out/b.dae"));
  Model own = texturedModel({modern.folder / "out/textures/in_stone.png"});
  PictureStore beside(modern.folder / "out/textures");
  EXPECT_THAT(exportModern(dae, modern.folder / "out/b.dae", own, {}, beside).files, SizeIs(1));
  EXPECT_THAT(modern.read("b.dae"), HasSubstr("<init_from>textures/in_stone.png<"));
}

TEST(ModernOutputs, StandWholeOrNotAtAll) {
  const struct {
    const char *inTheWay, *name;
    std::string error;
  } cases[] = {{"out/a.obj/x", "a.obj", "cannot create: "},
               {"out/a.mtl/x", "a.obj", "a.mtl: cannot create: "},
               {"out/textures", "a.obj", "textures/stone.png: cannot create: "},
               {"out/textures", "a.gltf", "textures/stone.png: cannot create: "}};
  for (const auto& [inTheWay, name, error] : cases) {
    Modern modern;
    modern.folder.write(inTheWay, "");
    Model model = texturedModel({modern.folder.write("in/stone.png", pngOf({1, 2, 3, 4}))});
    const std::vector<std::string> before = modern.files();
    const ModernResult result = modern.write(model, name);
    EXPECT_THAT(result.error, StartsWith(error));
    EXPECT_THAT(result.files, IsEmpty());
    EXPECT_EQ(modern.files(), before) << inTheWay;
  }
}

TEST(ModernOutputs, TakeBackOnlyWhatNoOtherNeeds) {
  Modern modern;
  const std::string png = modern.folder.write("in/a.png", pngOf({1, 2, 3, 4}));
  const std::string dds = modern.folder.write("in/b.dds", ddsFile(64, 64));
  const std::string more = modern.folder.write("in/more.dds", ddsFile(4, 4));
  const ModernFormat& format = *findModernFormat("dae");
  ModernFormat failing = format;
  failing.write = [](const ModernScene&, Output&, Output&) { throw std::runtime_error("too much"); };
  const auto write = [&](size_t number, bool fails) {
    Model model = texturedModel({png, dds, fails ? more : png});
    const std::string path = modern.folder / ("out/" + std::to_string(number) + ".dae");
    return exportModern(fails ? failing : format, path, model, {}, modern.store);
  };
  EXPECT_EQ(write(0, true).error, "too much");
  EXPECT_THAT(modern.files(), IsEmpty());
  std::atomic<size_t> files = 0;
  parallelFor(24, [&](size_t i) {
    const ModernResult result = write(i, i % 3 == 0);
    EXPECT_EQ(result.error.empty(), i % 3 != 0) << result.error;
    files += result.files.size();
  });
  EXPECT_EQ(files, 16 + 2U);
  EXPECT_THAT(modern.files(), SizeIs(files + 1));
}

TEST(ModernOutputs, GoToStandardOutputAsASingleFile) {
  Model model = triangleModel();
  for (const ModernFormat& format : modernFormats()) {
    OutputString out;
    const bool single = format.name == "glb" || format.name == "stl";
    const ModernResult result = exportModern(format, "a", model, {}, out);
    EXPECT_EQ(result.error.empty(), single) << format.name;
    EXPECT_EQ(out.text().empty(), !single) << format.name;
    EXPECT_EQ(result.bytes, out.text().size());
  }
}

TEST(ScaleModel, ScalesAllLengths) {
  Model model = triangleModel();
  model.meshes[0].radius = 3;
  scaleModel(model, 2);
  EXPECT_EQ(model.meshes[0].vertices[2].z, 20);
  EXPECT_EQ(model.meshes[0].vertices[2].v, 1);
  EXPECT_EQ(model.meshes[0].boundsMax, (Vector3{14, 16, 20}));
  EXPECT_EQ(model.meshes[0].radius, 6);
}

}  // namespace
}  // namespace facet
