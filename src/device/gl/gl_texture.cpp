#include "device/gl/gl_texture.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>

#include "picture/pixels.h"

namespace facet {
namespace {

/// A format that OpenGL takes as it lies in memory. `swizzle` says which channel goes to red, green, blue and
/// alpha.
struct DirectFormat {
  D3DFORMAT format;
  GLenum internal, layout, type;
  std::array<GLint, 4> swizzle;
};

constexpr std::array<GLint, 4> rgba{GL_RED, GL_GREEN, GL_BLUE, GL_ALPHA};
constexpr std::array<GLint, 4> opaque{GL_RED, GL_GREEN, GL_BLUE, GL_ONE};

constexpr DirectFormat directFormats[] = {
    {D3DFMT_A8R8G8B8, GL_RGBA8, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, rgba},
    {D3DFMT_X8R8G8B8, GL_RGBA8, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, opaque},
    {D3DFMT_A8B8G8R8, GL_RGBA8, GL_RGBA, GL_UNSIGNED_INT_8_8_8_8_REV, rgba},
    {D3DFMT_X8B8G8R8, GL_RGBA8, GL_RGBA, GL_UNSIGNED_INT_8_8_8_8_REV, opaque},
    {D3DFMT_R8G8B8, GL_RGB8, GL_BGR, GL_UNSIGNED_BYTE, opaque},
    {D3DFMT_R5G6B5, GL_RGB8, GL_RGB, GL_UNSIGNED_SHORT_5_6_5, opaque},
    {D3DFMT_A1R5G5B5, GL_RGB5_A1, GL_BGRA, GL_UNSIGNED_SHORT_1_5_5_5_REV, rgba},
    {D3DFMT_X1R5G5B5, GL_RGB5_A1, GL_BGRA, GL_UNSIGNED_SHORT_1_5_5_5_REV, opaque},
    {D3DFMT_A4R4G4B4, GL_RGBA4, GL_BGRA, GL_UNSIGNED_SHORT_4_4_4_4_REV, rgba},
    {D3DFMT_X4R4G4B4, GL_RGBA4, GL_BGRA, GL_UNSIGNED_SHORT_4_4_4_4_REV, opaque},
    {D3DFMT_L8, GL_R8, GL_RED, GL_UNSIGNED_BYTE, {GL_RED, GL_RED, GL_RED, GL_ONE}},
    {D3DFMT_A8L8, GL_RG8, GL_RG, GL_UNSIGNED_BYTE, {GL_RED, GL_RED, GL_RED, GL_GREEN}},
    {D3DFMT_A8, GL_R8, GL_RED, GL_UNSIGNED_BYTE, {GL_ZERO, GL_ZERO, GL_ZERO, GL_RED}},
};

/// What all other formats are turned into.
constexpr DirectFormat decoded{D3DFMT_UNKNOWN, GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, rgba};

/// OpenGL's name of a compressed format; 0 for any other.
GLenum compressedFormat(D3DFORMAT format) {
  switch (format) {
    case D3DFMT_DXT1:
      return GL_COMPRESSED_RGBA_S3TC_DXT1_EXT;
    case D3DFMT_DXT2:
    case D3DFMT_DXT3:
      return GL_COMPRESSED_RGBA_S3TC_DXT3_EXT;
    case D3DFMT_DXT4:
    case D3DFMT_DXT5:
      return GL_COMPRESSED_RGBA_S3TC_DXT5_EXT;
    default:
      return 0;
  }
}

}  // namespace

GlTexture::~GlTexture() {
  if (name_.validIn(*session_)) session_->droppedTextures.push_back(name_.name);
}

HRESULT GlTexture::LockRect(uint32_t level, D3DLOCKED_RECT* locked) {
  const HRESULT result = levels_.lock(level, locked);
  if (result == D3D_OK) stale_ = true;
  return result;
}

void GlTexture::bind() {
  if (!name_.validIn(*session_)) {
    glGenTextures(1, &name_.name);
    name_.generation = session_->generation;
    stale_ = true;
  }
  glBindTexture(GL_TEXTURE_2D, name_.name);
  if (!stale_) return;
  upload();
  stale_ = false;
}

void GlTexture::upload() const {
  const D3DFORMAT format = levels_.format();
  const GLenum compressed =
      epoxy_has_gl_extension("GL_EXT_texture_compression_s3tc") ? compressedFormat(format) : 0;
  const auto* row = std::ranges::find(directFormats, format, &DirectFormat::format);
  const bool asIs = row != std::end(directFormats);
  const DirectFormat& target = asIs ? *row : decoded;

  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, static_cast<GLint>(levels_.count()) - 1);
  glTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, target.swizzle.data());
  for (uint32_t i = 0; i < levels_.count(); ++i) {
    const TextureLevels::Level& level = levels_.all()[i];
    const auto number = static_cast<GLint>(i);
    const auto width = static_cast<GLsizei>(level.width), height = static_cast<GLsizei>(level.height);
    if (compressed) {
      glCompressedTexImage2D(GL_TEXTURE_2D, number, compressed, width, height, 0,
                             static_cast<GLsizei>(level.bytes.size()), level.bytes.data());
    } else if (asIs) {
      glTexImage2D(GL_TEXTURE_2D, number, static_cast<GLint>(target.internal), width, height, 0,
                   target.layout, target.type, level.bytes.data());
    } else {
      std::vector<uint8_t> pixels(size_t{level.width} * level.height * 4);
      decodePixels(format, level.width, level.height, level.bytes, pixels);
      glTexImage2D(GL_TEXTURE_2D, number, static_cast<GLint>(target.internal), width, height, 0,
                   target.layout, target.type, pixels.data());
    }
  }
}

}  // namespace facet
