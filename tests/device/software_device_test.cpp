#include <random>

#include "canvas.h"
#include "platform/parallel.h"
#include "support/failing_memory.h"

// What holds for the device in software alone.

namespace facet {
namespace {

TEST(SoftwareDevice, HasNoPictureOrAWholeOneWhereverMemoryRunsOut) {
  Canvas canvas(makeSoftware());
  bool drawn = false;
  for (int allocations = 0; !drawn; ++allocations) {
    ASSERT_LT(allocations, 200);
    canvas.clear();
    try {
      const FailingMemory memory(allocations);
      canvas.texture(2, 1, {green, green});
      canvas.fill(white);
      canvas.device->Present();
      drawn = true;
    } catch (const std::bad_alloc&) {
      EXPECT_TRUE(readBackBuffer(*canvas.device).empty());
    }
  }
  EXPECT_THAT(canvas.pixels(), ::testing::Each(0x00FF00u));
}

TEST(SoftwareDevice, CoversEachPixelOfAFanOnce) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> place(0, 64), whole(0, 1);
  Canvas canvas(makeSoftware(), 64);
  for (int round = 0; round < 50; ++round) {
    canvas.start();
    canvas.state.alphaBlendEnable = true;
    canvas.state.destBlend = D3DBLEND_ONE;
    FullVertex middle{.x = place(random), .y = place(random), .color = 0xFF010101};
    if (round % 2) middle.x = std::round(middle.x), middle.y = std::round(middle.y);
    std::vector<FullVertex> rim;
    const auto add = [&](float x, float y) { rim.push_back({.x = x, .y = y, .color = 0xFF010101}); };
    for (float along = 0; along < 4; along += whole(random)) {  // around the picture's border
      const float t = (along - std::floor(along)) * 64;
      const float places[4][2] = {{t, 0}, {64, t}, {64 - t, 64}, {0, 64 - t}};
      add(places[static_cast<int>(along)][0], places[static_cast<int>(along)][1]);
    }
    for (const float corner : {0.0f, 64.0f}) add(corner, corner), add(corner, 64 - corner);
    std::ranges::sort(rim, {}, [](const FullVertex& v) { return std::atan2(v.y - 32, v.x - 32); });
    std::vector<FullVertex> fan;
    for (size_t i = 0; i < rim.size(); ++i)
      fan.insert(fan.end(), {middle, rim[i], rim[(i + 1) % rim.size()]});
    canvas.draw(D3DPT_TRIANGLELIST, fan);
    EXPECT_THAT(canvas.pixels(), ::testing::Each(0x010101u)) << round;
  }
}

TEST(SoftwareDevice, SurvivesAnyPosition) {
  const float values[] = {notANumber, infinite, -infinite, 3e38f, -3e38f, 1e-40f,  0,
                          1,          -1,       16,        1e6f,  -1e6f,  32768.5f};
  std::mt19937 random(3);
  Canvas canvas(makeSoftware(), 33);
  for (int round = 0; round < 3; ++round) {
    canvas.start();
    if (round == 1) canvas.setPerspective();
    if (round == 2) canvas.state.fillMode = D3DFILL_WIREFRAME;
    canvas.texture(2, 1, {0xFFFFFFFF, 0xFF808080});
    std::vector<FullVertex> vertices(3 * 4000);
    const auto any = [&] { return values[random() % std::size(values)]; };
    for (FullVertex& v : vertices) v = {any(), any(), any(), {any(), any(), any()}, 0xFFFFFFFF, any(), any()};
    for (const D3DTEXTUREFILTERTYPE filter : {D3DTEXF_POINT, D3DTEXF_LINEAR, D3DTEXF_ANISOTROPIC}) {
      canvas.state.filter = filter;
      canvas.state.mipFilter = filter == D3DTEXF_ANISOTROPIC ? D3DTEXF_LINEAR : D3DTEXF_NONE;
      canvas.state.lighting = filter == D3DTEXF_LINEAR;
      canvas.draw(D3DPT_TRIANGLELIST, vertices);
      canvas.draw(D3DPT_LINELIST, vertices);
    }
    EXPECT_EQ(canvas.pixels().size(), 33u * 33u);
  }
}

TEST(SoftwareDevice, DoesNotDependOnTheNumberOfThreads) {
  std::vector<uint32_t> first;
  for (const uint32_t threads : {1u, 2u, 5u, 0u}) {
    setThreadCount(threads);
    Canvas canvas(makeSoftware(), 150);
    std::mt19937 random(11);
    std::uniform_real_distribution<float> place(-50, 200), depth(0, 1);
    std::vector<FullVertex> vertices(3 * 9000);
    for (FullVertex& v : vertices) {
      v = {.x = place(random), .y = place(random), .z = depth(random)};
      v.color = static_cast<uint32_t>(random()) | 0xFF000000;
    }
    canvas.state.alphaBlendEnable = true;
    canvas.state.destBlend = D3DBLEND_INVSRCALPHA;
    canvas.draw(D3DPT_TRIANGLELIST, vertices);
    canvas.draw(D3DPT_LINELIST, vertices);
    const std::vector<uint32_t> picture = canvas.pixels();
    if (first.empty()) first = picture;
    EXPECT_EQ(picture, first) << threads;
  }
}

TEST(SoftwareDevice, DrawsAPixelForEachColumnOfALineOrEachRowOfASteepOne) {
  constexpr int side = 100;  // several bands of rows
  Canvas canvas(makeSoftware(), side);
  for (int across = -98; across <= 98; ++across) {
    for (const bool steep : {false, true}) {
      const auto start = static_cast<float>(across < 0 ? 99 : 0), end = start + static_cast<float>(across);
      FullVertex from = {.x = 0, .y = start}, to = {.x = 99, .y = end};
      if (steep) std::swap(from.x, from.y), std::swap(to.x, to.y);
      canvas.clear();
      canvas.draw(D3DPT_LINELIST, {from, to});
      const std::vector<uint32_t> pixels = canvas.pixels();
      std::array<int, side> found{};
      for (size_t i = 0; i < pixels.size(); ++i) found[steep ? i / side : i % side] += pixels[i] != 0;
      EXPECT_EQ(std::ranges::count(found, 1), 99) << across << (steep ? ", steep" : "");
    }
  }
  canvas.clear();
  canvas.draw(D3DPT_LINELIST, {{3, 3}, {3, 3}, {-40, 8}, {260, 8}});
  EXPECT_EQ(canvas.coveredPixels(), 100u) << "no length; longer than the picture";
}

}  // namespace
}  // namespace facet
