#include "commands/commands.h"

#include <gmock/gmock.h>

#include <set>

#include "commands/recorded_viewer.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

void press(Viewer& viewer, std::initializer_list<uint32_t> keys) {
  for (const uint32_t key : keys) OnKeyDown(viewer, key);
}

TEST(CommandTable, HasEveryCommandOnceAndEveryKeyForOne) {
  std::multiset<uint32_t> ids, keys;
  for (const Menu& menu : commandMenus()) {
    EXPECT_FALSE(menu.commands.front().menuText.empty() || menu.commands.back().menuText.empty())
        << menu.text;
    for (const Command& command : menu.commands) {
      if (command.id != 0) ids.insert(command.id);
      for (const uint8_t key : command.keys)
        if (key != 0) keys.insert(key);
      for (const Accelerator& accelerator : command.accelerators)
        if (accelerator.key != 0) keys.insert(accelerator.modifiers << 8 | accelerator.key);
    }
  }
  EXPECT_EQ(ids.size(), std::set(ids.begin(), ids.end()).size());
  EXPECT_EQ(keys.size(), std::set(keys.begin(), keys.end()).size());
  for (uint32_t id = 57400; id <= 57436; ++id) EXPECT_EQ(ids.count(id), id != 57416 && id != 57417) << id;
}

TEST(CommandTable, AcceleratorsNeedExactlyTheirModifiers) {
  ASSERT_TRUE(commandOfAccelerator('S', FCONTROL));
  EXPECT_EQ(commandOfAccelerator('S', FCONTROL)->id, 57604);
  EXPECT_EQ(commandOfAccelerator(VK_INSERT, FSHIFT)->id, 57637);
  for (const uint32_t modifiers : {0, FCONTROL | FSHIFT})
    EXPECT_EQ(commandOfAccelerator('S', modifiers), nullptr);
  EXPECT_EQ(commandOfAccelerator(0, 0), nullptr);
}

TEST(ShortcutSheet, NamesAllKeysOfACommand) {
  std::string sheet;
  for (const Shortcut& shortcut : shortcutSheet()) sheet += shortcut.keys + " - " + shortcut.effect + "\n";
  EXPECT_EQ(sheet, golden("shortcuts.txt"));
}

TEST(Commands, AreLeftToTheWindowWhenTheViewHasNoneOfThem) {
  RecordedViewer recorded;
  for (const uint32_t id : {0u, 57399u, 57416u, 57417u, 57437u, 57603u, 57607u, 57635u, 57664u, 59392u})
    EXPECT_FALSE(OnCommand(recorded.viewer, id)) << id;
  EXPECT_EQ(recorded.changes(), "");
  EXPECT_EQ(recorded.frames(), 0u);
}

/// What a key changes from the start, and how many frames it draws.
std::string effectOf(uint32_t key) {
  RecordedViewer recorded;
  OnKeyDown(recorded.viewer, key);
  return recorded.changes() + (recorded.frames() == 1 ? "; 1 frame" : "; no frame");
}

TEST(Keys, ChangeTheirSetting) {
  std::string effects;
  for (const Menu& menu : commandMenus())
    for (const Command& command : menu.commands) {
      if (command.keys[0] == 0) continue;
      const std::string effect = effectOf(command.keys[0]);
      for (const uint8_t key : command.keys) {
        if (key == 0) continue;
        effects += formatted("%02X ", key);
        EXPECT_EQ(effectOf(key), effect) << int(key);
      }
      effects += "- " + effect + "\n";
    }
  EXPECT_EQ(effects, golden("keys.txt"));
  for (const uint32_t none :
       {0u, 0x0Du, 0x1Bu, 0x20u, uint32_t{'1'}, uint32_t{'g'}, 0x65u, 0x79u, 0x100u + 'G'})
    EXPECT_EQ(effectOf(none), "; no frame") << none;
}

TEST(Keys, StepThroughCycles) {
  RecordedViewer recorded;
  ModelView& view = recorded.viewer.view;
  const auto walk = [&](uint32_t key, int steps, auto value) {
    std::vector<double> values;
    for (int i = 0; i < steps; ++i) {
      OnKeyDown(recorded.viewer, key);
      values.push_back(value());
    }
    return values;
  };
  EXPECT_THAT(walk(VK_F5, 8, [&] { return view.camera.fovDegrees; }),
              ElementsAre(72.5, 77.5, 82.5, 87.5, 92.5, 97.5, 47.5, 52.5));
  EXPECT_THAT(walk(VK_TAB, 4, [&] { return view.settings.renderMode; }), ElementsAre(1, 2, 0, 1));
  EXPECT_THAT(walk('L', 4, [&] { return view.settings.lightMode; }), ElementsAre(1, 2, 0, 1));
  EXPECT_THAT(walk(VK_TAB, 1, [&] { return view.settings.lightMode; }), ElementsAre(0));
  EXPECT_THAT(walk('9', 3, [&] { return view.settings.envTime; }), ElementsAre(6, 18, 6));
  view.settings.envTime = 22;
  EXPECT_THAT(walk('8', 4, [&] { return view.settings.envTime; }), ElementsAre(23, 24, 0, 1));
  EXPECT_THAT(walk('7', 3, [&] { return view.settings.envTime; }), ElementsAre(0, 23, 22));
  view.settings.backgroundIndex = 20;
  EXPECT_THAT(walk('B', 3, [&] { return view.settings.backgroundIndex; }), ElementsAre(21, 0, 1));
  EXPECT_THAT(walk(VK_F6, 3, [&] { return view.settings.smoothShading; }), ElementsAre(1, 0, 1));
  recorded.desktop.status.clear();
  walk('6', 6, [] { return 0; });
  walk('5', 2, [] { return 0; });
  EXPECT_THAT(recorded.desktop.status,
              ElementsAre("> Aspect ratio: 3:2", "> Aspect ratio: 16:10", "> Aspect ratio: 5:3",
                          "> Aspect ratio: 16:9", "> Aspect ratio: 5:4", "> Aspect ratio: 4:3",
                          "> Aspect ratio: 5:4", "> Aspect ratio: 16:9"));
}

TEST(Keys, RebuildTheProjectionOfTheCurrentSize) {
  for (const uint32_t key : {uint32_t{VK_F5}, uint32_t{'5'}, uint32_t{'6'}, uint32_t{VK_BACK}}) {
    RecordedViewer recorded;
    OnKeyDown(recorded.viewer, key);
    EXPECT_NE(recorded.device().state.projection.m, identityMatrix.m) << key;
    EXPECT_EQ(recorded.viewer.view.clientWidth, 640);
  }
}

TEST(Keys, StepFilterAndLightOfATexturedModel) {
  RecordedViewer recorded;
  recorded.loadFrom({"a.vxm"}, 0);
  const auto& state = recorded.device().state;
  const D3DTEXTUREOP before = state.colorOp;
  press(recorded.viewer, {VK_F9, 'L'});  // wireframe
  EXPECT_THAT(recorded.desktop.status, IsEmpty());
  EXPECT_EQ(state.colorOp, before);
  press(recorded.viewer, {VK_TAB, VK_TAB});
  for (int i = 0; i < 8; ++i) OnKeyDown(recorded.viewer, VK_F9);
  EXPECT_THAT(recorded.desktop.status,
              ElementsAre("> Filtering: LINEAR/LINEAR", "> Filtering: POINT/POINT/POINT",
                          "> Filtering: POINT/POINT/LINEAR", "> Filtering: LINEAR/LINEAR/POINT",
                          "> Filtering: LINEAR/LINEAR/LINEAR", "> Filtering: ANISOTROPIC/ANISOTROPIC/POINT",
                          "> Filtering: ANISOTROPIC/ANISOTROPIC/LINEAR", "> Filtering: POINT/POINT"));
  EXPECT_EQ(state.filter, D3DTEXF_POINT);
  EXPECT_EQ(state.mipFilter, D3DTEXF_NONE);
  for (const D3DTEXTUREOP lit : {D3DTOP_MODULATE, D3DTOP_MODULATE, D3DTOP_SELECTARG1}) {
    OnKeyDown(recorded.viewer, 'L');
    EXPECT_EQ(state.colorOp, lit);
  }
  EXPECT_EQ(recorded.frames(), 15u);
}

TEST(Keys, ResetPutsBackAllButModesAndColour) {
  RecordedViewer recorded;
  ModelView& view = recorded.viewer.view;
  const auto start = settings(recorded.viewer);
  press(recorded.viewer, {VK_TAB, VK_TAB, 'L', 'G', 'N', VK_F7, '8', 'B', 'B', '6', VK_F6, VK_DIVIDE, 'W',
                          VK_SHIFT, VK_DELETE, VK_HOME, 'A', VK_INSERT});
  view.settings.filterMode = 3;
  view.camera.eyePosition = {1, 2, 3};
  OnKeyDown(recorded.viewer, VK_BACK);
  recorded.viewer.view.scene.buffersBuilt = true;
  EXPECT_EQ(
      recorded.changes(),
      "aspectIndex 1 > 2, clearColor 0.4980 0.4980 0.4980 1 > 0.4980 0.4980 1.0000 0, filterMode 0 > 3, "
      "fovDegrees 67.5 > 47.5, gamma 1 > 1.1, renderMode 0 > 2, smoothShading 0 > 1");
  OnKeyDown(recorded.viewer, 'B');
  EXPECT_EQ(view.settings.backgroundIndex, 3);
}

TEST(Keys, DumpStatisticsAndDrawUnlessTheFileFails) {
  RecordedViewer recorded;
  recorded.loadFrom({"a.vxm"}, 0);
  OnKeyDown(recorded.viewer, 'T');
  EXPECT_THAT(recorded.desktop.boxes,
              ElementsAre(RecordingDesktop::Box{"object.log created", "Statistics", 0x1040}));
  EXPECT_EQ(recorded.frames(), 1u);
  EXPECT_EQ(readWholeFile("object.log"), statisticsLog(*recorded.viewer.view.scene.model, {}));
  std::filesystem::remove("object.log");
  std::filesystem::create_directory("object.log");
  OnKeyDown(recorded.viewer, 'T');
  EXPECT_EQ(recorded.frames(), 1u);
  EXPECT_THAT(recorded.desktop.boxes, SizeIs(1));
}

TEST(Commands, ActOnTheLoadedModelOrAskTheDesktop) {
  constexpr uint32_t properties = 57429, previous = 57431;
  RecordedViewer recorded;
  OnCommand(recorded.viewer, properties);
  EXPECT_THAT(recorded.desktop.listsAndTrees, IsEmpty());
  recorded.loadFrom({"a.vxm", "b.vxm"}, 0);
  OnCommand(recorded.viewer, properties);
  EXPECT_THAT(recorded.desktop.listsAndTrees, SizeIs(1));
  EXPECT_EQ(recorded.frames(), 0u);
  OnCommand(recorded.viewer, previous);  // there is none before the first
  EXPECT_EQ(recorded.frames(), 1u);
  EXPECT_THAT(recorded.desktop.titles, IsEmpty());
  press(recorded.viewer, {VK_F12, VK_F11, VK_F11});
  EXPECT_EQ(recorded.viewer.view.camera.eyePosition, recorded.viewer.view.scene.model->center);
  EXPECT_THAT(recorded.desktop.windowCalls,
              ElementsAre("hide bars", "undecorate", "maximise", "show bars", "decorate", "restore"));
}

TEST(Frames, CountNoRebuildOfBuffersAsTheirTime) {
  RecordedViewer recorded;
  recorded.loadFrom({"a.vxm"}, 0);
  ModelView& view = recorded.viewer.view;
  view.counter = {100, [&]() -> int64_t { return view.scene.buffersBuilt ? 50 : 0; }};
  OnKeyDown(recorded.viewer, VK_TAB);
  EXPECT_EQ(view.overlay.front().text, "000100.00 FPS, 000010.00 ms");
}

}  // namespace
}  // namespace facet
