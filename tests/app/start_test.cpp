#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <clocale>

#include "app/command_line.h"
#include "app/pictures.h"
#include "app/window_test.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class StartTest : public WindowTest {};

TEST_F(StartTest, AsksForTheRendererAndFallsBackToTheReference) {
  QString chosen;
  ModalAnswers answers({[&](QWidget& modal) {
                          const QMessageBox& box = *qobject_cast<QMessageBox*>(&modal);
                          chosen = box.defaultButton()->text().remove('&');
                          EXPECT_EQ(box.icon(), QMessageBox::Question);
                          QTest::keyClick(&modal, Qt::Key_Return);
                        },
                        press(QMessageBox::Ok)});
  ASSERT_TRUE(start("", std::nullopt));
  EXPECT_EQ(chosen, "No");
  EXPECT_THAT(answers.texts, ElementsAre("Use Software renderer?", "Fallback to REF.SOFTVERT / D3DFMT_D32"));
  EXPECT_THAT(answers.titles, ElementsAre("p_d3d->CreateDevice()", "p_d3d->CreateDevice()"));
}

TEST_F(StartTest, ADeviceChosenBeforehandAsksNothingAndTellsOnlyOfAnother) {
  const std::vector<std::string> fallback = {"Fallback to REF.SOFTVERT / D3DFMT_D32"}, nothing;
  for (const auto& [device, told] : {std::pair(DeviceChoice::hal, fallback), {DeviceChoice::ref, nothing}}) {
    ModalAnswers answers;
    ASSERT_TRUE(start("", device));
    EXPECT_EQ(answers.texts, told);
  }
}

TEST_F(StartTest, TheWindowFitsTheScreenWithItsBorders) {
  ASSERT_TRUE(start());
  const QSize screen = frame().screen()->availableSize();
  EXPECT_LT(frame().width(), screen.width());
  EXPECT_LT(frame().height(), std::min(screen.height(), 721));
}

TEST_F(StartTest, TextsOverThePictureFollowNoFontOfTheDesktop) {
  const QFont before = QApplication::font();
  const auto painted = [] {
    QImage image(200, 20, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    paintOverlay(painter, {{0, 0, 0xFFFFFFFF, "POS: 000001.00"}});
    return image;
  };
  const QImage plain = painted();
  QApplication::setFont(QFont(before.family(), 20, QFont::Bold, true));
  EXPECT_EQ(painted(), plain);
  QApplication::setFont(before);
}

TEST_F(StartTest, NumbersFollowNoLocale) {
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C.UTF-8");
  EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
}

TEST_F(StartTest, TheModelIsDrawnWithItsTexts) {
  ASSERT_TRUE(start(folder.write("ship.vxm", triangleFile())));
  EXPECT_EQ(view().overlay.size(), 5u);
  const QImage picture = widget().grab().toImage();
  EXPECT_EQ(picture.pixelColor(picture.width() - 2, 2), QColor(127, 127, 127));
  size_t cyan = 0, white = 0;
  for (int y = 8; y < 76; ++y)
    for (int x = 8; x < 200; ++x) {
      const QColor color = picture.pixelColor(x, y);
      cyan += color.red() < 60 && color.green() > 200 && color.blue() > 200;
      white += color.red() > 220 && color.green() > 220 && color.blue() > 220;
    }
  EXPECT_GT(cyan, 20u);
  EXPECT_GT(white, 50u);
}

TEST_F(StartTest, ClosingWhileLoadedReleasesEverything) {
  ASSERT_TRUE(start(folder.write("ship.vxm", triangleFile())));
  const std::weak_ptr<IDirect3DDevice9> device = view().system.p_device;
  EXPECT_TRUE(frame().close());
  app().stop();
  EXPECT_TRUE(device.expired());
}

TEST_F(StartTest, TextureFoldersOfTheCommandLineStandForTheConfiguration) {
  std::filesystem::remove(folder / "VXMViewer.cfg");
  folder.write("art/stone.dds", ddsFile(4, 4));
  folder.write("ship.vxm", triangleFile());
  ModalAnswers answers;
  for (const char* base : {"art", "none"}) {
    ASSERT_TRUE(start({"--textures", base, "--no-search", "ship.vxm"}));
    EXPECT_EQ(view().scene.model->texturesFound, base == std::string("art") ? 1u : 0u);
  }
  EXPECT_THAT(answers.titles, testing::IsEmpty());
}

TEST(CommandLine, IsReadAsOneTextWithOptionsBefore) {
  const std::tuple<std::vector<std::string>, std::string, std::string> rows[] = {
      {{"/bin/v"}, "", "\"/bin/v\" "},
      {{"v", "a.vxm"}, "a.vxm", "\"v\" a.vxm"},
      {{"v", "--device", "ref", "my", "a.vxm"}, "my a.vxm", "\"v\" my a.vxm"},
      {{"v", "--device=hal", "--", "--help"}, "--help", "\"v\" --help"},
  };
  for (const auto& [arguments, model, whole] : rows) {
    const CommandLine line = parseCommandLine(arguments);
    EXPECT_EQ(line.model, model);
    EXPECT_EQ(line.whole, whole);
    EXPECT_FALSE(line.exitStatus) << line.answer;
  }
  for (const std::vector<std::string>& wrong :
       {std::vector<std::string>{"v", "--device"}, {"v", "--device", "sw", "a"}, {"v", "--fast"}}) {
    EXPECT_EQ(parseCommandLine(wrong).exitStatus, 2);
    EXPECT_THAT(parseCommandLine(wrong).answer, HasSubstr(wrong[1]));
  }
  const CommandLine searching =
      parseCommandLine({"v", "--textures", "a", "--textures=b", "--no-search", "c"});
  EXPECT_THAT(searching.textures, ElementsAre("a", "b"));
  EXPECT_FALSE(searching.searchNear);
  EXPECT_EQ(searching.model, "c");
  EXPECT_EQ(parseCommandLine({"v", "--device=ref"}).device, DeviceChoice::ref);
  EXPECT_EQ(parseCommandLine({"v", "--help"}).exitStatus, 0);
  EXPECT_THAT(parseCommandLine({"v", "--help"}).answer, HasSubstr("{hal,ref}"));
}

}  // namespace
}  // namespace facet
