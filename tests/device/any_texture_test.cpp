#include "any_device.h"

// What textures look like on each device.

namespace facet {
namespace {

class Textures : public AnyDevice {};

TEST_P(Textures, CombinesTextureAndVertexColour) {
  struct {
    uint32_t op, first, second, expected;
  } const cases[] = {
      {D3DTOP_SELECTARG1, D3DTA_TEXTURE, D3DTA_CURRENT, 0x80FF20},
      {D3DTOP_SELECTARG2, D3DTA_TEXTURE, D3DTA_CURRENT, 0xFF8040},
      {D3DTOP_SELECTARG1, D3DTA_DIFFUSE, D3DTA_TEXTURE, 0xFF8040},
      {D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_CURRENT, 0x808008},
      {D3DTOP_MODULATE2X, D3DTA_TEXTURE, D3DTA_CURRENT, 0xFFFF10},
      {D3DTOP_DISABLE, D3DTA_TEXTURE, D3DTA_CURRENT, 0xFF8040},
  };
  for (const auto& c : cases) {
    Canvas canvas(device);
    canvas.texture(1, 1, 1, {0xFF80FF20});
    device->SetTextureStageState(0, D3DTSS_COLOROP, c.op);
    device->SetTextureStageState(0, D3DTSS_COLORARG1, c.first);
    device->SetTextureStageState(0, D3DTSS_COLORARG2, c.second);
    canvas.fill(0xFFFF8040);
    EXPECT_THAT(canvas.middle(), IsColor(c.expected)) << c.op << ' ' << c.first;
    device->SetTexture(0, nullptr);
    canvas.fill(0xFFFF8040, 0.4f);
    EXPECT_EQ(canvas.middle(), 0xFF8040u) << "without texture";
  }
  Canvas canvas(device);
  canvas.texture(1, 1, 1, {red});
  drawVertices(*device, D3DPT_TRIANGLELIST,
               std::vector<ColorVertex>{{0, 0, 0, green}, {40, 0, 0, green}, {0, 40, 0, green}}, 1);
  EXPECT_EQ(canvas.middle(), 0x00FF00u) << "vertices without texture coordinates";
}

TEST_P(Textures, TakesTheTexelUnderThePixelOrMixesItsNeighbours) {
  Canvas canvas(device);
  canvas.texture(2, 2, 1, {red, green, blue, white});
  canvas.fill(white);
  EXPECT_EQ(canvas.pixel(7, 7), 0xFF0000u);
  EXPECT_EQ(canvas.pixel(8, 7), 0x00FF00u);
  EXPECT_EQ(canvas.pixel(7, 8), 0x0000FFu);
  EXPECT_EQ(canvas.pixel(15, 15), 0xFFFFFFu);
  for (const bool clamp : {false, true}) {
    canvas.start();
    canvas.texture(2, 1, 1, {red, blue});
    device->SetSamplerState(0, D3DSAMP_ADDRESSU, clamp ? D3DTADDRESS_CLAMP : D3DTADDRESS_WRAP);
    const std::vector<FullVertex> repeated = {{.x = 0, .y = 0, .u = -1},
                                              {.x = 16, .y = 0, .u = 3},
                                              {.x = 0, .y = 16, .u = -1},
                                              {.x = 16, .y = 16, .u = 3}};
    canvas.draw(D3DPT_TRIANGLESTRIP, repeated);
    EXPECT_EQ(canvas.pixel(1, 8), 0xFF0000u);
    EXPECT_EQ(canvas.pixel(3, 8), clamp ? 0xFF0000u : 0x0000FFu);
    EXPECT_EQ(canvas.pixel(13, 8), clamp ? 0x0000FFu : 0xFF0000u);
    canvas.filter(D3DTEXF_LINEAR, D3DTEXF_NONE);
    canvas.fill(white, 0.4f);
    EXPECT_THAT(canvas.pixel(4, 8), IsColor(0xFF0000u)) << "on a texel's centre";
    EXPECT_THAT(canvas.pixel(8, 8), IsColor(0x800080u)) << "between two";
    EXPECT_THAT(canvas.pixel(0, 8), IsColor(clamp ? 0xFF0000u : 0x800080u));
  }
}

TEST_P(Textures, ChoosesTheLevelWhoseTexelsAreAsLargeAsPixels) {
  struct {
    const char* name;
    uint32_t filter, mip;
    float width, height;  // of the rectangle, in pixels
    uint32_t expected;
  } const cases[] = {
      {"enlarged", D3DTEXF_POINT, D3DTEXF_POINT, 128, 128, 0xFF0000},
      {"half", D3DTEXF_POINT, D3DTEXF_POINT, 32, 32, 0x00FF00},
      {"quarter", D3DTEXF_LINEAR, D3DTEXF_POINT, 16, 16, 0x0000FF},
      {"near a half", D3DTEXF_POINT, D3DTEXF_POINT, 24, 24, 0x00FF00},
      {"no mipmaps", D3DTEXF_POINT, D3DTEXF_NONE, 16, 16, 0xFF0000},
      {"longer side counts", D3DTEXF_POINT, D3DTEXF_POINT, 64, 16, 0x0000FF},
      {"shorter side counts", D3DTEXF_ANISOTROPIC, D3DTEXF_POINT, 64, 16, 0xFF0000},
      {"mixed", D3DTEXF_LINEAR, D3DTEXF_LINEAR, 22.627417f, 22.627417f, 0x008080},
  };
  std::vector<uint32_t> texels, stripes;
  const uint32_t colors[] = {red, green, blue, white, black, black, black};
  for (uint32_t i = 0; i < 7; ++i) texels.insert(texels.end(), (64u >> i) * (64u >> i), colors[i]);
  for (const auto& c : cases) {
    Canvas canvas(device, 64);
    canvas.texture(64, 64, 7, texels);
    canvas.filter(c.filter, c.mip);
    canvas.rectangle(0, 0, c.width, c.height);
    EXPECT_THAT(canvas.pixel(5, 5), IsColor(c.expected)) << c.name;
  }
  for (uint32_t i = 0; i < 64 * 64; ++i) stripes.push_back(i / 64 % 2 ? white : black);  // rows
  Canvas canvas(device, 64);
  canvas.texture(64, 64, 1, stripes);
  canvas.filter(D3DTEXF_ANISOTROPIC, D3DTEXF_NONE);
  canvas.rectangle(0, 0, 64, 8);
  for (uint32_t y = 1; y < 7; ++y)
    EXPECT_NEAR(canvas.pixel(30, y) & 255, 128, 4) << "averaged along the long side";
}

TEST_P(Textures, TakesTexturesOfOddShapesAndCoordinatesThatAreNoNumbers) {
  for (const auto& [width, height] : {std::pair{1u, 1u}, {16384u, 1u}, {1u, 16384u}, {5u, 3u}}) {
    for (const uint32_t filter : {D3DTEXF_POINT, D3DTEXF_LINEAR, D3DTEXF_ANISOTROPIC}) {
      Canvas canvas(device);
      device->SetTexture(0, makeTexture(*device, width, height, 0, [](auto...) { return green; }));
      canvas.filter(filter, D3DTEXF_LINEAR);
      canvas.fill(white);
      EXPECT_EQ(canvas.coveredPixels(), 256u);
      EXPECT_EQ(canvas.middle(), 0x00FF00u);
      for (const float odd : {notANumber, infinite, -infinite, 3e38f}) {
        std::vector<FullVertex> corners = {{0, 0, 0.1f}, {16, 0, 0.1f}, {0, 16, 0.1f}};
        corners[0].u = corners[1].v = odd;
        canvas.draw(D3DPT_TRIANGLELIST, corners);
      }
      EXPECT_EQ(canvas.pixel(15, 15), 0x00FF00u);
    }
  }
}

TEST_P(Textures, ShowsEveryReadablePixelFormat) {
  for (const PixelFormat& format : pixelFormats()) {
    std::vector<std::byte> bytes(levelBytes(format.format, 4, 4));
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::byte>(i * 37 + 11);
    std::vector<uint8_t> rgba(64);
    decodePixels(format.format, 4, 4, bytes, rgba);

    Canvas canvas(device);
    std::shared_ptr<IDirect3DTexture9> texture;
    ASSERT_EQ(device->CreateTexture(4, 4, 1, 0, format.format, D3DPOOL_MANAGED, &texture), D3D_OK);
    D3DLOCKED_RECT locked;
    texture->LockRect(0, &locked);
    std::memcpy(locked.pBits, bytes.data(), bytes.size());
    texture->UnlockRect(0);
    device->SetTexture(0, texture);
    // Alpha is seen where it becomes the colour's factor over white.
    canvas.set(D3DRS_ALPHABLENDENABLE, 1);
    canvas.set(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
    canvas.set(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    canvas.clear(white);
    canvas.fill(white);
    for (uint32_t i = 0; i < 16; ++i) {
      const auto blended = [&](uint32_t channel) {
        const uint32_t alpha = rgba[i * 4 + 3];
        return (rgba[i * 4 + channel] * alpha + 255 * (255 - alpha) + 127) / 255;
      };
      ASSERT_THAT(canvas.pixel(i % 4 * 4 + 2, i / 4 * 4 + 2),
                  IsColor(blended(0) << 16 | blended(1) << 8 | blended(2)))
          << format.name << ", pixel " << i;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Device, Textures, ::testing::Bool(),
                         [](const auto& test) { return test.param ? "OpenGl" : "Reference"; });

}  // namespace
}  // namespace facet
