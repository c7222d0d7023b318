#pragma once

#include <memory>
#include <span>
#include <vector>

#include "device/device.h"
#include "device/software/raster.h"

namespace facet {

/// Collects draws and carries them out together: vertices, then primitives, then bands of rows, each step
/// shared out among threads. Within a pixel the order of the draws holds, so the picture does not depend on
/// the threads. add() and finish() may throw std::bad_alloc; the next clear() makes all well again.
class Renderer {
 public:
  /// Gives the picture a size, in black.
  void resize(uint32_t width, uint32_t height);

  /// Forgets what waits and fills the picture with a colour, depths with 1.
  void clear(uint32_t color);
  void add(Draw draw);
  void finish();

  const Surface& surface() const { return surface_; }

 private:
  void dropWaiting();
  void transformAll();
  void drawChunks(std::span<Chunk> chunks);
  ScreenVertices verticesOf(const Draw& draw) const;

  Surface surface_;
  Viewport viewport_;
  std::vector<Draw> draws_;
  size_t vertexCount_ = 0, primitiveCount_ = 0;  ///< of the draws that wait
  std::unique_ptr<ScreenVertex[]> screenVertices_;
  std::unique_ptr<uint8_t[]> outcodes_;
  size_t capacity_ = 0;
  std::vector<Chunk> chunks_;  ///< kept for their memory
};

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
  /// Memory is the machine's own; the figure is what a viewer's textures may well take.
  uint32_t GetAvailableTextureMem() override { return 1u << 30; }
  std::shared_ptr<IDirect3DVertexBuffer9> CreateVertexBuffer(uint32_t fvf,
                                                             std::vector<std::byte> vertices) override {
    return std::make_shared<SoftwareVertexBuffer>(fvf, std::move(vertices));
  }
  std::shared_ptr<IDirect3DIndexBuffer9> CreateIndexBuffer(std::vector<uint16_t> indices) override {
    return std::make_shared<SoftwareIndexBuffer>(std::move(indices));
  }
  std::shared_ptr<IDirect3DTexture9> CreateTexture(D3DFORMAT format,
                                                   std::vector<ImageLevel> levels) override {
    return std::make_shared<SoftwareTexture>(format, std::move(levels));
  }
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
