#include "device/direct3d.h"

#include <cstring>
#include <optional>
#include <utility>

#include "device/gl/gl_device.h"
#include "device/software/software_device.h"

namespace facet {

namespace {

class Direct3D final : public IDirect3D9 {
 public:
  explicit Direct3D(DevicePlatform platform) : platform_(std::move(platform)) {}

  HRESULT RegisterSoftwareDevice(void*) override { return D3DERR_NOTAVAILABLE; }

  HRESULT GetAdapterDisplayMode(uint32_t, D3DDISPLAYMODE* mode) override {
    *mode = platform_.displayMode;
    return D3D_OK;
  }

  HRESULT GetAdapterIdentifier(uint32_t, D3DADAPTER_IDENTIFIER9* identifier) override {
    D3DCAPS9 caps;
    if (context() && describeGlAdapter(*context(), identifier, &caps) == D3D_OK) return D3D_OK;
    *identifier = {};
    identifier->Driver = "reference";
    identifier->Description = "Software without an adapter";
    return D3D_OK;
  }

  HRESULT GetDeviceCaps(uint32_t, D3DDEVTYPE type, D3DCAPS9* caps) override {
    *caps = {};
    D3DADAPTER_IDENTIFIER9 identifier;
    if (type == D3DDEVTYPE_HAL && context()) return describeGlAdapter(*context(), &identifier, caps);
    if (type != D3DDEVTYPE_REF) return D3DERR_NOTAVAILABLE;
    *caps = softwareCaps();
    return D3D_OK;
  }

  HRESULT CreateDevice(uint32_t, D3DDEVTYPE type, void*, uint32_t, D3DPRESENT_PARAMETERS* parameters,
                       std::shared_ptr<IDirect3DDevice9>* created) override {
    created->reset();
    if (type == D3DDEVTYPE_HAL) return createGlDevice(context(), *parameters, created);
    if (type != D3DDEVTYPE_REF) return D3DERR_NOTAVAILABLE;
    return SoftwareDevice::create(*parameters, created);
  }

 private:
  /// Made at the first question for it: a search asks many times, and starting a driver takes its time.
  const std::shared_ptr<GlContext>& context() {
    if (!context_) context_ = platform_.createContext ? platform_.createContext() : nullptr;
    return *context_;
  }

  DevicePlatform platform_;
  std::optional<std::shared_ptr<GlContext>> context_;
};

std::vector<uint8_t> readSoftware(const SoftwareDevice& device) {
  const std::span<const uint32_t> pixels = device.backBuffer();
  std::vector<uint8_t> bytes(pixels.size() * 4);
  for (size_t i = 0; i < pixels.size(); ++i) {
    const uint32_t argb = pixels[i];
    const uint32_t abgr = 0xFF000000 | (argb & 0xFF) << 16 | (argb & 0xFF00) | (argb >> 16 & 0xFF);
    std::memcpy(&bytes[i * 4], &abgr, 4);
  }
  return bytes;
}

}  // namespace

std::shared_ptr<IDirect3D9> Direct3DCreate9(uint32_t sdkVersion, DevicePlatform platform) {
  if (sdkVersion != D3D_SDK_VERSION) return nullptr;
  return std::make_shared<Direct3D>(std::move(platform));
}

std::vector<uint8_t> readBackBuffer(IDirect3DDevice9& device) {
  if (const auto* software = dynamic_cast<SoftwareDevice*>(&device)) return readSoftware(*software);
  return readGlBackBuffer(device);
}

}  // namespace facet
