#include <QElapsedTimer>
#include <QProgressBar>

#include "app/window_test.h"

// While a model loads the window lives; keys that come faster than frames share them.

namespace facet {
namespace {

/// A window, and models large enough that it is free while they load.
class LongLoad : public WindowTest {
 protected:
  static constexpr uint32_t manyMeshes = 20000;

  /// A model of many meshes, each with a texture that has to be looked for.
  std::string writeLarge(const std::string& name) {
    std::vector<BuiltMesh> built;
    for (uint32_t i = 0; i < manyMeshes; ++i) built.push_back(builtTriangle("ground" + std::to_string(i)));
    return folder.write(name, vxmHierarchy(4, built).bytes());
  }

  /// Opens a large model and does something as soon as the window is free while it loads.
  void openLarge(const std::string& path, const std::function<void()>& meanwhile) {
    bool done = false;
    QTimer soon;
    QObject::connect(&soon, &QTimer::timeout, [&] {
      if (!std::exchange(done, true)) meanwhile();
    });
    soon.start(0);
    widget().openPath(path);
    soon.stop();
    EXPECT_TRUE(done) << "the load was too quick for this test";
  }

  std::string pane(const char* name) { return status().findChild<QLabel*>(name)->text().toStdString(); }
};

TEST_F(LongLoad, AnswersThroughoutAndKeepsTheOldModelUntilTheEnd) {
  ASSERT_TRUE(start(folder.write("a.vxm", triangleFile())));
  const std::string large = writeLarge("b.vxm");
  const std::string oldTitle = title();
  QElapsedTimer sinceLast;
  qint64 longest = 0;
  int beats = 0;
  QTimer beat;
  QObject::connect(&beat, &QTimer::timeout, [&] {
    longest = std::max(longest, sinceLast.restart());
    ++beats;
  });
  beat.start(1);
  sinceLast.start();
  openLarge(large, [&] {
    const float eye = view().camera.eyePosition.z;
    key(Qt::Key_W);
    EXPECT_GT(view().camera.eyePosition.z, eye);
    widget().grab();
    EXPECT_EQ(view().overlay.size(), 5u);
    EXPECT_EQ(view().scene.model->totalIndices, 3u);
    EXPECT_EQ(title(), oldTitle);
    frame().showProgress(nullptr);
    EXPECT_TRUE(status().findChild<QProgressBar*>("progress")->isVisible());
  });
  EXPECT_EQ(view().scene.model->meshCount, manyMeshes);
  EXPECT_EQ(title(), titleOf(large));
  EXPECT_EQ(status().message(), "Loading complete");
  EXPECT_FALSE(status().findChild<QProgressBar*>("progress")->isVisible());
  EXPECT_GT(beats, 1);
  EXPECT_LT(longest, 500);  // of a busy machine, under a sanitizer
}

TEST_F(LongLoad, EscapeLeavesEverythingAsItWas) {
  const std::string small = folder.write("a/a.vxm", triangleFile());
  ASSERT_TRUE(start());
  widget().openPath(small);
  const std::string large = writeLarge("b/b.vxm");
  const auto state = [] {
    return std::tuple(view().scene.model.get(), view().scene.modelPath, viewer().lastOpenDirectory,
                      view().scene.fileIndex, viewer().loadDirectory, title());
  };
  const auto before = state();
  openLarge(large, [] {
    key(Qt::Key_C);
    key(Qt::Key_Escape);
  });
  QApplication::processEvents();
  EXPECT_EQ(state(), before);
  EXPECT_EQ(pane("note"), "Cancelled: b.vxm");
  EXPECT_EQ(status().message(), "Ready");
  openLarge(folder / "b", [] { key(Qt::Key_Escape); });
  EXPECT_EQ(state(), before);
  widget().openPath(large);
  EXPECT_EQ(view().scene.model->meshCount, manyMeshes);
  EXPECT_EQ(pane("note"), "");
}

TEST_F(LongLoad, CommandsOnTheModelWaitForItInTheirOrder) {
  const std::string large = writeLarge("0.vxm");
  for (const char* name : {"1.vxm", "2.vxm", "3.vxm", "4.vxm", "5.vxm"}) folder.write(name, triangleFile());
  ASSERT_TRUE(start(folder / "1.vxm"));
  openLarge(large, [this] {
    for (int i = 0; i < 4; ++i) key(Qt::Key_C);
    key(Qt::Key_X);
    key(Qt::Key_F12);
    key(Qt::Key_G);
    EXPECT_TRUE(view().settings.envMode);
    EXPECT_EQ(view().scene.model->name, folder / "1.vxm");
  });
  const auto centred = [third = folder / "3.vxm"] {
    const Model* model = view().scene.model.get();
    return model && model->name == third && view().camera.eyePosition == model->center;
  };
  EXPECT_TRUE(QTest::qWaitFor(centred)) << view().scene.model->name;
}

TEST_F(LongLoad, ClosingTheWindowEndsIt) {
  ASSERT_TRUE(start(folder.write("a.vxm", triangleFile())));
  openLarge(writeLarge("b.vxm"), [] {
    key(Qt::Key_C);
    EXPECT_TRUE(frame().close());
  });
  EXPECT_EQ(view().scene.model->totalIndices, 3u);
  EXPECT_FALSE(frame().isVisible());
}

TEST_F(LongLoad, ManyPressesShareFramesAndEndWhereOneByOneEnds) {
  ASSERT_TRUE(start(folder.write("a.vxm", triangleFile())));
  constexpr int presses = 200;
  const Qt::Key keys[] = {Qt::Key_W, Qt::Key_A, Qt::Key_Delete, Qt::Key_F7, Qt::Key_W, Qt::Key_F8, Qt::Key_B};
  size_t frames = 0;
  const PerformanceCounter counter = view().counter;
  view().counter.now = [&] {  // asked twice a frame
    ++frames;
    return counter.now();
  };
  const auto press = [&](bool paintsEach) {
    view().camera = {};
    view().settings.backgroundIndex = 2;
    frames = 0;
    for (int i = 0; i < presses; ++i) {
      key(keys[i % std::size(keys)]);
      if (paintsEach) widget().repaint();
    }
    widget().repaint();
    return settings(viewer());
  };
  const auto oneByOne = press(true);
  EXPECT_GE(frames, 2u * presses / 2);
  EXPECT_EQ(press(false), oneByOne);
  EXPECT_LE(frames, 2u * 2);
  view().counter = counter;
}

}  // namespace
}  // namespace facet
