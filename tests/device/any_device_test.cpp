#include "canvas.h"
#include "picture/pixels.h"

// What drawing means at its edges, on each device: this pixel is covered, that one is nearer, this texel is
// taken. The states in between are left to the agreement of the devices.

namespace facet {
namespace {

TEST_P(AnyDevice, CoversThePixelsWhoseCentresAreAtWholeNumbersWithTopAndLeftEdges) {
  Canvas canvas(device);
  canvas.rectangle(2, 3, 5, 7);
  const auto pixels = canvas.pixels();
  for (uint32_t i = 0; i < 256; ++i) {
    const uint32_t x = i % 16, y = i / 16;
    EXPECT_EQ(pixels[i] != 0, x >= 2 && x < 5 && y >= 3 && y < 7) << x << ", " << y;
  }
}

TEST_P(AnyDevice, ShowsWhatIsNearerAndMoreOpaqueThanTheReference) {
  Canvas canvas(device);
  for (const auto& [depth, seen] : {std::pair{0.25f, true}, {0.5f, false}, {0.75f, false}}) {
    canvas.clear();
    canvas.fill(blue, 0.5f);
    canvas.fill(red, depth);
    EXPECT_EQ(canvas.middle(), seen ? 0xFF0000u : 0x0000FFu) << depth;
  }
  for (const uint32_t alpha : {127u, 128u, 129u}) {
    canvas.clear();
    canvas.state.alphaTestEnable = true;
    canvas.state.alphaRef = 128;
    canvas.fill(alpha << 24 | 0xFFFFFF, 0.2f);
    canvas.state.alphaTestEnable = false;
    canvas.fill(red, 0.9f);  // what was not drawn hides nothing
    EXPECT_EQ(canvas.middle(), alpha > 128 ? 0xFFFFFFu : 0xFF0000u) << alpha;
  }
}

TEST_P(AnyDevice, LightsEachVertex) {
  struct {
    const char* name;
    D3DVECTOR direction, normal;
    bool lightOn, turned;
    uint32_t expected;
  } const cases[] = {
      // 0.2 x 0.5 + 0xFF8000 x 0.8 x the cosine
      {"its length does not matter", {2, 3, 6}, {-2 / 7.0f, -3 / 7.0f, -6 / 7.0f}, true, false, 0xE68000},
      {"aslant", {0, 3, 4}, {0, 0, -1}, true, false, 0xBD6C00},
      {"turned away", {0, 3, 4}, {0, 0, 1}, true, false, 0x1A1A00},
      {"off", {0, 0, 1}, {0, 0, -1}, false, false, 0x000000},
      {"turned, and half as long, by the world", {0, 0, 1}, {-1, 0, 0}, true, true, 0x804D00},
  };
  for (const auto& c : cases) {
    Canvas canvas(device, 64);
    canvas.state.material.Ambient = {0.2f, 0.2f, 0.2f, 1};
    canvas.state.light = {{0.8f, 0.8f, 0.8f, 1}, {}, {0.5f, 0.5f, 0, 1}, c.direction};
    canvas.state.lightEnable = c.lightOn;
    canvas.state.lighting = true;
    std::vector<FullVertex> corners = {{0, 0}, {64, 0}, {0, 64}};
    if (c.turned) {  // x to z and twice as long, z to -x
      canvas.state.world.m = {{{0, 0, 2, 0}, {0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 0, 1}}};
      corners = {{0.2f, 0, 0}, {0.2f, 0, -64}, {0.2f, 64, 0}};
    }
    for (FullVertex& corner : corners) corner.normal = c.normal, corner.color = 0xFFFF8000;
    canvas.draw(D3DPT_TRIANGLELIST, corners);
    EXPECT_THAT(canvas.pixel(9, 9), IsColor(c.expected)) << c.name;
  }
}

TEST_P(AnyDevice, ClipsAtTheNearAndFarPlanes) {
  Canvas canvas(device, 32);
  canvas.setPerspective();
  // A floor from behind the eye to beyond the far plane, seen from a height of 1: its horizon is in row 17.6.
  canvas.draw(D3DPT_TRIANGLELIST, {{-900, -1, -50}, {900, -1, -50}, {0, -1, 500}});
  for (const auto& [x, y, covered] :
       {std::tuple{16u, 31u, true}, {1u, 20u, true}, {16u, 18u, true}, {16u, 17u, false}, {16u, 16u, false}})
    EXPECT_EQ(canvas.pixel(x, y) != 0, covered) << x << ", " << y;

  canvas.clear();
  canvas.draw(D3DPT_TRIANGLELIST, {{-1, -1, -5}, {1, -1, -5}, {0, 1, -5}});
  canvas.draw(D3DPT_TRIANGLELIST, {{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}});
  EXPECT_EQ(canvas.coveredPixels(), 0u) << "behind the eye, or in it";
  canvas.draw(D3DPT_TRIANGLELIST, {{-1, -1, 1}, {1, -1, 1}, {0, 1, 1}});
  EXPECT_GT(canvas.coveredPixels(), 400u) << "on the near plane";
}

TEST_P(AnyDevice, DrawsOnlyTrianglesThatHaveAllTheirVertices) {
  std::vector<FullVertex> vertices = {{0, 0}, {16, 0}, {0, 16}, {16, 16}};
  for (const float odd : {notANumber, infinite, -infinite, 3e38f}) vertices.push_back({odd, odd, odd});
  Canvas canvas(device);
  const auto buffer = makeVertices(*device, vertices);
  const auto isSeen = [&](const std::vector<uint16_t>& indices) {
    canvas.clear();
    device->DrawIndexedPrimitive(buffer, device->CreateIndexBuffer(indices));
    return canvas.coveredPixels() > 0;
  };
  EXPECT_TRUE(isSeen({0, 1, 2}));
  EXPECT_TRUE(isSeen({0, 1, 200, 0, 1, 65535, 0, 1, 2, 3}));
  EXPECT_FALSE(isSeen({}));
  EXPECT_FALSE(isSeen({0, 1, 8, 1, 2})) << "an index beyond, and no whole triangle";
  EXPECT_FALSE(isSeen({0, 0, 1, 2, 2, 2})) << "no area";
  EXPECT_FALSE(isSeen({0, 1, 4, 0, 1, 5, 0, 1, 6})) << "not a number, or infinite";
  isSeen({0, 1, 7, 6, 7, 2});  // huge: need not be seen, must not crash
  const auto indices = device->CreateIndexBuffer({0, 1, 3});
  for (const size_t held : {3u, 4u, 3u}) {
    canvas.clear();
    device->DrawIndexedPrimitive(
        makeVertices(*device, std::vector(vertices.begin(), vertices.begin() + held)), indices);
    EXPECT_EQ(canvas.coveredPixels() > 0, held == 4) << "one list with several buffers";
  }
}

TEST_P(AnyDevice, GivesAPresentedOpaquePictureAndKeepsStateAndResourcesThroughReset) {
  Canvas canvas(device);
  canvas.state.texture = makeTexture(*device, 2, 2, [](auto...) { return 0x0000FF00; });
  ASSERT_EQ(device->Reset(backBuffer(16, 32)), D3D_OK);
  EXPECT_EQ(readBackBuffer(*device).size(), 16u * 32 * 4);
  for (const auto& bad : {backBuffer(16, 0), backBuffer(1u << 20, 3), backBuffer(16, 16, D3DFMT_L8)})
    EXPECT_EQ(device->Reset(bad), D3DERR_NOTAVAILABLE);
  ASSERT_EQ(device->Reset(backBuffer(16, 16)), D3D_OK);
  canvas.clear(0x00123456);
  EXPECT_TRUE(readBackBuffer(*device).empty()) << "not presented yet";
  canvas.rectangle(0, 0, 8, 16);
  EXPECT_EQ(canvas.pixel(3, 3), 0x00FF00u);
  EXPECT_EQ(canvas.pixel(12, 3), 0x123456u);
  const auto bytes = readBackBuffer(*device);
  for (size_t i = 3; i < bytes.size(); i += 4) ASSERT_EQ(bytes[i], 255);
}

TEST_P(AnyDevice, TakesTheTexelUnderThePixelOrMixesItsNeighbours) {
  Canvas canvas(device);
  canvas.texture(2, 2, {red, green, blue, white});
  canvas.fill(white);
  EXPECT_EQ(canvas.pixel(7, 7), 0xFF0000u);
  EXPECT_EQ(canvas.pixel(8, 7), 0x00FF00u);
  EXPECT_EQ(canvas.pixel(7, 8), 0x0000FFu);
  EXPECT_EQ(canvas.pixel(15, 15), 0xFFFFFFu);
  canvas.state.filter = D3DTEXF_LINEAR;
  canvas.fill(white, 0.4f);
  EXPECT_THAT(canvas.pixel(4, 4), IsColor(0xFF0000u)) << "on a texel's centre";
  EXPECT_THAT(canvas.pixel(8, 4), IsColor(0x808000u)) << "between two";
  EXPECT_THAT(canvas.pixel(0, 4), IsColor(0x808000u)) << "between the first and, wrapped, the last";
  canvas.clear();
  draw(*device, D3DPT_TRIANGLESTRIP, {{0, 0}, {40, 0}, {0, 40}}, coloredParts);
  EXPECT_EQ(canvas.pixel(3, 3), 0xFFFFFFu) << "none without texture coordinates";
}

TEST_P(AnyDevice, ChoosesTheLevelWhoseTexelsAreAsLargeAsPixels) {
  const std::tuple<D3DTEXTUREFILTERTYPE, D3DTEXTUREFILTERTYPE, float, float, uint32_t> cases[] = {
      {D3DTEXF_POINT, D3DTEXF_POINT, 128, 128, 0xFF0000},
      {D3DTEXF_LINEAR, D3DTEXF_POINT, 24, 24, 0x00FF00},
      {D3DTEXF_POINT, D3DTEXF_POINT, 64, 16, 0x0000FF},        // the longer side counts
      {D3DTEXF_ANISOTROPIC, D3DTEXF_POINT, 64, 16, 0xFF0000},  // the shorter one
      {D3DTEXF_LINEAR, D3DTEXF_LINEAR, 22.627417f, 22.627417f, 0x008080},
  };
  const uint32_t colors[] = {red, green, blue, white, black, black, black};
  for (const auto& [filter, mip, columns, rows, expected] : cases) {
    Canvas canvas(device, 64);
    canvas.state.texture = makeTexture(*device, 64, 64, [&](uint32_t i, auto...) { return colors[i]; });
    canvas.state.filter = filter;
    canvas.state.mipFilter = mip;
    canvas.rectangle(0, 0, columns, rows);
    EXPECT_THAT(canvas.pixel(5, 5), IsColor(expected)) << columns << " x " << rows;
  }
}

TEST_P(AnyDevice, TakesTexturesOfOddShapesAndCoordinatesThatAreNoNumbers) {
  Canvas canvas(device);
  for (const auto& [width, height] : {std::pair{1u, 1u}, {16384u, 1u}, {1u, 16384u}, {5u, 3u}}) {
    for (const D3DTEXTUREFILTERTYPE filter : {D3DTEXF_POINT, D3DTEXF_LINEAR, D3DTEXF_ANISOTROPIC}) {
      canvas.start();
      canvas.state.texture = makeTexture(*device, width, height, [](auto...) { return green; });
      canvas.state.filter = filter;
      canvas.state.mipFilter = D3DTEXF_LINEAR;
      canvas.fill(white);
      EXPECT_THAT(canvas.pixels(), ::testing::Each(0x00FF00u));
      for (const float odd : {notANumber, infinite, -infinite, 3e38f})
        canvas.draw(D3DPT_TRIANGLELIST,
                    {{.z = 0.1f, .u = odd}, {.x = 16, .z = 0.1f, .v = odd}, {.y = 16, .z = 0.1f}});
      EXPECT_EQ(canvas.pixel(15, 15), 0x00FF00u);
    }
  }
}

TEST_P(AnyDevice, ShowsEveryFormatOfTextures) {
  Canvas canvas(device);
  canvas.blendByAlpha();
  for (const D3DFORMAT format : textureFormats()) {
    std::vector<std::byte> bytes(levelBytes(format, 4, 4));
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::byte>(i * 37 + 11);
    std::vector<uint8_t> rgba(64);
    decodePixels(format, 4, 4, bytes, rgba);

    canvas.state.texture = device->CreateTexture(format, {{4, 4, bytes}});
    canvas.clear(white);  // alpha is seen where it becomes the colour's factor over white
    canvas.fill(white);
    const auto pixels = canvas.pixels();
    for (uint32_t i = 0; i < 64; i += 4) {
      uint32_t expected = 0;
      for (uint32_t channel = 0; channel < 3; ++channel)
        expected = expected << 8 | (rgba[i + channel] * rgba[i + 3] + 255 * (255 - rgba[i + 3]) + 127) / 255;
      ASSERT_THAT(pixels[i / 16 * 64 + 32 + i % 16 + 2], IsColor(expected)) << formatName(format) << ' ' << i;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Device, AnyDevice, ::testing::Bool(),
                         [](const auto& test) { return test.param ? "OpenGl" : "Software"; });

}  // namespace
}  // namespace facet
