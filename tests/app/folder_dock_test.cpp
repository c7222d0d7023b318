#include "app/folder_dock.h"

#include <QCryptographicHash>
#include <QImage>
#include <QLabel>
#include <QListView>

#include "app/folder_filter.h"
#include "app/window_test.h"

namespace facet {
namespace {

TEST(FolderFilter, TakesWordsAndConditions) {
  const ModelFigures figures{1000, 2, "Vantor editable object"};
  struct Case {
    const char* text;
    bool accepts;
    const char* error = "";
  };
  const Case cases[] = {
      {"", true},
      {"BARR .obj", true},
      {"barrel crate", false},
      {"tris>1000", false},
      {"tris>=1000 tris<1001 tris=1000", true},
      {"TRIS<=999", false},
      {"missing:yes", true},
      {"barrel missing:no", false},
      {"type:Object", true},
      {"type:vxm", false},
      {"tris>many", true, "tris takes a number"},
      {"missing:maybe", true, "missing takes yes or no"},
      {"type>1", true, "type takes a part"},
      {"bones>3 crate", false, "\"bones\" is no condition"},
  };
  for (const Case& one : cases) {
    const FolderFilter filter{QString(one.text)};
    EXPECT_EQ(filter.acceptsName("Barrel.object") && filter.acceptsFigures(figures), one.accepts) << one.text;
    EXPECT_TRUE(toBytes(filter.error()).starts_with(one.error)) << toBytes(filter.error());
    EXPECT_EQ(filter.error().isEmpty(), *one.error == 0) << one.text;
  }
}

/// Waits longer than usual: thumbnails are drawn when nothing else has work for the cores.
template <class Condition>
bool waitFor(Condition condition) {
  constexpr int longest = 60'000;  // ms
  return QTest::qWaitFor(condition, longest);
}

class FolderDockTest : public WindowTest {
 protected:
  FolderDockTest() {
    qputenv("XDG_CACHE_HOME", QByteArray::fromStdString(cache.path().string()));
    folder.write("models/b%20 \xC3\xA9.vxm", vxmVisual(4, builtGrid(3)).bytes());
    folder.write("models/c.vxm", triangleFile());
    folder.write("models/notes.txt", "no model");
  }
  ~FolderDockTest() override {
    app().stop();
    qunsetenv("XDG_CACHE_HOME");
  }

  void startWithDock(const std::string& name) {
    ASSERT_TRUE(start(folder / ("models/" + name)));
    key(Qt::Key_J);
  }

  static FolderDock& dock() { return *frame().findChild<FolderDock*>("folderDock"); }
  static QListView& list() { return *dock().findChild<QListView*>(); }
  static QString line() { return dock().findChild<QLabel*>("folderLine")->text(); }
  static QString failure() { return frame().findChild<QLabel*>("failure")->toolTip(); }
  static QModelIndex row(int i) { return list().model()->index(i, 0); }
  static QString tip(int i) { return row(i).data(Qt::ToolTipRole).toString(); }
  static void filter(const QString& text) { dock().findChild<QLineEdit*>()->setText(text); }

  /// The cached picture of a file of the test's folder, where there is one.
  std::string cached(const std::string& name, const char* kind = "normal") const {
    const QByteArray uri = uriOf(folder / name);
    const QByteArray md5 = QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex();
    return cache / ("thumbnails/" + std::string(kind) + "/" + md5.toStdString() + ".png");
  }

  TempFolder cache;
};

TEST_F(FolderDockTest, PicturesLandInTheDesktopsCacheAndAreUsedAgain) {
  namespace fs = std::filesystem;
  startWithDock("c.vxm");
  ASSERT_EQ(list().model()->rowCount(), 2);
  EXPECT_EQ(toBytes(list().currentIndex().data().toString()), "c.vxm");
  const std::string accented = "models/b%20 \xC3\xA9.vxm", file = cached(accented);
  ASSERT_TRUE(waitFor([&] { return tip(0).contains("18 triangles") && tip(1).contains("1 triangle"); }));
  const QImage picture(toQString(file));
  EXPECT_EQ(toBytes(picture.text("Thumb::URI")),
            "file://" + folder.path().string() + "/models/b%2520%20%C3%A9.vxm");
  EXPECT_EQ(picture.text("Thumb::Size").toULongLong(), fs::file_size(folder / accented));
  EXPECT_EQ(picture.size(), QSize(128, 128));
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
  EXPECT_EQ(fs::status(fs::path(file).parent_path()).permissions(), fs::perms(0700));
  EXPECT_NE(picture.pixel(64, 64), picture.pixel(0, 0)) << "the model is in the middle";

  // Another program's picture, of the file as it is, is shown; one of the file as it was is not.
  QImage theirs(128, 128, QImage::Format_RGB32);
  theirs.fill(Qt::red);
  for (const char* key : {"Thumb::URI", "Thumb::MTime"}) theirs.setText(key, picture.text(key));
  theirs.save(toQString(file));
  const auto colour = [&] {
    return row(0).data(Qt::DecorationRole).value<QPixmap>().toImage().pixelColor(64, 64);
  };
  folder.write("models/d.vxm", triangleFile());
  ASSERT_TRUE(waitFor([&] { return list().model()->rowCount() == 3 && colour() == Qt::red; }));
  fs::last_write_time(folder / accented, fs::last_write_time(folder / accented) + std::chrono::hours(1));
  fs::remove(folder / "models/d.vxm");
  EXPECT_TRUE(waitFor([&] { return list().model()->rowCount() == 2 && colour() != Qt::red; }));
}

TEST_F(FolderDockTest, FiltersByFiguresAndOpens) {
  startWithDock("c.vxm");
  filter("tris>1");
  ASSERT_TRUE(waitFor([] { return list().model()->rowCount() == 1; }));
  EXPECT_TRUE(waitFor([] { return line() == "1 of 2 models"; }));
  filter("missing:yes");
  ASSERT_TRUE(waitFor([] { return line() == "2 models"; })) << "neither finds its texture";
  QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, list().visualRect(row(0)).center());
  EXPECT_EQ(view().scene.modelPath, folder / "models/b%20 \xC3\xA9.vxm");
  list().setCurrentIndex(row(1));
  QTest::keyClick(&list(), Qt::Key_Return);
  EXPECT_EQ(view().scene.modelPath, folder / "models/c.vxm");
}

TEST_F(FolderDockTest, BadFilesAndFoldersAreALine) {
  folder.write("models/a.vxm", "bad");
  startWithDock("c.vxm");
  ASSERT_TRUE(waitFor([] { return tip(0).contains("too short for a model"); }));
  EXPECT_TRUE(failure().contains("1 file of the folder does not load"));
  EXPECT_TRUE(std::filesystem::exists(cached("models/a.vxm", "fail/facetbench-" FACET_VERSION)));
  std::filesystem::rename(folder / "models", folder / "elsewhere");
  ASSERT_TRUE(waitFor([] { return failure().contains("is gone"); }));
  EXPECT_EQ(list().model()->rowCount(), 0);
  EXPECT_TRUE(view().scene.model) << "the window goes on";
}

}  // namespace
}  // namespace facet
