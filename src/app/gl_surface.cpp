#include "app/gl_surface.h"

#include <QGuiApplication>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QOpenGLTexture>
#include <QOpenGLTextureBlitter>
#include <QSurfaceFormat>
#include <utility>

#include "app/overlay.h"

namespace facet {

namespace {

QSurfaceFormat surfaceFormat() {
  QSurfaceFormat format;
  format.setVersion(3, 3);
  format.setProfile(QSurfaceFormat::CoreProfile);
  format.setDepthBufferSize(0);
  format.setStencilBufferSize(0);
  format.setSwapInterval(0);
  return format;
}

}  // namespace

bool platformHasOpenGl() {
  const QString platform = QGuiApplication::platformName();
  return platform != "offscreen" && !platform.startsWith("minimal") && platform != "vnc" &&
         platform != "linuxfb";
}

bool platformHasSurfaces() {
  return !QGuiApplication::platformName().startsWith("wayland");
}

GlSurface::GlSurface(std::function<void()> exposed) : exposed_(std::move(exposed)) {
  setSurfaceType(QSurface::OpenGLSurface);
  setFormat(surfaceFormat());
  setFlag(Qt::WindowTransparentForInput);
}

void GlSurface::exposeEvent(QExposeEvent*) {
  if (!isExposed()) return;
  if (std::exchange(seen_, true))
    requestUpdate();  // windows that pass over this one expose it many times in a row
  else
    exposed_();
}

void GlSurface::resizeEvent(QResizeEvent*) {
  if (isExposed()) requestUpdate();
}

bool GlSurface::event(QEvent* event) {
  if (event->type() == QEvent::UpdateRequest) exposed_();
  return QWindow::event(event);
}

GlSurfaceContext::GlSurfaceContext(QWidget& view, GlSurface* surface) : view_(&view), surface_(surface) {
  noSurface_.setFormat(surfaceFormat());
  restore();
}

GlSurfaceContext::~GlSurfaceContext() {
  release();
}

void GlSurfaceContext::release() {
  if (blitter_ && makeCurrent()) blitter_->destroy();
  blitter_.reset();
  if (buffer_ && makeCurrent()) buffer_.reset();
  context_.reset();
}

bool GlSurfaceContext::makeCurrent() {
  if (!context_ || !context_->isValid()) return false;
  if (surface_) return context_->makeCurrent(surface_);
  if (!noSurface_.isValid()) noSurface_.create();
  return context_->makeCurrent(&noSurface_);
}

bool GlSurfaceContext::restore() {
  release();
  context_ = std::make_unique<QOpenGLContext>();
  context_->setFormat(surfaceFormat());
  if (!context_->create()) context_.reset();
  return makeCurrent();
}

QSize GlSurfaceContext::pixels() const {
  return surface_ ? surface_->size() * surface_->devicePixelRatio()
                  : view_->size() * view_->devicePixelRatio();
}

std::optional<GlContext::Window> GlSurfaceContext::window() {
  if (!view_ || (surface_ && !surface_->isExposed())) return {};
  const QSize size = pixels();
  if (!surface_ && (!buffer_ || buffer_->size() != size))
    buffer_ = std::make_unique<QOpenGLFramebufferObject>(size, QOpenGLFramebufferObject::NoAttachment,
                                                         GL_TEXTURE_2D, GL_RGB8);
  return Window{surface_ ? context_->defaultFramebufferObject() : buffer_->handle(),
                static_cast<uint32_t>(size.width()), static_cast<uint32_t>(size.height())};
}

QImage GlSurfaceContext::picture() {
  if (!buffer_ || !makeCurrent()) return {};
  return buffer_->toImage().convertToFormat(QImage::Format_RGB32);
}

void GlSurfaceContext::drawOverlay(const std::vector<OverlayLine>& overlay) {
  const QImage texts = overlayImage(overlay, surface_->devicePixelRatio());
  if (texts.isNull()) return;
  if (!blitter_) {
    blitter_ = std::make_unique<QOpenGLTextureBlitter>();
    if (!blitter_->create()) return;
  }
  QOpenGLTexture texture(texts, QOpenGLTexture::DontGenerateMipMaps);
  texture.setMinMagFilters(QOpenGLTexture::Nearest, QOpenGLTexture::Nearest);
  const QSize size = pixels();
  QOpenGLFunctions& gl = *context_->functions();
  gl.glViewport(0, 0, size.width(), size.height());
  gl.glDisable(GL_DEPTH_TEST);
  gl.glDisable(GL_CULL_FACE);
  gl.glEnable(GL_BLEND);
  gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);  // QOpenGLTexture divides by alpha
  blitter_->bind();
  blitter_->blit(texture.textureId(),
                 QOpenGLTextureBlitter::targetTransform(QRectF(QPointF(0, 0), QSizeF(texts.size())),
                                                        QRect(QPoint(0, 0), size)),
                 QOpenGLTextureBlitter::OriginTopLeft);
  blitter_->release();
}

void GlSurfaceContext::show(const std::vector<OverlayLine>& overlay) {
  if (!surface_ || !waiting_ || !makeCurrent()) return;
  waiting_ = false;
  drawOverlay(overlay);
  context_->swapBuffers(surface_);
}

}  // namespace facet
