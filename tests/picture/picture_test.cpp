#include <gmock/gmock.h>

#include <numeric>

#include "picture/image.h"
#include "support/picture_files.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using ::testing::HasSubstr;

std::string bytesOf(std::initializer_list<uint8_t> values) {
  return {values.begin(), values.end()};
}

/// `count` bytes 0, 1, 2 ...
std::string counting(size_t count) {
  std::string bytes(count, '\0');
  std::iota(bytes.begin(), bytes.end(), '\0');
  return bytes;
}

DdsFile blocks(uint32_t code, uint32_t width, uint32_t height, uint32_t mipCount, std::string data) {
  return {.width = width, .height = height, .mipCount = mipCount, .flags = 4, .code = code, .data = data};
}

ImageResult decoded(const std::string& file) {
  return decodeImage(asBytes(file));
}

TEST(Dds, FindsTheFormatOfEachMaskAndScalesItsChannels) {
  const struct {
    const char* name;
    uint32_t flags, bits, r, g, b, a;
    std::vector<uint8_t> pixel;  // of the file
    std::vector<uint8_t> rgba;   // expected
  } cases[] = {
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
  for (const auto& [name, flags, bits, r, g, b, a, pixel, rgba] : cases) {
    const std::string data(pixel.begin(), pixel.end());
    const ImageResult result = decoded(DdsFile{1, 1, 0, 1, flags, 0, bits, r, g, b, a, 0, data});
    ASSERT_TRUE(result.image) << name << ": " << result.error;
    EXPECT_EQ(formatName(result.image->info.Format), name);
    EXPECT_EQ(imagePixels(*result.image, 0), rgba) << name;
  }
}

TEST(Dds, CutsBlocksAtTheEdges) {
  ByteWriter block;
  for (const uint16_t blue : {1, 2, 3, 4, 5, 6})
    block.write(blue, uint16_t{0}, 0u);  // of 31, whole blocks of it
  const auto pixels = imagePixels(*decoded(blocks(D3DFMT_DXT1, 9, 5, 1, block.bytes())).image, 0);
  ASSERT_EQ(pixels.size(), 9u * 5 * 4);
  for (uint32_t i = 0; i < 45; ++i)
    EXPECT_EQ((pixels[i * 4 + 2] * 31 + 127) / 255, i % 9 / 4 + i / 9 / 4 * 3 + 1) << i;
}

TEST(Dds, HoldsTheLevelsOfTheFileAsTheyAre) {
  DdsFile volume{.width = 2, .height = 1, .depth = 2, .mipCount = 2, .caps2 = 0x200000};
  volume.data = counting(20);
  const DdsFile extended =
      blocks(0x30315844, 4, 4, 1, ByteWriter().write(71u, 3u, 0u, 1u, 0u).raw(counting(8)).bytes());
  // A file, its format, the offsets of its levels, and where the last ends.
  const std::tuple<std::string, D3DFORMAT, std::vector<size_t>> cases[] = {
      {blocks(D3DFMT_DXT1, 8, 2, 4, counting(40)), D3DFMT_DXT1, {128, 144, 152, 160, 168}},
      {blocks(D3DFMT_DXT1, 16, 16, 0, counting(128)), D3DFMT_DXT1, {128, 256}},
      {blocks(D3DFMT_DXT1, 16, 16, 5, counting(184)), D3DFMT_DXT1, {128, 256, 288, 296, 304, 312}},
      {blocks(D3DFMT_DXT1, 16, 16, 255, counting(184)), D3DFMT_DXT1, {128, 256, 288, 296, 304, 312}},
      {blocks(D3DFMT_DXT1, 16, 16, 5, counting(183)), D3DFMT_DXT1, {128, 256, 288, 296, 304}},
      {blocks(D3DFMT_DXT1, 16, 16, 5, counting(128)), D3DFMT_DXT1, {128, 256}},
      {extended, D3DFMT_DXT1, {148, 156}},
  };
  for (const auto& [file, format, offsets] : cases) {
    const ImageResult result = decoded(file);
    ASSERT_TRUE(result.image) << result.error;
    const auto& [info, levels] = *result.image;
    EXPECT_EQ(info.Format, format);
    ASSERT_EQ(levels.size(), offsets.size() - 1);
    EXPECT_EQ(info.MipLevels, levels.size());
    for (size_t i = 0; i < levels.size(); ++i) {
      EXPECT_EQ(levels[i].width, std::max(info.Width >> i, 1u));
      EXPECT_EQ(levels[i].height, std::max(info.Height >> i, 1u));
      EXPECT_TRUE(std::ranges::equal(levels[i].bytes,
                                     asBytes(file).subspan(offsets[i], offsets[i + 1] - offsets[i])));
    }
  }
  const auto first = decoded(volume).image->levels;  // slices of each level
  EXPECT_TRUE(std::ranges::equal(first[0].bytes, asBytes(counting(8))));
  EXPECT_TRUE(std::ranges::equal(first[1].bytes, asBytes(volume.data).subspan(16)));
}

TEST(Picture, IsReadFromEachKindOfFile) {
  const std::string six = bytesOf({1, 2, 3, 4, 5, 6});
  const std::vector<uint8_t> upright{3, 2, 1, 255, 6, 5, 4, 255}, turned{6, 5, 4, 255, 3, 2, 1, 255};
  const std::string opaquePalette = std::string(4, '\0') + '\x0A' + std::string(1019, '\0');  // 1 is red 10
  const std::string palette = std::string(4, '\0') + bytesOf({10, 0, 0, 20}) + std::string(1016, '\0');
  const std::string shortBmp =
      ByteWriter()
          .raw("BM")
          .write(0u, 0u, 32u, 12u, uint16_t{2}, uint16_t{1}, uint16_t{1}, uint16_t{1})
          .raw(six + bytesOf({0x40, 0, 0, 0}))
          .bytes();
  const std::tuple<const char*, std::string, std::vector<uint8_t>> cases[] = {
      {"DDS, three colours and nothing",
       blocks(D3DFMT_DXT1, 4, 1, 1, bytesOf({0x1F, 0, 0, 0xF8, 0xE4, 0, 0, 0})),
       {0, 0, 255, 255, 255, 0, 0, 255, 127, 0, 127, 255, 0, 0, 0, 0}},
      {"DDS, palette without alpha",
       DdsFile{.width = 2, .height = 1, .flags = 0x60, .bits = 8, .data = opaquePalette + bytesOf({1, 0})},
       {10, 0, 0, 255, 0, 0, 0, 255}},
      {"DDS, palette",
       DdsFile{.width = 2, .height = 1, .flags = 0x60, .bits = 8, .data = palette + bytesOf({1, 0})},
       {10, 0, 0, 20, 0, 0, 0, 0}},
      {"TGA, 24 bits", TgaFile{.data = six}, upright},
      {"TGA, bottom first", TgaFile{.descriptor = 0, .data = six}, turned},
      {"TGA, right to left", TgaFile{.descriptor = 0x30, .width = 2, .height = 1, .data = six}, turned},
      {"TGA, 32 bits", TgaFile{2, 32, 0x28, 1, 1, bytesOf({1, 2, 3, 0})}, {3, 2, 1, 0}},
      {"TGA, unused alpha", TgaFile{2, 32, 0x20, 1, 1, bytesOf({1, 2, 3, 0})}, {3, 2, 1, 255}},
      {"TGA, 16 bits", TgaFile{2, 16, 0x20, 1, 1, bytesOf({0x1F, 0x7C})}, {255, 0, 255, 255}},
      {"TGA, gray", TgaFile{3, 8, 0x20, 2, 1, bytesOf({7, 9})}, {7, 7, 7, 255, 9, 9, 9, 255}},
      {"TGA, palette", TgaFile{1, 8, 0x20, 2, 1, six + bytesOf({1, 0}), 0, 2, 24}, turned},
      {"TGA, runs over rows",
       TgaFile{11, 8, 0x20, 2, 2, bytesOf({0x82, 7, 0x00, 9})},
       {7, 7, 7, 255, 7, 7, 7, 255, 7, 7, 7, 255, 9, 9, 9, 255}},
      {"BMP, last row without its padding", BmpFile{.data = bytesOf({1, 2, 3, 0, 4, 5, 6})}, turned},
      {"BMP, 32 bits, top first", BmpFile{1, -2, 32, 0, {}, bytesOf({1, 2, 3, 0, 4, 5, 6, 7})}, upright},
      {"BMP, masks",
       BmpFile{1, 1, 16, 3, bytesOf({0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 0x1F, 0, 0, 0}), bytesOf({0xFF, 7})},
       {0, 255, 255, 255}},
      {"BMP, palette, one index beyond it",
       BmpFile{2, 1, 4, 0, bytesOf({1, 2, 3, 0, 4, 5, 6, 0}), bytesOf({0x12, 0, 0, 0})},
       {6, 5, 4, 255, 0, 0, 0, 255}},
      {"BMP, short header", shortBmp, upright},
  };
  for (const auto& [name, file, rgba] : cases) {
    const ImageResult result = decoded(file);
    ASSERT_TRUE(result.image) << name << ": " << result.error;
    EXPECT_EQ(imagePixels(*result.image, 0), rgba) << name;
  }
}

TEST(Picture, IsRefusedWhenItIsNotWholeOrNotKnown) {
  const std::pair<std::string, const char*> cases[] = {
      {blocks(D3DFMT_DXT1, 4, 0, 1, counting(8)), "4 x 0"},
      {blocks(D3DFMT_DXT1, 32769, 1, 1, counting(8)), "32769 x 1"},
      {blocks(D3DFMT_DXT1, 4, 4, 1, counting(7)), "has 7 bytes, 8 are needed"},
      {blocks(D3DFMT_DXT5, 32768, 32768, 16, counting(8)), "1073741824 are needed"},
      {"DDS ", "128 are needed"},
      {DdsFile{.g = 0xFFFFFFFF, .data = counting(64)}, "not known"},
      {blocks(0x34354342, 4, 4, 1, counting(99)), "not known"},
      {blocks(0x30315844, 4, 4, 1, ByteWriter().write(98u).zeros(32).bytes()), "not known"},  // BC7
      {DdsFile{.flags = 0x20, .bits = 8, .data = counting(1023)}, "palette"},
      {DdsFile{.depth = 0xFFFFFFFF, .caps2 = 0x200000, .data = counting(64)}, "slices"},
      {DdsFile{.depth = 2, .caps2 = 0x200000, .data = counting(127)}, "128 are needed"},
      {TgaFile{.width = 2, .data = counting(11)}, "has 11 bytes, 12 are needed"},
      {TgaFile{11, 8, 0x20, 2, 2, bytesOf({0x83})}, "2 are needed"},
      {TgaFile{11, 8, 0x20, 2, 2, bytesOf({0x80, 1, 0x80, 1})}, "5 are needed"},
      {TgaFile{10, 24, 0x20, 32768, 32768, counting(99)}, "too many pixels"},
      {TgaFile{10, 24, 0x20, 65535, 2, counting(99)}, "65535 x 2"},
      {TgaFile{1, 8, 0x20, 2, 2, counting(7), 1, 1, 24}, "palette"},
      {TgaFile{.kind = 4, .data = counting(12)}, "is no"},
      {TgaFile{.bits = 23, .data = counting(12)}, "is no"},
      {BmpFile{.width = 2, .data = counting(13)}, "has 13 bytes, 14 are needed"},
      {BmpFile{.bits = 0, .data = counting(99)}, "0 bits"},
      {BmpFile{.bits = 8, .compression = 1, .data = counting(99)}, "save it without compression"},
      {BmpFile{.height = INT32_MIN, .data = counting(99)}, "2147483648"},
      {BmpFile{.width = -2, .data = counting(99)}, "0 x 2"},
      {BmpFile{.compression = 3, .data = counting(99)}, "not read"},
  };
  for (const auto& [file, error] : cases) {
    const ImageResult result = decoded(file);
    EXPECT_FALSE(result.image) << error;
    EXPECT_THAT(result.error, HasSubstr(error));
  }
}

TEST(Png, ComesBackAsItWasEncoded) {
  std::vector<uint8_t> pixels(5 * 3 * 4);
  std::iota(pixels.begin(), pixels.end(), uint8_t{0});
  for (const D3DFORMAT format : {D3DFMT_A8R8G8B8, D3DFMT_X8R8G8B8}) {
    const ImageResult result = decodeImage(encodePng(pixels, 5, 3));
    ASSERT_TRUE(result.image) << result.error;
    EXPECT_EQ(result.image->info.Width, 5u);
    EXPECT_EQ(result.image->info.ImageFileFormat, D3DXIFF_PNG);
    EXPECT_EQ(result.image->info.Format, format);
    EXPECT_EQ(imagePixels(*result.image, 0), pixels);
    for (size_t i = 3; i < pixels.size(); i += 4) pixels[i] = 255;  // opaque the second time
  }
  EXPECT_TRUE(encodePng(pixels, 5, 4).empty());
}

TEST(Picture, IsRefusedAtEachCutWithoutHarm) {
  const std::vector<std::byte> png = encodePng(std::vector<uint8_t>(4 * 4 * 4, 7), 4, 4);
  const std::string files[] = {
      {reinterpret_cast<const char*>(png.data()), png.size()},
      TgaFile{10, 24, 0x20, 4, 1, bytesOf({0x81, 1, 2, 3, 1, 4, 5, 6, 7, 8, 9})},
      BmpFile{2, 2, 8, 0, counting(1024), counting(6)},
      DdsFile{.data = counting(64)},
  };
  for (const std::string& file : files) {
    ASSERT_TRUE(decoded(file).image);
    // A picture may lack what follows its pixels, as the end mark of a PNG file.
    const size_t spare = &file == &files[0] ? 16 : 0;
    for (size_t length = 0; length + spare < file.size(); ++length)
      EXPECT_FALSE(decoded(file.substr(0, length)).image) << length << " of " << file.size();
  }
}

TEST(Picture, IsLoadedFromAFileWhateverItsName) {
  const TempFolder folder;
  EXPECT_EQ(
      loadImage(folder.write("a.dds", std::string(TgaFile{.data = counting(6)}))).image->info.ImageFileFormat,
      D3DXIFF_TGA);
  EXPECT_THAT(loadImage(folder / "none.dds").error, HasSubstr("cannot be opened"));
}

}  // namespace
}  // namespace facet
