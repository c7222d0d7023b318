#include "app/about_dialog.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>

#include "app/icons.h"

namespace facet {

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent) {
  setWindowTitle("About VXMViewer");
  constexpr int iconSize = 48;
  auto* picture = new QLabel;
  picture->setPixmap(applicationIcon().pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));
  auto* text = new QLabel("VXMViewer Version 1.0.5.201312xx");
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

  auto* layout = new QGridLayout(this);
  layout->addWidget(picture, 0, 0);
  layout->addWidget(text, 0, 1);
  layout->addWidget(buttons, 1, 0, 1, 2);
  layout->setHorizontalSpacing(iconSize / 3);
}

}  // namespace facet
