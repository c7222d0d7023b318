#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>

#include "app/native.h"
#include "app/window_test.h"

namespace facet {
namespace {

struct QtKey {
  uint8_t code;
  int key;
  Qt::KeyboardModifiers modifiers = {};
};
const QtKey namedKeys[] = {
    {VK_BACK, Qt::Key_Backspace},
    {VK_TAB, Qt::Key_Tab},
    {VK_SHIFT, Qt::Key_Shift},
    {VK_CONTROL, Qt::Key_Control},
    {VK_PRIOR, Qt::Key_PageUp},
    {VK_INSERT, Qt::Key_Insert},
    {VK_NEXT, Qt::Key_PageDown},
    {VK_END, Qt::Key_End},
    {VK_HOME, Qt::Key_Home},
    {VK_LEFT, Qt::Key_Left},
    {VK_UP, Qt::Key_Up},
    {VK_RIGHT, Qt::Key_Right},
    {VK_DOWN, Qt::Key_Down},
    {VK_DELETE, Qt::Key_Delete},
    {VK_MULTIPLY, Qt::Key_Asterisk, Qt::KeypadModifier},
    {VK_ADD, Qt::Key_Plus, Qt::KeypadModifier},
    {VK_SUBTRACT, Qt::Key_Minus, Qt::KeypadModifier},
    {VK_DIVIDE, Qt::Key_Slash, Qt::KeypadModifier},
    {VK_OEM_PLUS, Qt::Key_Equal},
    {VK_OEM_MINUS, Qt::Key_Minus},
    {VK_OEM_2, Qt::Key_Slash},
};

QtKey qtKey(uint8_t code) {
  const auto* named = std::ranges::find(namedKeys, code, &QtKey::code);
  if (named != std::end(namedKeys)) return *named;
  if (code >= VK_F1 && code <= VK_F12) return {code, Qt::Key_F1 + code - VK_F1};
  return {code, code};
}

using State = std::map<std::string, std::string>;

class CommandsTest : public WindowTest {
 protected:
  /// A window with the middle of three models loaded, and what its settings become.
  void startWithModel() {
    for (const char* name : {"a.vxm", "b.vxm", "c.vxm"}) folder.write(name, triangleFile());
    ASSERT_TRUE(start(folder / "b.vxm"));
    view().settings.renderMode = renderTextured;
    view().scene.fileIndex = 1;
  }

  /// The settings after each command in turn, carried out by `send`.
  std::map<unsigned, State> play(const std::vector<const Command*>& commands,
                                 const std::function<void(const Command&)>& send) {
    startWithModel();
    ModalAnswers answers;
    std::map<unsigned, State> states;
    for (const Command* command : commands) {
      view().settings.renderMode = renderTextured;  // so that filters can be changed
      send(*command);
      states[command->id] = settings(viewer());
      states[command->id]["title"] = title();
      states[command->id]["boxes"] = std::to_string(answers.titles.size());
    }
    return states;
  }

  static void clickMenu(unsigned id) {
    for (QMenu* menu : frame().findChildren<QMenu*>()) {
      if (!menu->actions().contains(frame().action(id))) continue;
      menu->popup(QPoint(0, 0));
      QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(frame().action(id)).center());
    }
  }

  static void clickToolbar(unsigned id) {
    auto* bar = frame().findChild<QToolBar*>();
    QTest::mouseClick(bar->widgetForAction(frame().action(id)), Qt::LeftButton);
  }
};

TEST_F(CommandsTest, DoTheSameByKeyMenuAndToolbar) {
  std::vector<const Command*> commands;
  for (const Menu& menu : commandMenus())
    for (const Command& command : menu.commands)
      if (command.id != 0 && command.keys[0] != 0) commands.push_back(&command);
  ASSERT_GT(commands.size(), 30u);

  const auto byKey = play(commands, [&](const Command& command) {
    const QtKey sent = qtKey(command.keys[0]);
    key(sent.key, sent.modifiers);
  });
  const auto byMenu = play(commands, [](const Command& command) { clickMenu(command.id); });
  const auto byToolbar = play(commands, [](const Command& command) {
    command.button.place != 0 ? clickToolbar(command.id) : frame().runCommand(command.id);
  });
  for (const Command* command : commands) {
    EXPECT_EQ(byMenu.at(command->id), byKey.at(command->id)) << command->menuText;
    EXPECT_EQ(byToolbar.at(command->id), byKey.at(command->id)) << command->menuText;
  }
}

TEST_F(CommandsTest, WithoutKeysRunFromMenuAndToolbar) {
  startWithModel();
  ModalAnswers answers;
  for (const auto click : {clickMenu, clickToolbar}) {
    widget().openPath(folder / "b.vxm");
    click(properties);
    click(ID_APP_ABOUT);
    click(fileNew);
    EXPECT_FALSE(view().scene.model);
  }
  clickMenu(ID_HELP_KEYS);
  EXPECT_THAT(answers.titles,
              testing::ElementsAre("VXMViewer - ModelData", "About VXMViewer", "VXMViewer - ModelData",
                                   "About VXMViewer", "Keyboard and mouse"));
  clickMenu(ID_APP_EXIT);
  EXPECT_FALSE(frame().isVisible());
}

TEST(VirtualKeys, AreFoundForEveryKeyOfTheTable) {
  for (const Menu& menu : commandMenus())
    for (const Command& command : menu.commands)
      for (const uint8_t code : command.keys) {
        if (code == 0) continue;
        const QtKey sent = qtKey(code);
        EXPECT_EQ(virtualKey(QKeyEvent(QEvent::KeyPress, sent.key, sent.modifiers)), code);
      }
  EXPECT_EQ(virtualKey(QKeyEvent(QEvent::KeyPress, Qt::Key_5, Qt::KeypadModifier)), 0x65u);
  EXPECT_EQ(virtualKey(QKeyEvent(QEvent::KeyPress, Qt::Key_CapsLock, {})), std::nullopt);
}

TEST_F(CommandsTest, AcceleratorsNeverReachTheKeysOfTheView) {
  startWithModel();
  // Shift and Ctrl are pressed too, and move the eye.
  const auto now = [] {
    State state = settings(viewer());
    state.erase("eye");
    return state;
  };
  const State before = now();
  for (const int control : {Qt::Key_C, Qt::Key_V, Qt::Key_X, Qt::Key_Z, Qt::Key_Insert, Qt::Key_P})
    key(control, Qt::ControlModifier);
  for (const int shift : {Qt::Key_Delete, Qt::Key_Insert}) key(shift, Qt::ShiftModifier);
  for (const int alt : {Qt::Key_Backspace, Qt::Key_G}) key(alt, Qt::AltModifier);
  EXPECT_EQ(now(), before);
  key(Qt::Key_N, Qt::ControlModifier);
  EXPECT_FALSE(view().scene.model);
  EXPECT_EQ(title(), emptyTitle);
}

TEST_F(CommandsTest, HeldShiftAndCtrlRepeat) {
  startWithModel();
  QTest::keyPress(&widget(), Qt::Key_Shift);
  const float once = view().camera.eyePosition.y;
  EXPECT_FLOAT_EQ(once, 3.1f);
  EXPECT_TRUE(QTest::qWaitFor([] { return view().camera.eyePosition.y > 3.35f; }, 3000));
  QTest::keyRelease(&widget(), Qt::Key_Shift);
  const float released = view().camera.eyePosition.y;
  QTest::qWait(100);
  EXPECT_EQ(view().camera.eyePosition.y, released);
}

TEST_F(CommandsTest, BarsComeAndGo) {
  startWithModel();
  auto* bar = frame().findChild<QToolBar*>();
  clickMenu(ID_VIEW_TOOLBAR);
  EXPECT_FALSE(bar->isVisible());
  clickMenu(ID_VIEW_STATUS_BAR);
  EXPECT_FALSE(status().isVisible());
  clickMenu(ID_VIEW_TOOLBAR);
  EXPECT_TRUE(bar->isVisible());
  EXPECT_TRUE(frame().action(ID_VIEW_TOOLBAR)->isCheckable());

  key(Qt::Key_F11);
  EXPECT_TRUE(frame().isFullScreen());
  EXPECT_FALSE(bar->isVisible());
  EXPECT_TRUE(frame().menuBar()->isVisible());
  key(Qt::Key_F11);
  EXPECT_FALSE(frame().isFullScreen());
  EXPECT_FALSE(frame().isMaximized());
  EXPECT_TRUE(bar->isVisible());
  EXPECT_TRUE(status().isVisible());
}

TEST_F(CommandsTest, PromptsShowWhileAnEntryIsHighlighted) {
  startWithModel();
  QMenu* edit = frame().menuBar()->actions()[1]->menu();
  edit->popup(QPoint(0, 0));
  edit->setActiveAction(frame().action(changeFov));
  EXPECT_EQ(status().message(), "Change screen FOV");
  edit->hide();
  EXPECT_EQ(status().message(), "Ready");
  key(Qt::Key_6);
  EXPECT_EQ(status().message(), "> Aspect ratio: 3:2");
}

TEST_F(CommandsTest, ToolbarHasItsEntriesWithPicturesAndTips) {
  startWithModel();
  const auto actions = frame().findChild<QToolBar*>()->actions();
  EXPECT_EQ(actions.size(), 32);
  for (const QAction* action : actions) {
    if (action->isSeparator()) continue;
    EXPECT_FALSE(action->toolTip().isEmpty());
    EXPECT_TRUE(action->isEnabled());
    const QImage icon = action->icon().pixmap(16, 16).toImage();
    int covered = 0;
    for (int i = 0; i < 16 * 16; ++i) covered += qAlpha(icon.pixel(i % 16, i / 16)) > 128;
    EXPECT_GT(covered, 10) << action->toolTip().toStdString();
  }
}

TEST_F(CommandsTest, IconsFollowThePaletteAndPicturesTheGamma) {
  startWithModel();
  for (const Qt::GlobalColor color : {Qt::white, Qt::black}) {
    QPalette palette;
    palette.setColor(QPalette::WindowText, color);
    qApp->setPalette(palette);
    const QImage icon = frame().action(fileNew)->icon().pixmap(16, 16).toImage();
    bool found = false;
    for (int i = 0; i < 16 * 16; ++i) found |= icon.pixelColor(i % 16, i / 16) == QColor(color);
    EXPECT_TRUE(found) << color;
  }
  qApp->setPalette({});
  const auto background = [] { return widget().grab().toImage().pixelColor(400, 2).red(); };
  EXPECT_EQ(background(), 127);
  key(Qt::Key_Slash);
  EXPECT_EQ(background(), 135);  // 255 * (127 / 255) ^ (1 / 1.1)
}

TEST_F(CommandsTest, MouseTurnsAndMovesTheCamera) {
  startWithModel();
  const auto drag = [](Qt::MouseButton button) {
    QTest::mousePress(&widget(), button, {}, QPoint(100, 100));
    QTest::mouseMove(&widget(), QPoint(120, 130));
    QTest::mouseRelease(&widget(), button, {}, QPoint(120, 130));
  };
  drag(Qt::LeftButton);
  EXPECT_FLOAT_EQ(view().camera.yaw, -2);
  EXPECT_FLOAT_EQ(view().camera.pitch, -3);
  view().camera.yaw = view().camera.pitch = 0;
  drag(Qt::RightButton);
  EXPECT_NEAR(view().camera.eyePosition.z, -10.6, 1e-5);
  drag(Qt::MiddleButton);
  EXPECT_NEAR(view().camera.eyePosition.z, -10.0, 1e-5);
  EXPECT_NEAR(view().camera.eyePosition.x, -0.4, 1e-5);
  QWheelEvent wheel({10, 10}, widget().mapToGlobal(QPointF(10, 10)), {}, {0, 240}, {}, {}, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(&widget(), &wheel);
  EXPECT_NEAR(view().camera.eyePosition.z, -10.2, 1e-5);

  // A button that is released outside stays held.
  const float yaw = view().camera.yaw;
  QTest::mousePress(&widget(), Qt::LeftButton, {}, QPoint(5, 5));
  QTest::mouseMove(&widget(), QPoint(-50, 5));
  QTest::mouseRelease(&widget(), Qt::LeftButton, {}, QPoint(-50, 5));
  EXPECT_EQ(view().camera.yaw, yaw);
  EXPECT_TRUE(view().mouse.left.down);
}

}  // namespace
}  // namespace facet
