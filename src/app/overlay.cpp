#include "app/overlay.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include "app/text.h"

namespace facet {

namespace {

/// 9 pixels high, as the positions of the lines need it; upright and of plain weight, whatever the desktop's
/// is.
QFont overlayFont() {
  QFont font({"Verdana", "DejaVu Sans"}, -1, QFont::Normal, false);
  font.setPixelSize(9);
  return font;
}

}  // namespace

void paintOverlay(QPainter& painter, const std::vector<OverlayLine>& overlay) {
  painter.setFont(overlayFont());
  const int ascent = painter.fontMetrics().ascent();
  for (const OverlayLine& line : overlay) {
    painter.setPen(QColor(line.color));
    painter.drawText(line.x, line.y + ascent, toQString(line.text));
  }
}

QImage overlayImage(const std::vector<OverlayLine>& overlay, qreal scale) {
  const QFontMetrics metrics(overlayFont());
  QSize size;
  for (const OverlayLine& line : overlay) {
    const QSize end(line.x + metrics.horizontalAdvance(toQString(line.text)) + 1, line.y + metrics.height());
    size = size.expandedTo(end);
  }
  if (size.isEmpty()) return {};
  QImage image((QSizeF(size) * scale).toSize(), QImage::Format_RGBA8888_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  paintOverlay(painter, overlay);
  return image;
}

}  // namespace facet
