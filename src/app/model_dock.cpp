#include "app/model_dock.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>

#include "app/dialogs.h"
#include "app/model_tree.h"
#include "app/view_widget.h"
#include "commands/looking.h"

namespace facet {

/// A texture on a checker board, where its alpha shows, with what there is to know of it.
class TexturePane final : public QWidget {
 public:
  explicit TexturePane(QWidget* parent) : QWidget(parent), text_(new QLabel(this)) {
    setMinimumHeight(120);
    setAccessibleName("Texture of the selected material");
    text_->setWordWrap(true);
    text_->setTextFormat(Qt::PlainText);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* column = new QVBoxLayout(this);
    column->addStretch(1);
    column->addWidget(text_);
  }

  void show(const QImage& picture, const QString& text) {
    picture_ = picture;
    text_->setText(text);
    setAccessibleDescription(text);
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (picture_.isNull()) return;
    const QRect free = rect().adjusted(6, 6, -6, text_->y() - height() - 4);
    QRect place(QPoint(), picture_.size().scaled(free.size(), Qt::KeepAspectRatio));
    place.moveCenter(free.center());
    constexpr int square = 8;
    QPainter painter(this);
    painter.setClipRect(place);
    for (int y = 0; y < place.height(); y += square)
      for (int x = 0; x < place.width(); x += square)
        painter.fillRect(place.left() + x, place.top() + y, square, square,
                         (x / square + y / square) % 2 == 0 ? QColor(204, 204, 204) : QColor(153, 153, 153));
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, picture_);
  }

 private:
  QImage picture_;
  QLabel* text_;
};

namespace {

/// The first level that is no larger than a pane shows, in DDS files; the only one in others.
QImage previewOf(const Image& image) {
  constexpr uint32_t enough = 512;
  uint32_t level = 0;
  while (level + 1 < image.levels.size() &&
         std::max(image.levels[level].width, image.levels[level].height) > enough)
    ++level;
  const ImageLevel& shown = image.levels[level];
  const std::vector<uint8_t> pixels = imagePixels(image, level);
  return QImage(pixels.data(), static_cast<int>(shown.width), static_cast<int>(shown.height),
                qsizetype{4} * shown.width, QImage::Format_RGBA8888)
      .copy();
}

QString textureText(const Material& material, const D3DXIMAGE_INFO& info) {
  return toQString(material.textureFile) + "\n" +
         toQString(formatted("%u x %u, %s, %u %s", info.Width, info.Height, formatName(info.Format).c_str(),
                             info.MipLevels, info.MipLevels == 1 ? "level" : "levels"));
}

QPushButton* addButton(QHBoxLayout& row, const QString& text, const QString& tip) {
  auto* button = new QPushButton(text);
  button->setToolTip(tip);
  button->setAutoDefault(false);
  row.addWidget(button);
  return button;
}

}  // namespace

ModelDock::ModelDock(ViewWidget& view, QWidget* parent)
    : QDockWidget("Model", parent),
      view_(view),
      tree_(new ModelTree(view.viewer(), this)),
      rows_(new QTreeView(this)),
      filter_(new QLineEdit(this)),
      texture_(new TexturePane(this)) {
  setObjectName("modelDock");
  filter_->setPlaceholderText("Search materials and meshes");
  filter_->setAccessibleName("Search materials and meshes");
  filter_->setClearButtonEnabled(true);
  rows_->setAccessibleName("Materials and meshes");
  rows_->setModel(tree_);
  rows_->setUniformRowHeights(true);
  rows_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  rows_->header()->setStretchLastSection(true);
  rows_->header()->resizeSection(ModelTree::nameColumn, 190);
  for (const int column : {ModelTree::triangleColumn, ModelTree::vertexColumn})
    rows_->header()->resizeSection(column, 76);

  auto* buttons = new QHBoxLayout;
  connect(addButton(*buttons, "Show &only this", "Hide all other meshes (Q)"), &QPushButton::clicked, this,
          &ModelDock::showOnlySelected);
  connect(addButton(*buttons, "Show &all", "Show all meshes again (Alt+Q)"), &QPushButton::clicked, this,
          &ModelDock::showAllMeshes);
  auto* upper = new QWidget(this);
  auto* column = new QVBoxLayout(upper);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(filter_);
  column->addWidget(rows_);
  column->addLayout(buttons);
  auto* both = new QSplitter(Qt::Vertical, this);
  both->addWidget(upper);
  both->addWidget(texture_);
  both->setStretchFactor(0, 3);
  both->setStretchFactor(1, 2);
  both->setFocusProxy(rows_);
  setWidget(both);

  connect(filter_, &QLineEdit::textChanged, this, &ModelDock::rebuild);
  connect(tree_, &ModelTree::hiddenChanged, &view_, &ViewWidget::refresh);
  connect(rows_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ModelDock::takeSelection);
  connect(&later_, &QTimer::timeout, this, &ModelDock::showTexture);
  later_.setSingleShot(true);
}

void ModelDock::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  update();
}

void ModelDock::rebuild() {
  taking_ = true;
  tree_->rebuild(filter_->text());
  taking_ = false;
  generation_ = view_.viewer().view.scene.generation;
  if (!filter_->text().isEmpty()) rows_->expandAll();
  update();
  later_.start(0);
}

void ModelDock::update() {
  if (isHidden() || taking_) return;
  const Scene& scene = view_.viewer().view.scene;
  if (scene.generation != generation_) return rebuild();
  tree_->checksChanged();
  rows_->viewport()->update();
  std::vector<uint32_t> shown;
  for (const QModelIndex& index : rows_->selectionModel()->selectedRows())
    for (const uint32_t mesh : tree_->meshesOf(index)) shown.push_back(mesh);
  std::ranges::sort(shown);
  shown.erase(std::unique(shown.begin(), shown.end()), shown.end());
  if (shown == scene.selected) return;
  taking_ = true;
  rows_->clearSelection();
  for (const uint32_t mesh : scene.selected)
    rows_->selectionModel()->select(tree_->indexOf(mesh),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
  if (!scene.selected.empty()) {
    const QModelIndex first = tree_->indexOf(scene.selected.front());
    rows_->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
    rows_->scrollTo(first);
  }
  taking_ = false;
  later_.start(0);
}

void ModelDock::takeSelection() {
  if (taking_) return;
  std::vector<uint32_t> meshes;
  for (const QModelIndex& index : rows_->selectionModel()->selectedRows())
    for (const uint32_t mesh : tree_->meshesOf(index)) meshes.push_back(mesh);
  taking_ = true;
  selectMeshes(view_.viewer(), std::move(meshes));
  view_.refresh();
  taking_ = false;
  later_.start(0);
}

void ModelDock::showTexture() {
  const Model* model = view_.viewer().view.scene.model.get();
  const QModelIndexList rows = rows_->selectionModel()->selectedRows();
  const auto number = rows.empty() ? std::nullopt : tree_->materialOf(rows.front());
  if (!model || !number || *number >= model->materials.size()) return texture_->show({}, {});
  const Material& material = model->materials[*number];
  if (material.textureName.empty()) return texture_->show({}, "This material names no texture.");
  if (material.textureFile.empty())
    return texture_->show({},
                          toQString(material.textureName + ": not found. File, Texture folders says where "
                                                           "textures are looked for."));
  const ImageResult loaded = loadImage(material.textureFile);
  if (!loaded.image) return texture_->show({}, toQString(material.textureFile + ": " + loaded.error));
  texture_->show(previewOf(*loaded.image), textureText(material, loaded.image->info));
}

void ModelDock::showOnlySelected() {
  showOnly(view_.viewer(), view_.viewer().view.scene.selected);
  view_.refresh();
}

void ModelDock::showAllMeshes() {
  showAll(view_.viewer());
  view_.refresh();
}

}  // namespace facet
