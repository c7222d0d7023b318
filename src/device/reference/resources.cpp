#include "device/reference/resources.h"

#include <algorithm>
#include <span>

#include "device/create_object.h"
#include "picture/pixels.h"

namespace facet {

HRESULT SharedBytes::lock(uint32_t offset, uint32_t size, void** data) {
  if (!data || offset > bytes_->size() || size > bytes_->size() - offset) return D3DERR_INVALIDCALL;
  if (bytes_.use_count() > 1) {
    try {
      bytes_ = std::make_shared<std::vector<std::byte>>(*bytes_);
    } catch (const std::bad_alloc&) {
      return D3DERR_OUTOFVIDEOMEMORY;
    }
  }
  *data = bytes_->data() + offset;
  return D3D_OK;
}

HRESULT ReferenceVertexBuffer::Lock(uint32_t offset, uint32_t size, void** data, uint32_t) {
  return bytes_.lock(offset, size, data);
}

HRESULT ReferenceIndexBuffer::Lock(uint32_t offset, uint32_t size, void** data, uint32_t) {
  return bytes_.lock(offset, size, data);
}

HRESULT ReferenceTexture::LockRect(uint32_t level, D3DLOCKED_RECT* locked) {
  const HRESULT result = levels_.lock(level, locked);
  if (result == D3D_OK) texels_ = nullptr;
  return result;
}

void ReferenceTexture::decode(const Strip& strip, TexelLevel& to) const {
  const TextureLevels::Level& from = levels_.all()[strip.level];
  const D3DFORMAT format = levels_.format();
  const uint64_t first = levelBytes(format, from.width, strip.row),
                 count = levelBytes(format, from.width, strip.rows);
  const std::span<uint32_t> texels(to.texels.data() + size_t{strip.row} * from.width,
                                   size_t{strip.rows} * from.width);
  decodePixels(format, from.width, strip.rows, std::span(from.bytes).subspan(first, count),
               {reinterpret_cast<uint8_t*>(texels.data()), texels.size_bytes()});
  for (uint32_t& texel : texels) texel = (texel & 0xFF00FF00) | (texel >> 16 & 0xFF) | (texel & 0xFF) << 16;
}

std::shared_ptr<const TexelLevels> ReferenceTexture::texels(WorkerPool& pool) {
  if (texels_) return texels_;
  constexpr uint32_t stripRows = 64;
  auto decoded = std::make_shared<TexelLevels>();
  std::vector<Strip> strips;
  for (const TextureLevels::Level& level : levels_.all()) {
    for (uint32_t row = 0; row < level.height; row += stripRows) {
      strips.push_back({decoded->size(), row, std::min(stripRows, level.height - row)});
    }
    decoded->push_back(
        {level.width, level.height, std::vector<uint32_t>(size_t{level.width} * level.height)});
  }
  pool.run(strips.size(), [&](size_t i) { decode(strips[i], (*decoded)[strips[i].level]); });
  return texels_ = decoded;
}

HRESULT createReferenceVertexBuffer(uint32_t length, std::shared_ptr<IDirect3DVertexBuffer9>* created) {
  created->reset();
  if (length == 0) return D3DERR_INVALIDCALL;
  return createObject<ReferenceVertexBuffer>(created, length);
}

HRESULT createReferenceIndexBuffer(uint32_t length, D3DFORMAT format,
                                   std::shared_ptr<IDirect3DIndexBuffer9>* created) {
  created->reset();
  if (length == 0 || format != D3DFMT_INDEX16) return D3DERR_INVALIDCALL;
  return createObject<ReferenceIndexBuffer>(created, length);
}

HRESULT createReferenceTexture(uint32_t width, uint32_t height, uint32_t levels, D3DFORMAT format,
                               uint32_t maximumSize, std::shared_ptr<IDirect3DTexture9>* created) {
  created->reset();
  if (width == 0 || height == 0 || width > maximumSize || height > maximumSize) return D3DERR_INVALIDCALL;
  if (!findPixelFormat(format)) return D3DERR_NOTAVAILABLE;
  const uint32_t full = fullLevelCount(width, height);
  if (levels > full) return D3DERR_INVALIDCALL;
  return createObject<ReferenceTexture>(created, width, height, levels ? levels : full, format);
}

}  // namespace facet
