#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>
#include <utility>

#include "app/dialogs.h"
#include "app/pictures.h"

namespace facet {

namespace {

/// OK and Cancel, which close the dialog; OK is called by what it does.
QDialogButtonBox* closingButtons(QDialog& dialog, const QString& ok) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  buttons->button(QDialogButtonBox::Ok)->setText(ok);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  return buttons;
}

/// The list of base paths. What OK cannot write it tells, and stays open.
class TextureFolders final : public QDialog {
 public:
  TextureFolders(BasePaths given, std::string configuration, QWidget* parent)
      : QDialog(parent), bases(std::move(given)), configuration_(std::move(configuration)) {
    setWindowTitle("Texture folders");
    list_->setObjectName("bases");
    auto* buttons = new QVBoxLayout;
    addButton(*buttons, "&Add folder...")->setEnabled(true);
    connect(buttons_[0], &QPushButton::clicked, this, [this] { addFolder(); });
    connect(addButton(*buttons, "&Remove"), &QPushButton::clicked, this, [this] { removeCurrent(); });
    connect(addButton(*buttons, "&Up"), &QPushButton::clicked, this, [this] { moveCurrent(-1); });
    connect(addButton(*buttons, "&Down"), &QPushButton::clicked, this, [this] { moveCurrent(1); });
    buttons->addStretch();
    connect(list_, &QListWidget::currentRowChanged, this, [this](int row) { enableButtons(row); });
    auto* row = new QHBoxLayout;
    row->addWidget(list_);
    row->addLayout(buttons);

    const std::string folder = std::filesystem::path(configuration_).parent_path().string();
    write_->setText(toQString("&Write " + std::string(configurationName) + " in ") +
                    toQString(folder).replace('&', "&&"));
    problem_->setObjectName("problem");
    problem_->setTextFormat(Qt::PlainText);
    problem_->setWordWrap(true);
    problem_->setPalette(errorPalette());
    problem_->hide();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("Textures are looked for here, in this order:"));
    layout->addLayout(row);
    layout->addWidget(write_);
    layout->addWidget(problem_);
    layout->addWidget(closingButtons(*this, "OK"));
    showBases(0);
    resize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 18);
  }

  BasePaths bases;

 protected:
  void accept() override {
    const std::string reason = write_->isChecked() ? writeConfiguration(configuration_, bases) : "";
    problem_->setText(toQString(reason));
    problem_->setVisible(!reason.empty());
    if (reason.empty()) QDialog::accept();
  }

 private:
  QPushButton* addButton(QVBoxLayout& layout, const char* text) {
    auto* button = new QPushButton(text);
    button->setAutoDefault(false);
    layout.addWidget(button);
    return buttons_.emplace_back(button);
  }

  void showBases(int current) {
    list_->clear();
    for (const std::string& base : bases) list_->addItem(toQString(base));
    list_->setCurrentRow(std::min(current, list_->count() - 1));
    enableButtons(list_->currentRow());
  }

  void enableButtons(int row) {
    buttons_[1]->setEnabled(row >= 0);
    buttons_[2]->setEnabled(row > 0);
    buttons_[3]->setEnabled(row >= 0 && row + 1 < list_->count());
  }

  void addFolder() {
    const QString folder = QFileDialog::getExistingDirectory(this, "Add texture folder");
    if (folder.isEmpty()) return;
    bases.push_back(basePathsOf({toBytes(folder)}).front());
    showBases(static_cast<int>(bases.size()) - 1);
  }

  void removeCurrent() {
    const int row = list_->currentRow();
    bases.erase(bases.begin() + row);
    showBases(row);
  }

  void moveCurrent(int by) {
    const int row = list_->currentRow();
    std::iter_swap(bases.begin() + row, bases.begin() + row + by);
    showBases(row + by);
  }

  const std::string configuration_;
  QListWidget* list_ = new QListWidget;
  std::vector<QPushButton*> buttons_;
  QCheckBox* write_ = new QCheckBox;
  QLabel* problem_ = new QLabel;
};

/// The options of an export. Its OK asks for the file.
class ExportDialog final : public QDialog {
 public:
  ExportDialog(const ModernExport& last, std::string directory, QWidget* parent)
      : QDialog(parent), directory_(std::move(directory)) {
    setWindowTitle("Export model");
    for (const ModernFormat& format : modernFormats()) format_->addItem(toQString(format.description));
    up_->addItems({"", "Y", "Z"});
    textures_->addItems({"PNG files in textures/", "The files as they are, in textures/", "None"});
    scale_->setDecimals(4);
    scale_->setRange(0.0001, 100'000);
    format_->setObjectName("format");
    scale_->setObjectName("scale");
    auto* layout = new QFormLayout(this);
    layout->addRow("&Format", format_);
    layout->addRow("&Up axis", up_);
    layout->addRow("&Scale", scale_);
    layout->addRow("&Textures", textures_);
    layout->addRow(visible_);
    layout->addRow(closingButtons(*this, "Choose file..."));

    connect(format_, &QComboBox::currentIndexChanged, this, [this] { showFormat(); });
    if (last.format) format_->setCurrentIndex(static_cast<int>(last.format - modernFormats().data()));
    up_->setCurrentIndex(last.options.up ? 1 + static_cast<int>(*last.options.up) : 0);
    scale_->setValue(last.scale);
    textures_->setCurrentIndex(static_cast<int>(last.options.textures));
    visible_->setChecked(last.visibleOnly);
    showFormat();
  }

  /// What was chosen.
  ModernExport chosen;

 protected:
  void accept() override {
    const ModernFormat& format = currentFormat();
    const std::string pattern = "*." + std::string(format.name);
    FileDialogRequest request;
    request.title = "Export model";
    request.types = {{format.description, pattern}};
    request.initialDirectory = directory_;
    request.defaultExtension = format.name;
    request.flags = OFN_OVERWRITEPROMPT;
    const auto file = runFileDialog(request, true, this);
    if (!file) return;
    chosen.format = &format;
    chosen.path = file->path;
    if (up_->currentIndex() > 0) chosen.options.up = static_cast<UpAxis>(up_->currentIndex() - 1);
    chosen.options.textures = static_cast<TexturesOut>(textures_->currentIndex());
    chosen.scale = static_cast<float>(scale_->value());
    chosen.visibleOnly = visible_->isChecked();
    QDialog::accept();
  }

 private:
  const ModernFormat& currentFormat() const {
    return modernFormats()[static_cast<size_t>(format_->currentIndex())];
  }

  void showFormat() {
    const ModernFormat& format = currentFormat();
    up_->setItemText(0, format.up == UpAxis::y ? "Y, as the format has it" : "Z, as the format has it");
    const QString place = format.embedsPictures ? "inside" : "in textures/";
    textures_->setItemText(0, "PNG, " + place);
    textures_->setItemText(1, "The files as they are, " + place);
    textures_->setEnabled(format.takesPictures);
  }

  const std::string directory_;
  QComboBox *format_ = new QComboBox, *up_ = new QComboBox, *textures_ = new QComboBox;
  QDoubleSpinBox* scale_ = new QDoubleSpinBox;
  QCheckBox* visible_ = new QCheckBox("&Visible meshes only");
};

/// The size of a picture. Its OK asks for the file.
class PictureDialog final : public QDialog {
 public:
  PictureDialog(const PictureWish& last, const QSize& seen, std::string directory, QWidget* parent)
      : QDialog(parent), directory_(std::move(directory)) {
    setWindowTitle("Save picture");
    constexpr int largest = 16'384;
    for (QSpinBox* side : {width_, height_}) {
      side->setRange(1, largest);
      side->setSuffix(" pixels");
    }
    width_->setObjectName("width");
    height_->setObjectName("height");
    width_->setValue(last.width > 0 ? static_cast<int>(last.width) : seen.width());
    height_->setValue(last.height > 0 ? static_cast<int>(last.height) : seen.height());
    transparent_->setChecked(last.transparent);
    transparent_->setToolTip("The model alone, without background, sky, grid and axes");
    auto* asSeen = new QPushButton("&As large as the view");
    asSeen->setAutoDefault(false);
    connect(asSeen, &QPushButton::clicked, this, [this, seen] {
      width_->setValue(seen.width());
      height_->setValue(seen.height());
    });
    auto* layout = new QFormLayout(this);
    layout->addRow("&Width", width_);
    layout->addRow("&Height", height_);
    layout->addRow(asSeen);
    layout->addRow(transparent_);
    layout->addRow(closingButtons(*this, "Choose file..."));
  }

  ChosenPicture chosen;

 protected:
  void accept() override {
    FileDialogRequest request;
    request.title = windowTitle().toStdString();
    request.types = {{"Portable network graphics (*.png)", "*.png"}};
    request.initialDirectory = directory_;
    request.defaultExtension = "png";
    request.flags = OFN_OVERWRITEPROMPT;
    const auto file = runFileDialog(request, true, this);
    if (!file) return;
    chosen.path = file->path;
    chosen.wish = {static_cast<uint32_t>(width_->value()), static_cast<uint32_t>(height_->value()),
                   transparent_->isChecked()};
    QDialog::accept();
  }

 private:
  const std::string directory_;
  QSpinBox *width_ = new QSpinBox, *height_ = new QSpinBox;
  QCheckBox* transparent_ = new QCheckBox("&Transparent ground");
};

}  // namespace

std::optional<BasePaths> runTextureFolders(const BasePaths& bases, const std::string& configuration,
                                           QWidget* parent) {
  TextureFolders dialog(bases, configuration, parent);
  if (dialog.exec() != QDialog::Accepted) return {};
  return dialog.bases;
}

std::optional<ModernExport> runExport(const ModernExport& last, const std::string& directory,
                                      QWidget* parent) {
  ExportDialog dialog(last, directory, parent);
  if (dialog.exec() != QDialog::Accepted) return {};
  return dialog.chosen;
}

std::optional<ChosenPicture> runSavePicture(const PictureWish& last, const QSize& seen,
                                            const std::string& directory, QWidget* parent) {
  PictureDialog dialog(last, seen, directory, parent);
  if (dialog.exec() != QDialog::Accepted) return {};
  return dialog.chosen;
}

}  // namespace facet
