#include "device/gl/gl_buffers.h"

#include <epoxy/gl.h>

#include <cstring>
#include <span>

#include "device/gl/gl_indices.h"

namespace facet {

GlStorage::~GlStorage() {
  if (name_.validIn(*session_)) session_->droppedBuffers.push_back(name_.name);
}

HRESULT GlStorage::lock(uint32_t offset, uint32_t size, void** data) {
  if (!data || offset > bytes_.size() || size > bytes_.size() - offset) return D3DERR_INVALIDCALL;
  *data = bytes_.data() + offset;
  ++version_;
  return D3D_OK;
}

void GlStorage::bind(uint32_t target) {
  if (!name_.validIn(*session_)) {
    glGenBuffers(1, &name_.name);
    name_.generation = session_->generation;
    uploaded_ = 0;
  }
  glBindBuffer(target, name_.name);
  if (uploaded_ == version_) return;
  glBufferData(target, static_cast<GLsizeiptr>(bytes_.size()), bytes_.data(), GL_STATIC_DRAW);
  uploaded_ = version_;
}

GlIndexBuffer::Elements GlIndexBuffer::bind(const IndexRange& range,
                                            const std::shared_ptr<GlSession>& session) {
  if (checkedVersion_ != storage_.version() || checked_ != range) {
    const auto* first = reinterpret_cast<const uint16_t*>(storage_.bytes().data()) + range.start;
    const std::span indices(first, range.count);
    Elements elements = {range.type, range.start, range.count};
    std::unique_ptr<GlStorage> whole;
    if (!indicesWithin(indices, range.low, range.high)) {
      const std::vector<uint16_t> kept = primitivesWithin(range.type, indices, range.low, range.high);
      elements = {range.type == D3DPT_LINELIST ? D3DPT_LINELIST : D3DPT_TRIANGLELIST, 0,
                  static_cast<uint32_t>(kept.size())};
      whole = std::make_unique<GlStorage>(session, static_cast<uint32_t>(kept.size() * sizeof(uint16_t)));
      void* data = nullptr;
      if (whole->lock(0, 0, &data) == D3D_OK && !kept.empty()) std::memcpy(data, kept.data(), whole->size());
    }
    whole_ = std::move(whole);
    elements_ = elements;
    checked_ = range;
    checkedVersion_ = storage_.version();
  }
  (whole_ ? *whole_ : storage_).bind(GL_ELEMENT_ARRAY_BUFFER);
  return elements_;
}

}  // namespace facet
