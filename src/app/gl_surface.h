#pragma once

#include <QPointer>
#include <QWindow>
#include <functional>
#include <memory>
#include <vector>

#include "device/gl/gl_context.h"
#include "render/view.h"

class QOpenGLContext;
class QOpenGLTextureBlitter;

namespace facet {

/// A window for OpenGL to draw into, lying over its parent and deaf to mouse and keys, which go to the
/// parent.
class GlSurface final : public QWindow {
 public:
  /// `exposed` is called when the window's picture must be drawn again.
  explicit GlSurface(std::function<void()> exposed);

 protected:
  bool event(QEvent* event) override;
  void exposeEvent(QExposeEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  std::function<void()> exposed_;
  bool seen_ = false;  ///< exposed before
};

/// The OpenGL context of a surface. Pictures wait, complete but unseen, until their texts are there.
class GlSurfaceContext final : public GlContext {
 public:
  explicit GlSurfaceContext(GlSurface& surface);
  ~GlSurfaceContext() override;

  bool makeCurrent() override;
  bool restore() override;
  std::optional<Window> window() override;
  void presented() override { waiting_ = true; }

  /// Writes the texts over the picture that waits, and shows it. Without one, does nothing.
  void show(const std::vector<OverlayLine>& overlay);

 private:
  void drawOverlay(const std::vector<OverlayLine>& overlay);
  void release();

  QPointer<GlSurface> surface_;
  std::unique_ptr<QOpenGLContext> context_;
  std::unique_ptr<QOpenGLTextureBlitter> blitter_;
  bool waiting_ = false;
};

/// True where a window's OpenGL can be tried at all: some platforms of Qt end the program instead of failing.
bool platformHasOpenGl();

}  // namespace facet
