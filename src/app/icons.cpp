#include "app/icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

namespace facet {

namespace {

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

QIcon themedIcon(const QString& name) {
  return QIcon(new ThemedIconEngine(name));
}

QIcon applicationIcon() {
  return themedIcon("vxmviewer");
}

}  // namespace facet
