#include "device/direct3d.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "device/gl/gl_device.h"
#include "device/software/software_device.h"
#include "picture/pixels.h"

namespace facet {

namespace {

constexpr D3DFORMAT formats[] = {
    D3DFMT_A8R8G8B8, D3DFMT_X8R8G8B8, D3DFMT_R5G6B5, D3DFMT_X1R5G5B5, D3DFMT_A1R5G5B5,
    D3DFMT_A4R4G4B4, D3DFMT_L8,       D3DFMT_A8L8,   D3DFMT_A8,       D3DFMT_DXT1,
    D3DFMT_DXT2,     D3DFMT_DXT3,     D3DFMT_DXT4,   D3DFMT_DXT5,
};

/// A level of the picture in A8R8G8B8.
ImageLevel decodedLevel(const Image& image, uint32_t number) {
  std::vector<uint8_t> pixels = imagePixels(image, number);
  for (size_t i = 0; i < pixels.size(); i += 4) std::swap(pixels[i], pixels[i + 2]);
  const auto* bytes = reinterpret_cast<const std::byte*>(pixels.data());
  return {image.levels[number].width, image.levels[number].height, {bytes, bytes + pixels.size()}};
}

/// Each pixel, of 4 bytes, is the source's pixel under its centre.
ImageLevel resampled(const ImageLevel& source, uint32_t width, uint32_t height) {
  ImageLevel result{width, height, std::vector<std::byte>(size_t{width} * height * 4)};
  const auto sourceOf = [](uint64_t to, uint64_t from, uint64_t i) { return (2 * i + 1) * from / (2 * to); };
  std::byte* pixel = result.bytes.data();
  for (uint32_t y = 0; y < height; ++y) {
    const std::byte* row = &source.bytes[sourceOf(height, source.height, y) * source.width * 4];
    for (uint32_t x = 0; x < width; ++x, pixel += 4)
      std::memcpy(pixel, row + sourceOf(width, source.width, x) * 4, 4);
  }
  return result;
}

/// Decodes the levels that the picture has in this size and point-samples each further one from the one
/// before.
std::vector<ImageLevel> makeLevels(const Image& image, uint32_t width, uint32_t height, uint32_t count) {
  const bool resized = width != image.info.Width || height != image.info.Height;
  std::vector<ImageLevel> levels = {decodedLevel(image, 0)};
  if (resized) levels[0] = resampled(levels[0], width, height);
  for (uint32_t i = 1; i < count; ++i)
    levels.push_back(!resized && i < image.levels.size()
                         ? decodedLevel(image, i)
                         : resampled(levels.back(), std::max(width >> i, 1u), std::max(height >> i, 1u)));
  return levels;
}

}  // namespace

std::span<const D3DFORMAT> textureFormats() {
  return formats;
}

std::shared_ptr<IDirect3DTexture9> createTexture(IDirect3DDevice9& device, const Image& image, uint32_t width,
                                                 uint32_t height, uint32_t levels) {
  levels = std::min(levels, fullLevelCount(width, height));
  const bool whole = width == image.info.Width && height == image.info.Height &&
                     levels <= image.levels.size() && std::ranges::count(formats, image.info.Format) > 0;
  if (!whole) return device.CreateTexture(D3DFMT_A8R8G8B8, makeLevels(image, width, height, levels));
  const auto first = image.levels.begin();
  return device.CreateTexture(image.info.Format, {first, first + levels});
}

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
