#include "app/model_data_dialog.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "app/text.h"

namespace facet {

namespace {

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

ModelDataDialog::ModelDataDialog(const ListAndTree& content, QWidget* parent) : QDialog(parent) {
  setWindowTitle(toQString(content.title));
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

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(list, 75);
  layout->addWidget(tree, 146);
  layout->addWidget(buttons);
  resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 32);
}

}  // namespace facet
