#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "device/device.h"
#include "device/gl/gl_session.h"

namespace facet {

/// The memory of a buffer, and its copy at OpenGL, which is renewed when a draw call needs it.
class GlStorage {
 public:
  GlStorage(std::shared_ptr<GlSession> session, uint32_t length)
      : session_(std::move(session)), bytes_(length) {}
  GlStorage(const GlStorage&) = delete;
  GlStorage& operator=(const GlStorage&) = delete;
  ~GlStorage();

  HRESULT lock(uint32_t offset, uint32_t size, void** data);
  const std::vector<std::byte>& bytes() const { return bytes_; }
  uint32_t size() const { return static_cast<uint32_t>(bytes_.size()); }
  bool belongsTo(const std::shared_ptr<GlSession>& session) const { return session == session_; }

  /// Counts the locks: what was derived from the bytes before is stale.
  uint32_t version() const { return version_; }

  /// Binds the copy to `target`, the context being current.
  void bind(uint32_t target);

 private:
  std::shared_ptr<GlSession> session_;
  std::vector<std::byte> bytes_;
  uint32_t version_ = 1, uploaded_ = 0;
  GlName name_;
};

class GlVertexBuffer final : public IDirect3DVertexBuffer9 {
 public:
  GlVertexBuffer(std::shared_ptr<GlSession> session, uint32_t length)
      : storage_(std::move(session), length) {}
  HRESULT Lock(uint32_t offset, uint32_t size, void** data, uint32_t) override {
    return storage_.lock(offset, size, data);
  }
  HRESULT Unlock() override { return D3D_OK; }
  GlStorage& storage() { return storage_; }

 private:
  GlStorage storage_;
};

/// A range of indices as a draw call names it; those outside of low .. high - 1 have no vertex.
struct IndexRange {
  D3DPRIMITIVETYPE type = D3DPT_TRIANGLELIST;
  uint32_t start = 0, count = 0;
  int64_t low = 0, high = 0;
  bool operator==(const IndexRange&) const = default;
};

class GlIndexBuffer final : public IDirect3DIndexBuffer9 {
 public:
  /// What to give to glDrawElements.
  struct Elements {
    D3DPRIMITIVETYPE type = D3DPT_TRIANGLELIST;
    uint32_t start = 0, count = 0;
  };

  GlIndexBuffer(std::shared_ptr<GlSession> session, uint32_t length) : storage_(std::move(session), length) {}
  HRESULT Lock(uint32_t offset, uint32_t size, void** data, uint32_t) override {
    return storage_.lock(offset, size, data);
  }
  HRESULT Unlock() override { return D3D_OK; }
  const GlStorage& storage() const { return storage_; }

  /// Binds the indices of the primitives of `range` that have all their vertices; the range lies within the
  /// buffer. The answer for the last range is kept, so drawing the same again costs nothing.
  Elements bind(const IndexRange& range, const std::shared_ptr<GlSession>& session);

 private:
  GlStorage storage_;
  IndexRange checked_;
  uint32_t checkedVersion_ = 0;
  Elements elements_;
  std::unique_ptr<GlStorage> whole_;  ///< the primitives left over, when some were dropped
};

}  // namespace facet
