#include <gmock/gmock.h>

#include <cmath>

#include "model/model.h"
#include "picture/image.h"
#include "render/picture_view.h"
#include "support/format_builders.h"
#include "support/temp_folder.h"
#include "tool/batch.h"

namespace facet {
namespace {

namespace fs = std::filesystem;

/// An octahedron, seen from outside only.
BuiltMesh octahedron(float radius, const Vector3& center, std::string texture = "stone") {
  BuiltMesh mesh = builtTriangle(std::move(texture));
  mesh.vertices.clear();
  mesh.indices.clear();
  for (const float sign : {1.0f, -1.0f})
    for (const auto& [x, y, z] : {Vector3{1, 0, 0}, Vector3{0, 1, 0}, Vector3{0, 0, 1}}) {
      const Vector3 n{sign * x, sign * y, sign * z};
      mesh.vertices.push_back(
          {center.x + radius * n.x, center.y + radius * n.y, center.z + radius * n.z, n.x, n.y, n.z});
    }
  for (const int corner : {0, 1, 2, 0, 2, 4, 0, 4, 5, 0, 5, 1, 3, 2, 1, 3, 4, 2, 3, 5, 4, 3, 1, 5})
    mesh.indices.push_back(static_cast<uint16_t>(corner));
  return mesh;
}

struct Said {
  int status;
  std::string out, error;
};

class RenderTool : public testing::Test {
 protected:
  Said run(std::vector<std::string> words) {
    std::vector<const char*> arguments = {"facetbench", "render"};
    if (std::ranges::count(words, "--size") == 0) words.insert(words.end(), {"--size", "64x48"});
    for (const std::string& word : words) arguments.push_back(word.c_str());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runTool(static_cast<int>(arguments.size()), arguments.data());
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
  }

  void model(const std::string& name, const BuiltMesh& mesh) {
    folder.write(name, vxmVisual(4, mesh).bytes());
  }

  /// Runs the tool for one picture without grid and texts.
  Picture picture(const std::string& name, std::vector<std::string> words = {}) {
    words.insert(words.end(), {name, "-o", "out.png", "--mode", "lit", "--environment"});
    const Said said = run(words);
    EXPECT_EQ(said.status, 0) << said.error;
    return readPicture("out.png");
  }

  static Picture readPicture(const std::string& path) {
    const ImageResult result = loadImage(path);
    if (!result.image) return {};
    return {result.image->info.Width, result.image->info.Height, imagePixels(*result.image, 0)};
  }

  TempFolder folder;
  CurrentFolder here{folder.path()};
};

/// True where the picture does not show the background, which its first pixel is.
bool isCovered(const Picture& picture, uint32_t x, uint32_t y) {
  if (picture.pixels.empty()) return false;
  const uint8_t* pixel = &picture.pixels[(size_t{y} * picture.width + x) * 4];
  return !std::equal(pixel, pixel + 3, picture.pixels.data());
}

/// How many pixels of the middle row and column are covered.
std::pair<int, int> extent(const Picture& picture) {
  std::pair<int, int> count;
  for (uint32_t x = 0; x < picture.width; ++x) count.first += isCovered(picture, x, picture.height / 2);
  for (uint32_t y = 0; y < picture.height; ++y) count.second += isCovered(picture, picture.width / 2, y);
  return count;
}

TEST_F(RenderTool, FramesModelsOfEverySizeAndPlace) {
  const std::pair<float, Vector3> places[] = {
      {1, {0, 0, 0}}, {0.001f, {0, 0, 0}}, {1e6f, {0, 0, 0}}, {1e14f, {0, 0, 0}}, {5, {5000, -300, 9}}};
  for (const auto& [radius, center] : places) {
    SCOPED_TRACE(radius);
    model("m.vxm", octahedron(radius, center));
    const Picture drawn = picture("m.vxm");
    ASSERT_EQ(drawn.width, 64u);
    ASSERT_EQ(drawn.height, 48u);
    const auto [width, height] = extent(drawn);
    EXPECT_GE(width, 24);
    EXPECT_GE(height, 36) << "fills the picture";
    EXPECT_LE(height, 47) << "and leaves a rim";
    EXPECT_FALSE(isCovered(drawn, 63, 47));
  }
  const auto [narrow, low] = extent(picture("m.vxm", {"--size", "24x96"}));
  EXPECT_GE(narrow, 12);
  EXPECT_LE(narrow, 23) << "the narrower side decides";
  EXPECT_LE(low, 40);
}

TEST_F(RenderTool, PositionsThatAreNoNumbersDoNotSpoilTheFrame) {
  BuiltMesh mesh = octahedron(1, {0, 0, 0});
  const float bad[] = {NAN, INFINITY, -INFINITY, 3e38f};
  for (const float value : bad) mesh.vertices.push_back({value, 0, value});
  for (const int corner : {6, 0, 1, 7, 8, 9, 0, 9, 2, 60000, 1, 0})
    mesh.indices.push_back(static_cast<uint16_t>(corner));
  model("m.vxm", mesh);
  EXPECT_TRUE(isCovered(picture("m.vxm"), 32, 24));
  folder.write("empty.vxm", vxmHeader(4, mesh).bytes());
  EXPECT_FALSE(isCovered(picture("empty.vxm"), 32, 24));
}

TEST_F(RenderTool, TheEyeSeesWhatTheWindowWould) {
  model("m.vxm", octahedron(3, {0, 0, 200}));
  EXPECT_FALSE(isCovered(picture("m.vxm", {"--eye", "0,0,-1"}), 32, 24)) << "beyond the distance cut";
  EXPECT_TRUE(isCovered(picture("m.vxm", {"--eye", "0,0,-1", "--no-distance-cut"}), 32, 24));
  EXPECT_FALSE(isCovered(picture("m.vxm", {"--eye", "-1,0,-200", "--no-distance-cut"}), 32, 24))
      << "too deep";
  const auto [wide, high] = extent(picture("m.vxm", {"--eye", "0,0,190", "--size", "60x60"}));
  const auto [stretched, same] =
      extent(picture("m.vxm", {"--eye", "0,0,190", "--size", "60x60", "--aspect", "16:9"}));
  EXPECT_NEAR(wide, high, 1);
  EXPECT_NEAR(same, high, 1);
  EXPECT_NEAR(stretched, wide * 9.0 / 16, 2);
}

TEST_F(RenderTool, GivesTheSamePicturesWhateverRunsBeside) {
  for (const char* name : {"a", "b", "c", "d"}) model(std::string(name) + ".vxm", octahedron(1, {0, 0, 0}));
  const Picture alone = picture("a.vxm", {"--seed", "7"});
  EXPECT_NE(picture("a.vxm", {"--seed", "8"}).pixels, alone.pixels);
  const Said said = run({"a.vxm", "b.vxm", "c.vxm", "d.vxm", "--out", "many", "--jobs", "4", "--seed", "7",
                         "--mode", "lit", "--environment"});
  EXPECT_EQ(said.status, 0) << said.error;
  EXPECT_THAT(said.out, testing::HasSubstr("c.vxm -> many/c.png\n"));
  for (const char* name : {"a", "b", "c", "d"})
    EXPECT_EQ(readPicture("many/" + std::string(name) + ".png").pixels, alone.pixels) << name;
}

TEST_F(RenderTool, TurnsAroundTheModel) {
  model("m.vxm", octahedron(1, {4, 0, 0}));
  EXPECT_EQ(run({"m.vxm", "-o", "t.png", "--turntable", "10", "--environment", "--mode", "lit"}).status, 0);
  const Picture first = readPicture("t-01.png");
  EXPECT_EQ(first.pixels, picture("m.vxm").pixels);
  EXPECT_NE(readPicture("t-02.png").pixels, first.pixels);
  EXPECT_TRUE(isCovered(readPicture("t-10.png"), 32, 24));
  EXPECT_FALSE(fs::exists("t-11.png"));
}

TEST_F(RenderTool, DrawsTexturesWhereThereAreSome) {
  folder.write("wall.bmp", std::string(BmpFile{.height = 1, .data = {"\x10\x20\xC0\0", 4}}));
  model("m.vxm", octahedron(1, {0, 0, 0}, "wall"));
  ASSERT_EQ(run({"m.vxm", "-o", "m.png", "--textures", "."}).status, 0);
  const Picture drawn = readPicture("m.png");
  const uint8_t* center = &drawn.pixels[(size_t{30} * 64 + 32) * 4];
  EXPECT_EQ((std::vector<int>(center, center + 3)), (std::vector<int>{0xC0, 0x20, 0x10}));
}

TEST_F(RenderTool, NothingOfAModelVanishes) {
  folder.write("wall.bmp", std::string(BmpFile{.height = 1, .data = {"\x10\x20\xC0\0", 4}}));
  model("plain.vxm", octahedron(1, {0, 0, 0}, "nowhere"));
  BuiltMesh glow = octahedron(1, {0, 0, 0}, "wall");
  glow.shader = "selflight";
  model("glow.vxm", glow);
  const auto isDrawn = [&](const std::string& name, std::vector<std::string> words, bool lit) {
    words.insert(words.end(),
                 {name, "-o", "m.png", "--mode", "textured", "--background", "0", "--textures", "."});
    const Said said = run(words);
    EXPECT_EQ(said.error.find("--light head") != said.error.npos, lit) << said.error;
    const Picture drawn = readPicture("m.png");
    const uint8_t* center = &drawn.pixels[(size_t{30} * 64 + 32) * 4];
    return center[0] > 60;  // the grid is no brighter
  };
  EXPECT_TRUE(isDrawn("plain.vxm", {}, false));
  EXPECT_FALSE(isDrawn("plain.vxm", {"--untextured", "skip"}, false));
  EXPECT_TRUE(isDrawn("glow.vxm", {}, true));
  EXPECT_FALSE(isDrawn("glow.vxm", {"--light", "off"}, false));
}

TEST_F(RenderTool, WritesTheOverlayIntoThePicture) {
  model("m.vxm", octahedron(1, {0, 0, 0}));
  ASSERT_EQ(run({"m.vxm", "-o", "m.png", "--overlay"}).status, 0);
  const Picture drawn = readPicture("m.png");
  const uint32_t cyan[] = {0x00, 0xFF, 0xFF};
  int found = 0;
  for (size_t i = 0; i < drawn.pixels.size(); i += 4)
    found += std::equal(cyan, cyan + 3, &drawn.pixels[i]) ? 1 : 0;
  EXPECT_GT(found, 50);
}

TEST_F(RenderTool, EndsWithStatus2OnWrongUse) {
  model("a.vxm", octahedron(1, {0, 0, 0}));
  std::vector<std::vector<std::string>> uses = {
      {"a.vxm"},
      {"a.vxm", "-o", "a.jpg"},
      {"a.vxm", "-o", "a.png", "--out", "b"},
      {"a.vxm", "a.vxm", "-o", "a.png"},
      {"a.vxm", "-o", "a.png", "--eye", "1,2,3", "--turntable", "4"},
      {"a.vxm", "-o", "-", "--turntable", "4"}};
  const std::pair<const char*, const char*> options[] = {
      {"--size", "0x5"},    {"--size", "5x5x5"},    {"--size", "99999x5"}, {"--eye", "1,2"},
      {"--eye", "1,2,nan"}, {"--fov", "nan"},       {"--time", "nan"},     {"--yaw", "inf"},
      {"--filter", "8"},    {"--background", "22"}, {"--mode", "cubist"}};
  for (const auto& [option, value] : options) uses.push_back({"a.vxm", "-o", "a.png", option, value});
  for (const auto& use : uses) {
    const Said said = run(use);
    EXPECT_EQ(said.status, 2) << testing::PrintToString(use) << said.error;
    EXPECT_NE(said.error, "");
  }
  EXPECT_FALSE(fs::exists("a.png"));
  EXPECT_EQ(run({"nothing.vxm", "-o", "a.png"}).status, 1);
  EXPECT_EQ(run({"a.vxm", "-o", "a.vxm/b.png"}).status, 1);
}

TEST(PictureText, HasAGlyphForEveryCharacterOfTheOverlay) {
  const std::string texts = "0123456789-.FPS,msinfmaterials,meshes(verts,indices,tris)POS:ROT:ENVTIME:nan";
  for (const char character : texts) {
    Picture picture{10, 10, std::vector<uint8_t>(400)};
    drawText(picture, 2, 2, 0xFFFFFFFF, std::string_view(&character, 1));
    EXPECT_GT(std::ranges::count(picture.pixels, 0xFF), 0) << character;
  }
}

TEST(PictureText, IsCutOffAtThePictureSides) {
  Picture picture{4, 4, std::vector<uint8_t>(64)};
  for (const int32_t x : {-100, -3, 2, 100})
    for (const int32_t y : {-100, -3, 2, 100}) drawText(picture, x, y, 0xFFFFFFFF, "88888");
  EXPECT_GT(std::ranges::count(picture.pixels, 0xFF), 0);
}

}  // namespace
}  // namespace facet
