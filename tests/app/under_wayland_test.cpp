#include <QDir>
#include <QProcess>

#include "app/window_test.h"

// What only a Wayland compositor shows; under_wayland.sh runs these on one of its own, of 1024 x 600.

namespace facet {
namespace {

class UnderWayland : public WindowTest {
 protected:
  void SetUp() override {
    if (!QGuiApplication::platformName().startsWith("wayland"))
      GTEST_SKIP() << "for a display of the test's own";
    ASSERT_TRUE(start("", DeviceChoice::hal));
  }

  /// What the output shows, once it has come to rest.
  static QImage output() {
    QTest::qWait(1000);
    EXPECT_EQ(QProcess::execute("weston-screenshooter", QStringList()), 0);
    const QString name = QDir().entryList({"wayland-screenshot*"}).value(0);
    const QImage picture(name);
    QFile::remove(name);
    return picture;
  }

  /// How much of the view is its background, were it shown whole and nothing else of that colour.
  static double shown(const QImage& output) {
    double count = 0;
    for (int y = 0; y < output.height(); ++y)
      for (int x = 0; x < output.width(); ++x) count += output.pixelColor(x, y) == background;
    return count / (widget().width() * widget().height());
  }

  static inline const QColor background{127, 127, 127};
};

TEST_F(UnderWayland, TheWholePictureIsThereFromTheStartAndInFullScreen) {
  EXPECT_GT(shown(output()), 0.85);  // the compositor's panel pushes the window down
  key(Qt::Key_F11);
  const QImage full = output();
  EXPECT_NEAR(shown(full), 1, 0.02);
  EXPECT_EQ(widget().width(), 1024);
  for (const QPoint& corner : {QPoint(0, 600 - widget().height()), QPoint(1023, 599)})
    EXPECT_EQ(full.pixelColor(corner), background);
  key(Qt::Key_F11);
  EXPECT_GT(shown(output()), 0.85);
}

}  // namespace
}  // namespace facet
