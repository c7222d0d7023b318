#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>

#include "device/reference_scene.h"

namespace facet {
namespace {

using ::testing::Each;

constexpr float nan = std::numeric_limits<float>::quiet_NaN(),
                infinity = std::numeric_limits<float>::infinity();

TEST(Raster, CoversThePixelsWhoseCentresLieInside) {
  Scene scene;
  scene.rectangle(2, 3, 5, 7);
  for (uint32_t y = 0; y < 16; ++y) {
    for (uint32_t x = 0; x < 16; ++x) {
      EXPECT_EQ(scene.pixel(x, y) != 0, x >= 2 && x < 5 && y >= 3 && y < 7) << x << ", " << y;
    }
  }
}

TEST(Raster, CoversEachPixelOfAFanOnce) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> place(0, 64), whole(0, 1);
  for (int round = 0; round < 50; ++round) {
    Scene scene(64, 64);
    scene.device->SetRenderState(D3DRS_ZENABLE, D3DZB_FALSE);
    scene.device->SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
    scene.device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_ONE);
    SceneVertex middle{place(random), place(random), 0.5f, 0xFF010101};
    if (round % 2) middle.x = std::round(middle.x), middle.y = std::round(middle.y);
    std::vector<SceneVertex> rim;
    for (float along = 0; along < 4; along += whole(random)) {  // around the picture's border
      const float t = (along - std::floor(along)) * 64;
      const float places[4][2] = {{t, 0}, {64, t}, {64 - t, 64}, {0, 64 - t}};
      const auto* p = places[static_cast<int>(along)];
      rim.push_back({p[0], p[1], 0.5f, 0xFF010101});
    }
    for (const float corner : {0.0f, 64.0f}) rim.push_back({corner, corner, 0.5f, 0xFF010101});
    for (const float corner : {0.0f, 64.0f}) rim.push_back({corner, 64 - corner, 0.5f, 0xFF010101});
    std::ranges::sort(rim, {}, [](const SceneVertex& v) { return std::atan2(v.y - 32, v.x - 32); });
    std::vector<SceneVertex> fan;
    for (size_t i = 0; i < rim.size(); ++i) {
      fan.insert(fan.end(), {middle, rim[i], rim[(i + 1) % rim.size()]});
    }
    scene.triangles(fan);
    EXPECT_THAT(scene.device->backBuffer(), Each(0xFF010101u)) << round;
  }
}

TEST(Raster, CullsByTheDirectionOfTheCorners) {
  const SceneVertex clockwise[] = {{2, 2}, {12, 2}, {2, 12}}, counter[] = {{2, 2}, {2, 12}, {12, 2}};
  struct {
    uint32_t cull;
    bool clockwiseSeen, counterSeen;
  } const cases[] = {{D3DCULL_NONE, true, true}, {D3DCULL_CW, false, true}, {D3DCULL_CCW, true, false}};
  for (const uint32_t fill : {D3DFILL_SOLID, D3DFILL_WIREFRAME}) {
    for (const auto& c : cases) {
      Scene first, second;
      for (Scene* scene : {&first, &second}) {
        scene->device->SetRenderState(D3DRS_CULLMODE, c.cull);
        scene->device->SetRenderState(D3DRS_FILLMODE, fill);
      }
      first.triangles(clockwise);
      second.triangles(counter);
      EXPECT_EQ(first.coveredPixels() > 0, c.clockwiseSeen) << c.cull;
      EXPECT_EQ(second.coveredPixels() > 0, c.counterSeen) << c.cull;
    }
  }
}

TEST(Raster, KeepsTheDirectionAlongAStrip) {
  Scene scene;
  scene.device->SetRenderState(D3DRS_CULLMODE, D3DCULL_CCW);
  scene.rectangle(0, 0, 16, 16);
  EXPECT_EQ(scene.coveredPixels(), 256u);
}

TEST(Raster, ComparesDepths) {
  struct {
    uint32_t function;
    bool nearer, equal, farther;  // which of the second drawings are seen
  } const cases[] = {
      {D3DCMP_NEVER, false, false, false},      {D3DCMP_LESS, true, false, false},
      {D3DCMP_EQUAL, false, true, false},       {D3DCMP_LESSEQUAL, true, true, false},
      {D3DCMP_GREATER, false, false, true},     {D3DCMP_NOTEQUAL, true, false, true},
      {D3DCMP_GREATEREQUAL, false, true, true}, {D3DCMP_ALWAYS, true, true, true},
  };
  for (const auto& c : cases) {
    const struct {
      float z;
      bool seen;
    } seconds[] = {{0.25f, c.nearer}, {0.5f, c.equal}, {0.75f, c.farther}};
    for (const auto& second : seconds) {
      Scene scene;
      scene.rectangle(0, 0, 16, 16, 0.5f, 0xFF0000FF);
      scene.device->SetRenderState(D3DRS_ZFUNC, c.function);
      scene.rectangle(0, 0, 16, 16, second.z, 0xFFFF0000);
      EXPECT_EQ(scene.pixel(9, 9), second.seen ? 0xFF0000u : 0x0000FFu) << c.function << " at " << second.z;
    }
  }
}

TEST(Raster, LeavesDepthsAloneWhenTold) {
  Scene scene;
  scene.device->SetRenderState(D3DRS_ZWRITEENABLE, 0);
  scene.rectangle(0, 0, 16, 16, 0.2f, 0xFF0000FF);
  scene.device->SetRenderState(D3DRS_ZWRITEENABLE, 1);
  scene.rectangle(0, 0, 16, 16, 0.7f, 0xFFFF0000);
  EXPECT_EQ(scene.pixel(3, 3), 0xFF0000u);
  scene.device->SetRenderState(D3DRS_ZENABLE, D3DZB_FALSE);
  scene.rectangle(0, 0, 16, 16, 0.9f, 0xFF00FF00);
  EXPECT_EQ(scene.pixel(3, 3), 0x00FF00u);
}

TEST(Raster, ShadesFlatWithTheFirstVertexAndSmoothlyBetweenAll) {
  const SceneVertex corners[] = {
      {0, 0, 0.5f, 0xFFFF0000}, {16, 0, 0.5f, 0xFF00FF00}, {0, 16, 0.5f, 0xFF0000FF}};
  Scene flat, smooth;
  flat.device->SetRenderState(D3DRS_SHADEMODE, D3DSHADE_FLAT);
  flat.triangles(corners);
  EXPECT_EQ(flat.pixel(9, 3), 0xFF0000u);
  smooth.triangles(corners);
  EXPECT_EQ(smooth.pixel(0, 0), 0xFF0000u);
  EXPECT_EQ(smooth.pixel(8, 0), 0x808000u);
  EXPECT_EQ(smooth.pixel(0, 8), 0x800080u);
}

TEST(Raster, DrawsLinesOnePixelWide) {
  struct {
    SceneVertex from, to;
    uint32_t pixels;
  } const cases[] = {{{2, 5}, {12, 5}, 10}, {{12, 5}, {2, 5}, 10},   {{4, 1}, {4, 9}, 8},
                     {{1, 1}, {11, 6}, 10}, {{-40, 8}, {60, 8}, 16}, {{3, 3}, {3, 3}, 0}};
  for (const auto& c : cases) {
    Scene scene;
    scene.line(c.from, c.to);
    EXPECT_EQ(scene.coveredPixels(), c.pixels) << c.from.x << " to " << c.to.x;
  }
  Scene scene;
  scene.line({2, 5}, {12, 5});
  EXPECT_NE(scene.pixel(2, 5), 0u);
  EXPECT_NE(scene.pixel(11, 5), 0u);
}

TEST(Raster, LeavesTheInsideOfAWireOpen) {
  Scene scene;
  scene.device->SetRenderState(D3DRS_FILLMODE, D3DFILL_WIREFRAME);
  const SceneVertex corners[] = {{2, 2}, {14, 2}, {2, 14}};
  scene.triangles(corners);
  EXPECT_NE(scene.pixel(7, 2), 0u);
  EXPECT_NE(scene.pixel(2, 7), 0u);
  EXPECT_NE(scene.pixel(8, 8), 0u);
  EXPECT_EQ(scene.pixel(5, 5), 0u);
}

/// A perspective without scale: x and y are divided by z, near plane 1, far plane 10.
void setPerspective(Scene& scene) {
  D3DMATRIX matrix;
  matrix.m = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 10 / 9.0f, 1}, {0, 0, -10 / 9.0f, 0}}};
  scene.device->SetTransform(D3DTS_PROJECTION, matrix);
}

TEST(Raster, ClipsAtTheNearAndFarPlanes) {
  Scene scene(32, 32);
  setPerspective(scene);
  // A floor from behind the eye to beyond the far plane, seen from a height of 1.
  const SceneVertex floor[] = {{-900, -1, -50}, {900, -1, -50}, {0, -1, 500}};
  scene.triangles(floor);
  EXPECT_NE(scene.pixel(16, 31), 0u);
  EXPECT_NE(scene.pixel(1, 20), 0u);
  EXPECT_EQ(scene.pixel(16, 16),
            0u);  // the horizon lies beyond the far plane: (1 - -1 / 10) * 16 is row 17.6
  EXPECT_EQ(scene.pixel(16, 17), 0u);
  EXPECT_NE(scene.pixel(16, 18), 0u);

  Scene behind(32, 32);
  setPerspective(behind);
  const SceneVertex triangle[] = {{-1, -1, -5}, {1, -1, -5}, {0, 1, -5}};
  behind.triangles(triangle);
  behind.line({-1, 0, -5}, {1, 0, -5});
  EXPECT_EQ(behind.coveredPixels(), 0u);
}

TEST(Raster, ClipsLinesAtTheEye) {
  Scene scene(32, 32);
  setPerspective(scene);
  scene.line({0, -1, -5}, {0, -1, 5});
  EXPECT_NE(scene.pixel(16, 25), 0u);
  EXPECT_EQ(scene.pixel(16, 12), 0u);
}

TEST(Raster, DividesColorsAndTextureByDepth) {
  Scene scene(32, 32);
  setPerspective(scene);
  // The right edge is three times as far: the picture's middle is a quarter of the way.
  const SceneVertex wall[] = {
      {-1, -1, 1.01f, 0xFF000000}, {-1, 1, 1.01f, 0xFF000000}, {3, -3, 3.03f, 0xFFFFFFFF}};
  scene.triangles(wall);
  EXPECT_NEAR(scene.pixel(16, 24) & 255, 64, 2);
}

TEST(Raster, TakesOutOfRangeIndicesForMissingTriangles) {
  Scene scene;
  const SceneVertex corners[] = {{0, 0}, {8, 0}, {0, 8}};
  const uint16_t indices[] = {0, 1, 3, 65535, 1, 2, 0, 1, 2};
  scene.indexed(corners, indices);
  EXPECT_NE(scene.pixel(2, 2), 0u);

  // More vertices, indices and primitives than the buffers hold.
  EXPECT_EQ(scene.device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 65535, 0, UINT32_MAX), D3D_OK);
  EXPECT_EQ(scene.device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 3, UINT32_MAX, 1), D3D_OK);
  EXPECT_EQ(scene.device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, INT32_MAX, 0, 3, 0, 1), D3D_OK);
  EXPECT_EQ(scene.device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, -1, 0, 3, 0, 1), D3DERR_INVALIDCALL);
  EXPECT_EQ(scene.device->DrawPrimitive(D3DPT_TRIANGLELIST, UINT32_MAX, UINT32_MAX), D3D_OK);
  EXPECT_EQ(scene.device->DrawPrimitive(D3DPT_TRIANGLELIST, 0, UINT32_MAX), D3D_OK);
  scene.device->SetStreamSource(0, nullptr, 0, 0);
  EXPECT_EQ(scene.device->DrawPrimitive(D3DPT_TRIANGLELIST, 0, 1), D3DERR_INVALIDCALL);
  scene.device->backBuffer();
}

TEST(Raster, SurvivesAnyPosition) {
  const float values[] = {nan, infinity, -infinity, 3e38f, -3e38f, 1e-40f,  0,
                          1,   -1,       16,        1e6f,  -1e6f,  32768.5f};
  std::mt19937 random(3);
  for (int round = 0; round < 3; ++round) {
    Scene scene(33, 17);
    if (round == 1) setPerspective(scene);
    if (round == 2) scene.device->SetRenderState(D3DRS_FILLMODE, D3DFILL_WIREFRAME);
    scene.texture(2, 1, 1, {0xFFFFFFFF, 0xFF808080});
    std::vector<SceneVertex> vertices(3 * 4000);
    const auto any = [&] { return values[random() % std::size(values)]; };
    for (SceneVertex& v : vertices)
      v = {any(), any(), any(), 0xFFFFFFFF, any(), any(), {any(), any(), any()}};
    for (uint32_t filter = 1; filter <= 3; ++filter) {
      scene.filter(filter, filter, filter == 3 ? D3DTEXF_LINEAR : D3DTEXF_NONE);
      scene.device->SetRenderState(D3DRS_LIGHTING, filter == 2);
      scene.triangles(vertices);
      scene.device->DrawPrimitive(D3DPT_LINELIST, 0, 6000);
    }
    EXPECT_EQ(scene.device->backBuffer().size(), 33u * 17u);
  }
}

TEST(Raster, DoesNotDependOnTheNumberOfThreads) {
  std::vector<uint32_t> first;
  for (const uint32_t threads : {1u, 2u, 5u}) {
    Scene scene(200, 120, threads);
    std::mt19937 random(11);
    std::uniform_real_distribution<float> place(-50, 250), depth(0, 1);
    std::vector<SceneVertex> vertices(3 * 9000);
    for (SceneVertex& v : vertices)
      v = {place(random), place(random), depth(random), static_cast<uint32_t>(random()) | 0xFF000000};
    scene.device->SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
    scene.device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    scene.triangles(vertices);
    scene.device->DrawPrimitive(D3DPT_LINELIST, 0, 5000);
    const std::vector<uint32_t> picture(scene.device->backBuffer().begin(), scene.device->backBuffer().end());
    if (first.empty()) first = picture;
    EXPECT_EQ(picture, first) << threads;
  }
}

}  // namespace
}  // namespace facet
