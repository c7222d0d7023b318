#pragma once

#include <QSize>
#include <QString>
#include <optional>
#include <string>

#include "commands/commands.h"
#include "platform/desktop.h"
#include "platform/text.h"

class QWidget;

// The dialogs and boxes of the window. Each is modal and returns when it is dismissed; `parent` may be none.

namespace facet {

/// Bytes as text: UTF-8 where they are, otherwise one character a byte.
inline QString toQString(std::string_view bytes) {
  return QString::fromStdString(utf8FromPath(bytes));
}

inline std::string toBytes(const QString& text) {
  return text.toStdString();
}

/// Asks for a file to open, or to save. A name without extension gets the default one when there is no file
/// of that name to open; while saving, that of the chosen type where the type has just one.
std::optional<FileDialogResult> runFileDialog(const FileDialogRequest& request, bool save, QWidget* parent);

/// `flags` are those of MessageBoxFlags.
MessageBoxAnswer runMessageBox(std::string_view text, std::string_view caption, unsigned flags,
                               QWidget* parent);

/// A list of lines above a tree; "OK" and "Cancel" close it.
void runListAndTree(const ListAndTree& content, QWidget* parent);

/// What keys and mouse do, as a table.
void runShortcuts(QWidget* parent);

/// Lets the base paths be added, removed and ordered; none when that is cancelled. Writes them to the
/// configuration file when asked.
std::optional<BasePaths> runTextureFolders(const BasePaths& bases, const std::string& configuration,
                                           QWidget* parent);

/// Asks for a format, its options, which stand as they were last, and a file to export to.
std::optional<ModernExport> runExport(const ModernExport& last, const std::string& directory,
                                      QWidget* parent);

/// Asks for the size of a picture and a PNG file to save it to. `seen` is the size of the view in pixels of
/// the screen.
struct ChosenPicture {
  PictureWish wish;
  std::string path;
};
std::optional<ChosenPicture> runSavePicture(const PictureWish& last, const QSize& seen,
                                            const std::string& directory, QWidget* parent);

void runAbout(QWidget* parent);

/// A title for a window: Qt takes a single "[*]" for the place of a mark, and a double one for the text.
QString titleText(std::string_view text);

}  // namespace facet
