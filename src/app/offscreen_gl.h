#pragma once

#include <QImage>
#include <QOffscreenSurface>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "device/gl/gl_context.h"

class QOpenGLContext;
class QOpenGLFramebufferObject;

namespace facet {

/// An OpenGL context whose pictures go into a buffer as large as a view, which paints them like those of any
/// device. A window of OpenGL's own inside the view would save the way back, but under Wayland it lags behind
/// the window that it lies in, and nothing could be done to its picture any more.
class OffscreenGl final : public GlContext {
 public:
  /// None where there is no OpenGL to be had. The view may go before the context.
  static std::shared_ptr<OffscreenGl> create(QWidget& view);
  ~OffscreenGl() override;

  bool makeCurrent() override;
  bool restore() override;
  std::optional<Window> window() override;

  /// The last picture, of format RGB32; null before the first, and while the context is lost.
  QImage picture();

 private:
  explicit OffscreenGl(QWidget& view);
  void release();

  QPointer<QWidget> view_;
  QOffscreenSurface surface_;
  std::unique_ptr<QOpenGLContext> context_;
  std::unique_ptr<QOpenGLFramebufferObject> buffer_;
};

}  // namespace facet
