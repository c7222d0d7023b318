#include <gtest/gtest.h>

#include "support/recording_desktop.h"

namespace facet {
namespace {

TEST(StatusPrint, FormatsAndCutsAt255Bytes) {
  statusPrint("before any desktop: %d", 1);
  RecordingDesktop desktop;
  statusPrint("Prefetching material #%u '%s' '%s'", 3u, "wall", "default");
  statusPrint("%s", std::string(400, 'x').c_str());
  statusPrint("%s", "100% as an argument");
  ASSERT_EQ(desktop.status.size(), 3u);
  EXPECT_EQ(desktop.status[0], "Prefetching material #3 'wall' 'default'");
  EXPECT_EQ(desktop.status[1], std::string(255, 'x'));
  EXPECT_EQ(desktop.status[2], "100% as an argument");
}

}  // namespace
}  // namespace facet
