#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "device/fixed_function.h"
#include "device/gl/gl_device.h"

// What a device has at OpenGL: buffers, textures, the picture that it draws and its programs. Buffers and
// textures keep their contents in memory; OpenGL's copy is made when a draw needs it, and made again in a new
// context after the old one was lost.

namespace facet {

/// What a device and its resources share. It lives as long as the longest-lived of them.
struct GlSession {
  std::shared_ptr<GlContext> context;
  uint32_t generation = 1;  ///< counts the contexts; names made in an earlier one mean nothing

  explicit GlSession(std::shared_ptr<GlContext> own) : context(std::move(own)) {}
  GlSession(const GlSession&) = delete;
  GlSession& operator=(const GlSession&) = delete;
  ~GlSession();

  /// Names of dropped objects, which may go when no context is current, wait here until one is.
  std::vector<uint32_t> droppedBuffers, droppedTextures;

  /// Deletes the dropped names; the context is current.
  void sweep();

  /// The old context is gone and took its objects along.
  void startGeneration();
};

/// A buffer or texture at OpenGL.
class GlObject {
 public:
  enum Kind : uint8_t { buffer, texture };
  GlObject(std::shared_ptr<GlSession> session, Kind kind) : session_(std::move(session)), kind_(kind) {}
  GlObject(const GlObject&) = delete;
  GlObject& operator=(const GlObject&) = delete;
  ~GlObject();

  /// Binds the object to `target`, the context being current. True when it is new and has no contents yet.
  bool bind(uint32_t target);

 private:
  bool exists() const { return name_ != 0 && generation_ == session_->generation; }

  std::shared_ptr<GlSession> session_;
  Kind kind_;
  uint32_t name_ = 0, generation_ = 0;
};

class GlVertexBuffer final : public IDirect3DVertexBuffer9 {
 public:
  GlVertexBuffer(std::shared_ptr<GlSession> session, uint32_t fvf, std::vector<std::byte> vertices)
      : object_(std::move(session), GlObject::buffer), shape_(shapeOf(fvf)), bytes_(std::move(vertices)) {}

  const VertexShape& shape() const { return shape_; }
  uint32_t count() const { return static_cast<uint32_t>(bytes_.size() / shape_.stride); }
  void bind();

 private:
  GlObject object_;
  VertexShape shape_;
  std::vector<std::byte> bytes_;
};

class GlIndexBuffer final : public IDirect3DIndexBuffer9 {
 public:
  GlIndexBuffer(std::shared_ptr<GlSession> session, std::vector<uint16_t> indices)
      : object_(std::move(session), GlObject::buffer), indices_(std::move(indices)) {}

  /// Binds the triangles all of whose indices are below `vertexCount`; gives how many indices these are. The
  /// answer is kept, so drawing the same again costs nothing.
  uint32_t bind(uint32_t vertexCount);

 private:
  GlObject object_;
  std::vector<uint16_t> indices_;
  uint32_t uploadedFor_ = 0, uploaded_ = 0;
};

class GlTexture final : public IDirect3DTexture9 {
 public:
  GlTexture(std::shared_ptr<GlSession> session, D3DFORMAT format, std::vector<ImageLevel> levels)
      : object_(std::move(session), GlObject::texture), format_(format), levels_(std::move(levels)) {}

  /// Binds the copy to the current texture unit, the context being current.
  void bind();

 private:
  void upload() const;

  GlObject object_;
  D3DFORMAT format_;
  std::vector<ImageLevel> levels_;
};

/// The back buffer and its depth buffer, apart from any window. Rows count from the top, as in Direct3D.
/// OpenGL's context is current in every call.
class GlTarget {
 public:
  /// D3DERR_NOTAVAILABLE, and the target as before, for sizes and depth formats that the driver refuses.
  HRESULT create(uint32_t width, uint32_t height, D3DFORMAT depth);

  /// Fills the picture with an opaque colour, depths with 1.
  void clear(D3DCOLOR color) const;

  /// Makes drawing go into the back buffer.
  void bind() const;

  /// Stretches the picture over the window's framebuffer.
  void present(const GlContext::Window& window) const;

  /// R, G, B, A bytes, top row first, alpha 255; empty when they cannot be read.
  std::vector<uint8_t> read() const;

  uint32_t width() const { return width_; }
  uint32_t height() const { return height_; }
  void release();

 private:
  uint32_t width_ = 0, height_ = 0;
  uint32_t framebuffer_ = 0, color_ = 0, depth_ = 0;
};

/// The programs of the fixed-function pipeline, one for each combination of what changes their text, made
/// when they are first asked for. Attributes are position 0, normal 1, colour 2 and texture coordinates 3.
class GlPrograms {
 public:
  /// Most samples that anisotropic filtering takes.
  static constexpr uint32_t largestAnisotropy = 16;

  /// Makes the program for this state and these vertices current and sets its uniforms. False when the driver
  /// refuses it.
  bool use(const DeviceState& state, const VertexShape& shape, uint32_t targetWidth, uint32_t targetHeight);

  /// Deletes all programs; OpenGL's context is current.
  void release();

 private:
  std::map<uint32_t, uint32_t> programs_;  ///< by the bits of what they depend on
};

}  // namespace facet
