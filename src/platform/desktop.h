#pragma once

#include <string_view>

namespace facet {

/// Flags of a message box: Windows' own names and values.
enum MessageBoxFlags : unsigned {
  MB_OK = 0x0,
  MB_YESNO = 0x4,
  MB_ICONHAND = 0x10,
  MB_ICONQUESTION = 0x20,
  MB_ICONEXCLAMATION = 0x30,
  MB_ICONINFORMATION = 0x40,
  MB_DEFBUTTON2 = 0x100,
  MB_SYSTEMMODAL = 0x1000,
};

/// What a message box was answered with.
enum MessageBoxAnswer : int { IDOK = 1, IDYES = 6, IDNO = 7 };

/// What the program asks of the desktop it runs on. One object serves the whole process; a window, a terminal
/// and each test bring their own. An implementation that loads on several threads answers on all of them.
class Desktop {
 public:
  virtual ~Desktop() = default;

  /// Shows a box and returns the answer when it is dismissed.
  virtual MessageBoxAnswer messageBox(std::string_view text, std::string_view caption, unsigned flags) = 0;

  /// Sets the text of the status line's message pane and repaints it at once.
  virtual void setStatusText(std::string_view text) = 0;

  /// Sets the main window's title.
  virtual void setWindowTitle(std::string_view text) = 0;
};

/// The process's desktop, none before setDesktop.
Desktop* currentDesktop();

/// Sets the process's desktop (not owned) and returns the one before.
Desktop* setDesktop(Desktop* desktop);

/// Shows a box on the current desktop; without one, nothing is shown and a question is answered with no.
MessageBoxAnswer messageBox(std::string_view text, std::string_view caption, unsigned flags);

/// Sets the main window's title; without a desktop, does nothing.
void setWindowTitle(std::string_view text);

/// Formats like printf and shows the text on the status line at once; without a desktop, does nothing.
/// Texts longer than 255 bytes are cut there.
[[gnu::format(printf, 1, 2)]] void statusPrint(const char* format, ...);

}  // namespace facet
