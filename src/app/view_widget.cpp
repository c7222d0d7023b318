#include "app/view_widget.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>

#include "app/native.h"
#include "app/pictures.h"
#include "commands/commands.h"
#include "commands/looking.h"
#include "device/direct3d.h"
#include "device/gl/gl_device.h"
#include "device/software/software_device.h"
#include "render/camera.h"
#include "render/navigation.h"
#include "render/render_system.h"
#include "render/scene.h"
#include "render/view.h"

namespace facet {

/// An OpenGL context whose pictures go into a buffer as large as a view, which paints them like those of any
/// device. A window of OpenGL's own inside the view would save the way back, but under Wayland it lags behind
/// the window that it lies in, and nothing could be done to its picture any more.
class OffscreenGl final : public GlContext {
 public:
  /// The view may go before the context. Nothing works before restore() does.
  explicit OffscreenGl(QWidget& view) : view_(&view) {
    QSurfaceFormat format;
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    surface_.setFormat(format);
    surface_.create();
  }
  ~OffscreenGl() override { release(); }

  bool makeCurrent() override { return context_ && context_->isValid() && context_->makeCurrent(&surface_); }

  bool restore() override {
    release();
    context_ = std::make_unique<QOpenGLContext>();
    context_->setFormat(surface_.requestedFormat());
    if (!context_->create()) context_.reset();
    return makeCurrent();
  }

  std::optional<Window> window() override {
    if (!view_) return {};
    const QSize size = view_->size() * view_->devicePixelRatio();
    if (!buffer_ || buffer_->size() != size) buffer_ = std::make_unique<QOpenGLFramebufferObject>(size);
    return Window{buffer_->handle(), static_cast<uint32_t>(size.width()),
                  static_cast<uint32_t>(size.height())};
  }

  /// The last picture, of format RGB32; null before the first, and while the context is lost.
  QImage picture() {
    if (!buffer_ || !makeCurrent()) return {};
    QImage picture = buffer_->toImage();
    picture.reinterpretAsFormat(QImage::Format_RGB32);  // alpha means nothing
    return picture;
  }

 private:
  void release() {
    if (buffer_) makeCurrent();
    buffer_.reset();
    context_.reset();
  }

  QPointer<QWidget> view_;
  QOffscreenSurface surface_;
  std::unique_ptr<QOpenGLContext> context_;
  std::unique_ptr<QOpenGLFramebufferObject> buffer_;
};

namespace {

/// None where there is no OpenGL to be had.
std::shared_ptr<OffscreenGl> createOffscreenGl(QWidget& view) {
  const QString platform = QGuiApplication::platformName();
  for (const char* without : {"offscreen", "minimal", "minimalegl", "vnc", "linuxfb"})
    if (platform == without) return nullptr;  // some of Qt's platforms end the program instead of failing
  const auto gl = std::make_shared<OffscreenGl>(view);
  return gl->restore() ? gl : nullptr;
}

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
  setAccessibleName("Model view");
  setMinimumSize(64, 48);
  viewer_.commandLine = commandLine.model;
  viewer_.searchNear = commandLine.searchNear;
  viewer_.configuration = configurationToWrite(commandLine.whole, commandLine.model);
  viewer_.view.scene.texturePath =
      commandLine.textures.empty() ? readConfiguration(commandLine.whole) : basePathsOf(commandLine.textures);
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
  if (!gl_) gl_ = createOffscreenGl(*this);
  return gl_;
}

void ViewWidget::showPicture() {
  drawn_ = true;
  update();
  emit shown();
}

void ViewWidget::refresh() {
  drawLater(true);
  emit lookChanged();
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
  rebuilt_ = false;
  const bool behind = std::exchange(changed_, false);
  if (!std::exchange(drawn_, false) || behind) renderFrame(viewer_.view);
  const QImage shown = picture();
  if (shown.isNull()) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(rect(), ramp_ ? throughRamp(shown, *ramp_) : shown);
  paintOverlay(painter, viewer_.view.overlay);
  const Camera& camera = viewer_.view.camera;
  if (viewer_.view.settings.gizmo) paintGizmo(painter, rect(), camera.yaw, camera.pitch);
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
  pressed_ = dragged_ = event->position().toPoint();
  clicking_ = event->button() == Qt::LeftButton;
  if (viewer_.orbits) return;
  if (event->button() == Qt::LeftButton) OnLButtonDown(viewer_.view, point);
  if (event->button() == Qt::RightButton) OnRButtonDown(viewer_.view, point);
  if (event->button() == Qt::MiddleButton) OnMButtonDown(viewer_.view, point);
}

void ViewWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  if (!viewer_.orbits || event->button() != Qt::LeftButton) return;
  setPivotAt(viewer_, toPoint(event->position()));
  refresh();
}

/// Qt holds the mouse while a button is down; what happens outside is not the view's, but where it orbits.
void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (std::exchange(clicking_, false) && event->button() == Qt::LeftButton) {
    clickAt(viewer_, toPoint(event->position()));
    refresh();
  }
  if (!rect().contains(event->position().toPoint())) return;
  if (event->button() == Qt::LeftButton) OnLButtonUp(viewer_.view);
  if (event->button() == Qt::RightButton) OnRButtonUp(viewer_.view);
  if (event->button() == Qt::MiddleButton) OnMButtonUp(viewer_.view);
}

/// A hand is never quite still: a click may move by some pixels, and a drag begins beyond them.
void ViewWidget::drag(const QMouseEvent& event) {
  const QPoint at = event.position().toPoint();
  if (clicking_ && (at - pressed_).manhattanLength() < QApplication::startDragDistance()) return;
  clicking_ = false;
  if (!viewer_.orbits || event.buttons() == Qt::NoButton) return;
  const Point by{at.x() - dragged_.x(), at.y() - dragged_.y()};
  dragged_ = at;
  if (event.buttons() & Qt::LeftButton)
    orbit(viewer_.view, by);
  else
    pan(viewer_.view, by);
  refresh();
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
  drag(*event);
  const Mouse& mouse = viewer_.view.mouse;
  if (!(mouse.left.down || mouse.right.down || mouse.middle.down)) return;
  if (!rect().contains(event->position().toPoint())) return;
  follow([&](ModelView& view) { OnMouseMove(view, toPoint(event->position())); });
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
  const int delta = std::clamp(event->angleDelta().y(), INT16_MIN, INT16_MAX);
  follow([&](ModelView& view) {
    if (viewer_.orbits)
      zoom(view, static_cast<float>(delta) / 120, toPoint(event->position()));
    else
      OnMouseWheel(view, static_cast<int16_t>(delta));
  });
  event->accept();
}

bool ViewWidget::pressAccelerator(const QKeyEvent& event) {
  const auto key = virtualKey(event);
  const Command* accelerated = key ? commandOfAccelerator(*key, heldModifiers(event.modifiers())) : nullptr;
  if (accelerated) emit command(accelerated->id);
  return accelerated != nullptr;
}

void ViewWidget::keyPressEvent(QKeyEvent* event) {
  repeat_.stop();
  const auto key = virtualKey(*event);
  const uint32_t modifiers = heldModifiers(event->modifiers());
  if (!key) return QWidget::keyPressEvent(event);
  if (pressAccelerator(*event)) return;
  if (modifiers & FALT) {
    QWidget::keyPressEvent(event);
  } else {
    pressKey(*key);
    // Held keys repeat, but where the desktop leaves Shift and Ctrl out, they are repeated here.
    constexpr int delay = 500;  // ms
    if ((*key != VK_SHIFT && *key != VK_CONTROL) || event->isAutoRepeat()) return;
    repeatedKey_ = *key;
    repeat_.start(delay);
  }
}

void ViewWidget::keyReleaseEvent(QKeyEvent* event) {
  if (virtualKey(*event) == repeatedKey_) repeat_.stop();
  QWidget::keyReleaseEvent(event);
}

/// Puts the frame of a change off until the window is painted, so that changes which come faster than frames
/// share one. The eye moves as if each had its own. Only the first change that takes new buffers is drawn at
/// once: these are ready by the time of the painting.
void ViewWidget::drawLater(bool changed) {
  ModelView& view = viewer_.view;
  if (changed && view.scene.model) moveCamera(view);
  changed_ = changed_ || changed;
  if (changed_ && !view.scene.buffersBuilt && !std::exchange(rebuilt_, true)) {
    renderFrame(view);
    changed_ = false;
  }
  showPicture();
}

/// Lets the mouse change the view.
template <class Handle>
void ViewWidget::follow(Handle handle) {
  {
    const Restored idle(viewer_.view.frameIdle);
    viewer_.view.frameIdle = false;
    handle(viewer_.view);
  }
  drawLater(true);
}

void ViewWidget::carryOut(const Command& command) {
  const auto run = [this, &command] {
    drawLater(facet::carryOut(viewer_, command));
    emit lookChanged();
  };
  waitsForLoad(command) ? inTurn(run) : run();
}

void ViewWidget::pressKey(uint32_t key) {
  const Command* pressed = commandOfKey(key);
  if (!pressed) return showPicture();
  if (!pressed->run) return emit command(pressed->id);
  carryOut(*pressed);
}

bool ViewWidget::runCommand(unsigned id) {
  const Command* sent = commandOfId(id);
  if (!sent || !sent->run) return false;
  carryOut(*sent);
  return true;
}

void ViewWidget::openPath(const std::string& path) {
  inTurn([this, path] {
    facet::openPath(viewer_, path);
    showPicture();
  });
}

void ViewWidget::inTurn(std::function<void()> action) {
  turns_.push_back(std::move(action));
  if (turns_.size() == 1) carryOutNext();
}

/// Events are handled between one and the next.
void ViewWidget::carryOutNext() {
  turns_.front()();
  turns_.pop_front();
  if (turns_.empty()) return;
  QTimer::singleShot(0, this, [this] { window()->isVisible() ? carryOutNext() : turns_.clear(); });
}

void ViewWidget::dropTurns() {
  if (!turns_.empty()) turns_.erase(turns_.begin() + 1, turns_.end());
}

}  // namespace facet
