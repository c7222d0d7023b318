#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "device/device.h"
#include "device/gl/gl_session.h"

namespace facet {

/// A texture in memory, in its own format, and its copy at OpenGL, which is renewed when a draw call needs
/// it.
class GlTexture final : public IDirect3DTexture9 {
 public:
  /// `format` is a readable one, sizes are above 0, `levels` is 1 .. fullLevelCount().
  GlTexture(std::shared_ptr<GlSession> session, uint32_t width, uint32_t height, uint32_t levels,
            D3DFORMAT format);
  GlTexture(const GlTexture&) = delete;
  GlTexture& operator=(const GlTexture&) = delete;
  ~GlTexture() override;

  uint32_t GetLevelCount() const override { return static_cast<uint32_t>(levels_.size()); }
  HRESULT GetLevelDesc(uint32_t level, D3DSURFACE_DESC* desc) const override;
  HRESULT LockRect(uint32_t level, D3DLOCKED_RECT* locked) override;
  HRESULT UnlockRect(uint32_t level) override;

  bool belongsTo(const std::shared_ptr<GlSession>& session) const { return session == session_; }

  /// Binds the copy to the current texture unit, the context being current.
  void bind();

 private:
  struct Level {
    uint32_t width, height;
    std::vector<std::byte> bytes;
  };
  void upload() const;

  std::shared_ptr<GlSession> session_;
  D3DFORMAT format_;
  std::vector<Level> levels_;
  bool stale_ = true;
  GlName name_;
};

}  // namespace facet
