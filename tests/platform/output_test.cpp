#include "platform/output.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <csignal>
#include <cstdlib>

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
  for (const std::string& path :
       {folder / "missing/a.obj", folder.path().string(), folder / std::string(300, 'a')}) {
    OutputFile file(path);
    EXPECT_FALSE(file.isOpen());
    EXPECT_NE(file.error(), "");
    file.write("dropped");
    EXPECT_EQ(file.bytesWritten(), 0u);
    EXPECT_FALSE(file.commit());
  }
}

TEST(OutputFile, FollowsALinkToNoFileYet) {
  const TempFolder folder;
  fs::create_symlink("b.obj", folder / "a.obj");
  fs::create_symlink("c.obj", folder / "b.obj");
  OutputFile file(folder / "a.obj");
  file.write("new");
  EXPECT_TRUE(file.commit());
  EXPECT_TRUE(fs::is_symlink(folder / "b.obj"));
  EXPECT_EQ(readWholeFile(folder / "c.obj"), "new");
}

/// Protection binds everybody but the system's administrator, who is somebody else while this lives.
class OrdinaryUser {
 public:
  OrdinaryUser() : changed_(geteuid() == 0 && seteuid(65534) == 0) {}
  ~OrdinaryUser() {
    if (changed_ && seteuid(0) != 0) std::abort();
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  bool changed_;
};

TEST(OutputFile, ObeysProtectedFilesAndFillsThoseOfProtectedFolders) {
  const TempFolder folder;
  const std::string kept = folder.write("kept.obj", "old"), filled = folder.write("filled.obj", "old bytes");
  fs::permissions(kept, fs::perms::owner_read | fs::perms::others_read);
  fs::permissions(filled, fs::perms::all);
  fs::permissions(folder.path(), fs::perms(0555));
  {
    const OrdinaryUser user;
    OutputFile file(kept);
    file.write("new");
    EXPECT_FALSE(file.commit());
    OutputFile other(filled);
    other.write("new");
    EXPECT_EQ(readWholeFile(filled), "old bytes");
    EXPECT_TRUE(other.commit()) << other.error();
    EXPECT_FALSE(OutputFile(folder / "another.obj").isOpen());
  }
  fs::permissions(folder.path(), fs::perms::owner_all);
  EXPECT_EQ(readWholeFile(kept), "old");
  EXPECT_EQ(readWholeFile(filled), "new");
  EXPECT_EQ(filesIn(folder.path()), 2u);
}

TEST(OutputFile, LeavesNothingBehindWhenTheProgramIsTold) {
  const TempFolder folder;
  const std::string path = folder.write("a.obj", "old");
  const auto writes = [&] {
    stopOnInterruption();
    OutputFile file(path);
    file.write("half ");
    (void)std::raise(SIGTERM);
    file.write("of it");
    if (!file.commit()) endIfInterrupted();
  };
  EXPECT_EXIT(writes(), testing::KilledBySignal(SIGTERM), "");
  EXPECT_EQ(readWholeFile(path), "old");
  EXPECT_EQ(filesIn(folder.path()), 1u);
}

}  // namespace
}  // namespace facet
