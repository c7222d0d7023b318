#include "app/view_widget.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>

#include "app/offscreen_gl.h"
#include "app/pictures.h"
#include "app/virtual_keys.h"
#include "commands/files.h"
#include "device/direct3d.h"
#include "device/gl/gl_context.h"
#include "device/software/software_device.h"
#include "render/camera.h"
#include "render/render_system.h"
#include "render/view.h"

namespace facet {

namespace {

D3DDISPLAYMODE displayMode(const QScreen& screen) {
  const QSize size = screen.size() * screen.devicePixelRatio();
  return {static_cast<uint32_t>(size.width()), static_cast<uint32_t>(size.height()),
          static_cast<uint32_t>(screen.refreshRate()), D3DFMT_X8R8G8B8};
}

Point toPoint(const QPointF& position) {
  return {static_cast<int32_t>(position.x()), static_cast<int32_t>(position.y())};
}

uint32_t heldModifiers(Qt::KeyboardModifiers modifiers) {
  uint32_t held = 0;
  if (modifiers & Qt::ShiftModifier) held |= FSHIFT;
  if (modifiers & Qt::ControlModifier) held |= FCONTROL;
  if (modifiers & Qt::AltModifier) held |= FALT;
  return held;
}

}  // namespace

ViewWidget::ViewWidget(const CommandLine& commandLine, QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setMinimumSize(64, 48);
  viewer_.commandLine = commandLine.model;
  viewer_.view.scene.texturePath = readConfiguration(commandLine.whole);
  connect(&repeat_, &QTimer::timeout, this, [this] {
    constexpr int interval = 33;  // ms
    repeat_.setInterval(interval);
    pressKey(repeatedKey_);
  });
  // The key is let go elsewhere.
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, &repeat_, &QTimer::stop);
}

ViewWidget::~ViewWidget() {
  OnDestroy(viewer_.view);
}

bool ViewWidget::create() {
  const D3DDISPLAYMODE mode = displayMode(*screen());
  viewer_.view.window = {this, mode.Width, mode.Height, static_cast<uint32_t>(screen()->depth())};
  RenderPlatform platform;
  platform.direct3DCreate9 = [&](uint32_t version) {
    return Direct3DCreate9(version, {mode, [this] { return viewContext(); }});
  };
  if (OnCreate(viewer_.view, platform) != 0) return false;
  if (dynamic_cast<SoftwareDevice*>(viewer_.view.system.p_device.get())) gl_.reset();
  viewer_.view.frameIdle = false;  // nobody sees a frame before the window is shown
  if (!viewer_.commandLine.empty()) openModelFile(viewer_);
  viewer_.view.frameIdle = true;
  return true;
}

/// The view's own context while a device is looked for. Later, when the picture comes from elsewhere, one
/// without a view is enough to tell about the adapter.
std::shared_ptr<GlContext> ViewWidget::viewContext() {
  if (viewer_.view.system.p_device) return createEglContext();
  if (!gl_) gl_ = OffscreenGl::create(*this);
  return gl_;
}

void ViewWidget::showPicture() {
  drawn_ = true;
  update();
}

void ViewWidget::setPictureRamp(const GammaRamp& ramp) {
  ramp_ = ramp;
  update();
}

QImage ViewWidget::picture() {
  if (gl_) return gl_->picture();
  auto* device = dynamic_cast<SoftwareDevice*>(viewer_.view.system.p_device.get());
  if (!device) return {};
  const auto pixels = device->backBuffer();
  return {reinterpret_cast<const uchar*>(pixels.data()), static_cast<int>(device->width()),
          static_cast<int>(device->height()), QImage::Format_RGB32};
}

void ViewWidget::paintEvent(QPaintEvent*) {
  if (!std::exchange(drawn_, false)) renderFrame(viewer_.view);
  const QImage shown = picture();
  if (shown.isNull()) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(rect(), ramp_ ? throughRamp(shown, *ramp_) : shown);
  paintOverlay(painter, viewer_.view.overlay);
}

void ViewWidget::resizeEvent(QResizeEvent*) {
  const D3DDISPLAYMODE mode = displayMode(*screen());  // the window may have come to another screen
  viewer_.view.window.screenWidth = mode.Width;
  viewer_.view.window.screenHeight = mode.Height;
  OnSize(viewer_.view, width(), height());
  drawn_ = false;
}

void ViewWidget::mousePressEvent(QMouseEvent* event) {
  const Point point = toPoint(event->position());
  if (event->button() == Qt::LeftButton) OnLButtonDown(viewer_.view, point);
  if (event->button() == Qt::RightButton) OnRButtonDown(viewer_.view, point);
  if (event->button() == Qt::MiddleButton) OnMButtonDown(viewer_.view, point);
}

/// Qt holds the mouse while a button is down; what happens outside is not the view's.
void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (!rect().contains(event->position().toPoint())) return;
  if (event->button() == Qt::LeftButton) OnLButtonUp(viewer_.view);
  if (event->button() == Qt::RightButton) OnRButtonUp(viewer_.view);
  if (event->button() == Qt::MiddleButton) OnMButtonUp(viewer_.view);
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
  const Mouse& mouse = viewer_.view.mouse;
  if (!(mouse.left.down || mouse.right.down || mouse.middle.down)) return;
  if (!rect().contains(event->position().toPoint())) return;
  OnMouseMove(viewer_.view, toPoint(event->position()));
  showPicture();
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
  const int delta = std::clamp(event->angleDelta().y(), INT16_MIN, INT16_MAX);
  OnMouseWheel(viewer_.view, static_cast<int16_t>(delta));
  showPicture();
  event->accept();
}

void ViewWidget::keyPressEvent(QKeyEvent* event) {
  repeat_.stop();
  const auto key = virtualKey(*event);
  const uint32_t modifiers = heldModifiers(event->modifiers());
  if (!key) return QWidget::keyPressEvent(event);
  if (const Command* accelerated = commandOfAccelerator(*key, modifiers)) {
    emit command(accelerated->id);
  } else if (modifiers & FALT) {
    QWidget::keyPressEvent(event);
  } else {
    pressKey(*key);
    if ((*key == VK_SHIFT || *key == VK_CONTROL) && !event->isAutoRepeat()) repeatModifier(*key);
  }
}

/// Held keys repeat, but where the desktop leaves Shift and Ctrl out, they are repeated here.
void ViewWidget::repeatModifier(uint32_t key) {
  constexpr int delay = 500;  // ms
  repeatedKey_ = key;
  repeat_.start(delay);
}

void ViewWidget::keyReleaseEvent(QKeyEvent* event) {
  if (virtualKey(*event) == repeatedKey_) repeat_.stop();
  QWidget::keyReleaseEvent(event);
}

void ViewWidget::pressKey(uint32_t key) {
  OnKeyDown(viewer_, key);
  showPicture();
}

bool ViewWidget::runCommand(unsigned id) {
  const bool handled = OnCommand(viewer_, id);
  if (handled) showPicture();
  return handled;
}

void ViewWidget::openPath(const std::string& path) {
  facet::openPath(viewer_, path);
  showPicture();
}

}  // namespace facet
