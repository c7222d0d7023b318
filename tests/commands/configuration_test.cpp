#include "commands/configuration.h"

#include <gmock/gmock.h>

#include "support/recording_desktop.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

TEST(Configuration, IsTakenByteForByteUpTo260) {
  EXPECT_THAT(parseConfiguration("C:\\game\\textures\\\0D:\\mods\\textures\\\0\0E:\\\0"s),
              ElementsAre("C:\\game\\textures\\", "D:\\mods\\textures\\"));
  EXPECT_THAT(parseConfiguration("tex\\\r\n\0\0"s), ElementsAre("tex\\\r\n"));
  EXPECT_THAT(parseConfiguration("tex"), ElementsAre("tex"));
  EXPECT_THAT(parseConfiguration(""), IsEmpty());
  EXPECT_THAT(parseConfiguration("\0tex\0\0"s), IsEmpty());
  const std::string first(200, 'a');
  EXPECT_THAT(parseConfiguration(first + "\0"s + std::string(100, 'b')),
              ElementsAre(first, std::string(59, 'b')));
}

TEST(Configuration, IsLookedForBesideTheLastSeparatorOfTheCommandLine) {
  EXPECT_THAT(configurationPlaces("\"C:\\tools\\vxmviewer.exe\""),
              ElementsAre("C:\\tools\\VXMViewer.cfg", "VXMViewer.cfg"));
  EXPECT_THAT(configurationPlaces("\"/usr/bin/vxmviewer\" /models/ship.vxm"),
              ElementsAre("/models\\VXMViewer.cfg", "VXMViewer.cfg"));
  EXPECT_THAT(configurationPlaces("\"C:\\tools\\vxmviewer.exe\" D:\\my \"models\\ship.vxm"),
              ElementsAre("D:\\my \"models\\VXMViewer.cfg", "VXMViewer.cfg"));
  EXPECT_THAT(configurationPlaces("vxmviewer"), ElementsAre("VXMViewer.cfg"));
  EXPECT_THAT(configurationPlaces(""), ElementsAre("VXMViewer.cfg"));
}

TEST(Configuration, ComesFromTheFirstPlaceThatOpens) {
  const TempFolder folder;
  const CurrentFolder here(folder.path());
  RecordingDesktop desktop;
  const std::string commandLine = "\"" + (folder / "bin/vxmviewer") + "\"";
  EXPECT_THAT(readConfiguration(commandLine), ElementsAre("gamedata\\textures\\"));
  EXPECT_THAT(desktop.boxes, ElementsAre(RecordingDesktop::Box{"VXMViewer.cfg", "Can't open file", 0x1030}));

  folder.write("vxmviewer.CFG", "here\\"s);
  EXPECT_THAT(readConfiguration(commandLine), ElementsAre("here\\"));
  folder.write("bin/VXMViewer.cfg", "beside\\\0more\\\0\0"s);
  EXPECT_THAT(readConfiguration(commandLine), ElementsAre("beside\\", "more\\"));
  EXPECT_EQ(desktop.boxes.size(), 1u);
}

}  // namespace
}  // namespace facet
