#include "app/dialogs.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "app/pictures.h"
#include "commands/commands.h"

namespace facet {

QString titleText(std::string_view text) {
  return toQString(text).replace("[*]", "[*][*]");
}

// Files.

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

// Message boxes.

namespace {

QMessageBox::Icon boxIcon(unsigned flags) {
  const unsigned icon = flags & 0xF0;
  if (icon == MB_ICONHAND) return QMessageBox::Critical;
  if (icon == MB_ICONQUESTION) return QMessageBox::Question;
  if (icon == MB_ICONEXCLAMATION) return QMessageBox::Warning;
  return icon == MB_ICONINFORMATION ? QMessageBox::Information : QMessageBox::NoIcon;
}

/// Boxes are as wide as their text; the caption, often a path, is to be read as well.
void makeRoomForCaption(QMessageBox& box) {
  constexpr int buttons = 120, widest = 700;
  const int width = box.fontMetrics().horizontalAdvance(box.windowTitle()) + buttons;
  auto* layout = qobject_cast<QGridLayout*>(box.layout());
  if (layout == nullptr) return;
  layout->addItem(new QSpacerItem(std::min(width, widest), 0), layout->rowCount(), 0, 1,
                  layout->columnCount());
}

}  // namespace

MessageBoxAnswer runMessageBox(std::string_view text, std::string_view caption, unsigned flags,
                               QWidget* parent) {
  const bool question = (flags & MB_YESNO) != 0;
  QMessageBox box(parent);
  box.setWindowTitle(titleText(caption));
  box.setTextFormat(Qt::PlainText);
  box.setText(toQString(text).replace('\r', '\n'));
  box.setIcon(boxIcon(flags));
  box.setStandardButtons(question ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
  if (question) {
    box.setDefaultButton((flags & MB_DEFBUTTON2) != 0 ? QMessageBox::No : QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
  }
  if ((flags & MB_SYSTEMMODAL) != 0) box.setWindowFlag(Qt::WindowStaysOnTopHint);
  makeRoomForCaption(box);
  const int answer = box.exec();
  if (!question) return IDOK;
  return answer == QMessageBox::Yes ? IDYES : IDNO;
}

// Texts.

namespace {

/// A dialog whose buttons close it. What it shows comes into its layout before them.
class TextDialog final : public QDialog {
 public:
  TextDialog(const char* title, QWidget* parent) : QDialog(parent), layout_(new QVBoxLayout(this)) {
    setWindowTitle(title);
  }

  void add(QWidget* content, int share = 1) { layout_->addWidget(content, share); }

  /// `columns` and `rows` are how many characters there is room for; 0: what the content asks for.
  void run(QDialogButtonBox::StandardButtons buttons, int columns = 0, int rows = 0) {
    auto* box = new QDialogButtonBox(buttons);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout_->addWidget(box);
    if (columns > 0) resize(fontMetrics().averageCharWidth() * columns, fontMetrics().height() * rows);
    exec();
  }

 private:
  QVBoxLayout* layout_;
};

/// The item of a node, with its children below it.
QTreeWidgetItem* makeItem(const TextTree& node) {
  auto* item = new QTreeWidgetItem({toQString(node.text)});
  QList<QTreeWidgetItem*> children;
  children.reserve(static_cast<qsizetype>(node.children.size()));
  for (const TextTree& child : node.children) children.append(makeItem(child));
  item->addChildren(children);
  return item;
}

/// Items can be expanded only when they are in a tree.
void expandItems(const TextTree& node, QTreeWidgetItem& item) {
  item.setExpanded(node.expanded);
  for (size_t i = 0; i < node.children.size(); ++i)
    if (node.expanded) expandItems(node.children[i], *item.child(static_cast<int>(i)));
}

}  // namespace

void runListAndTree(const ListAndTree& content, QWidget* parent) {
  auto* list = new QListWidget;
  list->setObjectName("list");
  list->setUniformItemSizes(true);
  for (const std::string& line : content.list) list->addItem(toQString(line));
  auto* tree = new QTreeWidget;
  tree->setObjectName("tree");
  tree->setHeaderHidden(true);
  tree->setUniformRowHeights(true);
  tree->addTopLevelItem(makeItem(content.tree));
  expandItems(content.tree, *tree->topLevelItem(0));

  TextDialog dialog(content.title.c_str(), parent);
  dialog.add(list, 75);
  dialog.add(tree, 146);
  dialog.run(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, 90, 32);
}

void runShortcuts(QWidget* parent) {
  auto* table = new QTreeWidget;
  table->setHeaderLabels({"Key", "What it does"});
  table->setRootIsDecorated(false);
  table->setAlternatingRowColors(true);
  table->setUniformRowHeights(true);
  for (const Shortcut& shortcut : shortcutSheet())
    table->addTopLevelItem(new QTreeWidgetItem({toQString(shortcut.keys), toQString(shortcut.effect)}));
  table->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);

  TextDialog dialog("Keyboard and mouse", parent);
  dialog.add(table);
  dialog.run(QDialogButtonBox::Close, 80, 34);
}

void runAbout(QWidget* parent) {
  constexpr int iconSize = 48;
  TextDialog dialog("About VXMViewer", parent);
  auto* content = new QWidget;
  auto* picture = new QLabel;
  picture->setPixmap(
      themedIcon(applicationIconName).pixmap(QSize(iconSize, iconSize), dialog.devicePixelRatioF()));
  auto* row = new QHBoxLayout(content);
  row->setContentsMargins({});
  row->setSpacing(iconSize / 3);
  row->addWidget(picture);
  row->addWidget(new QLabel("VXMViewer Version 1.0.5.201312xx"));
  dialog.add(content);
  dialog.run(QDialogButtonBox::Ok);
}

}  // namespace facet
