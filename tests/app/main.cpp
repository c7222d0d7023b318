#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "app/viewer_app.h"

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("FACET_TEST_DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("LC_ALL", "C.UTF-8");  // a locale that a program starts in only if it asks for it
  const QTemporaryDir settings;  // what a window remembers is the user's own
  qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
  testing::InitGoogleTest(&argc, argv);
  facet::ViewerApp app(argc, argv);
  return RUN_ALL_TESTS();
}
