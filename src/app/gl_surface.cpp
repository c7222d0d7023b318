#include "app/gl_surface.h"

#include <QGuiApplication>
#include <QOpenGLContext>
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

GlSurfaceContext::GlSurfaceContext(GlSurface& surface) : surface_(&surface) {
  restore();
}

GlSurfaceContext::~GlSurfaceContext() {
  release();
}

void GlSurfaceContext::release() {
  if (blitter_ && makeCurrent()) blitter_->destroy();
  blitter_.reset();
  context_.reset();
}

bool GlSurfaceContext::makeCurrent() {
  return surface_ && context_ && context_->isValid() && context_->makeCurrent(surface_);
}

bool GlSurfaceContext::restore() {
  if (!surface_) return false;
  release();
  context_ = std::make_unique<QOpenGLContext>();
  context_->setFormat(surfaceFormat());
  if (!context_->create()) context_.reset();
  return makeCurrent();
}

std::optional<GlContext::Window> GlSurfaceContext::window() {
  if (!surface_ || !surface_->isExposed()) return {};
  const QSize size = surface_->size() * surface_->devicePixelRatio();
  return Window{context_->defaultFramebufferObject(), static_cast<uint32_t>(size.width()),
                static_cast<uint32_t>(size.height())};
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
  const QSize size = surface_->size() * surface_->devicePixelRatio();
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
  if (!waiting_ || !makeCurrent()) return;
  waiting_ = false;
  drawOverlay(overlay);
  context_->swapBuffers(surface_);
}

}  // namespace facet
