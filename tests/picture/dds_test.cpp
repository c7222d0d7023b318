#include <gmock/gmock.h>

#include "picture/image.h"
#include "picture/picture_files.h"

namespace facet {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

DdsFile blocks(uint32_t code, uint32_t width, uint32_t height, uint32_t mipCount, size_t dataBytes) {
  return {.width = width,
          .height = height,
          .mipCount = mipCount,
          .flags = 4,
          .code = code,
          .data = counting(dataBytes)};
}

FileBytes partOf(const FileBytes& bytes, size_t begin, size_t end) {
  return {bytes.begin() + static_cast<ptrdiff_t>(begin), bytes.begin() + static_cast<ptrdiff_t>(end)};
}

struct MaskCase {
  const char* name;
  uint32_t flags, bits, r, g, b, a;
  std::vector<uint8_t> pixel;  // of the file
  std::vector<uint8_t> rgba;   // expected
};

TEST(Dds, FindsTheFormatOfEachMaskAndScalesItsChannels) {
  const MaskCase cases[] = {
      {"A8R8G8B8", 0x41, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000, {1, 2, 3, 4}, {3, 2, 1, 4}},
      {"X8R8G8B8", 0x40, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000, {1, 2, 3, 4}, {3, 2, 1, 255}},
      {"A8B8G8R8", 0x41, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000, {1, 2, 3, 4}, {1, 2, 3, 4}},
      {"R8G8B8", 0x40, 24, 0xFF0000, 0xFF00, 0xFF, 0, {1, 2, 3}, {3, 2, 1, 255}},
      {"R5G6B5", 0x40, 16, 0xF800, 0x7E0, 0x1F, 0, {0x1F, 0x80}, {132, 0, 255, 255}},
      {"A1R5G5B5", 0x41, 16, 0x7C00, 0x3E0, 0x1F, 0x8000, {0xE0, 0x03}, {0, 255, 0, 0}},
      {"A4R4G4B4", 0x41, 16, 0xF00, 0xF0, 0xF, 0xF000, {0x21, 0x83}, {51, 34, 17, 136}},
      {"R3G3B2", 0x40, 8, 0xE0, 0x1C, 3, 0, {0xE1}, {255, 0, 85, 255}},
      {"A2R10G10B10", 0x41, 32, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000, {0xFF, 3, 0, 0x80}, {0, 0, 255, 170}},
      {"L8", 0x20000, 8, 0xFF, 0, 0, 0, {7}, {7, 7, 7, 255}},
      {"L16", 0x20000, 16, 0xFFFF, 0, 0, 0, {0, 0x80}, {128, 128, 128, 255}},
      {"A8L8", 0x20001, 16, 0xFF, 0, 0, 0xFF00, {7, 9}, {7, 7, 7, 9}},
      {"A8", 0x2, 8, 0, 0, 0, 0xFF, {7}, {0, 0, 0, 7}},
  };
  for (const MaskCase& c : cases) {
    DdsFile file{
        .width = 1, .height = 1, .flags = c.flags, .bits = c.bits, .r = c.r, .g = c.g, .b = c.b, .a = c.a};
    for (const uint8_t byte : c.pixel) file.data.push_back(std::byte{byte});
    const ImageResult result = decodeImage(file.bytes());
    ASSERT_TRUE(result.image) << c.name << ": " << result.error;
    EXPECT_EQ(formatName(result.image->info.Format), c.name);
    EXPECT_EQ(imagePixels(*result.image, 0), c.rgba) << c.name;
  }
}

TEST(Dds, KeepsBlocksAsTheyAreDownToTheSmallestLevel) {
  const ImageResult result = decodeImage(blocks(D3DFMT_DXT1, 8, 2, 4, 16 + 8 + 8 + 8).bytes());
  ASSERT_TRUE(result.image) << result.error;
  EXPECT_EQ(result.image->info.Format, D3DFMT_DXT1);
  ASSERT_EQ(result.image->levels.size(), 4u);
  EXPECT_EQ(result.image->levels[1].width, 4u);
  EXPECT_EQ(result.image->levels[1].height, 1u);
  EXPECT_EQ(result.image->levels[3].bytes, partOf(counting(40), 32, 40));
}

TEST(Dds, DecodesTransparentBlocks) {
  DdsFile file = blocks(D3DFMT_DXT1, 4, 4, 1, 0);
  append<uint16_t>(file.data, {0x001F, 0xF800});  // blue below red: three colours and nothing
  append<uint32_t>(file.data, {0b11'10'01'00});
  const auto pixels = imagePixels(*decodeImage(file.bytes()).image, 0);
  EXPECT_THAT(std::vector(pixels.begin(), pixels.begin() + 16),
              ElementsAre(0, 0, 255, 255, 255, 0, 0, 255, 127, 0, 127, 255, 0, 0, 0, 0));
}

TEST(Dds, CutsBlocksAtTheEdges) {
  DdsFile file = blocks(D3DFMT_DXT1, 9, 5, 1, 0);
  for (const uint16_t blue : {1, 2, 3, 4, 5, 6}) {  // of 31, whole blocks of it
    append<uint16_t>(file.data, {blue, 0});
    append<uint32_t>(file.data, {0});
  }
  const auto pixels = imagePixels(*decodeImage(file.bytes()).image, 0);
  ASSERT_EQ(pixels.size(), 9u * 5 * 4);
  for (uint32_t i = 0; i < 45; ++i)
    EXPECT_EQ((pixels[i * 4 + 2] * 31 + 127) / 255, i % 9 / 4 + i / 9 / 4 * 3 + 1) << i;
}

TEST(Dds, LeavesOutMipmapsThatTheFileDoesNotHold) {
  struct {
    uint32_t mipCount;
    size_t bytes;
    uint32_t levels;
  } const cases[] = {{0, 128, 1}, {5, 184, 5}, {255, 184, 5}, {5, 183, 4}, {5, 128, 1}};
  for (const auto& c : cases) {
    const ImageResult result = decodeImage(blocks(D3DFMT_DXT1, 16, 16, c.mipCount, c.bytes).bytes());
    ASSERT_TRUE(result.image) << c.mipCount << ": " << result.error;
    EXPECT_EQ(result.image->info.MipLevels, c.levels);
    EXPECT_EQ(result.image->levels.size(), c.levels);
  }
}

TEST(Dds, ShowsTheFirstSliceOfEachLevelOfAVolume) {
  DdsFile file{.width = 2,
               .height = 1,
               .depth = 2,
               .mipCount = 2,
               .flags = 0x20000,
               .bits = 8,
               .r = 0xFF,
               .caps2 = 0x200000,
               .data = counting(5)};
  const ImageResult result = decodeImage(file.bytes());
  ASSERT_TRUE(result.image) << result.error;
  EXPECT_THAT(result.image->levels[0].bytes, ElementsAre(std::byte{0}, std::byte{1}));
  EXPECT_THAT(result.image->levels[1].bytes, ElementsAre(std::byte{4}));
}

TEST(Dds, LooksUpPalettes) {
  DdsFile file{.width = 2, .height = 1, .flags = 0x60, .bits = 8, .extension = FileBytes(1024)};
  file.extension[4] = std::byte{10};  // colour 1: red 10
  append<uint8_t>(file.data, {1, 0});
  const ImageResult opaque = decodeImage(file.bytes());
  EXPECT_EQ(opaque.image->info.Format, D3DFMT_A8R8G8B8);
  EXPECT_THAT(imagePixels(*opaque.image, 0), ElementsAre(10, 0, 0, 255, 0, 0, 0, 255));
  file.extension[7] = std::byte{20};  // its alpha
  EXPECT_THAT(imagePixels(*decodeImage(file.bytes()).image, 0), ElementsAre(10, 0, 0, 20, 0, 0, 0, 0));
}

TEST(Dds, ReadsTheExtendedHeaderForFormatsThatDirect3D9Has) {
  DdsFile file = blocks(0x30315844, 4, 4, 1, 8);
  append<uint32_t>(file.extension, {71, 3, 0, 1, 0});
  EXPECT_EQ(decodeImage(file.bytes()).image->info.Format, D3DFMT_DXT1);
  file.extension[0] = std::byte{98};  // BC7
  EXPECT_THAT(decodeImage(file.bytes()).error, HasSubstr("not known"));
}

TEST(Dds, RefusesWhatIsNotWhole) {
  struct {
    const char* name;
    FileBytes file;
    const char* error;
  } const cases[] = {
      {"no height", blocks(D3DFMT_DXT1, 4, 0, 1, 8).bytes(), "4 x 0"},
      {"too wide", blocks(D3DFMT_DXT1, 32769, 1, 1, 8).bytes(), "32769 x 1"},
      {"first level cut", blocks(D3DFMT_DXT1, 4, 4, 1, 7).bytes(), "has 7 bytes, 8 are needed"},
      {"huge level", blocks(D3DFMT_DXT5, 32768, 32768, 16, 8).bytes(), "1073741824 are needed"},
      {"header cut", partOf(blocks(D3DFMT_DXT1, 4, 4, 1, 8).bytes(), 0, 4), "128 are needed"},
      {"mask", DdsFile{.g = 0xFFFFFFFF, .data = counting(64)}.bytes(), "not known"},
      {"code", blocks(0x34354342, 4, 4, 1, 99).bytes(), "not known"},
      {"palette cut", DdsFile{.flags = 0x20, .bits = 8, .data = counting(1023)}.bytes(), "palette"},
      {"slices", DdsFile{.depth = 0xFFFFFFFF, .caps2 = 0x200000, .data = counting(64)}.bytes(), "slices"},
      {"slices cut", DdsFile{.depth = 2, .caps2 = 0x200000, .data = counting(127)}.bytes(), "128 are needed"},
  };
  for (const auto& c : cases) {
    const ImageResult result = decodeImage(c.file);
    EXPECT_FALSE(result.image) << c.name;
    EXPECT_THAT(result.error, HasSubstr(c.error)) << c.name;
  }
}

}  // namespace
}  // namespace facet
