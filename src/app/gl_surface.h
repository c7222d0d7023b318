#pragma once

#include <QImage>
#include <QOffscreenSurface>
#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <functional>
#include <memory>
#include <vector>

#include "device/gl/gl_context.h"
#include "render/view.h"

class QOpenGLContext;
class QOpenGLFramebufferObject;
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

/// The OpenGL context of a view. While it has a surface, pictures go there, and wait, complete but unseen,
/// until their texts are there. Without one they go into a buffer of the view's size, for the view to paint.
class GlSurfaceContext final : public GlContext {
 public:
  /// The surface, or none, lies over `view`; both may go before the context.
  GlSurfaceContext(QWidget& view, GlSurface* surface);
  ~GlSurfaceContext() override;

  bool makeCurrent() override;
  bool restore() override;
  std::optional<Window> window() override;
  void presented() override { waiting_ = true; }

  /// Writes the texts over the picture that waits on the surface, and shows it. Without one, does nothing.
  void show(const std::vector<OverlayLine>& overlay);

  /// The last picture that went to no surface; null before the first.
  QImage picture();

 private:
  QSize pixels() const;
  void drawOverlay(const std::vector<OverlayLine>& overlay);
  void release();

  QPointer<QWidget> view_;
  QPointer<GlSurface> surface_;
  QOffscreenSurface noSurface_;
  std::unique_ptr<QOpenGLContext> context_;
  std::unique_ptr<QOpenGLTextureBlitter> blitter_;
  std::unique_ptr<QOpenGLFramebufferObject> buffer_;
  bool waiting_ = false;
};

/// True where OpenGL can be tried at all: some platforms of Qt end the program instead of failing.
bool platformHasOpenGl();

/// True where a surface shows what is drawn on it. Under Wayland its first picture, its size and its place
/// lag behind those of the window it lies in, and a full screen too small for it is moved.
bool platformHasSurfaces();

}  // namespace facet
