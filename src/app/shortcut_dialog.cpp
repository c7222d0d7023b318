#include "app/shortcut_dialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "app/text.h"
#include "commands/shortcut_sheet.h"

namespace facet {

ShortcutDialog::ShortcutDialog(QWidget* parent) : QDialog(parent) {
  setWindowTitle("Keyboard and mouse");
  auto* table = new QTreeWidget;
  table->setHeaderLabels({"Key", "What it does"});
  table->setRootIsDecorated(false);
  table->setAlternatingRowColors(true);
  table->setUniformRowHeights(true);
  for (const Shortcut& shortcut : shortcutSheet())
    table->addTopLevelItem(new QTreeWidgetItem({toQString(shortcut.keys), toQString(shortcut.effect)}));
  table->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(table);
  layout->addWidget(buttons);
  resize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 34);
}

}  // namespace facet
