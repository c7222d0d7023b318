#include "commands/display.h"

#include <gmock/gmock.h>

#include "commands/recorded_viewer.h"

namespace facet {
namespace {

using testing::ElementsAre;

TEST(Gamma, CyclesIn21Steps) {
  float gamma = nextGamma(1.0f);
  EXPECT_EQ(gamma, 1.1f);
  for (int i = 2; i <= 20; ++i) gamma = nextGamma(gamma);
  EXPECT_NEAR(gamma, 3.0f, 1e-5f);
  EXPECT_EQ(nextGamma(gamma), 1.0f);
}

TEST(Gamma, RampsAreEqualForAllChannels) {
  const GammaRamp straight = rampOfGamma(1.0f);
  for (uint32_t i = 0; i < 256; ++i) EXPECT_EQ(straight.red[i], i << 8);
  const GammaRamp two = rampOfGamma(2.0f);
  EXPECT_EQ(two.red[64], 32512);
  EXPECT_EQ(two.red[0], 0);
  EXPECT_EQ(two.red[255], 65280);
  EXPECT_EQ(two.green, two.red);
  EXPECT_EQ(two.blue, two.red);
}

/// A root whose devices of different types tell different shader versions.
class TypedDirect3D : public RecordingDirect3D {
 public:
  HRESULT GetDeviceCaps(uint32_t adapter, D3DDEVTYPE type, D3DCAPS9* result) override {
    *result = {};
    result->VertexShaderVersion = type == D3DDEVTYPE_HAL ? 0xFFFE0200 : 0xFFFE0101;
    result->PixelShaderVersion = type == D3DDEVTYPE_HAL ? 0xFFFF0201 : 0xFFFF0104;
    return adapter == D3DADAPTER_DEFAULT ? D3D_OK : D3DERR_NOTAVAILABLE;
  }
};

TEST(SystemInformation, TellsAdapterAndCapabilities) {
  RecordedViewer recorded;
  const auto direct3d = std::make_shared<TypedDirect3D>();
  direct3d->identifier = {"driver.so", "Some adapter", 0x0001000200030004, 0x8086, 0x5A84, 0x12345678, 0xB};
  recorded.device().caps = {8192, 4096, 16, 0xFFFE0300, 0xFFFF0300};
  recorded.device().availableTextureMem = 4294967295u;
  recorded.viewer.view.p_d3d = direct3d;
  showSystemInformation(recorded.viewer.view);
  EXPECT_THAT(recorded.desktop.boxes,
              ElementsAre(RecordingDesktop::Box{
                  "Driver:Some adapter\rLib:driver.so (1.2.3.4)\rPCIID:8086.5A84.12345678.000B\r"
                  "VS:300, PS:300 (HW 200:201, SW 101:104)\rMax.tex.: 8192x4096, aniso.: 16\r"
                  "Texture mem: 4294967295 bytes",
                  "DirectX Caps Info Panel", 0x1040}));
}

TEST(Fullscreen, TakesBarsAndBordersAndGivesThemBack) {
  RecordedViewer recorded;
  toggleFullscreen(recorded.viewer);
  EXPECT_THAT(recorded.desktop.windowCalls, ElementsAre("hide bars", "undecorate", "maximise"));
  recorded.desktop.windowCalls.clear();
  toggleFullscreen(recorded.viewer);
  EXPECT_THAT(recorded.desktop.windowCalls, ElementsAre("show bars", "decorate", "restore"));
}

}  // namespace
}  // namespace facet
