#pragma once

#include <span>

#include "device/device.h"
#include "device/software/renderer.h"

namespace facet {

/// Direct3D's fixed functions in software. Exact rather than clever, without window, display or graphics
/// card: the same calls give the same picture on every machine, whatever the number of threads. Drawing
/// follows Direct3D 9: pixel (0, 0) has its centre at screen position 0, 0, top and left edges belong to a
/// triangle, and Present leaves the picture as it is.
class SoftwareDevice final : public IDirect3DDevice9 {
 public:
  /// D3DERR_NOTAVAILABLE for sides beyond 16384 and depth formats that are none, D3DERR_OUTOFVIDEOMEMORY when
  /// memory does not suffice.
  static HRESULT create(const D3DPRESENT_PARAMETERS& parameters, std::shared_ptr<IDirect3DDevice9>* created);

  /// The last presented picture: rows of 0xFFRRGGBB from the top, without gaps, valid until the next call of
  /// the device. Empty within a frame.
  std::span<const uint32_t> backBuffer() const;
  uint32_t width() const { return renderer_.surface().width; }
  uint32_t height() const { return renderer_.surface().height; }

  HRESULT TestCooperativeLevel() override { return D3D_OK; }
  HRESULT Reset(const D3DPRESENT_PARAMETERS& parameters) override;
  HRESULT GetDeviceCaps(D3DCAPS9* caps) override;
  uint32_t GetAvailableTextureMem() override;
  std::shared_ptr<IDirect3DVertexBuffer9> CreateVertexBuffer(uint32_t fvf,
                                                             std::vector<std::byte> vertices) override;
  std::shared_ptr<IDirect3DIndexBuffer9> CreateIndexBuffer(std::vector<uint16_t> indices) override;
  std::shared_ptr<IDirect3DTexture9> CreateTexture(D3DFORMAT format, std::vector<ImageLevel> levels) override;
  void Clear(D3DCOLOR color) override;
  void Present() override;
  void DrawPrimitive(D3DPRIMITIVETYPE type, const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                     uint32_t startVertex, uint32_t primitiveCount) override;
  void DrawIndexedPrimitive(const std::shared_ptr<IDirect3DVertexBuffer9>& vertices,
                            const std::shared_ptr<IDirect3DIndexBuffer9>& indices) override;

 private:
  Draw drawOf(const std::shared_ptr<IDirect3DVertexBuffer9>& vertices) const;

  Renderer renderer_;
  bool whole_ = false;  ///< the picture is a frame's from Clear to Present
};

/// What a software device can do, for those who ask before there is one.
D3DCAPS9 softwareCaps();

}  // namespace facet
