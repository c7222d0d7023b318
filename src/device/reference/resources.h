#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "device/device.h"
#include "device/reference/worker_pool.h"
#include "device/texture_levels.h"

namespace facet {

/// The bytes of a buffer. A drawing that waits holds them too: a lock then leaves it the old ones and goes on
/// with a copy.
class SharedBytes {
 public:
  using Pointer = std::shared_ptr<const std::vector<std::byte>>;

  explicit SharedBytes(uint32_t length) : bytes_(std::make_shared<std::vector<std::byte>>(length)) {}
  HRESULT lock(uint32_t offset, uint32_t size, void** data);
  Pointer share() const { return bytes_; }

 private:
  std::shared_ptr<std::vector<std::byte>> bytes_;
};

/// Vertices in memory.
class ReferenceVertexBuffer final : public IDirect3DVertexBuffer9 {
 public:
  explicit ReferenceVertexBuffer(uint32_t length) : bytes_(length) {}
  HRESULT Lock(uint32_t offset, uint32_t size, void** data, uint32_t flags) override;
  HRESULT Unlock() override { return D3D_OK; }
  SharedBytes::Pointer share() const { return bytes_.share(); }

 private:
  SharedBytes bytes_;
};

/// 16-bit indices in memory.
class ReferenceIndexBuffer final : public IDirect3DIndexBuffer9 {
 public:
  explicit ReferenceIndexBuffer(uint32_t length) : bytes_(length) {}
  HRESULT Lock(uint32_t offset, uint32_t size, void** data, uint32_t flags) override;
  HRESULT Unlock() override { return D3D_OK; }
  SharedBytes::Pointer share() const { return bytes_.share(); }

 private:
  SharedBytes bytes_;
};

/// One decoded level: rows of 0xAARRGGBB without gaps.
struct TexelLevel {
  uint32_t width = 0, height = 0;
  std::vector<uint32_t> texels;
};
using TexelLevels = std::vector<TexelLevel>;

/// A texture in memory: its levels in the texture's own format, and decoded ones for sampling.
class ReferenceTexture final : public IDirect3DTexture9 {
 public:
  /// As TextureLevels.
  ReferenceTexture(uint32_t width, uint32_t height, uint32_t levels, D3DFORMAT format)
      : levels_(width, height, levels, format) {}

  uint32_t GetLevelCount() const override { return levels_.count(); }
  HRESULT GetLevelDesc(uint32_t level, D3DSURFACE_DESC* desc) const override {
    return levels_.describe(level, desc);
  }
  HRESULT LockRect(uint32_t level, D3DLOCKED_RECT* locked) override;
  HRESULT UnlockRect(uint32_t level) override { return levels_.unlock(level); }

  /// The levels for sampling: decoded, by all threads of the pool, on the first use after a lock. Throws
  /// std::bad_alloc.
  std::shared_ptr<const TexelLevels> texels(WorkerPool& pool);

 private:
  /// Some rows of a level; their number is a multiple of 4 but at the lower end.
  struct Strip {
    size_t level;
    uint32_t row, rows;
  };
  void decode(const Strip& strip, TexelLevel& to) const;

  TextureLevels levels_;
  std::shared_ptr<const TexelLevels> texels_;
};

/// What CreateTexture and its siblings do behind a device: check, allocate, report.
HRESULT createReferenceVertexBuffer(uint32_t length, std::shared_ptr<IDirect3DVertexBuffer9>* created);
HRESULT createReferenceIndexBuffer(uint32_t length, D3DFORMAT format,
                                   std::shared_ptr<IDirect3DIndexBuffer9>* created);
HRESULT createReferenceTexture(uint32_t width, uint32_t height, uint32_t levels, D3DFORMAT format,
                               uint32_t maximumSize, std::shared_ptr<IDirect3DTexture9>* created);

}  // namespace facet
