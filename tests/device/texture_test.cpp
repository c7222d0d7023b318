#include <gmock/gmock.h>

#include "device/texture.h"
#include "picture/pixels.h"
#include "support/recording_device.h"

namespace facet {
namespace {

using ::testing::Each;

/// A picture with levels whose pixels count on from 0 in A8R8G8B8.
Image countingImage(uint32_t width, uint32_t height, uint32_t levels) {
  Image image;
  image.info = {.Width = width, .Height = height, .MipLevels = levels, .Format = D3DFMT_A8R8G8B8};
  uint32_t next = 0;
  for (uint32_t i = 0; i < levels; ++i) {
    ImageLevel level{width >> i, height >> i, {}};
    for (uint32_t p = 0; p < level.width * level.height; ++p, ++next) {
      const auto* bytes = reinterpret_cast<const std::byte*>(&next);
      level.bytes.insert(level.bytes.end(), bytes, bytes + 4);
    }
    image.levels.push_back(std::move(level));
  }
  return image;
}

/// The levels of the texture that the picture gives, each as the words it holds; none without texture.
std::vector<std::vector<uint32_t>> levelsOf(const Image& image, uint32_t width, uint32_t height,
                                            uint32_t levels, D3DFORMAT format = D3DFMT_A8R8G8B8) {
  RecordingDevice device;
  const auto texture = createTexture(device, image, width, height, levels);
  const auto& recorded = static_cast<RecordedTexture&>(*texture);
  EXPECT_EQ(recorded.format, format);
  std::vector<std::vector<uint32_t>> result;
  for (const ImageLevel& level : recorded.levels) {
    EXPECT_EQ(level.bytes.size(), levelBytes(format, level.width, level.height));
    EXPECT_EQ(level.width, std::max(width >> result.size(), 1u));
    EXPECT_EQ(level.height, std::max(height >> result.size(), 1u));
    result.emplace_back(level.bytes.size() / 4);
    std::memcpy(result.back().data(), level.bytes.data(), result.back().size() * 4);
  }
  return result;
}

TEST(Texture, TakesTheLevelsOfThePictureAndPointSamplesWhatItLacks) {
  using Levels = std::vector<std::vector<uint32_t>>;
  EXPECT_EQ(levelsOf(countingImage(4, 2, 2), 4, 2, 2), (Levels{{0, 1, 2, 3, 4, 5, 6, 7}, {8, 9}}));
  EXPECT_EQ(levelsOf(countingImage(4, 4, 3), 4, 4, 1).size(), 1u) << "fewer are asked for";
  EXPECT_EQ(levelsOf(countingImage(4, 2, 1), 4, 2, 9), (Levels{{0, 1, 2, 3, 4, 5, 6, 7}, {5, 7}, {7}}));
  EXPECT_EQ(levelsOf(countingImage(4, 4, 3), 2, 2, 2), (Levels{{5, 7, 13, 15}, {15}})) << "halved";
  EXPECT_EQ(levelsOf(countingImage(2, 1, 1), 4, 1, 1), (Levels{{0, 0, 1, 1}})) << "twice as wide";
}

TEST(Texture, CopiesBlocksAndConvertsFormatsThatTexturesLack) {
  Image image;
  image.info = {.Width = 8, .Height = 8, .Format = D3DFMT_DXT3};
  image.levels = {{8, 8, std::vector<std::byte>(64, std::byte{0x5A})}};
  EXPECT_THAT(levelsOf(image, 8, 8, 1, D3DFMT_DXT3)[0], Each(0x5A5A5A5A));
  image.info = {.Width = 1, .Height = 1, .Format = D3DFMT_R8G8B8};
  image.levels = {{1, 1, {std::byte{1}, std::byte{2}, std::byte{3}}}};
  EXPECT_THAT(levelsOf(image, 1, 1, 1)[0], Each(0xFF030201));
}

TEST(Texture, IsNoneWhenTheDeviceRefuses) {
  RecordingDevice device;
  device.creationsLeft = 0;
  EXPECT_FALSE(createTexture(device, countingImage(2, 2, 1), 2, 2, 1));
}

}  // namespace
}  // namespace facet
