#include "canvas.h"

namespace facet {
namespace {

/// A driver that is there but does not work.
class BrokenContext : public GlContext {
 public:
  bool makeCurrent() override { return false; }
  bool restore() override { return false; }
};

struct Root {
  HRESULT create(D3DDEVTYPE type, D3DPRESENT_PARAMETERS parameters = backBuffer(3, 2)) {
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
    EXPECT_NE(root.create(D3DDEVTYPE_REF, backBuffer(3, 0)), D3D_OK);
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

}  // namespace
}  // namespace facet
