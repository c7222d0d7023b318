#include "device/gl/gl_device.h"

#include <epoxy/gl.h>
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "device/gl/egl_context.h"
#include "device/pixels.h"
#include "drawing.h"

namespace facet {
namespace {

constexpr uint32_t side = 16;

/// A context that a test can lose, with a window that is a framebuffer of 2 x 2 pixels.
class TestContext : public GlContext {
 public:
  std::shared_ptr<GlContext> inner = createEglContext();
  bool lost = false, withWindow = false;
  uint32_t presents = 0;

  bool makeCurrent() override { return !lost && inner && inner->makeCurrent(); }
  bool restore() override {
    lost = false;
    return inner->restore();
  }
  std::optional<Window> window() override {
    if (!withWindow) return std::nullopt;
    if (framebuffer_ == 0) createWindow();
    return Window{framebuffer_, 2, 2};
  }
  void presented() override { ++presents; }

  std::vector<uint8_t> windowPixels() {
    std::vector<uint8_t> result(16);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    glReadPixels(0, 0, 2, 2, GL_RGBA, GL_UNSIGNED_BYTE, result.data());
    return result;
  }

 private:
  void createWindow() {
    GLuint color = 0;
    glGenFramebuffers(1, &framebuffer_);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    glGenRenderbuffers(1, &color);
    glBindRenderbuffer(GL_RENDERBUFFER, color);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 2, 2);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color);
  }
  GLuint framebuffer_ = 0;
};

/// Draws in screen coordinates: transforms are the identity, and at() maps pixels of the back buffer.
class GlDeviceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!context->inner) GTEST_SKIP() << "no OpenGL without a display here";
    ASSERT_EQ(createGlDevice(context, backBuffer(side, side), &device), D3D_OK);
    setUpStates();
  }

  void setUpStates() {
    device->SetRenderState(D3DRS_LIGHTING, 0);
    device->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
    device->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    device->Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0xFF000000, 1, 0);
  }

  template <class Vertex>
  static Vertex at(Vertex vertex) {
    vertex.x = vertex.x * 2 / side - 1;
    vertex.y = 1 - vertex.y * 2 / side;
    return vertex;
  }

  /// A clockwise rectangle between two points of the screen.
  template <class Vertex>
  static std::vector<Vertex> box(float left, float top, float right, float bottom, Vertex vertex) {
    std::vector<Vertex> result;
    for (int i = 0; i < 4; ++i) {
      vertex.x = i % 2 ? right : left;
      vertex.y = i / 2 ? bottom : top;
      result.push_back(at(vertex));
      if constexpr (requires { vertex.u; }) {
        result.back().u = static_cast<float>(i % 2);
        result.back().v = static_cast<float>(i / 2);
      }
    }
    return result;
  }

  template <class Vertex>
  HRESULT drawBox(const std::vector<Vertex>& corners) {
    return drawVertices(*device, D3DPT_TRIANGLESTRIP, corners, 2);
  }

  /// 0xRRGGBB
  uint32_t pixel(uint32_t x, uint32_t y) {
    const std::vector<uint8_t> pixels = readGlBackBuffer(*device);
    const uint8_t* p = pixels.data() + (size_t{y} * side + x) * 4;
    return uint32_t{p[0]} << 16 | uint32_t{p[1]} << 8 | p[2];
  }
  uint32_t middle() { return pixel(side / 2, side / 2); }
  std::vector<ColorVertex> fullBox(D3DCOLOR color, float z = 0.5f) {
    return box(0, 0, side, side, ColorVertex{0, 0, z, color});
  }

  std::shared_ptr<TestContext> context = std::make_shared<TestContext>();
  std::shared_ptr<IDirect3DDevice9> device;
};

bool near(uint32_t a, uint32_t b, int tolerance = 1) {
  for (const int shift : {0, 8, 16}) {
    if (std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF)) > tolerance)
      return false;
  }
  return true;
}
#define EXPECT_COLOR(actual, expected) \
  EXPECT_TRUE(near(actual, expected)) << std::hex << (actual) << " instead of " << (expected)

TEST_F(GlDeviceTest, CoversThePixelsWhoseCentresAreAtWholeNumbersWithTopAndLeftEdges) {
  drawBox(box(2, 3, 5, 7, ColorVertex{0, 0, 0.5f, 0xFFFFFFFF}));
  for (uint32_t y = 0; y < side; ++y) {
    for (uint32_t x = 0; x < side; ++x) {
      const bool inside = x >= 2 && x < 5 && y >= 3 && y < 7;
      ASSERT_EQ(pixel(x, y), inside ? 0xFFFFFFu : 0u) << x << ", " << y;
    }
  }
}

TEST_F(GlDeviceTest, ClearsInTheColourAskedFor) {
  device->Clear(D3DCLEAR_TARGET, 0x00123456, 1, 0);
  EXPECT_EQ(pixel(0, 0), 0x123456u);
  EXPECT_EQ(readGlBackBuffer(*device)[3], 255);
}

TEST_F(GlDeviceTest, ShowsWhatIsNearerAndCutsDepthsBelow0AndAbove1) {
  device->SetRenderState(D3DRS_ZFUNC, D3DCMP_LESS);
  drawBox(fullBox(0xFF0000FF, 0.5f));
  drawBox(fullBox(0xFF00FF00, 0.6f));
  EXPECT_EQ(middle(), 0x0000FFu);
  drawBox(fullBox(0xFFFF0000, -0.1f));
  EXPECT_EQ(middle(), 0x0000FFu);
  drawBox(fullBox(0xFFFF0000, 0.01f));
  EXPECT_EQ(middle(), 0xFF0000u);
  device->SetRenderState(D3DRS_ZFUNC, D3DCMP_ALWAYS);
  drawBox(fullBox(0xFFFFFFFF, 1.1f));
  EXPECT_EQ(middle(), 0xFF0000u);
}

TEST_F(GlDeviceTest, LeavesDepthAloneWithoutDepthBufferingOrWriting) {
  for (const D3DRENDERSTATETYPE off : {D3DRS_ZENABLE, D3DRS_ZWRITEENABLE}) {
    device->SetRenderState(off, 0);
    drawBox(fullBox(0xFF0000FF, 0.2f));
    device->SetRenderState(off, 1);
    drawBox(fullBox(0xFF00FF00, 0.8f));
    EXPECT_EQ(middle(), 0x00FF00u);
    device->Clear(D3DCLEAR_ZBUFFER, 0, 1, 0);
  }
}

TEST_F(GlDeviceTest, CullsByTheTurnOnTheScreen) {
  const std::vector<ColorVertex> clockwise = {at(ColorVertex{0, 0, 0.5f, 0xFFFFFFFF}),
                                              at(ColorVertex{32, 0, 0.5f, 0xFFFFFFFF}),
                                              at(ColorVertex{0, 32, 0.5f, 0xFFFFFFFF})};
  for (const auto& [cull, seen] : {std::pair{D3DCULL_CCW, true}, {D3DCULL_CW, false}, {D3DCULL_NONE, true}}) {
    device->SetRenderState(D3DRS_CULLMODE, cull);
    device->Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0, 1, 0);
    drawVertices(*device, D3DPT_TRIANGLELIST, clockwise, 1);
    EXPECT_EQ(middle() != 0, seen) << cull;
  }
}

TEST_F(GlDeviceTest, ShadesFlatWithTheFirstVertexAndGouraudBetweenAll) {
  std::vector<ColorVertex> corners = fullBox(0xFF0000FF);
  corners[0].color = 0xFFFF0000;  // first of the strip's first triangle
  device->SetRenderState(D3DRS_SHADEMODE, D3DSHADE_FLAT);
  drawBox(corners);
  EXPECT_EQ(pixel(1, 1), 0xFF0000u);
  EXPECT_EQ(pixel(side - 2, side - 2), 0x0000FFu);
  device->SetRenderState(D3DRS_SHADEMODE, D3DSHADE_GOURAUD);
  drawBox(corners);
  EXPECT_COLOR(pixel(side / 2, 0), 0x80007Fu);
}

TEST_F(GlDeviceTest, LightsEachVertex) {
  D3DMATERIAL9 material;
  material.Diffuse = {1, 0.5f, 1, 1};
  material.Ambient = {0.2f, 0.2f, 0.2f, 1};
  device->SetMaterial(material);
  D3DLIGHT9 light;
  light.Type = D3DLIGHT_DIRECTIONAL;
  light.Ambient = {0.5f, 0.5f, 0, 1};
  light.Diffuse = {0.8f, 0.8f, 0.8f, 1};
  light.Direction = {0, 3, 4};  // its length does not matter
  device->SetLight(0, light);
  device->LightEnable(0, true);
  device->SetRenderState(D3DRS_LIGHTING, 1);
  device->SetRenderState(D3DRS_AMBIENT, 0x00000033);

  drawBox(box(0, 0, side, side, LitVertex{0, 0, 0.5f, 0, 0, -1, 0xFFFF8000}));
  // 0.2 x (0.5, 0.5, 0.2) + colour x 0.8 x 4/5
  EXPECT_COLOR(middle(), 0xBD6C0Au);
  drawBox(box(0, 0, side, side, TexturedVertex{0, 0, 0.4f, 0, 0, -1, 0, 0}));
  EXPECT_COLOR(middle(), 0xBD6BADu);
  drawBox(box(0, 0, side, side, TexturedVertex{0, 0, 0.3f, 0, 0, 1, 0, 0}));
  EXPECT_COLOR(middle(), 0x1A1A0Au);
  device->LightEnable(0, false);
  drawBox(box(0, 0, side, side, TexturedVertex{0, 0, 0.2f, 0, 0, -1, 0, 0}));
  EXPECT_COLOR(middle(), 0x00000Au);
}

TEST_F(GlDeviceTest, TurnsNormalsWithTheWorld) {
  D3DMATERIAL9 material;
  material.Diffuse = {1, 1, 1, 1};
  device->SetMaterial(material);
  D3DLIGHT9 light;
  light.Type = D3DLIGHT_DIRECTIONAL;
  light.Diffuse = {1, 1, 1, 1};
  light.Direction = {1, 0, 0};
  device->SetLight(0, light);
  device->LightEnable(0, true);
  device->SetRenderState(D3DRS_LIGHTING, 1);
  D3DMATRIX world;  // x to y, y to -x: a normal of +y comes to face the light
  world.m = {{{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
  device->SetTransform(D3DTS_WORLD, world);
  drawBox(box(0, 0, side, side, TexturedVertex{0, 0, 0.5f, 0, 1, 0, 0, 0}));
  EXPECT_COLOR(middle(), 0xFFFFFFu);
}

struct StageCase {
  uint32_t colorOp, colorArg1, colorArg2, expected;
};

TEST_F(GlDeviceTest, CombinesTextureAndVertexColourAsTheStageSays) {
  device->SetTexture(0, makeTexture(*device, 1, 1, 1, [](auto...) { return 0xFF804020; }));
  const StageCase cases[] = {
      {D3DTOP_SELECTARG1, D3DTA_TEXTURE, D3DTA_DIFFUSE, 0x804020},
      {D3DTOP_SELECTARG2, D3DTA_TEXTURE, D3DTA_DIFFUSE, 0xFF80C0},
      {D3DTOP_SELECTARG1, D3DTA_CURRENT, D3DTA_TEXTURE, 0xFF80C0},
      {D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_CURRENT, 0x802018},
      {D3DTOP_MODULATE2X, D3DTA_TEXTURE, D3DTA_DIFFUSE, 0xFF4030},
      {D3DTOP_DISABLE, D3DTA_TEXTURE, D3DTA_DIFFUSE, 0xFF80C0},
  };
  device->SetRenderState(D3DRS_ZENABLE, 0);
  for (const StageCase& c : cases) {
    device->SetTextureStageState(0, D3DTSS_COLOROP, c.colorOp);
    device->SetTextureStageState(0, D3DTSS_COLORARG1, c.colorArg1);
    device->SetTextureStageState(0, D3DTSS_COLORARG2, c.colorArg2);
    drawBox(box(0, 0, side, side, MixedVertex{0, 0, 0, 0xFFFF80C0, 0, 0}));
    EXPECT_COLOR(middle(), c.expected) << c.colorOp << ' ' << c.colorArg1;
  }
}

TEST_F(GlDeviceTest, PassesTheVertexColourOnWithoutATexture) {
  device->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_MODULATE);
  drawBox(fullBox(0xFF123456));
  EXPECT_EQ(middle(), 0x123456u);
}

TEST_F(GlDeviceTest, TestsAlphaAgainstTheReference) {
  device->SetRenderState(D3DRS_ZENABLE, 0);
  device->SetRenderState(D3DRS_ALPHATESTENABLE, 1);
  device->SetRenderState(D3DRS_ALPHAREF, 128);
  // For each comparison: does alpha 127, 128, 129 pass?
  const std::pair<uint32_t, std::array<bool, 3>> cases[] = {
      {D3DCMP_NEVER, {false, false, false}},      {D3DCMP_LESS, {true, false, false}},
      {D3DCMP_EQUAL, {false, true, false}},       {D3DCMP_LESSEQUAL, {true, true, false}},
      {D3DCMP_GREATER, {false, false, true}},     {D3DCMP_NOTEQUAL, {true, false, true}},
      {D3DCMP_GREATEREQUAL, {false, true, true}}, {D3DCMP_ALWAYS, {true, true, true}},
  };
  for (const auto& [func, passes] : cases) {
    device->SetRenderState(D3DRS_ALPHAFUNC, func);
    for (uint32_t i = 0; i < 3; ++i) {
      device->Clear(D3DCLEAR_TARGET, 0, 1, 0);
      drawBox(fullBox((127 + i) << 24 | 0xFFFFFF));
      EXPECT_EQ(middle() != 0, passes[i]) << func << ", alpha " << 127 + i;
    }
  }
}

TEST_F(GlDeviceTest, BlendsWithTheFactorsAskedFor) {
  device->SetRenderState(D3DRS_ZENABLE, 0);
  device->SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
  const std::tuple<uint32_t, uint32_t, uint32_t> cases[] = {
      {D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA, 0x404880},
      {D3DBLEND_ONE, D3DBLEND_INVSRCALPHA, 0x7090E0},
      {D3DBLEND_ONE, D3DBLEND_SRCALPHA, 0x5070A0},
      {D3DBLEND_ZERO, D3DBLEND_ONE, 0x404080},
  };
  for (const auto& [source, destination, expected] : cases) {
    device->SetRenderState(D3DRS_SRCBLEND, source);
    device->SetRenderState(D3DRS_DESTBLEND, destination);
    device->Clear(D3DCLEAR_TARGET, 0xFF404080, 1, 0);
    drawBox(fullBox(0x40406080));
    EXPECT_COLOR(middle(), expected) << source << ' ' << destination;
  }
}

TEST_F(GlDeviceTest, DrawsEdgesInWireframeAndLinesOfAList) {
  device->SetRenderState(D3DRS_FILLMODE, D3DFILL_WIREFRAME);
  drawBox(box(2, 2, 12, 12, ColorVertex{0, 0, 0.5f, 0xFFFFFFFF}));
  EXPECT_EQ(pixel(2, 6), 0xFFFFFFu);   // left edge
  EXPECT_EQ(pixel(6, 12), 0xFFFFFFu);  // bottom edge
  EXPECT_EQ(pixel(7, 7), 0xFFFFFFu);   // the diagonal between the two triangles
  EXPECT_EQ(pixel(4, 6), 0u);
  drawVertices(*device, D3DPT_LINELIST,
               std::vector{at(ColorVertex{4, 5, 0, 0xFFFF0000}), at(ColorVertex{9, 5, 0, 0xFFFF0000})}, 1);
  EXPECT_EQ(pixel(6, 5), 0xFF0000u);
  EXPECT_EQ(pixel(6, 4), 0u);
  EXPECT_EQ(pixel(6, 6), 0u);
}

TEST_F(GlDeviceTest, TakesTheTexelUnderThePixelAndRepeatsOrClamps) {
  // Four texels on sixteen pixels; texture coordinates run from -0.5 to 1.5.
  device->SetTexture(0,
                     makeTexture(*device, 4, 1, 1, [](uint32_t, uint32_t x, uint32_t) { return x * 0x40; }));
  auto corners = box(0, 0, side, side, TexturedVertex{0, 0, 0.5f, 0, 0, 0, 0, 0});
  for (TexturedVertex& corner : corners) corner.u = corner.u * 2 - 0.5f + 1.0f / 1024;
  drawBox(corners);
  for (uint32_t x = 0; x < side; ++x) EXPECT_EQ(pixel(x, 3), (x / 2 + 2) % 4 * 0x40) << x;
  device->SetSamplerState(0, D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP);
  drawBox(corners);
  device->Clear(D3DCLEAR_ZBUFFER, 0, 1, 0);
  drawBox(corners);
  EXPECT_EQ(pixel(0, 3), 0u);
  EXPECT_EQ(pixel(side - 1, 3), 0xC0u);
}

TEST_F(GlDeviceTest, ChoosesTheLevelThatFitsOnlyWhenMipFilteringIsOn) {
  const uint32_t colors[] = {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF, 0xFF00FF, 0x00FFFF, 0xFFFF00};
  device->SetTexture(0,
                     makeTexture(*device, 64, 64, 0, [&](uint32_t level, auto...) { return colors[level]; }));
  const auto corners = box(0, 0, side, side, TexturedVertex{0, 0, 0, 0, 0, 0, 0, 0});
  device->SetRenderState(D3DRS_ZENABLE, 0);
  drawBox(corners);
  EXPECT_EQ(middle(), colors[0]);
  for (const uint32_t filter : {D3DTEXF_POINT, D3DTEXF_LINEAR}) {
    device->SetSamplerState(0, D3DSAMP_MIPFILTER, filter);
    drawBox(corners);
    EXPECT_EQ(middle(), colors[2]) << filter;  // 64 texels on 16 pixels
  }
}

TEST_F(GlDeviceTest, ShowsEveryReadablePixelFormat) {
  device->SetRenderState(D3DRS_ZENABLE, 0);
  for (const PixelFormat& format : pixelFormats()) {
    std::vector<std::byte> bytes(levelBytes(format.format, 4, 4));
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::byte>(i * 37 + 11);
    std::vector<uint8_t> rgba(64);
    decodePixels(format.format, 4, 4, bytes, rgba);

    std::shared_ptr<IDirect3DTexture9> texture;
    ASSERT_EQ(device->CreateTexture(4, 4, 1, 0, format.format, D3DPOOL_MANAGED, &texture), D3D_OK);
    D3DLOCKED_RECT locked;
    texture->LockRect(0, &locked);
    std::memcpy(locked.pBits, bytes.data(), bytes.size());
    texture->UnlockRect(0);
    device->SetTexture(0, texture);
    // Alpha is seen where it becomes the colour's factor over white.
    device->SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
    device->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
    device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    device->Clear(D3DCLEAR_TARGET, 0xFFFFFFFF, 1, 0);
    drawBox(box(0, 0, side, side, TexturedVertex{0, 0, 0, 0, 0, 0, 0, 0}));
    for (uint32_t i = 0; i < 16; ++i) {
      const auto blended = [&](uint32_t channel) {
        const uint32_t alpha = rgba[i * 4 + 3];
        return (rgba[i * 4 + channel] * alpha + 255 * (255 - alpha) + 127) / 255;
      };
      ASSERT_TRUE(
          near(pixel(i % 4 * 4 + 2, i / 4 * 4 + 2), blended(0) << 16 | blended(1) << 8 | blended(2), 2))
          << format.name << ", pixel " << i;
    }
  }
}

TEST_F(GlDeviceTest, DrawsOnlyPrimitivesThatHaveAllTheirVertices) {
  const float nan = std::numeric_limits<float>::quiet_NaN(),
              infinity = std::numeric_limits<float>::infinity();
  const auto broken = [](float x) { return ColorVertex{x, x, x, 0xFFFFFFFF}; };
  std::vector<ColorVertex> vertices = fullBox(0xFFFFFFFF);
  vertices.insert(vertices.end(), {broken(nan), broken(infinity), broken(-infinity), broken(3e38f)});
  const auto buffer = makeVertices(*device, vertices);
  device->SetFVF(ColorVertex::fvf);
  const auto draw = [&](const std::vector<uint16_t>& indices, D3DPRIMITIVETYPE type, int32_t base,
                        uint32_t count, uint32_t primitives) {
    device->Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0, 1, 0);
    device->SetIndices(makeIndices(*device, indices));
    device->SetStreamSource(0, buffer, 0, sizeof(ColorVertex));
    device->DrawIndexedPrimitive(type, base, 0, count, 0, primitives);
    return pixel(1, 1) != 0 || pixel(side - 2, side - 2) != 0;
  };
  EXPECT_TRUE(draw({0, 1, 2}, D3DPT_TRIANGLELIST, 0, 3, 1));
  EXPECT_TRUE(draw({0, 1, 2}, D3DPT_TRIANGLELIST, 0, 3, 500));
  EXPECT_TRUE(draw({0, 1, 200, 0, 1, 2}, D3DPT_TRIANGLELIST, 0, 3, 2));
  EXPECT_TRUE(draw({65535, 0, 1, 2, 3}, D3DPT_TRIANGLESTRIP, 0, 4, 3));
  EXPECT_TRUE(draw({2, 3, 4}, D3DPT_TRIANGLELIST, -2, 8, 1));
  EXPECT_FALSE(draw({0, 1, 2}, D3DPT_TRIANGLELIST, 0, 2, 1));
  EXPECT_FALSE(draw({0, 1, 8}, D3DPT_TRIANGLELIST, 0, 100, 1));
  EXPECT_FALSE(draw({0, 1, 2}, D3DPT_TRIANGLELIST, 7, 8, 1));
  EXPECT_FALSE(draw({1, 2, 3}, D3DPT_TRIANGLELIST, -2, 8, 1));
  EXPECT_FALSE(draw({0, 1, 4}, D3DPT_TRIANGLELIST, 0, 8, 1)) << "not a number";
  EXPECT_FALSE(draw({0, 1, 5}, D3DPT_TRIANGLELIST, 0, 8, 1)) << "infinite";
  draw({0, 1, 7, 6, 7, 2}, D3DPT_TRIANGLELIST, 0, 8, 2);  // huge: need not be seen, must not crash

  device->SetIndices(nullptr);
  EXPECT_EQ(device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 3, 0, 1), D3DERR_INVALIDCALL);
  device->SetStreamSource(0, buffer, 0, 4);
  EXPECT_EQ(device->DrawPrimitive(D3DPT_TRIANGLELIST, 0, 1), D3DERR_INVALIDCALL);
  device->SetStreamSource(0, nullptr, 0, 0);
  EXPECT_EQ(device->DrawPrimitive(D3DPT_TRIANGLELIST, 0, 1), D3DERR_INVALIDCALL);
}

TEST_F(GlDeviceTest, SeesWhatALockChanged) {
  auto corners = fullBox(0xFFFF0000);
  const auto buffer = makeVertices(*device, corners);
  const auto indices = makeIndices(*device, {0, 0, 0});
  const auto texture = makeTexture(*device, 1, 1, 1, [](auto...) { return 0xFF0000FF; });
  const auto draw = [&] {
    device->Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0, 1, 0);
    device->SetFVF(ColorVertex::fvf);
    device->SetStreamSource(0, buffer, 0, sizeof(ColorVertex));
    device->SetIndices(indices);
    device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 1);
    return pixel(1, 1);
  };
  EXPECT_EQ(draw(), 0u);
  fillBuffer(*indices, std::span<const uint16_t>(std::vector<uint16_t>{0, 1, 2}));
  EXPECT_EQ(draw(), 0xFF0000u);
  for (ColorVertex& corner : corners) corner.color = 0xFF00FF00;
  fillBuffer(*buffer, std::span<const ColorVertex>(corners));
  EXPECT_EQ(draw(), 0x00FF00u);
  device->SetTexture(0, texture);
  EXPECT_EQ(draw(), 0x0000FFu);
  D3DLOCKED_RECT locked;
  texture->LockRect(0, &locked);
  std::memset(locked.pBits, 0xFF, 4);
  texture->UnlockRect(0);
  EXPECT_EQ(draw(), 0xFFFFFFu);
}

TEST_F(GlDeviceTest, KeepsBuffersAndTexturesThroughResetAndLoss) {
  const auto buffer = makeVertices(*device, box(0, 0, side, side, TexturedVertex{0, 0, 0.5f, 0, 0, 0, 0, 0}));
  const auto indices = makeIndices(*device, {0, 1, 2});
  const auto texture = makeTexture(*device, 2, 2, 0, [](auto...) { return 0xFF00FF00; });
  const auto draw = [&] {
    setUpStates();
    device->SetFVF(TexturedVertex::fvf);
    device->SetStreamSource(0, buffer, 0, sizeof(TexturedVertex));
    device->SetIndices(indices);
    device->SetTexture(0, texture);
    device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 1);
    return pixel(1, 1);
  };
  EXPECT_EQ(draw(), 0x00FF00u);
  EXPECT_EQ(device->TestCooperativeLevel(), D3D_OK);
  EXPECT_EQ(device->Reset(backBuffer(side, side)), D3D_OK);
  EXPECT_EQ(draw(), 0x00FF00u);

  context->lost = true;
  EXPECT_EQ(device->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
  EXPECT_EQ(device->Present(), D3DERR_DEVICELOST);
  EXPECT_TRUE(readGlBackBuffer(*device).empty());
  EXPECT_EQ(device->Reset(backBuffer(side, side)), D3D_OK);
  EXPECT_EQ(device->TestCooperativeLevel(), D3D_OK);
  EXPECT_EQ(draw(), 0x00FF00u);
}

TEST_F(GlDeviceTest, ResetChangesTheSizeAndForgetsStates) {
  device->SetRenderState(D3DRS_CULLMODE, D3DCULL_CW);
  ASSERT_EQ(device->Reset(backBuffer(side, 2 * side)), D3D_OK);
  EXPECT_EQ(readGlBackBuffer(*device).size(), side * 2 * side * 4);
  device->SetRenderState(D3DRS_LIGHTING, 0);
  device->Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0, 1, 0);
  drawBox(fullBox(0xFFFFFFFF));
  EXPECT_EQ(middle(), 0xFFFFFFu);  // clockwise: culled by CW, seen by the default
}

TEST_F(GlDeviceTest, StretchesThePictureOverTheWindow) {
  drawBox(box(0, 0, side, side / 2, ColorVertex{0, 0, 0.5f, 0xFFFF0000}));
  drawBox(box(0, side / 2, side / 2, side, ColorVertex{0, 0, 0.5f, 0xFF0000FF}));
  EXPECT_EQ(device->Present(), D3D_OK);
  EXPECT_EQ(context->presents, 0u);
  context->withWindow = true;
  EXPECT_EQ(device->Present(), D3D_OK);
  EXPECT_EQ(context->presents, 1u);
  const std::vector<uint8_t> pixels = context->windowPixels();  // OpenGL's rows count from below
  EXPECT_EQ(pixels[8], 255);
  EXPECT_EQ(pixels[12], 255);
  EXPECT_EQ(pixels[2], 255);
  EXPECT_EQ(pixels[6], 0);
  ASSERT_EQ(device->Reset(backBuffer(0, 0)), D3D_OK);
  EXPECT_EQ(readGlBackBuffer(*device).size(), 2u * 2 * 4);
}

TEST_F(GlDeviceTest, RefusesWhatItCannotDo) {
  std::shared_ptr<IDirect3DDevice9> other;
  for (const D3DFORMAT depth : {D3DFMT_D15S1, D3DFMT_D24X4S4, D3DFMT_UNKNOWN}) {
    EXPECT_EQ(createGlDevice(context, backBuffer(4, 4, depth), &other), D3DERR_NOTAVAILABLE);
    EXPECT_FALSE(other);
  }
  EXPECT_EQ(createGlDevice(context, backBuffer(1u << 20, 4), &other), D3DERR_NOTAVAILABLE);
  EXPECT_EQ(createGlDevice(nullptr, backBuffer(4, 4), &other), D3DERR_NOTAVAILABLE);
  ASSERT_EQ(createGlDevice(createEglContext(), backBuffer(4, 4, D3DFMT_D16), &other), D3D_OK);
  const auto texture = makeTexture(*other, 1, 1, 1, [](auto...) { return 0; });
  EXPECT_EQ(device->SetStreamSource(0, makeVertices(*other, fullBox(0)), 0, 16), D3DERR_INVALIDCALL);
  EXPECT_EQ(device->SetIndices(makeIndices(*other, {0})), D3DERR_INVALIDCALL);
  EXPECT_EQ(device->SetTexture(0, texture), D3DERR_INVALIDCALL);
  other.reset();

  D3DCAPS9 caps;
  ASSERT_EQ(device->GetDeviceCaps(&caps), D3D_OK);
  EXPECT_GE(caps.MaxTextureWidth, 1024u);
  EXPECT_GE(caps.MaxAnisotropy, 1u);
  std::shared_ptr<IDirect3DTexture9> created;
  EXPECT_EQ(device->CreateTexture(caps.MaxTextureWidth + 1, 1, 1, 0, D3DFMT_L8, D3DPOOL_MANAGED, &created),
            D3DERR_INVALIDCALL);
  EXPECT_EQ(device->CreateTexture(4, 4, 1, 0, D3DFMT_P8, D3DPOOL_MANAGED, &created), D3DERR_NOTAVAILABLE);
  EXPECT_EQ(device->CreateTexture(caps.MaxTextureWidth, 1, 0, 0, D3DFMT_L8, D3DPOOL_MANAGED, &created),
            D3D_OK);
  EXPECT_EQ(device->SetFVF(D3DFVF_NORMAL), D3DERR_INVALIDCALL);
  EXPECT_EQ(device->SetRenderState(D3DRS_CULLMODE, 7), D3DERR_INVALIDCALL);
  EXPECT_EQ(device->SetRenderState(D3DRS_CULLMODE, 33), D3DERR_INVALIDCALL);
}

TEST_F(GlDeviceTest, ResourcesMayOutliveTheirDevice) {
  const auto buffer = makeVertices(*device, fullBox(0xFFFFFFFF));
  const auto texture = makeTexture(*device, 2, 2, 1, [](auto...) { return 0; });
  device->SetFVF(ColorVertex::fvf);
  device->SetStreamSource(0, buffer, 0, 16);
  device->SetTexture(0, texture);
  device->DrawPrimitive(D3DPT_TRIANGLELIST, 0, 1);
  device.reset();
  context.reset();
  void* data = nullptr;
  EXPECT_EQ(buffer->Lock(0, 0, &data, 0), D3D_OK);
}

TEST_F(GlDeviceTest, DescribesItsAdapter) {
  D3DADAPTER_IDENTIFIER9 identifier;
  D3DCAPS9 caps;
  ASSERT_EQ(describeGlAdapter(*context, &identifier, &caps), D3D_OK);
  EXPECT_FALSE(identifier.Description.empty());
  EXPECT_GE(identifier.DriverVersion >> 48, 3u);
  context->lost = true;
  EXPECT_EQ(describeGlAdapter(*context, &identifier, &caps), D3DERR_NOTAVAILABLE);
}

}  // namespace
}  // namespace facet
