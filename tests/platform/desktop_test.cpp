#include <gmock/gmock.h>

#include "support/recording_desktop.h"

namespace facet {
namespace {

TEST(StatusPrint, FormatsAndCutsBetweenCharactersAt255Bytes) {
  statusPrint("before any desktop: %d", 1);
  RecordingDesktop desktop;
  statusPrint("Prefetching material #%u '%s' '%s'", 3u, "wall", "default");
  statusPrint("%s", std::string(400, 'x').c_str());
  statusPrint("%s", "100% as an argument");
  const std::string odd(254, 'x'), letter = "\u00E9";
  statusPrint("%s%s", odd.c_str(), letter.c_str());
  statusPrint("x%s%s", odd.substr(2).c_str(), letter.c_str());
  EXPECT_THAT(desktop.status,
              testing::ElementsAre("Prefetching material #3 'wall' 'default'", std::string(255, 'x'),
                                   "100% as an argument", odd, odd.substr(1) + letter));
}

}  // namespace
}  // namespace facet
