#include <gmock/gmock.h>

#include "device/texture.h"
#include "support/recording_device.h"

namespace facet {
namespace {

using ::testing::ElementsAre;

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

std::vector<uint32_t> pixelsOf(IDirect3DTexture9& texture, uint32_t level) {
  D3DSURFACE_DESC desc;
  D3DLOCKED_RECT locked;
  EXPECT_EQ(texture.GetLevelDesc(level, &desc), D3D_OK);
  EXPECT_EQ(texture.LockRect(level, &locked), D3D_OK);
  const auto* first = static_cast<const uint32_t*>(locked.pBits);
  return {first, first + size_t{desc.Width} * desc.Height};
}

TEST(Texture, TakesTheLevelsOfThePicture) {
  RecordingDevice device;
  const auto texture = createTexture(device, countingImage(4, 2, 2), 0, 0, 2);
  ASSERT_TRUE(texture);
  EXPECT_THAT(device.callsOf("CreateTexture"),
              ElementsAre(DeviceCall{"CreateTexture", {4, 2, 2, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED}}));
  EXPECT_THAT(pixelsOf(*texture, 0), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
  EXPECT_THAT(pixelsOf(*texture, 1), ElementsAre(8, 9));
}

TEST(Texture, HasFewerLevelsWhenFewerAreAskedFor) {
  RecordingDevice device;
  EXPECT_EQ(createTexture(device, countingImage(4, 4, 3), 0, 0, 1)->GetLevelCount(), 1u);
}

TEST(Texture, PointSamplesTheLevelsThatThePictureLacks) {
  RecordingDevice device;
  const auto texture = createTexture(device, countingImage(4, 2, 1), 0, 0, 0);
  ASSERT_EQ(texture->GetLevelCount(), 3u);
  EXPECT_THAT(pixelsOf(*texture, 1), ElementsAre(5, 7));
  EXPECT_THAT(pixelsOf(*texture, 2), ElementsAre(7));
}

TEST(Texture, PointSamplesAPictureOfAnotherSize) {
  RecordingDevice device;
  const auto half = createTexture(device, countingImage(4, 4, 3), 2, 2, 2);
  EXPECT_THAT(pixelsOf(*half, 0), ElementsAre(5, 7, 13, 15));
  EXPECT_THAT(pixelsOf(*half, 1), ElementsAre(15));
  const auto twice = createTexture(device, countingImage(2, 1, 1), 4, 1, 1);
  EXPECT_THAT(pixelsOf(*twice, 0), ElementsAre(0, 0, 1, 1));
}

TEST(Texture, CopiesBlocksAndConvertsFormatsThatTexturesLack) {
  RecordingDevice device;
  Image image;
  image.info = {.Width = 8, .Height = 8, .Format = D3DFMT_DXT3};
  image.levels = {{8, 8, std::vector<std::byte>(64, std::byte{0x5A})}};
  const auto blocks = createTexture(device, image, 8, 8, 1);
  D3DLOCKED_RECT locked;
  ASSERT_EQ(blocks->LockRect(0, &locked), D3D_OK);
  EXPECT_EQ(locked.Pitch, 32u);
  EXPECT_EQ(static_cast<uint8_t*>(locked.pBits)[63], 0x5A);

  image.info = {.Width = 1, .Height = 1, .Format = D3DFMT_R8G8B8};
  image.levels = {{1, 1, {std::byte{1}, std::byte{2}, std::byte{3}}}};
  EXPECT_THAT(pixelsOf(*createTexture(device, image, 0, 0, 1), 0), ElementsAre(0xFF030201));
}

TEST(Texture, IsNoneWhenTheDeviceRefuses) {
  RecordingDevice device;
  device.caps.MaxTextureWidth = 2;
  EXPECT_FALSE(createTexture(device, countingImage(4, 4, 1), 0, 0, 1));
  device.results["CreateTexture"] = D3DERR_OUTOFVIDEOMEMORY;
  EXPECT_FALSE(createTexture(device, countingImage(2, 2, 1), 0, 0, 1));
  EXPECT_EQ(device.liveObjects(), 0);
}

}  // namespace
}  // namespace facet
