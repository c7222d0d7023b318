#pragma once

#include "commands/command_table.h"
#include "commands/viewer.h"

// Every command of the view runs through one handler of keys: a command sends its key, so that it does the
// same from keyboard, menu and toolbar.

namespace facet {

/// A key went down, or repeats while it is held. Carries out its command and draws a frame where the command
/// changes the picture. Keys without a command do nothing. Neither accelerators nor keys held with Alt come
/// here; other modifiers do not matter.
void OnKeyDown(Viewer& viewer, uint32_t key);

/// A command 57400 .. 57436 from menu or toolbar.
void OnViewCommand(Viewer& viewer, uint32_t id);

/// Offers any command to the view: its own and those of the File menu that it handles. False when the command
/// is left to the main window and the program.
bool OnCommand(Viewer& viewer, uint32_t id);

}  // namespace facet
