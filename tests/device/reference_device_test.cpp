#include <gmock/gmock.h>

#include "device/reference_scene.h"

namespace facet {
namespace {

TEST(ReferenceDevice, IsCreatedOnlyWithASizeAndADepthFormat) {
  D3DPRESENT_PARAMETERS good;
  good.BackBufferWidth = 4;
  good.BackBufferHeight = 3;
  good.EnableAutoDepthStencil = true;
  good.AutoDepthStencilFormat = D3DFMT_D32;
  D3DPRESENT_PARAMETERS empty = good, wide = good, depthless = good;
  empty.BackBufferHeight = 0;
  wide.BackBufferWidth = 16385;
  depthless.AutoDepthStencilFormat = D3DFMT_L8;
  std::shared_ptr<ReferenceDevice> device;
  for (const auto& bad : {empty, wide, depthless}) {
    EXPECT_NE(ReferenceDevice::create(bad, 1, &device), D3D_OK);
    EXPECT_FALSE(device);
  }
  EXPECT_EQ(ReferenceDevice::create(good, 1, &device), D3D_OK);
  EXPECT_EQ(device->backBuffer().size(), 12u);
}

TEST(ReferenceDevice, KeepsManagedObjectsOverAReset) {
  Scene scene;
  scene.texture(1, 1, 1, {0xFF112233});
  std::shared_ptr<IDirect3DTexture9> texture;
  scene.device->CreateTexture(1, 1, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &texture);
  D3DLOCKED_RECT locked;
  texture->LockRect(0, &locked);
  *static_cast<uint32_t*>(locked.pBits) = 0xFF112233;

  D3DPRESENT_PARAMETERS parameters;
  parameters.BackBufferWidth = 8;
  parameters.BackBufferHeight = 8;
  ASSERT_EQ(scene.device->Reset(parameters), D3D_OK);
  scene.device->SetRenderState(D3DRS_LIGHTING, 0);
  scene.device->SetTexture(0, texture);
  scene.rectangle(-1, 1, 1, -1);
  EXPECT_EQ(scene.pixel(7, 7), 0x112233u);
}

TEST(ReferenceDevice, DrawsWhatTheBuffersHeldAtTheCall) {
  Scene scene;
  std::shared_ptr<IDirect3DVertexBuffer9> buffer;
  scene.device->CreateVertexBuffer(48, 0, 0x42, D3DPOOL_MANAGED, &buffer);
  struct ColoredVertex {
    float x, y, z;
    uint32_t color;
  };
  const auto fill = [&](float left, uint32_t color) {
    void* to;
    ASSERT_EQ(buffer->Lock(0, 0, &to, 0), D3D_OK);
    const ColoredVertex corners[] = {{left, 0, 0, color}, {left + 16, 0, 0, color}, {left, 16, 0, color}};
    std::memcpy(to, corners, sizeof corners);
    buffer->Unlock();
  };
  scene.device->SetFVF(0x42);
  scene.device->SetStreamSource(0, buffer, 0, 16);
  fill(0, 0xFF00FF00);
  scene.device->DrawPrimitive(D3DPT_TRIANGLELIST, 0, 1);
  fill(8, 0xFFFF0000);
  scene.device->DrawPrimitive(D3DPT_TRIANGLELIST, 0, 1);
  EXPECT_EQ(scene.pixel(2, 2), 0x00FF00u);
  EXPECT_EQ(scene.pixel(13, 2), 0xFF0000u);
}

TEST(ReferenceDevice, ChecksLocksAndCreations) {
  Scene scene;
  std::shared_ptr<IDirect3DVertexBuffer9> buffer;
  ASSERT_EQ(scene.device->CreateVertexBuffer(8, 0, 0, D3DPOOL_MANAGED, &buffer), D3D_OK);
  void* data;
  EXPECT_EQ(buffer->Lock(4, 4, &data, 0), D3D_OK);
  EXPECT_EQ(buffer->Lock(4, 5, &data, 0), D3DERR_INVALIDCALL);
  EXPECT_NE(scene.device->CreateVertexBuffer(0, 0, 0, D3DPOOL_MANAGED, &buffer), D3D_OK);
  EXPECT_FALSE(buffer);

  std::shared_ptr<IDirect3DTexture9> texture;
  EXPECT_EQ(scene.device->CreateTexture(5, 3, 0, 0, D3DFMT_DXT1, D3DPOOL_MANAGED, &texture), D3D_OK);
  EXPECT_EQ(texture->GetLevelCount(), 3u);
  EXPECT_EQ(scene.device->CreateTexture(4, 4, 4, 0, D3DFMT_L8, D3DPOOL_MANAGED, &texture),
            D3DERR_INVALIDCALL);
  EXPECT_EQ(scene.device->CreateTexture(16385, 1, 1, 0, D3DFMT_L8, D3DPOOL_MANAGED, &texture),
            D3DERR_INVALIDCALL);
  EXPECT_EQ(scene.device->CreateTexture(4, 4, 1, 0, D3DFMT_P8, D3DPOOL_MANAGED, &texture),
            D3DERR_NOTAVAILABLE);
}

}  // namespace
}  // namespace facet
