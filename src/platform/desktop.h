#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace facet {

class Progress;

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

/// Flags of a file dialog: Windows' own names and values. A dialog that the platform brings along may ask in
/// its own way.
enum FileDialogFlags : unsigned {
  OFN_OVERWRITEPROMPT = 0x2,  ///< asks before an existing file is chosen to save to
  OFN_HIDEREADONLY = 0x4,     ///< no dialog here has the box that this hides
  OFN_CREATEPROMPT = 0x2000,  ///< asks before a new file is chosen to save to
};

/// One row of a file dialog's types. A pattern lists wildcards divided by semicolons; letter case does not
/// count, and "*.*" means every file.
struct FileType {
  std::string_view description, pattern;
};

struct FileDialogRequest {
  std::string title;
  std::vector<FileType> types;   ///< the first is selected
  std::string initialDirectory;  ///< empty: the dialog chooses
  std::string defaultExtension;  ///< without its dot; for a name without extension that is no file to open
  unsigned flags = 0;            ///< of FileDialogFlags
};

struct FileDialogResult {
  std::string path;          ///< absolute
  uint32_t filterIndex = 1;  ///< the chosen row of the types, from 1
};

/// The display's answer to the channel values 0 .. 255, each from 0 to 65535.
struct GammaRamp {
  std::array<uint16_t, 256> red{}, green{}, blue{};
  bool operator==(const GammaRamp&) const = default;
};

struct TextTree {
  std::string text;
  bool expanded = false;
  std::vector<TextTree> children;
};

/// What a dialog of a list above a tree shows; "OK" and "Cancel" close it.
struct ListAndTree {
  std::string title;
  std::vector<std::string> list;
  TextTree tree;  ///< its root is shown
};

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

  // What follows is asked for by the commands of a window; a desktop without one does nothing.

  /// Ask for a file; none when the dialog is cancelled. Both are modal.
  virtual std::optional<FileDialogResult> openFileDialog(const FileDialogRequest&) { return {}; }
  virtual std::optional<FileDialogResult> saveFileDialog(const FileDialogRequest&) { return {}; }

  /// Shows the dialog and returns when it is dismissed.
  virtual void showListAndTree(const ListAndTree&) {}

  /// The cursor says that the program is busy.
  virtual void setBusy(bool) {}

  /// Does a work that may take long, and returns when it is done. Where there is a window, another thread
  /// does it and the window lives on meanwhile. With a progress, its user may cancel: then this returns at
  /// once, and the work, which runs on until it notices, must own all that it touches.
  virtual void runLong(const std::function<void()>& work, const std::shared_ptr<Progress>& /*progress*/) {
    work();
  }

  /// Sets the ramp of the whole display.
  virtual void setGammaRamp(const GammaRamp&) {}

  /// Shows or hides the main window's toolbar and status bar.
  virtual void showBars(bool) {}
  /// Gives the main window its caption, system menu and sizing border, or takes them away.
  virtual void decorateFrame(bool) {}
  /// Shows the main window maximised, or else in its normal size.
  virtual void showFrame(bool /*maximised*/) {}
};

/// The process's desktop, none before setDesktop.
Desktop* currentDesktop();

/// Sets the process's desktop (not owned) and returns the one before.
Desktop* setDesktop(Desktop* desktop);

/// While one lives, what its thread says goes unheard: questions are answered with yes, texts are dropped.
/// For threads that load and draw models besides the one shown.
class Quiet {
 public:
  Quiet();
  ~Quiet();
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

 private:
  const bool before_;
};

/// Shows a box on the current desktop; without one, nothing is shown and a question is answered with no.
MessageBoxAnswer messageBox(std::string_view text, std::string_view caption, unsigned flags);

/// Does a long work as the current desktop does it; without one, does it here.
void runLong(const std::function<void()>& work, const std::shared_ptr<Progress>& progress = nullptr);

/// Sets the main window's title; without a desktop, does nothing.
void setWindowTitle(std::string_view text);

/// Formats like printf and shows the text on the status line at once; without a desktop, does nothing.
/// Texts longer than 255 bytes are cut there, before a character that does not fit.
[[gnu::format(printf, 1, 2)]] void statusPrint(const char* format, ...);

}  // namespace facet
