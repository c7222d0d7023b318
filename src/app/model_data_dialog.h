#pragma once

#include <QDialog>

#include "platform/desktop.h"

namespace facet {

/// A list of lines above a tree; "OK" and "Cancel" close it.
class ModelDataDialog final : public QDialog {
 public:
  explicit ModelDataDialog(const ListAndTree& content, QWidget* parent = nullptr);
};

}  // namespace facet
