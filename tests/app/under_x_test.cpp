#include <QProcess>
#include <QToolBar>

#include "app/window_test.h"

// X's headers define macros of everyday words, so they come last.
#include <X11/extensions/Xrandr.h>

// What only an X server has; under_x.sh runs these on one of its own.

namespace facet {
namespace {

class UnderX : public WindowTest {
 protected:
  void SetUp() override {
    if (!qEnvironmentVariableIsSet("FACET_TEST_DISPLAY")) GTEST_SKIP() << "for a display of the test's own";
    ASSERT_EQ(QGuiApplication::platformName(), "xcb");
    ASSERT_TRUE(start(folder.write("ship.vxm", triangleFile())));
    ASSERT_TRUE(QTest::qWaitForWindowActive(&frame()));
  }

  /// The ramp of the one display in use.
  static GammaRamp displayRamp() {
    Display* server = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->display();
    XRRScreenResources* resources = XRRGetScreenResourcesCurrent(server, DefaultRootWindow(server));
    XRRCrtcGamma* gamma = XRRGetCrtcGamma(server, resources->crtcs[0]);
    GammaRamp ramp;
    EXPECT_EQ(gamma->size, 256);
    std::copy_n(gamma->red, 256, ramp.red.begin());
    std::copy_n(gamma->green, 256, ramp.green.begin());
    std::copy_n(gamma->blue, 256, ramp.blue.begin());
    XRRFreeGamma(gamma);
    XRRFreeScreenResources(resources);
    return ramp;
  }
};

TEST_F(UnderX, LockKeysLightTheirPanes) {
  const char* keys[] = {"Caps_Lock", "Num_Lock", "Scroll_Lock"};
  for (size_t i = 0; i < 6; ++i) {
    const bool lit = i % 2 == 0;
    EXPECT_EQ(QProcess::execute("xdotool", {"key", keys[i / 2]}), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return status().lit(i / 2) == lit; })) << keys[i / 2] << " " << lit;
  }
}

TEST_F(UnderX, KeysKeepTheirPlaceUnderOtherAlphabets) {
  const char *keyG = "42", *keyW = "25";
  for (const char* layout : {"us", "ru", "gr", "il"}) {
    EXPECT_EQ(QProcess::execute("setxkbmap", {layout}), 0);
    const bool before = view().settings.envMode;
    EXPECT_EQ(QProcess::execute("xdotool", {"key", keyG}), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view().settings.envMode != before; })) << layout;
    const float eye = view().camera.eyePosition.z;
    EXPECT_EQ(QProcess::execute("xdotool", {"key", keyW}), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view().camera.eyePosition.z != eye; })) << layout;
  }
  EXPECT_EQ(QProcess::execute("setxkbmap", {"us"}), 0);
}

TEST_F(UnderX, TheToolbarCanBeDraggedOffAndPassesKeysToTheView) {
  auto* bar = frame().findChild<QToolBar*>();
  QTest::mousePress(bar, Qt::LeftButton, {}, QPoint(4, 10));  // its grip
  for (const QPoint& step : {QPoint(100, 200), QPoint(200, 300)}) QTest::mouseMove(bar, step);
  QTest::mouseRelease(bar, Qt::LeftButton);
  ASSERT_TRUE(bar->isFloating());
  bar->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(bar));
  EXPECT_EQ(QProcess::execute("xdotool", {"key", "g"}), 0);
  EXPECT_TRUE(QTest::qWaitFor([] { return view().settings.envMode; }));
  EXPECT_EQ(QProcess::execute("xdotool", {"key", "ctrl+n"}), 0);
  EXPECT_TRUE(QTest::qWaitFor([] { return !view().scene.model; }));
}

TEST_F(UnderX, GammaStepsTheRampOfTheDisplay) {
  for (const float gamma : {1.1f, 1.1f + 0.1f}) {
    key(Qt::Key_Slash);
    EXPECT_EQ(displayRamp(), rampOfGamma(gamma));
  }
  for (int step = 2; step < 21; ++step) key(Qt::Key_Slash);
  EXPECT_EQ(displayRamp(), rampOfGamma(1));
}

TEST_F(UnderX, AnOpenGlPictureIsShownThroughARampWhereTheDisplayHasNone) {
  ASSERT_TRUE(start("", DeviceChoice::hal));
  widget().setPictureRamp(rampOfGamma(1.1f));
  EXPECT_EQ(widget().grab().toImage().pixelColor(400, 2).red(), 135);  // 255 * (127 / 255) ^ (1 / 1.1)
}

}  // namespace
}  // namespace facet
