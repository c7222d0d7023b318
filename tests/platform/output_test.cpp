#include "platform/output.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/temp_folder.h"

namespace facet {
namespace {

namespace fs = std::filesystem;

size_t filesIn(const fs::path& folder) {
  return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(OutputFile, AppearsWholeOnCommitOnly) {
  const TempFolder folder;
  const std::string path = folder.write("a.obj", "old");
  {
    OutputFile file(path);
    file.write("new ");
    EXPECT_EQ(readWholeFile(path), "old");
  }
  EXPECT_EQ(readWholeFile(path), "old");
  EXPECT_EQ(filesIn(folder.path()), 1u);

  OutputFile file(path);
  file.write("new ");
  file.write("bytes");
  EXPECT_TRUE(file.commit());
  EXPECT_EQ(readWholeFile(path), "new bytes");
  EXPECT_EQ(file.bytesWritten(), 9u);
  EXPECT_EQ(filesIn(folder.path()), 1u);
}

TEST(OutputFile, FollowsLinksAndKeepsPermissions) {
  const TempFolder folder;
  const std::string path = folder.write("a.obj", "old");
  fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("a.obj", folder / "link.obj");
  OutputFile file(folder / "link.obj");
  file.write("new");
  EXPECT_TRUE(file.commit());
  EXPECT_TRUE(fs::is_symlink(folder / "link.obj"));
  EXPECT_EQ(readWholeFile(path), "new");
  EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(OutputFile, SaysWhyItCannotBeOpened) {
  const TempFolder folder;
  for (const std::string& path : {folder / "missing/a.obj", folder.path().string()}) {
    OutputFile file(path);
    EXPECT_FALSE(file.isOpen());
    EXPECT_NE(file.error(), "");
    file.write("dropped");
    EXPECT_EQ(file.bytesWritten(), 0u);
    EXPECT_FALSE(file.commit());
  }
}

TEST(OutputFile, KeepsAProtectedFile) {
  const TempFolder folder;
  const std::string path = folder.write("a.obj", "old");
  fs::permissions(path, fs::perms::owner_read);
  if (std::ofstream(path, std::ios::app)) GTEST_SKIP() << "protection does not bind this user";
  OutputFile file(path);
  file.write("new");
  EXPECT_FALSE(file.commit());
  EXPECT_EQ(readWholeFile(path), "old");
}

TEST(OutputFile, TellsOfAFullDisk) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  OutputFile file("/dev/full");
  file.write("some bytes");
  EXPECT_FALSE(file.commit());
  EXPECT_NE(file.error().find("cannot write"), std::string::npos);
  EXPECT_TRUE(fs::exists("/dev/full"));
}

}  // namespace
}  // namespace facet
