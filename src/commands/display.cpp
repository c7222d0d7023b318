#include "commands/display.h"

#include <algorithm>
#include <cmath>

#include "platform/text.h"

namespace facet {

namespace {

uint32_t highWord(uint64_t value) {
  return static_cast<uint32_t>(value >> 16) & 0xFFFF;
}
uint32_t lowWord(uint64_t value) {
  return static_cast<uint32_t>(value) & 0xFFFF;
}

}  // namespace

float nextGamma(float gamma) {
  const float next = gamma + 0.1f;
  return next > 3.0f ? 1.0f : next;
}

GammaRamp rampOfGamma(float gamma) {
  GammaRamp ramp;
  for (size_t i = 0; i < ramp.red.size(); ++i) {
    const auto x = static_cast<float>(static_cast<double>(i) / 255);
    const float value = std::min(std::pow(x, 1.0f / gamma) * 255.0f, 65535.0f);
    const auto entry = static_cast<uint16_t>(static_cast<uint32_t>(value) << 8);
    ramp.red[i] = ramp.green[i] = ramp.blue[i] = entry;
  }
  return ramp;
}

void changeGamma(ModelView& view) {
  view.gamma = nextGamma(view.gamma);
  if (Desktop* desktop = currentDesktop()) desktop->setGammaRamp(rampOfGamma(view.gamma));
}

std::string systemInformation(IDirect3D9& direct3D, IDirect3DDevice9& device) {
  D3DADAPTER_IDENTIFIER9 adapter;
  direct3D.GetAdapterIdentifier(D3DADAPTER_DEFAULT, &adapter);
  D3DCAPS9 hardware, reference, current;
  direct3D.GetDeviceCaps(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, &hardware);
  direct3D.GetDeviceCaps(D3DADAPTER_DEFAULT, D3DDEVTYPE_REF, &reference);
  device.GetDeviceCaps(&current);
  const uint64_t version = adapter.DriverVersion;
  return formatted(
      "Driver:%s\rLib:%s (%u.%u.%u.%u)\rPCIID:%04X.%04X.%08X.%04X\r"
      "VS:%03X, PS:%03X (HW %03X:%03X, SW %03X:%03X)\rMax.tex.: %ux%u, aniso.: %d\rTexture mem: %u bytes",
      adapter.Description.c_str(), adapter.Driver.c_str(), highWord(version >> 32), lowWord(version >> 32),
      highWord(version), lowWord(version), adapter.VendorId, adapter.DeviceId, adapter.SubSysId,
      adapter.Revision, lowWord(current.VertexShaderVersion), lowWord(current.PixelShaderVersion),
      lowWord(hardware.VertexShaderVersion), lowWord(hardware.PixelShaderVersion),
      lowWord(reference.VertexShaderVersion), lowWord(reference.PixelShaderVersion), current.MaxTextureWidth,
      current.MaxTextureHeight, static_cast<int>(current.MaxAnisotropy), device.GetAvailableTextureMem());
}

void showSystemInformation(const ModelView& view) {
  messageBox(systemInformation(*view.p_d3d, *view.p_device), "DirectX Caps Info Panel",
             MB_OK | MB_ICONINFORMATION | MB_SYSTEMMODAL);
}

void toggleFullscreen(Viewer& viewer) {
  viewer.fullscreenMode = !viewer.fullscreenMode;
  Desktop* desktop = currentDesktop();
  if (desktop == nullptr) return;
  desktop->showBars(!viewer.fullscreenMode);
  desktop->decorateFrame(!viewer.fullscreenMode);
  desktop->showFrame(viewer.fullscreenMode);
}

}  // namespace facet
