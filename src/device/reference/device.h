#pragma once

#include <memory>
#include <span>

#include "device/device.h"
#include "device/reference/renderer.h"
#include "device/reference/state.h"

namespace facet {

/// Direct3D's fixed functions in software. Exact rather than clever, without window, display or graphics
/// card: the same calls give the same picture on every machine, whatever the number of threads. Drawing
/// follows Direct3D 9: pixel (0, 0) has its centre at screen position 0, 0, top and left edges belong to a
/// triangle, and Present leaves the picture as it is.
class ReferenceDevice final : public IDirect3DDevice9 {
 public:
  static constexpr uint32_t maximumTextureSize = 16384, maximumSurfaceSize = 16384;

  /// `threads` 0 means one for each core. None, and a failure, for a size beyond maximumSurfaceSize or a
  /// depth format that is not one.
  static HRESULT create(const D3DPRESENT_PARAMETERS& parameters, uint32_t threads,
                        std::shared_ptr<ReferenceDevice>* created);

  /// The picture so far: rows of 0xFFRRGGBB from the top, without gaps, valid until the next call of the
  /// device. Empty when memory ran out for a part of it.
  std::span<const uint32_t> backBuffer();
  uint32_t width() const { return renderer_.surface().width; }
  uint32_t height() const { return renderer_.surface().height; }

  HRESULT TestCooperativeLevel() override { return D3D_OK; }
  HRESULT Reset(const D3DPRESENT_PARAMETERS& parameters) override;
  HRESULT GetDeviceCaps(D3DCAPS9* caps) override;
  uint32_t GetAvailableTextureMem() override;
  HRESULT CreateVertexBuffer(uint32_t length, uint32_t usage, uint32_t fvf, D3DPOOL pool,
                             std::shared_ptr<IDirect3DVertexBuffer9>* created) override;
  HRESULT CreateIndexBuffer(uint32_t length, uint32_t usage, D3DFORMAT format, D3DPOOL pool,
                            std::shared_ptr<IDirect3DIndexBuffer9>* created) override;
  HRESULT CreateTexture(uint32_t width, uint32_t height, uint32_t levels, uint32_t usage, D3DFORMAT format,
                        D3DPOOL pool, std::shared_ptr<IDirect3DTexture9>* created) override;
  HRESULT BeginScene() override { return D3D_OK; }
  HRESULT Clear(uint32_t flags, D3DCOLOR color, float z, uint32_t stencil) override;
  HRESULT EndScene() override { return D3D_OK; }
  HRESULT Present() override;
  HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX& matrix) override {
    return setTransform(state_, state, matrix);
  }
  HRESULT SetRenderState(D3DRENDERSTATETYPE state, uint32_t value) override {
    return setRenderState(state_, state, value);
  }
  HRESULT SetSamplerState(uint32_t sampler, D3DSAMPLERSTATETYPE type, uint32_t value) override {
    return setSamplerState(state_, sampler, type, value);
  }
  HRESULT SetTextureStageState(uint32_t stage, D3DTEXTURESTAGESTATETYPE type, uint32_t value) override {
    return setTextureStageState(state_, stage, type, value);
  }
  HRESULT SetMaterial(const D3DMATERIAL9& material) override {
    state_.material = material;
    return D3D_OK;
  }
  HRESULT SetLight(uint32_t index, const D3DLIGHT9& light) override { return setLight(state_, index, light); }
  HRESULT LightEnable(uint32_t index, bool enable) override { return enableLight(state_, index, enable); }
  HRESULT SetFVF(uint32_t fvf) override;
  HRESULT SetStreamSource(uint32_t stream, std::shared_ptr<IDirect3DVertexBuffer9> buffer, uint32_t offset,
                          uint32_t stride) override;
  HRESULT SetIndices(std::shared_ptr<IDirect3DIndexBuffer9> buffer) override;
  HRESULT SetTexture(uint32_t stage, std::shared_ptr<IDirect3DTexture9> texture) override;
  HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, uint32_t startVertex, uint32_t primitiveCount) override;
  HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, int32_t baseVertex, uint32_t minIndex,
                               uint32_t vertexCount, uint32_t startIndex, uint32_t primitiveCount) override;

 private:
  explicit ReferenceDevice(uint32_t threads) : pool_(threads), renderer_(pool_) {}
  template <class Step>
  HRESULT attempt(Step step);
  HRESULT draw(Draw& draw, D3DPRIMITIVETYPE type, int64_t firstVertex, uint64_t vertexCount);

  WorkerPool pool_;
  ReferenceState state_;
  Renderer renderer_;
  bool whole_ = true;  ///< no drawing was lost since the picture was cleared
};

/// What a reference device can do, for those who ask before there is one.
D3DCAPS9 referenceCaps();

}  // namespace facet
