#include <QDropEvent>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QTreeWidget>
#include <QUrl>

#include "app/window_test.h"
#include "export/export.h"

namespace facet {
namespace {

using testing::ElementsAre;

class DialogsTest : public WindowTest {};

TEST_F(DialogsTest, OpenTakesAFileAndRemembersItsFolder) {
  const std::string path = folder.write("models/ship.vxm", triangleFile());
  ASSERT_TRUE(start());
  EXPECT_EQ(title(), emptyTitle);
  std::string offered;
  ModalAnswers answers({chooseFile(path), [&](QWidget& modal) {
                          offered = toBytes(qobject_cast<QFileDialog*>(&modal)->directory().absolutePath());
                          modal.close();
                        }});
  key(Qt::Key_F3);
  EXPECT_EQ(title(), titleOf(path));
  EXPECT_EQ(status().message(), "Loading complete");
  const Model* loaded = view().scene.model.get();
  key(Qt::Key_O, Qt::ControlModifier);
  EXPECT_EQ(view().scene.model.get(), loaded);
  EXPECT_THAT(answers.titles, ElementsAre("Load model file", "Load model file"));
  EXPECT_EQ(offered, std::filesystem::canonical(folder.path() / "models").string());
  EXPECT_EQ(std::filesystem::current_path(), std::filesystem::canonical(folder.path()));
}

TEST_F(DialogsTest, OpenTakesANameAsItIsBeforeItAddsTheExtension) {
  const std::string extended = folder.write("ship.vxm", triangleFile()), bare = folder / "ship";
  ASSERT_TRUE(start());
  for (const std::string& expected : {extended, bare}) {
    ModalAnswers answers({chooseFile(bare, 6)});
    key(Qt::Key_F3);
    EXPECT_EQ(title(), titleOf(expected));
    EXPECT_EQ(answers.titles.size(), 1u);
    folder.write("ship", triangleFile());
  }
}

TEST_F(DialogsTest, SaveAsWritesEveryType) {
  ASSERT_TRUE(start(folder.write("ship.vxm", triangleFile())));
  const auto formats = saveDialogFormats();
  for (size_t i = 0; i < formats.size(); ++i) {
    ModalAnswers answers(
        {chooseFile(folder / "saved", static_cast<int>(i)), press(QMessageBox::Yes), press(QMessageBox::Ok)});
    key(Qt::Key_F2);
    const std::string path = folder / ("saved" + std::string(formats[i].pattern.substr(1)));
    EXPECT_TRUE(std::filesystem::exists(path)) << path;
    EXPECT_THAT(answers.titles, ElementsAre("Save model file", "Save model file", path));
  }
}

TEST_F(DialogsTest, SaveAsAsksBeforeItCreatesOrOverwrites) {
  ASSERT_TRUE(start(folder.write("ship.vxm", triangleFile())));
  const auto save = [](const std::string& path, QMessageBox::StandardButton button) {
    ModalAnswers answers({chooseFile(path), press(button)});
    key(Qt::Key_S, Qt::ControlModifier);
    return answers.texts;
  };
  save(folder / "new.obj", QMessageBox::No);
  EXPECT_FALSE(std::filesystem::exists(folder / "new.obj"));
  const std::string path = folder.write("ship.obj", "old");
  save(path, QMessageBox::No);
  EXPECT_EQ(readWholeFile(path), "old");
  EXPECT_THAT(save(path, QMessageBox::Yes), testing::Contains("Wavefront OBJ file created."));
  EXPECT_THAT(readWholeFile(path), testing::HasSubstr("\nf "));
}

QAbstractButton* buttonOf(QWidget& dialog, const char* text) {
  for (auto* button : dialog.findChildren<QAbstractButton*>())
    if (button->text().startsWith(text)) return button;
  return nullptr;
}

TEST_F(DialogsTest, TextureFoldersCountWithOkAndAreWrittenWhenTheyFit) {
  folder.write("art/stone.dds", ddsFile(4, 4));
  ASSERT_TRUE(start({"--no-search", folder.write("ship.vxm", triangleFile())}));
  const std::string before = title();
  bool told = false;
  ModalAnswers answers({[](QWidget& dialog) {
                          EXPECT_EQ(dialog.findChild<QListWidget*>("bases")->item(0)->text(), "textures/");
                          buttonOf(dialog, "&Add")->click();
                          buttonOf(dialog, "&Up")->click();
                          buttonOf(dialog, "&Write")->click();
                          buttonOf(dialog, "OK")->click();
                        },
                        chooseFile(folder / "art"),
                        [&](QWidget& dialog) {
                          buttonOf(dialog, "&Write")->click();
                          buttonOf(dialog, "OK")->click();
                          told = dialog.findChild<QLabel*>("problem")->isVisible();
                          dialog.close();
                        }});
  key(Qt::Key_O);
  const BasePaths chosen = {folder / "art/", "textures/"};
  EXPECT_EQ(view().scene.texturePath, chosen);
  EXPECT_EQ(readConfigurationFile("VXMViewer.cfg"), chosen);
  EXPECT_EQ(view().scene.model->texturesFound, 1u);
  EXPECT_EQ(title(), before);
  view().scene.texturePath = {std::string(300, 'a')};
  key(Qt::Key_O);
  EXPECT_TRUE(told);
  EXPECT_EQ(readConfigurationFile("VXMViewer.cfg"), chosen);
}

TEST_F(DialogsTest, ExportAsksForFormatAndFileAndSaysWhatWasWritten) {
  folder.write("textures/stone.dds", ddsFile(4, 4));
  ASSERT_TRUE(start(folder.write("ship.vxm", triangleFile())));
  const auto choose = [](QWidget& dialog) {
    auto* format = dialog.findChild<QComboBox*>("format");
    format->setCurrentIndex(format->findText("Wavefront", Qt::MatchStartsWith));
    buttonOf(dialog, "Choose")->click();
  };
  ModalAnswers answers({choose, chooseFile(folder / "out")});
  key(Qt::Key_E);
  EXPECT_THAT(status().message().toStdString(), testing::HasSubstr("out.obj, out.mtl and 1 picture written"));
  EXPECT_THAT(readWholeFile(folder / "out.mtl"), testing::HasSubstr("map_Kd textures/stone.png"));
}

TEST_F(DialogsTest, ModelDataShowsListAndTree) {
  ASSERT_TRUE(start(folder.write("ship.vxm", triangleFile())));
  const auto read = [](QWidget& modal) {
    const auto* list = modal.findChild<QListWidget*>("list");
    const auto* tree = modal.findChild<QTreeWidget*>("tree");
    ASSERT_TRUE(list && tree);
    EXPECT_EQ(list->count(), 9);
    EXPECT_EQ(list->item(2)->text().left(22), "#000 (stone, default) ");
    const QTreeWidgetItem* model = tree->topLevelItem(0)->child(0);
    EXPECT_TRUE(model->isExpanded());
    EXPECT_EQ(model->childCount(), 3);
    EXPECT_TRUE(model->child(0)->isExpanded());
    EXPECT_FALSE(model->child(1)->isExpanded());
    modal.close();
  };
  ModalAnswers answers({read, read});
  for (int i = 0; i < 2; ++i) frame().action(properties)->trigger();
  EXPECT_THAT(answers.titles, ElementsAre("VXMViewer - ModelData", "VXMViewer - ModelData"));
}

TEST_F(DialogsTest, DroppedFilesAndFoldersOpen) {
  const std::string file = folder.write("one/ship.vxm", triangleFile());
  folder.write("two/b.vxm", triangleFile());
  folder.write("two/a.vxm", "bad");
  ASSERT_TRUE(start());
  const auto drop = [](const std::string& path) {
    QMimeData data;
    const QByteArray encoded = QByteArray::fromStdString(path).toPercentEncoding("/");
    data.setUrls({QUrl("https://elsewhere.example"), QUrl::fromEncoded("file://" + encoded)});
    QDragEnterEvent enter({20, 20}, Qt::MoveAction | Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&frame(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
    QDropEvent event({20, 20}, Qt::MoveAction | Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&frame(), &event);
    EXPECT_EQ(event.dropAction(), Qt::CopyAction);
    QTest::qWait(10);
  };
  drop(file);
  EXPECT_EQ(title(), titleOf(file));
  drop(folder / "two");
  EXPECT_EQ(title(), titleOf("b.vxm"));
  const std::string latin1 = folder.write("100%/n\xE9.vxm", triangleFile());
  drop(latin1);
  EXPECT_EQ(view().scene.modelPath, latin1);
  EXPECT_TRUE(view().scene.model);
}

}  // namespace
}  // namespace facet
