#pragma once

#include <QDialog>

namespace facet {

class AboutDialog final : public QDialog {
 public:
  explicit AboutDialog(QWidget* parent = nullptr);
};

}  // namespace facet
