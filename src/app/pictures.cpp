#include "app/pictures.h"

#include <QFile>
#include <QFont>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>
#include <algorithm>
#include <functional>

#include "app/dialogs.h"
#include "render/camera.h"

namespace facet {

namespace {

/// 9 pixels high, as the positions of the lines need it; upright and of plain weight, whatever the desktop's
/// is.
QFont overlayFont() {
  QFont font({"Verdana", "DejaVu Sans"}, -1, QFont::Normal, false);
  font.setPixelSize(9);
  return font;
}

/// Draws a picture whose "currentColor" follows the palette.
class ThemedIconEngine final : public QIconEngine {
 public:
  explicit ThemedIconEngine(const QString& name) : name_(name) {
    QFile file(":/icons/" + name + ".svg");
    if (file.open(QIODevice::ReadOnly)) svg_ = file.readAll();
  }

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
    const QColor color = QGuiApplication::palette().color(group, role);
    QByteArray colored = svg_;
    colored.replace("currentColor", color.name().toLatin1());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (mode == QIcon::Disabled) painter->setOpacity(0.5);
    QSvgRenderer(colored).render(painter, rect);
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap result(size);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return result;
  }

  QIconEngine* clone() const override { return new ThemedIconEngine(*this); }
  QString key() const override { return "facet:" + name_; }

 private:
  QString name_;
  QByteArray svg_;
};

const QColor rimColor(16, 16, 16);

/// Writes a text that can be read on any ground; `place` is the left end of its base line.
void paintRimmed(QPainter& painter, QPoint place, const QColor& color, const QString& text) {
  painter.setPen(rimColor);
  for (const int x : {-1, 0, 1})
    for (const int y : {-1, 0, 1})
      if (x != 0 || y != 0) painter.drawText(place + QPoint(x, y), text);
  painter.setPen(color);
  painter.drawText(place, text);
}

}  // namespace

void paintOverlay(QPainter& painter, const std::vector<OverlayLine>& overlay) {
  painter.setFont(overlayFont());
  const int ascent = painter.fontMetrics().ascent();
  for (const OverlayLine& line : overlay)
    paintRimmed(painter, {line.x, line.y + ascent}, QColor(line.color), toQString(line.text));
}

void paintGizmo(QPainter& painter, const QRect& area, float yaw, float pitch) {
  constexpr double length = 34, margin = 52;
  struct Axis {
    const char* name;
    QColor color;
    Vector3 way;
  };
  Axis axes[] = {
      {"X", {235, 70, 70}, {1, 0, 0}}, {"Y", {90, 200, 80}, {0, 1, 0}}, {"Z", {90, 140, 255}, {0, 0, 1}}};
  const D3DMATRIX turned = viewMatrix({0, 0, 0}, yaw, pitch);
  const auto seen = [&](const Axis& axis, size_t column) {
    const auto& m = turned.m;
    return axis.way.x * m[0][column] + axis.way.y * m[1][column] + axis.way.z * m[2][column];
  };
  std::ranges::sort(axes, std::greater(), [&](const Axis& axis) { return seen(axis, 2); });  // far ones first
  const QPointF middle(area.left() + margin, area.bottom() - margin);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(overlayFont());
  for (const Axis& axis : axes) {
    const QPointF way(seen(axis, 0), -seen(axis, 1));
    for (const auto& [color, width] : {std::pair{rimColor, 4.0}, {axis.color, 2.0}}) {
      painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap));
      painter.drawLine(middle, middle + length * way);
    }
    paintRimmed(painter, (middle + (length + 9) * way + QPointF(-3, 4)).toPoint(), axis.color, axis.name);
  }
}

QImage throughRamp(QImage picture, const GammaRamp& ramp) {
  for (int y = 0; y < picture.height(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
    for (QRgb* pixel = row; pixel < row + picture.width(); ++pixel)
      *pixel = qRgb(ramp.red[static_cast<size_t>(qRed(*pixel))] >> 8,
                    ramp.green[static_cast<size_t>(qGreen(*pixel))] >> 8,
                    ramp.blue[static_cast<size_t>(qBlue(*pixel))] >> 8);
  }
  return picture;
}

QIcon themedIcon(const QString& name) {
  return QIcon(new ThemedIconEngine(name));
}

QPalette errorPalette() {
  QPalette palette = QGuiApplication::palette();
  const bool dark = palette.window().color().lightness() < 128;
  palette.setColor(QPalette::WindowText, dark ? QColor(255, 120, 110) : QColor(176, 0, 0));
  return palette;
}

}  // namespace facet
