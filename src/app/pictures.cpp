#include "app/pictures.h"

#include <QFile>
#include <QFont>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

#include "app/dialogs.h"

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

}  // namespace

void paintOverlay(QPainter& painter, const std::vector<OverlayLine>& overlay) {
  painter.setFont(overlayFont());
  const int ascent = painter.fontMetrics().ascent();
  for (const OverlayLine& line : overlay) {
    painter.setPen(QColor(line.color));
    painter.drawText(line.x, line.y + ascent, toQString(line.text));
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
