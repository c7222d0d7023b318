#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <numeric>

#include "picture/image.h"
#include "picture/picture_files.h"

namespace facet {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::vector<uint8_t> pixelsOf(const FileBytes& file) {
  const ImageResult result = decodeImage(file);
  EXPECT_TRUE(result.image) << result.error;
  return result.image ? imagePixels(*result.image, 0) : std::vector<uint8_t>{};
}

FileBytes bytesOf(std::initializer_list<uint8_t> values) {
  FileBytes bytes;
  append(bytes, values);
  return bytes;
}

struct GoodFile {
  const char* name;
  FileBytes file;
  std::vector<uint8_t> rgba;
};

void expectPixels(const std::vector<GoodFile>& cases) {
  for (const auto& c : cases) EXPECT_EQ(pixelsOf(c.file), c.rgba) << c.name;
}

struct BadFile {
  const char* name;
  FileBytes file;
  const char* error;
};

void expectErrors(const std::vector<BadFile>& cases) {
  for (const auto& c : cases) {
    const ImageResult result = decodeImage(c.file);
    EXPECT_FALSE(result.image) << c.name;
    EXPECT_THAT(result.error, HasSubstr(c.error)) << c.name;
  }
}

TEST(Tga, ReadsEachKindAndOrder) {
  expectPixels({
      {"24 bits",
       TgaFile{.width = 1, .height = 2, .data = bytesOf({1, 2, 3, 4, 5, 6})}.bytes(),
       {3, 2, 1, 255, 6, 5, 4, 255}},
      {"bottom first",
       TgaFile{.descriptor = 0, .width = 1, .height = 2, .data = bytesOf({1, 2, 3, 4, 5, 6})}.bytes(),
       {6, 5, 4, 255, 3, 2, 1, 255}},
      {"right to left",
       TgaFile{.descriptor = 0x30, .width = 2, .height = 1, .data = bytesOf({1, 2, 3, 4, 5, 6})}.bytes(),
       {6, 5, 4, 255, 3, 2, 1, 255}},
      {"32 bits",
       TgaFile{.bits = 32, .descriptor = 0x28, .width = 1, .height = 1, .data = bytesOf({1, 2, 3, 0})}
           .bytes(),
       {3, 2, 1, 0}},
      {"unused alpha",
       TgaFile{.bits = 32, .width = 1, .height = 1, .data = bytesOf({1, 2, 3, 0})}.bytes(),
       {3, 2, 1, 255}},
      {"16 bits",
       TgaFile{.bits = 16, .width = 1, .height = 1, .data = bytesOf({0x1F, 0x7C})}.bytes(),
       {255, 0, 255, 255}},
      {"gray",
       TgaFile{.kind = 3, .bits = 8, .width = 2, .height = 1, .data = bytesOf({7, 9})}.bytes(),
       {7, 7, 7, 255, 9, 9, 9, 255}},
      {"palette",
       TgaFile{.kind = 1,
               .bits = 8,
               .width = 2,
               .height = 1,
               .mapLength = 2,
               .mapBits = 24,
               .data = bytesOf({1, 2, 3, 4, 5, 6, 1, 0})}
           .bytes(),
       {6, 5, 4, 255, 3, 2, 1, 255}},
      {"runs over rows",
       TgaFile{.kind = 11, .bits = 8, .width = 2, .height = 2, .data = bytesOf({0x82, 7, 0x00, 9})}.bytes(),
       {7, 7, 7, 255, 7, 7, 7, 255, 7, 7, 7, 255, 9, 9, 9, 255}},
  });
}

TEST(Tga, RefusesWhatIsNotWhole) {
  expectErrors({
      {"pixels cut", TgaFile{.data = counting(11)}.bytes(), "has 11 bytes, 12 are needed"},
      {"run cut", TgaFile{.kind = 11, .bits = 8, .data = bytesOf({0x83})}.bytes(), "2 are needed"},
      {"run missing", TgaFile{.kind = 11, .bits = 8, .data = bytesOf({0x80, 1, 0x80, 1})}.bytes(),
       "5 are needed"},
      {"huge and packed", TgaFile{.kind = 10, .width = 32768, .height = 32768, .data = counting(99)}.bytes(),
       "too many pixels"},
      {"too wide", TgaFile{.kind = 10, .width = 65535, .data = counting(99)}.bytes(), "65535 x 2"},
      {"palette from 1",
       TgaFile{.kind = 1, .bits = 8, .mapStart = 1, .mapLength = 1, .mapBits = 24, .data = counting(7)}
           .bytes(),
       "palette"},
      {"no such kind", TgaFile{.kind = 4, .data = counting(12)}.bytes(), "is no"},
      {"no such depth", TgaFile{.bits = 23, .data = counting(12)}.bytes(), "is no"},
  });
}

TEST(Bmp, ReadsEachDepthAndOrder) {
  expectPixels({
      {"24 bits, last row without its padding",
       BmpFile{.width = 1, .data = bytesOf({1, 2, 3, 0, 4, 5, 6})}.bytes(),
       {6, 5, 4, 255, 3, 2, 1, 255}},
      {"32 bits, top first",
       BmpFile{.width = 1, .height = -2, .bits = 32, .data = bytesOf({1, 2, 3, 0, 4, 5, 6, 7})}.bytes(),
       {3, 2, 1, 255, 6, 5, 4, 255}},
      {"masks",
       BmpFile{.width = 1,
               .height = 1,
               .bits = 16,
               .compression = 3,
               .palette = bytesOf({0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 0x1F, 0, 0, 0}),
               .data = bytesOf({0xFF, 7})}
           .bytes(),
       {0, 255, 255, 255}},
      {"palette, one index beyond it",
       BmpFile{.width = 2,
               .height = 1,
               .bits = 4,
               .palette = bytesOf({1, 2, 3, 0, 4, 5, 6, 0}),
               .data = bytesOf({0x12, 0, 0, 0})}
           .bytes(),
       {6, 5, 4, 255, 0, 0, 0, 255}},
  });
}

TEST(Bmp, ReadsTheOldShortHeader) {
  FileBytes file;
  append(file, "BM");
  append<uint32_t>(file, {0, 0, 14 + 12 + 6, 12});
  append<uint16_t>(file, {2, 1, 1, 1});
  append<uint8_t>(file, {1, 2, 3, 4, 5, 6, 0x40, 0, 0, 0});
  EXPECT_THAT(pixelsOf(file), ElementsAre(3, 2, 1, 255, 6, 5, 4, 255));
}

TEST(Bmp, RefusesWhatIsNotWhole) {
  expectErrors({
      {"pixels cut", BmpFile{.data = counting(13)}.bytes(), "has 13 bytes, 14 are needed"},
      {"no depth", BmpFile{.bits = 0, .data = counting(99)}.bytes(), "0 bits"},
      {"runs", BmpFile{.bits = 8, .compression = 1, .data = counting(99)}.bytes(), "the way 1"},
      {"lowest height", BmpFile{.height = INT32_MIN, .data = counting(99)}.bytes(), "2147483648"},
      {"below no width", BmpFile{.width = -2, .data = counting(99)}.bytes(), "0 x 2"},
      {"masks of 24 bits", BmpFile{.compression = 3, .data = counting(99)}.bytes(), "not read"},
  });
}

TEST(Png, ComesBackAsItWasEncoded) {
  std::vector<uint8_t> pixels(5 * 3 * 4);
  std::iota(pixels.begin(), pixels.end(), uint8_t{0});
  const FileBytes file = encodePng(pixels, 5, 3);
  const ImageResult result = decodeImage(file);
  ASSERT_TRUE(result.image) << result.error;
  EXPECT_EQ(result.image->info.Width, 5u);
  EXPECT_EQ(result.image->info.ImageFileFormat, D3DXIFF_PNG);
  EXPECT_EQ(result.image->info.Format, D3DFMT_A8R8G8B8);
  EXPECT_EQ(imagePixels(*result.image, 0), pixels);
  EXPECT_TRUE(encodePng(pixels, 5, 4).empty());

  for (size_t i = 3; i < pixels.size(); i += 4) pixels[i] = 255;
  const ImageResult opaque = decodeImage(encodePng(pixels, 5, 3));
  EXPECT_EQ(opaque.image->info.Format, D3DFMT_X8R8G8B8);
  EXPECT_EQ(imagePixels(*opaque.image, 0), pixels);
}

TEST(Picture, IsRefusedAtEachCutWithoutHarm) {
  const FileBytes files[] = {
      encodePng(std::vector<uint8_t>(4 * 4 * 4, 7), 4, 4),
      TgaFile{.kind = 10, .width = 4, .height = 1, .data = bytesOf({0x81, 1, 2, 3, 1, 4, 5, 6, 7, 8, 9})}
          .bytes(),
      BmpFile{.bits = 8, .palette = counting(1024), .data = counting(6)}.bytes(),
      DdsFile{.data = counting(64)}.bytes(),
  };
  for (const FileBytes& file : files) {
    ASSERT_TRUE(decodeImage(file).image);
    // A picture may lack what follows its pixels, as the end mark of a PNG file.
    const size_t spare = &file == &files[0] ? 16 : 0;
    for (size_t length = 0; length + spare < file.size(); ++length) {
      EXPECT_FALSE(decodeImage(std::span(file).first(length)).image) << length << " of " << file.size();
    }
  }
}

TEST(Picture, IsLoadedFromAFileWhateverItsName) {
  const auto path = std::filesystem::temp_directory_path() / "facet_picture_test.dds";
  const FileBytes file = TgaFile{.data = counting(12)}.bytes();
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(file.data()), std::ssize(file));
  EXPECT_EQ(loadImage(path).image->info.ImageFileFormat, D3DXIFF_TGA);
  std::filesystem::remove(path);
  EXPECT_THAT(loadImage(path).error, HasSubstr("cannot be opened"));
}

}  // namespace
}  // namespace facet
