#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QMenu>
#include <QSettings>
#include <QSpinBox>
#include <filesystem>

#include "app/window_test.h"
#include "commands/looking.h"
#include "picture/image.h"

namespace facet {
namespace {

constexpr unsigned reload = 58005, savePictureId = 58006, watchFile = 58007, copyPictureId = 58052,
                   exportId = 58000;

class FilesTest : public WindowTest {
 protected:
  FilesTest() { QSettings("facetbench", "vxmviewer").clear(); }

  static std::string note() { return toBytes(frame().findChild<QLabel*>("note")->text()); }
  static std::string failure() { return toBytes(frame().findChild<QLabel*>("failure")->text()); }
  static uint32_t meshes() { return view().scene.model ? view().scene.model->meshCount : 0; }

  /// The entries of "Recent files" as its user sees them.
  static std::vector<std::string> recent(QMenu* menu = recentMenu()) {
    emit menu->aboutToShow();
    std::vector<std::string> texts;
    for (const QAction* action : menu->actions())
      texts.push_back(toBytes(action->text()) + (action->isEnabled() ? "" : " -"));
    return texts;
  }
  static QMenu* recentMenu() {
    for (QMenu* menu : frame().findChildren<QMenu*>())
      if (menu->title().contains("Recent")) return menu;
    return nullptr;
  }
};

TEST_F(FilesTest, RecentFilesOutliveTheWindow) {
  folder.write("a/same.vxm", triangleFile());
  folder.write("b/same.vxm", triangleFile());
  ASSERT_TRUE(start(folder.write("one & two.vxm", triangleFile())));
  for (const char* name : {"a/same.vxm", "b/same.vxm", "a/same.vxm"}) widget().openPath(folder / name);
  widget().openPath(folder.write("bad.vxm", "no model"));
  const std::vector<std::string> expected = {"&1  same.vxm", "&2  same.vxm", "&3  one && two.vxm"};
  EXPECT_EQ(recent(), expected);
  frame().close();
  std::filesystem::remove(folder.path() / "one & two.vxm");
  ASSERT_TRUE(start());
  EXPECT_EQ(recent(), (std::vector<std::string>{expected[0], expected[1], expected[2] + " (gone) -"}));
  recentMenu()->actions()[1]->trigger();
  EXPECT_EQ(recent()[0], expected[0]);
  EXPECT_EQ(view().scene.modelPath, folder / "b/same.vxm");
  for (int i = 0; i < 12; ++i)
    widget().openPath(folder.write("m" + std::to_string(i) + ".vxm", triangleFile()));
  EXPECT_EQ(recent().size(), 10u);
}

TEST_F(FilesTest, AWatchedFileIsLoadedAnewOnceItIsWhole) {
  const std::string path = folder.write("a.vxm", vxmHierarchy(4, {builtTriangle(), builtTriangle()}).bytes());
  ASSERT_TRUE(start(path));
  const std::string bigger =
      vxmHierarchy(4, {builtTriangle(), builtTriangle(), builtTriangle("new")}).bytes();
  folder.write("a.vxm", bigger);
  QTest::qWait(800);
  EXPECT_EQ(meshes(), 2u) << "nothing is watched unasked";
  key(Qt::Key_R, Qt::AltModifier);
  frame().action(reload)->trigger();
  EXPECT_EQ(meshes(), 3u);
  EXPECT_EQ(note(), "Loaded anew: a.vxm, 3 meshes, 2 before");

  view().scene.model->meshes[1].hidden = true;
  view().camera.eyePosition = {1, 2, 3};
  folder.write("a.vxm", bigger.substr(0, 100));  // it shrinks, and stays so for a while
  EXPECT_TRUE(QTest::qWaitFor([] { return note().starts_with("a.vxm: there are no meshes"); })) << note();
  EXPECT_EQ(meshes(), 3u) << "what was whole stays";
  folder.write("a.vxm.new", bigger);
  std::filesystem::rename(folder / "a.vxm.new", path);
  const uint64_t before = view().scene.generation;
  EXPECT_TRUE(QTest::qWaitFor([=] { return view().scene.generation != before; }));
  EXPECT_TRUE(view().scene.model->meshes[1].hidden);
  EXPECT_EQ(view().camera.eyePosition, (Vector3{1, 2, 3}));

  std::filesystem::remove(path);
  EXPECT_TRUE(QTest::qWaitFor([] { return note().starts_with("a.vxm: "); }));
  EXPECT_EQ(meshes(), 3u);
  folder.write("a.vxm", triangleFile());
  EXPECT_TRUE(QTest::qWaitFor([] { return meshes() == 1; })) << "it came back";
}

TEST_F(FilesTest, AWatchedTextureIsSeen) {
  folder.write("textures/stone.dds", ddsFile(8, 8));
  ASSERT_TRUE(start({"--textures", folder / "textures", folder.write("a.vxm", triangleFile())}));
  key(Qt::Key_R, Qt::AltModifier);
  const uint64_t before = view().scene.generation;
  folder.write("textures/stone.dds", ddsFile(16, 16));
  EXPECT_TRUE(QTest::qWaitFor([=] { return view().scene.generation != before; }));
}

TEST_F(FilesTest, SavedAndCopiedPicturesShowTheViewAsFacetbenchDrawsIt) {
  ASSERT_TRUE(start(folder.write("a.vxm", vxmVisual(4, builtGrid(4)).bytes())));
  key(Qt::Key_F);
  key(Qt::Key_Tab);
  const auto save = [&](const std::string& name, const ModalAnswers::Answer& change) {
    const ModalAnswers answers({[=](QWidget& dialog) {
                                  change(dialog);
                                  QTest::keyClick(&dialog, Qt::Key_Return);
                                },
                                chooseFile(name), press(QMessageBox::Yes)});
    frame().action(savePictureId)->trigger();
  };
  save(folder / "wide.png", [](QWidget& dialog) {
    dialog.findChild<QSpinBox*>("width")->setValue(300);
    dialog.findChild<QSpinBox*>("height")->setValue(100);
  });
  EXPECT_EQ(note(), "wide.png written, 300x100");
  const QImage wide(toQString(folder / "wide.png"));
  EXPECT_EQ(wide.size(), QSize(300, 100));
  EXPECT_EQ(wide.pixelColor(1, 1).alpha(), 255);
  EXPECT_NE(wide.pixel(150, 50), wide.pixel(1, 1)) << "the model is in the middle";

  save(folder / "clear.png", [](QWidget& dialog) {
    EXPECT_EQ(dialog.findChild<QSpinBox*>("width")->value(), 300) << "as it was last";
    QTest::keyClick(dialog.findChild<QCheckBox*>(), Qt::Key_Space);
  });
  EXPECT_EQ(QImage(toQString(folder / "clear.png")).pixelColor(1, 1).alpha(), 0);

  const std::string own = readWholeFile(folder / "a.vxm");
  std::filesystem::copy(folder / "a.vxm", folder / "b.png");
  widget().openPath(folder / "b.png");
  ASSERT_EQ(meshes(), 1u);
  save(folder / "b.png", [](QWidget&) {});
  EXPECT_THAT(failure(), testing::HasSubstr("belongs to the model"));
  EXPECT_EQ(readWholeFile(folder / "b.png"), own);

  key(Qt::Key_P, Qt::AltModifier);
  EXPECT_EQ(note(), "Picture copied");
  EXPECT_EQ(QGuiApplication::clipboard()->image().size(), widget().size());
}

TEST_F(FilesTest, ExportTakesWhatIsVisibleAlone) {
  ASSERT_TRUE(
      start(folder.write("a.vxm", vxmHierarchy(4, {builtTriangle(), builtTriangle("other")}).bytes())));
  const auto exportTo = [&](const std::string& name) {
    const ModalAnswers answers({[](QWidget& dialog) {
                                  auto* visible = dialog.findChild<QCheckBox*>();
                                  if (!visible->isChecked()) QTest::keyClick(visible, Qt::Key_Space);
                                  QTest::keyClick(&dialog, Qt::Key_Return);
                                },
                                chooseFile(folder / name)});
    frame().action(exportId)->trigger();
    return readWholeFile(folder / name);
  };
  const auto corners = [](const std::string& obj) {
    size_t count = 0;
    for (size_t at = obj.find("\nv "); at != obj.npos; at = obj.find("\nv ", at + 1)) ++count;
    return count;
  };
  EXPECT_EQ(corners(exportTo("all.obj")), 6u);
  view().scene.model->meshes[0].hidden = true;
  EXPECT_EQ(corners(exportTo("one.obj")), 3u);
  view().scene.model->meshes[1].hidden = true;
  EXPECT_EQ(exportTo("none.obj"), "");
  EXPECT_THAT(failure(), testing::HasSubstr("no mesh is visible"));
}

TEST_F(FilesTest, TheWindowRemembersItsPlaceDocksAndNavigation) {
  ASSERT_TRUE(start());
  EXPECT_FALSE(viewer().orbits) << "classic at first";
  frame().resize(700, 500);
  key(Qt::Key_Space);
  key(Qt::Key_M);
  frame().findChild<QWidget*>("toolbar")->hide();
  frame().close();
  ASSERT_TRUE(start());
  EXPECT_EQ(frame().size(), QSize(700, 500));
  EXPECT_TRUE(viewer().orbits);
  EXPECT_TRUE(frame().findChild<QWidget*>("modelDock")->isVisible());
  EXPECT_TRUE(frame().findChild<QWidget*>("toolbar")->isVisible()) << "as at every start";
  key(Qt::Key_F11);
  frame().close();
  ASSERT_TRUE(start());
  EXPECT_FALSE(frame().isFullScreen());
  EXPECT_EQ(frame().size(), QSize(700, 500));
}

}  // namespace
}  // namespace facet
