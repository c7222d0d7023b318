#pragma once

#include <string_view>

namespace facet {

/// Flags of a message box: Windows' own names and values.
enum MessageBoxFlags : unsigned {
  MB_OK = 0x0,
  MB_ICONHAND = 0x10,
  MB_ICONEXCLAMATION = 0x30,
  MB_ICONINFORMATION = 0x40,
  MB_SYSTEMMODAL = 0x1000,
};

/// What the program asks of the desktop it runs on. One object serves the whole process; a window, a terminal
/// and each test bring their own. An implementation that loads on several threads answers on all of them.
class Desktop {
 public:
  virtual ~Desktop() = default;

  /// Shows a box and returns when it is dismissed.
  virtual void messageBox(std::string_view text, std::string_view caption, unsigned flags) = 0;

  /// Sets the text of the status line's message pane and repaints it at once.
  virtual void setStatusText(std::string_view text) = 0;
};

/// The process's desktop, none before setDesktop.
Desktop* currentDesktop();

/// Sets the process's desktop (not owned) and returns the one before.
Desktop* setDesktop(Desktop* desktop);

/// Shows a box on the current desktop; without one, does nothing.
void messageBox(std::string_view text, std::string_view caption, unsigned flags);

/// Formats like printf and shows the text on the status line at once; without a desktop, does nothing.
/// Texts longer than 255 bytes are cut there.
[[gnu::format(printf, 1, 2)]] void statusPrint(const char* format, ...);

}  // namespace facet
