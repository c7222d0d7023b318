#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "device/device.h"
#include "device/gl/gl_session.h"
#include "device/texture_levels.h"

namespace facet {

/// A texture in memory, in its own format, and its copy at OpenGL, which is renewed when a draw call needs
/// it.
class GlTexture final : public IDirect3DTexture9 {
 public:
  /// As TextureLevels.
  GlTexture(std::shared_ptr<GlSession> session, uint32_t width, uint32_t height, uint32_t levels,
            D3DFORMAT format)
      : session_(std::move(session)), levels_(width, height, levels, format) {}
  GlTexture(const GlTexture&) = delete;
  GlTexture& operator=(const GlTexture&) = delete;
  ~GlTexture() override;

  uint32_t GetLevelCount() const override { return levels_.count(); }
  HRESULT GetLevelDesc(uint32_t level, D3DSURFACE_DESC* desc) const override {
    return levels_.describe(level, desc);
  }
  HRESULT LockRect(uint32_t level, D3DLOCKED_RECT* locked) override;
  HRESULT UnlockRect(uint32_t level) override { return levels_.unlock(level); }

  bool belongsTo(const std::shared_ptr<GlSession>& session) const { return session == session_; }

  /// Binds the copy to the current texture unit, the context being current.
  void bind();

 private:
  void upload() const;

  std::shared_ptr<GlSession> session_;
  TextureLevels levels_;
  bool stale_ = true;
  GlName name_;
};

}  // namespace facet
