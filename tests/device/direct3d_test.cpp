#include "device/direct3d.h"

#include <gmock/gmock.h>

#include "device/software/software_device.h"

namespace facet {
namespace {

using testing::Each;

/// A driver that is there but does not work.
class BrokenContext : public GlContext {
 public:
  bool makeCurrent() override { return false; }
  bool restore() override { return false; }
};

struct Root {
  HRESULT create(D3DDEVTYPE type) {
    D3DPRESENT_PARAMETERS parameters;
    parameters.BackBufferWidth = 3;
    parameters.BackBufferHeight = 2;
    parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
    parameters.AutoDepthStencilFormat = D3DFMT_D24S8;
    return direct3d->CreateDevice(0, type, nullptr, D3DCREATE_SOFTWARE_VERTEXPROCESSING, &parameters,
                                  &device);
  }

  int asked = 0;
  std::shared_ptr<GlContext> context;
  std::shared_ptr<IDirect3D9> direct3d = Direct3DCreate9(
      D3D_SDK_VERSION, {{640, 480, 60, D3DFMT_X8R8G8B8}, [this] { return ++asked, context; }});
  std::shared_ptr<IDirect3DDevice9> device;
};

TEST(Direct3D, IsThereForItsOwnVersionOnly) {
  EXPECT_EQ(Direct3DCreate9(31, {}), nullptr);
  D3DDISPLAYMODE mode;
  EXPECT_EQ(Root().direct3d->GetAdapterDisplayMode(0, &mode), D3D_OK);
  EXPECT_EQ(mode.Width, 640u);
}

TEST(Direct3D, OnlyTheReferenceRowNeedsNothing) {
  for (const bool driver : {false, true}) {
    Root root;
    if (driver) root.context = std::make_shared<BrokenContext>();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(root.create(D3DDEVTYPE_HAL), D3DERR_NOTAVAILABLE);
    EXPECT_EQ(root.asked, 1) << "a driver is slow to start";
    EXPECT_EQ(root.create(D3DDEVTYPE_SW), D3DERR_NOTAVAILABLE);
    EXPECT_EQ(root.device, nullptr);
    EXPECT_EQ(root.create(D3DDEVTYPE_REF), D3D_OK);

    D3DCAPS9 caps;
    EXPECT_NE(root.direct3d->GetDeviceCaps(0, D3DDEVTYPE_HAL, &caps), D3D_OK);
    EXPECT_EQ(root.direct3d->GetDeviceCaps(0, D3DDEVTYPE_REF, &caps), D3D_OK);
    EXPECT_EQ(caps.MaxTextureWidth, softwareCaps().MaxTextureWidth);
    D3DADAPTER_IDENTIFIER9 identifier;
    EXPECT_EQ(root.direct3d->GetAdapterIdentifier(0, &identifier), D3D_OK);
    EXPECT_NE(identifier.Description, "");
  }
}

TEST(Direct3D, ReadsTheBackBufferAsRgba) {
  Root root;
  ASSERT_EQ(root.create(D3DDEVTYPE_REF), D3D_OK);
  root.device->Clear(0x00112233);
  EXPECT_TRUE(readBackBuffer(*root.device).empty()) << "not presented yet";
  root.device->Present();
  const auto pixels = readBackBuffer(*root.device);
  ASSERT_EQ(pixels.size(), 3u * 2 * 4);
  for (size_t i = 0; i < pixels.size(); i += 4)
    EXPECT_EQ((std::vector<uint8_t>(pixels.begin() + i, pixels.begin() + i + 4)),
              (std::vector<uint8_t>{0x11, 0x22, 0x33, 255}));
}

}  // namespace
}  // namespace facet
