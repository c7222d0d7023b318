#include <QClipboard>
#include <QLineEdit>
#include <QTreeView>

#include "app/window_test.h"
#include "commands/looking.h"

namespace facet {
namespace {

class LookingTest : public WindowTest {
 protected:
  /// A window that orbits about a model of one triangle, seen whole.
  void startOrbiting() {
    folder.write("a.vxm", vxmVisual(4, builtGrid(4)).bytes());
    ASSERT_TRUE(start(folder / "a.vxm"));
    key(Qt::Key_Space);
    key(Qt::Key_F);
    QTest::qWait(1);  // until it is painted
  }
  static QPoint middle() { return widget().rect().center(); }
  static std::string note() { return toBytes(frame().findChild<QLabel*>("note")->text()); }
};

TEST_F(LookingTest, DragsTurnMoveAndCountNothingElse) {
  startOrbiting();
  const Camera before = view().camera;
  QTest::mousePress(&widget(), Qt::LeftButton, {}, middle());
  QTest::mouseMove(&widget(), middle() + QPoint(50, 0));
  QTest::mouseRelease(&widget(), Qt::LeftButton, {}, widget().rect().bottomRight() + QPoint(20, 20));
  EXPECT_NEAR(view().camera.yaw, before.yaw + 20, 1e-3);
  EXPECT_EQ(view().camera.pivot, before.pivot);
  EXPECT_TRUE(view().scene.selected.empty()) << "a drag is no click";
  QTest::mouseMove(&widget(), middle());
  EXPECT_NEAR(view().camera.yaw, before.yaw + 20, 1e-3) << "a button that was released outside is released";
  QTest::mousePress(&widget(), Qt::RightButton, {}, middle());
  QTest::mouseMove(&widget(), middle() + QPoint(0, 30));
  QTest::mouseRelease(&widget(), Qt::RightButton, {}, middle());
  EXPECT_NE(view().camera.pivot, before.pivot);
}

TEST_F(LookingTest, ClicksSelectMeasureAndSetThePivot) {
  startOrbiting();
  QTest::mouseClick(&widget(), Qt::LeftButton, {}, middle());
  EXPECT_EQ(view().scene.selected, std::vector<uint32_t>{0});
  EXPECT_TRUE(note().starts_with("Mesh 0")) << note();
  QTest::mouseClick(&widget(), Qt::LeftButton, {}, QPoint(2, 2));
  EXPECT_TRUE(view().scene.selected.empty());
  const Vector3 pivot = view().camera.pivot;
  QTest::mouseDClick(&widget(), Qt::LeftButton, {}, middle() + QPoint(3, 3));
  EXPECT_NE(view().camera.pivot, pivot);
  key(Qt::Key_D, Qt::AltModifier);
  for (const int x : {-4, 4}) QTest::mouseClick(&widget(), Qt::LeftButton, {}, middle() + QPoint(x, 0));
  EXPECT_TRUE(note().starts_with("Distance: ")) << note();
  EXPECT_EQ(view().scene.measured.size(), 2u);
}

TEST_F(LookingTest, ModelDockFollowsTheViewAndLeadsIt) {
  startOrbiting();
  key(Qt::Key_M);
  auto* rows = frame().findChild<QWidget*>("modelDock")->findChild<QTreeView*>();
  ASSERT_TRUE(rows && rows->isVisible());
  const QModelIndex material = rows->model()->index(0, 0);
  EXPECT_EQ(rows->model()->rowCount(material), 1);
  QTest::mouseClick(&widget(), Qt::LeftButton, {}, middle());
  EXPECT_EQ(rows->selectionModel()->selectedRows(), QModelIndexList{rows->model()->index(0, 0, material)});
  rows->model()->setData(material, Qt::Unchecked, Qt::CheckStateRole);
  EXPECT_EQ(hiddenCount(viewer()), 1u);
  EXPECT_TRUE(view().scene.selected.empty());
  key(Qt::Key_Q, Qt::AltModifier);
  EXPECT_EQ(material.data(Qt::CheckStateRole), Qt::Checked);
  rows->setCurrentIndex(material);
  EXPECT_EQ(view().scene.selected, std::vector<uint32_t>{0});
  auto* search = frame().findChild<QWidget*>("modelDock")->findChild<QLineEdit*>();
  search->setText("nothing has this name");
  EXPECT_EQ(rows->model()->rowCount(), 0);
  widget().runCommand(fileNew);
  search->clear();
  EXPECT_EQ(rows->model()->rowCount(), 0);
}

TEST_F(LookingTest, TheClipboardTakesTheCameraAlong) {
  startOrbiting();
  key(Qt::Key_C, Qt::AltModifier);
  const Vector3 eye = view().camera.eyePosition;
  key(Qt::Key_3);
  EXPECT_NE(view().camera.eyePosition, eye);
  key(Qt::Key_L, Qt::AltModifier);
  EXPECT_EQ(view().camera.eyePosition, eye);
  QGuiApplication::clipboard()->setText("hello");
  key(Qt::Key_L, Qt::AltModifier);
  EXPECT_EQ(view().camera.eyePosition, eye);
  EXPECT_TRUE(note().starts_with("Clipboard: there is no camera in it")) << note();
}

}  // namespace
}  // namespace facet
