#include "app/offscreen_gl.h"

#include <QGuiApplication>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QSurfaceFormat>

namespace facet {

OffscreenGl::OffscreenGl(QWidget& view) : view_(&view) {}

std::shared_ptr<OffscreenGl> OffscreenGl::create(QWidget& view) {
  const QString platform = QGuiApplication::platformName();
  for (const char* without : {"offscreen", "minimal", "minimalegl", "vnc", "linuxfb"})
    if (platform == without) return nullptr;  // some of Qt's platforms end the program instead of failing
  std::shared_ptr<OffscreenGl> gl(new OffscreenGl(view));
  QSurfaceFormat format;
  format.setVersion(3, 3);
  format.setProfile(QSurfaceFormat::CoreProfile);
  gl->surface_.setFormat(format);
  gl->surface_.create();
  return gl->restore() ? gl : nullptr;
}

OffscreenGl::~OffscreenGl() {
  release();
}

void OffscreenGl::release() {
  if (buffer_) makeCurrent();
  buffer_.reset();
  context_.reset();
}

bool OffscreenGl::makeCurrent() {
  return context_ && context_->isValid() && context_->makeCurrent(&surface_);
}

bool OffscreenGl::restore() {
  release();
  context_ = std::make_unique<QOpenGLContext>();
  context_->setFormat(surface_.requestedFormat());
  if (!context_->create()) context_.reset();
  return makeCurrent();
}

std::optional<GlContext::Window> OffscreenGl::window() {
  if (!view_) return {};
  const QSize size = view_->size() * view_->devicePixelRatio();
  if (!buffer_ || buffer_->size() != size) buffer_ = std::make_unique<QOpenGLFramebufferObject>(size);
  return Window{buffer_->handle(), static_cast<uint32_t>(size.width()), static_cast<uint32_t>(size.height())};
}

QImage OffscreenGl::picture() {
  if (!buffer_ || !makeCurrent()) return {};
  QImage picture = buffer_->toImage();
  picture.reinterpretAsFormat(QImage::Format_RGB32);  // alpha means nothing
  return picture;
}

}  // namespace facet
