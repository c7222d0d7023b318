#include <sys/resource.h>

#include <csignal>

#include "app/window_test.h"
#include "export/export.h"

// What goes wrong in files, folders and disks ends in a message, and the window lives on.

namespace facet {
namespace {

using testing::HasSubstr;

class BadInput : public WindowTest {
 protected:
  std::string message() { return status().message().toStdString(); }
};

TEST_F(BadInput, OfTheCommandLineLeavesAnEmptyWindowThatOpensTheNext) {
  std::filesystem::create_symlink("loop.vxm", folder / "loop.vxm");
  folder.write("bad.vxm", "not a model");
  const std::string good = folder.write("good.vxm", triangleFile());
  for (const char* name : {"none.vxm", "loop.vxm", "bad.vxm", "good.vxm/inner.vxm"}) {
    ASSERT_TRUE(start(folder / name)) << name;
    EXPECT_FALSE(view().scene.model) << name;
    EXPECT_EQ(title(), emptyTitle);
    EXPECT_THAT(message(), HasSubstr(": ")) << name;
    widget().openPath(good);
    EXPECT_TRUE(view().scene.model) << name;
  }
}

TEST_F(BadInput, ADiskThatFillsUpKeepsTheOldFile) {
  ASSERT_TRUE(start(folder.write("grid.vxm", vxmVisual(4, builtGrid(100)).bytes())));
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{20'000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  for (const ExportFormat& format : saveDialogFormats()) {
    const std::string path = folder.write("old" + std::string(format.pattern.substr(1)), "old");
    ModalAnswers answers({chooseFile(path), press(QMessageBox::Yes), press(QMessageBox::Ok)});
    key(Qt::Key_F2);
    EXPECT_EQ(readWholeFile(path), "old");
    EXPECT_THAT(message(), HasSubstr(": cannot write: ")) << format.name;
  }
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
}

}  // namespace
}  // namespace facet
