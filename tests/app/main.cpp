#include <gtest/gtest.h>

#include "app/viewer_app.h"

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("FACET_TEST_DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  facet::ViewerApp app(argc, argv);
  return RUN_ALL_TESTS();
}
