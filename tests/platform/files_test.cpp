#include "platform/files.h"

#include <gtest/gtest.h>

#include "support/failing_memory.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

TEST(FileFinder, FindsNamesInAnyCaseWithEitherSeparator) {
  const TempFolder folder;
  folder.write("Game/Textures/Wall_01.DDS", "x");
  folder.write("Game/textures/only_here.dds", "x");  // a second folder that differs in case only
  const CurrentFolder here(folder.path());
  FileFinder files;
  const std::pair<const char*, const char*> cases[] = {
      {"Game/Textures/Wall_01.DDS", "Game/Textures/Wall_01.DDS"},
      {"game\\textures\\wall_01.dds", "Game/Textures/Wall_01.DDS"},
      {"GAME\\TEXTURES\\ONLY_HERE.DDS", "Game/textures/only_here.dds"},
      {"game//textures\\\\wall_01.dds", "Game/Textures/Wall_01.DDS"},
      {"game\\..\\GAME\\textures\\wall_01.dds", "Game/../Game/Textures/Wall_01.DDS"},
      {".\\game\\textures\\wall_01.dds", "./Game/Textures/Wall_01.DDS"},
      {"game\\textures", ""},
      {"game\\textures\\wall_02.dds", ""},
      {"game\\textures\\wall_01.dds\\x", ""},
      {"", ""},
  };
  for (const auto& [name, expected] : cases)
    EXPECT_EQ(files.find(name).value_or("").generic_string(), expected) << name;
  if (std::filesystem::path::preferred_separator == '/') {
    const std::string odd = folder.write("back\\slash.dds", "x");
    EXPECT_EQ(files.find(odd), odd);
  }
  EXPECT_TRUE(files.find((folder.path() / "game\\textures\\WALL_01.dds").string()));
}

TEST(FileFinder, PrefersTheExactNameThenByteOrder) {
  const TempFolder folder;
  folder.write("wall.dds", "x");
  folder.write("Wall.dds", "x");
  folder.write("WALL.dds", "x");
  FileFinder files;
  const auto find = [&](const char* name) { return files.find(folder / name)->filename().string(); };
  EXPECT_EQ(find("wall.dds"), "wall.dds");
  EXPECT_EQ(find("Wall.dds"), "Wall.dds");
  EXPECT_EQ(find("wALL.dds"), "WALL.dds");
}

TEST(FileFinder, ThrowsWhenMemoryRunsOutAndFindsLater) {
  const TempFolder folder;
  folder.write("textures/Wall.dds", "x");
  const std::string name = folder / "TEXTURES\\wall.dds";
  bool found = false;
  for (int allocations = 0; !found && allocations < 1000; ++allocations) {
    FileFinder files;
    try {
      const FailingMemory memory(allocations);
      found = files.find(name).has_value();
    } catch (const std::bad_alloc&) {
      EXPECT_TRUE(files.find(name)) << "after " << allocations;
    }
  }
  EXPECT_TRUE(found);
}

TEST(Names, AreCutAtEitherSeparator) {
  EXPECT_EQ(fileName("C:\\out/a\\ship.obj"), "ship.obj");
  EXPECT_EQ(fileName("C:\\out\\a/ship.obj"), "ship.obj");
  EXPECT_EQ(fileName("ship"), "ship");
  EXPECT_EQ(lowerExtension("a.b/SHIP.Obj"), ".obj");
  EXPECT_EQ(lowerExtension("a.b/ship"), "");
  EXPECT_TRUE(isRooted("/x") && isRooted("c:x"));
  EXPECT_FALSE(isRooted("x") || isRooted("") || isRooted("xc:"));
}

}  // namespace
}  // namespace facet
