#include "commands/command_table.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

#include "commands/shortcut_sheet.h"

namespace facet {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Field;
using testing::Not;

TEST(CommandTable, HasEveryCommandOnceAndEveryKeyForOne) {
  std::set<uint32_t> ids;
  std::map<uint8_t, uint32_t> keys;
  for (const Command& command : commandTable()) {
    EXPECT_TRUE(ids.insert(command.id).second) << command.id;
    for (const uint8_t key : command.keys) {
      if (key == 0) continue;
      EXPECT_TRUE(keys.emplace(key, command.id).second) << command.id << " key " << int(key);
    }
  }
  for (uint32_t id = 57400; id <= 57436; ++id) EXPECT_EQ(ids.contains(id), id != 57416 && id != 57417) << id;
}

TEST(CommandTable, MenusHoldEveryCommandOnce) {
  std::map<uint32_t, int> held;
  for (const Popup& popup : menuBar()) {
    EXPECT_NE(popup.entries.front(), ID_SEPARATOR) << popup.text;
    EXPECT_NE(popup.entries.back(), ID_SEPARATOR) << popup.text;
    for (const CommandId id : popup.entries)
      if (id != ID_SEPARATOR) ++held[id];
  }
  for (const Command& command : commandTable()) EXPECT_EQ(held[command.id], 1) << command.id;
  EXPECT_EQ(held.size(), commandTable().size());
}

TEST(CommandTable, AcceleratorsNeedExactlyTheirModifiers) {
  EXPECT_EQ(acceleratorCommand('S', FCONTROL), ID_FILE_SAVE_AS);
  EXPECT_EQ(acceleratorCommand('S', FCONTROL | FSHIFT), ID_SEPARATOR);
  EXPECT_EQ(acceleratorCommand('S', 0), ID_SEPARATOR);
  EXPECT_EQ(acceleratorCommand(VK_INSERT, FCONTROL), ID_EDIT_COPY);
  EXPECT_EQ(acceleratorCommand(VK_INSERT, FSHIFT), ID_EDIT_PASTE);
  EXPECT_EQ(acceleratorCommand(VK_BACK, FALT), ID_EDIT_UNDO);
}

TEST(ShortcutSheet, NamesAllKeysOfACommand) {
  const auto row = [](const char* keys, const char* effect) {
    return AllOf(Field(&Shortcut::keys, keys), Field(&Shortcut::effect, effect));
  };
  const auto sheet = shortcutSheet();
  EXPECT_THAT(sheet, Contains(row("F3, Ctrl+O", "Open")));
  EXPECT_THAT(sheet, Contains(row("Up Arrow, W", "Move Forward")));
  EXPECT_THAT(sheet, Contains(row("Keypad +, 8, +", "Increase time")));
  EXPECT_THAT(sheet, Contains(row("F12", "Center camera")));
  EXPECT_THAT(sheet, Not(Contains(Field(&Shortcut::effect, "Undo"))));
}

}  // namespace
}  // namespace facet
