#pragma once

#include <QDialog>

namespace facet {

/// What keys and mouse do, as a table.
class ShortcutDialog final : public QDialog {
 public:
  explicit ShortcutDialog(QWidget* parent = nullptr);
};

}  // namespace facet
