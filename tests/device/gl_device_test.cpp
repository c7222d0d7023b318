#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "device/pixels.h"
#include "gl_fixture.h"

namespace facet {
namespace {

/// 0xRRGGBB, each channel within one step.
MATCHER_P(IsColor, expected, "") {
  for (const int shift : {0, 8, 16}) {
    const int channel = static_cast<int>(arg >> shift & 0xFF),
              wanted = static_cast<int>(expected >> shift & 0xFF);
    if (std::abs(channel - wanted) > 1) return false;
  }
  return true;
}

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
  EXPECT_THAT(pixel(side / 2, 0), IsColor(0x80007Fu));
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
  EXPECT_THAT(middle(), IsColor(0xBD6C0Au));
  drawBox(box(0, 0, side, side, TexturedVertex{0, 0, 0.4f, 0, 0, -1, 0, 0}));
  EXPECT_THAT(middle(), IsColor(0xBD6BADu));
  drawBox(box(0, 0, side, side, TexturedVertex{0, 0, 0.3f, 0, 0, 1, 0, 0}));
  EXPECT_THAT(middle(), IsColor(0x1A1A0Au));
  device->LightEnable(0, false);
  drawBox(box(0, 0, side, side, TexturedVertex{0, 0, 0.2f, 0, 0, -1, 0, 0}));
  EXPECT_THAT(middle(), IsColor(0x00000Au));
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
    EXPECT_THAT(middle(), IsColor(c.expected)) << c.colorOp << ' ' << c.colorArg1;
  }
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
      ASSERT_THAT(pixel(i % 4 * 4 + 2, i / 4 * 4 + 2),
                  IsColor(blended(0) << 16 | blended(1) << 8 | blended(2)))
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

TEST_F(GlDeviceTest, SamplesTextureCoordinatesThatAreNoNumbersWithoutAHang) {
  device->SetTexture(0, makeTexture(*device, 8, 8, 0, [](auto...) { return 0xFFFFFFFF; }));
  device->SetSamplerState(0, D3DSAMP_MINFILTER, D3DTEXF_ANISOTROPIC);
  device->SetSamplerState(0, D3DSAMP_MIPFILTER, D3DTEXF_LINEAR);
  device->SetSamplerState(0, D3DSAMP_MAXANISOTROPY, 0xFFFFFFFF);
  device->SetRenderState(D3DRS_ZENABLE, 0);
  for (const float odd :
       {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 3e38f}) {
    auto corners = box(0, 0, side, side, TexturedVertex{0, 0, 0.5f, 0, 0, 0, 0, 0});
    corners[0].u = corners[3].v = odd;
    EXPECT_EQ(drawBox(corners), D3D_OK);
    readGlBackBuffer(*device);
  }
}

TEST_F(GlDeviceTest, SeesWhatALockChanged) {
  auto corners = box(0, 0, side, side, MixedVertex{0, 0, 0.5f, 0xFFFF0000, 0, 0});
  const auto buffer = makeVertices(*device, corners);
  const auto indices = makeIndices(*device, {0, 0, 0});
  const auto texture = makeTexture(*device, 1, 1, 1, [](auto...) { return 0xFF0000FF; });
  const auto draw = [&] {
    device->Clear(D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0, 1, 0);
    device->SetFVF(MixedVertex::fvf);
    device->SetStreamSource(0, buffer, 0, sizeof(MixedVertex));
    device->SetIndices(indices);
    device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 1);
    return pixel(1, 1);
  };
  EXPECT_EQ(draw(), 0u);
  fillBuffer(*indices, std::span<const uint16_t>(std::vector<uint16_t>{0, 1, 2}));
  EXPECT_EQ(draw(), 0xFF0000u);
  for (MixedVertex& corner : corners) corner.color = 0xFF00FF00;
  fillBuffer(*buffer, std::span<const MixedVertex>(corners));
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
  EXPECT_EQ(device->Reset(backBuffer(side, side, D3DFMT_D15S1)), D3DERR_NOTAVAILABLE);
  EXPECT_EQ(device->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
  EXPECT_EQ(device->Clear(D3DCLEAR_TARGET, 0, 1, 0), D3DERR_DEVICELOST);
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
  GLint sampler = -1, fill[2] = {};
  glGetIntegerv(GL_SAMPLER_BINDING, &sampler);
  glGetIntegerv(GL_POLYGON_MODE, fill);
  EXPECT_EQ(sampler, 0);  // the window's own drawing follows
  EXPECT_EQ(fill[0], GL_FILL);
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
  EXPECT_EQ(device->SetStreamSource(0, makeVertices(*device, fullBox(0)), 0, 4096), D3DERR_INVALIDCALL);
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
