#include <gmock/gmock.h>

#include "gl_fixture.h"

namespace facet {
namespace {

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
  EXPECT_EQ(device->SetStreamSource(0, makeVertices(*device, fullBox(0)), 0, 4096), D3DERR_INVALIDCALL);
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
