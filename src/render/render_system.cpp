#include "render/render_system.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "platform/desktop.h"
#include "render/scene.h"
#include "render/view.h"

namespace facet {

namespace {

struct DeviceMode {
  const char* text;
  D3DDEVTYPE type;
  uint32_t behaviorFlags;
};
constexpr DeviceMode deviceModes[] = {
    {"HAL.PURE.HARDVERT", D3DDEVTYPE_HAL, D3DCREATE_HARDWARE_VERTEXPROCESSING | D3DCREATE_PUREDEVICE},
    {"Fallback to HAL.HARDVERT", D3DDEVTYPE_HAL, D3DCREATE_HARDWARE_VERTEXPROCESSING},
    {"Fallback to HAL.MIXEDVERT", D3DDEVTYPE_HAL, D3DCREATE_MIXED_VERTEXPROCESSING},
    {"Fallback to HAL.SOFTVERT", D3DDEVTYPE_HAL, D3DCREATE_SOFTWARE_VERTEXPROCESSING},
    {"Fallback to SW.SOFTVERT", D3DDEVTYPE_SW, D3DCREATE_SOFTWARE_VERTEXPROCESSING},
    {"Fallback to REF.SOFTVERT", D3DDEVTYPE_REF, D3DCREATE_SOFTWARE_VERTEXPROCESSING},
};
constexpr size_t firstSoftwareMode = 4;

struct DepthFormat {
  const char* text;
  D3DFORMAT format;
};
constexpr DepthFormat depthFormats[] = {
    {"D3DFMT_D32", D3DFMT_D32},         {"D3DFMT_D24X8", D3DFMT_D24X8}, {"D3DFMT_D24S8", D3DFMT_D24S8},
    {"D3DFMT_D24X4S4", D3DFMT_D24X4S4}, {"D3DFMT_D16", D3DFMT_D16},     {"D3DFMT_D15S1", D3DFMT_D15S1},
};

constexpr const char* rasterisers[] = {"rgb9rast.dll", "rgb9rast_2.dll", "rgb9rast_1.dll"};
constexpr char rasteriserEntry[] = "D3D9GetSWInfo";

constexpr unsigned errorBox = MB_OK | MB_ICONHAND | MB_SYSTEMMODAL;
constexpr char createCaption[] = "p_d3d->CreateDevice()";

void registerRasteriser(IDirect3D9& d3d, const RenderPlatform& platform) {
  for (const char* library : rasterisers)
    if (const auto entry = platform.loadEntry(library, rasteriserEntry))
      return static_cast<void>(d3d.RegisterSoftwareDevice(*entry));
  d3d.RegisterSoftwareDevice(nullptr);
}

D3DPRESENT_PARAMETERS presentParameters(const ModelView& view) {
  D3DPRESENT_PARAMETERS parameters;
  parameters.BackBufferWidth = view.system.displayMode.Width;
  parameters.BackBufferHeight = view.system.displayMode.Height;
  parameters.BackBufferFormat = view.system.displayMode.Format;
  parameters.BackBufferCount = 1;
  parameters.SwapEffect = D3DSWAPEFFECT_DISCARD;
  parameters.hDeviceWindow = view.window.handle;
  parameters.Windowed = true;
  parameters.EnableAutoDepthStencil = true;
  parameters.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
  return parameters;
}

/// Takes the first device that is to be had, from the row on; says which, or why there is none.
bool createDevice(ModelView& view, size_t firstMode) {
  HRESULT result = D3D_OK;
  for (size_t row = firstMode; row < std::size(deviceModes); ++row) {
    const DeviceMode& mode = deviceModes[row];
    for (const DepthFormat& depth : depthFormats) {
      view.system.presentParams.AutoDepthStencilFormat = depth.format;
      result = view.system.p_d3d->CreateDevice(D3DADAPTER_DEFAULT, mode.type, view.window.handle,
                                               mode.behaviorFlags, &view.system.presentParams,
                                               &view.system.p_device);
      if (result != D3D_OK) continue;
      messageBox(std::string(mode.text) + " / " + depth.text, createCaption,
                 MB_OK | MB_ICONINFORMATION | MB_SYSTEMMODAL);
      return true;
    }
  }
  char text[40];
  std::snprintf(text, sizeof text, "DirectX error code:0x%08X", static_cast<unsigned>(result));
  messageBox(text, std::string(createCaption) + " != D3D_OK", errorBox);
  return false;
}

}  // namespace

bool createRenderSystem(ModelView& view, const RenderPlatform& platform) {
  std::srand(static_cast<unsigned>(std::time(nullptr)));
  setWindowTitle(applicationTitle);
  if (view.window.handle == nullptr) return false;
  if (view.window.bitsPerPixel < 15) {
    messageBox("Indexed color modes are unsupported", "GetDeviceCaps(...,BITSPIXEL)", errorBox);
    return false;
  }
  view.system.p_d3d = platform.direct3DCreate9(D3D_SDK_VERSION);
  if (!view.system.p_d3d) return false;
  registerRasteriser(*view.system.p_d3d, platform);
  view.system.p_d3d->GetAdapterDisplayMode(D3DADAPTER_DEFAULT, &view.system.displayMode);
  view.system.presentParams = presentParameters(view);
  const auto answer = messageBox("Use Software renderer?", createCaption,
                                 MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2 | MB_SYSTEMMODAL);
  if (!createDevice(view, answer == IDYES ? firstSoftwareMode : 0)) return false;
  view.system.p_device->state.lighting = false;
  setTextureStage(view, false);
  buildAxes(view);
  buildGrid(view);
  buildSkyBox(view, {0, 0, 0}, 400, 200, 400);
  return true;
}

int OnCreate(ModelView& view, const RenderPlatform& platform) {
  if (createRenderSystem(view, platform)) return 0;
  messageBox("Error setting up render system!", "Init Error!", errorBox);
  return -1;
}

void OnDestroy(ModelView& view) {
  closeModel(view);
  RenderSystem& system = view.system;
  system.axesBuffer = system.gridBuffer = system.skyBuffer = nullptr;
  system.checker = nullptr;
  system.p_device.reset();
  system.p_d3d.reset();
}

}  // namespace facet
