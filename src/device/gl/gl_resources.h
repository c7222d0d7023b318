#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "device/fixed_function.h"
#include "device/gl/gl_context.h"

// Buffers and textures. Each keeps its contents in memory and has a copy at OpenGL, which is made when a draw
// needs it, and made again in a new context after the old one was lost.

namespace facet {

/// What a device and its resources share. It lives as long as the longest-lived of them.
struct GlSession {
  std::shared_ptr<GlContext> context;
  uint32_t generation = 1;  ///< counts the contexts; names made in an earlier one mean nothing

  explicit GlSession(std::shared_ptr<GlContext> own) : context(std::move(own)) {}
  GlSession(const GlSession&) = delete;
  GlSession& operator=(const GlSession&) = delete;
  ~GlSession();

  /// Names of dropped resources, which may go when no context is current, wait here until one is.
  std::vector<uint32_t> droppedBuffers, droppedTextures;

  /// Deletes the dropped names; the context is current.
  void sweep();

  /// The old context is gone and took its objects along.
  void startGeneration();
};

/// The OpenGL name of one resource, valid in the context it was made in.
struct GlName {
  uint32_t name = 0;
  uint32_t generation = 0;

  bool validIn(const GlSession& session) const { return name != 0 && generation == session.generation; }
};

/// A buffer object.
class GlBuffer {
 public:
  explicit GlBuffer(std::shared_ptr<GlSession> session) : session_(std::move(session)) {}
  GlBuffer(const GlBuffer&) = delete;
  GlBuffer& operator=(const GlBuffer&) = delete;
  ~GlBuffer();

  /// Binds the object to `target`, the context being current. True when it is new and has no contents yet.
  bool bind(uint32_t target);

 private:
  std::shared_ptr<GlSession> session_;
  GlName name_;
};

class GlVertexBuffer final : public IDirect3DVertexBuffer9 {
 public:
  GlVertexBuffer(std::shared_ptr<GlSession> session, uint32_t fvf, std::vector<std::byte> vertices)
      : buffer_(std::move(session)), shape_(shapeOf(fvf)), bytes_(std::move(vertices)) {}

  const VertexShape& shape() const { return shape_; }
  uint32_t count() const { return static_cast<uint32_t>(bytes_.size() / shape_.stride); }
  void bind();

 private:
  GlBuffer buffer_;
  VertexShape shape_;
  std::vector<std::byte> bytes_;
};

class GlIndexBuffer final : public IDirect3DIndexBuffer9 {
 public:
  GlIndexBuffer(std::shared_ptr<GlSession> session, std::vector<uint16_t> indices)
      : buffer_(std::move(session)), indices_(std::move(indices)) {}

  /// Binds the triangles all of whose indices are below `vertexCount`; gives how many indices these are. The
  /// answer is kept, so drawing the same again costs nothing.
  uint32_t bind(uint32_t vertexCount);

 private:
  GlBuffer buffer_;
  std::vector<uint16_t> indices_;
  uint32_t uploadedFor_ = 0, uploaded_ = 0;
};

class GlTexture final : public IDirect3DTexture9 {
 public:
  GlTexture(std::shared_ptr<GlSession> session, D3DFORMAT format, std::vector<ImageLevel> levels)
      : session_(std::move(session)), format_(format), levels_(std::move(levels)) {}
  GlTexture(const GlTexture&) = delete;
  GlTexture& operator=(const GlTexture&) = delete;
  ~GlTexture() override;

  /// Binds the copy to the current texture unit, the context being current.
  void bind();

 private:
  void upload() const;

  std::shared_ptr<GlSession> session_;
  D3DFORMAT format_;
  std::vector<ImageLevel> levels_;
  GlName name_;
};

}  // namespace facet
