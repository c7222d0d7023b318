#include "app/file_dialog.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include "app/text.h"

namespace facet {

namespace {

/// A type in Qt's notation. Its last parenthesis holds the patterns and is not shown.
QString nameFilter(const FileType& type) {
  QStringList patterns = toQString(type.pattern).split(';');
  patterns.replaceInStrings("*.*", "*");
  return QString("%1 (%2)").arg(toQString(type.description), patterns.join(' '));
}

/// The extension of files of this type, or `otherwise` when it has several.
QString suffixOf(const FileType& type, const std::string& otherwise) {
  const bool single = type.pattern.starts_with("*.") && type.pattern.find(';') == std::string_view::npos;
  return toQString(single && type.pattern != "*.*" ? type.pattern.substr(2) : std::string_view(otherwise));
}

/// Qt's dialog, which finds a file without its extension and asks what the request's flags say.
class Dialog final : public QFileDialog {
 public:
  Dialog(const FileDialogRequest& request, bool save, QWidget* parent)
      : QFileDialog(parent, toQString(request.title)), request_(request) {
    setOption(HideNameFilterDetails);
    setOption(DontConfirmOverwrite, (request.flags & OFN_OVERWRITEPROMPT) == 0);
    setAcceptMode(save ? AcceptSave : AcceptOpen);
    setFileMode(save ? AnyFile : ExistingFile);
  }

 protected:
  void accept() override {
    if (acceptMode() == AcceptOpen)
      completeName();
    else if (!agreesToCreate())
      return;
    QFileDialog::accept();
  }

 private:
  /// A file of the name as it is goes before one with the default extension.
  void completeName() {
    setDefaultSuffix({});
    if (!exists()) setDefaultSuffix(toQString(request_.defaultExtension));
  }

  bool agreesToCreate() {
    const bool platforms = testAttribute(Qt::WA_DontShowOnScreen);  // it has closed and cannot stay open
    if (platforms || (request_.flags & OFN_CREATEPROMPT) == 0 || selectedFiles().isEmpty() || exists())
      return true;
    const QString question = "%1 does not exist.\nDo you want to create it?";
    const QString name = QFileInfo(selectedFiles().constFirst()).fileName();
    return QMessageBox::question(this, windowTitle(), question.arg(name)) == QMessageBox::Yes;
  }

  bool exists() const {
    const QStringList files = selectedFiles();
    return !files.isEmpty() && QFileInfo::exists(files.constFirst());
  }

  const FileDialogRequest& request_;
};

}  // namespace

std::optional<FileDialogResult> runFileDialog(const FileDialogRequest& request, bool save, QWidget* parent) {
  Dialog dialog(request, save, parent);
  if (!request.initialDirectory.empty()) dialog.setDirectory(toQString(request.initialDirectory));
  QStringList filters;
  for (const FileType& type : request.types) filters += nameFilter(type);
  dialog.setNameFilters(filters);

  const auto chosenType = [&] {
    // A dialog may give the filter back without its hidden part.
    const QString chosen = dialog.selectedNameFilter();
    for (qsizetype i = 0; i < filters.size(); ++i)
      if (!chosen.isEmpty() && filters[i].startsWith(chosen)) return static_cast<size_t>(i);
    return size_t{0};
  };
  const auto setSuffix = [&] {
    if (!request.types.empty())
      dialog.setDefaultSuffix(suffixOf(request.types[chosenType()], request.defaultExtension));
  };
  if (save) {
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, setSuffix);
    setSuffix();
  }

  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  FileDialogResult result;
  result.path = toBytes(dialog.selectedFiles().constFirst());
  result.filterIndex = static_cast<uint32_t>(chosenType()) + 1;
  return result;
}

}  // namespace facet
