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

  /// What a pane shows, as far as there is one.
  std::string pane(const char* name) {
    const auto* label = status().findChild<QLabel*>(name);
    return label->isVisible() ? label->text().toStdString() : "";
  }
};

TEST_F(BadInput, OfATextureIsToldUntilTheNextModel) {
  folder.write("textures/stone.dds", "bad");
  const std::string bad = folder.write("bad.vxm", triangleFile());
  const std::string none = folder.write("none.vxm", triangleFile("<b>none"));
  ASSERT_TRUE(start(bad));
  EXPECT_EQ(pane("missing"), "1 of 1 texture missing");
  const auto* label = status().findChild<QLabel*>("missing");
  EXPECT_THAT(label->toolTip().toStdString(), HasSubstr("stone: textures/stone.dds: is no DDS"));
  widget().openPath(none);
  EXPECT_THAT(label->toolTip().toStdString(), HasSubstr("&lt;b&gt;none: not found\n\nLooked for in\n"));
  EXPECT_THAT(label->toolTip().toStdString(), HasSubstr(folder / "textures/"));
  frame().runCommand(fileNew);
  EXPECT_EQ(pane("missing"), "");
}

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
    EXPECT_EQ(pane("failure"), message());
  }
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  const auto* failure = status().findChild<QLabel*>("failure");
  EXPECT_GT(failure->palette().color(QPalette::WindowText).red(), 150);
  ModalAnswers answers({chooseFile(folder / "new.obj"), press(QMessageBox::Yes), press(QMessageBox::Ok)});
  key(Qt::Key_F2);
  EXPECT_EQ(pane("failure"), "");
}

}  // namespace
}  // namespace facet
