#pragma once

#include <QDockWidget>
#include <QTimer>

#include "picture/image.h"

class QLabel;
class QLineEdit;
class QTreeView;

namespace facet {

class ModelTree;
class TexturePane;
class ViewWidget;

/// The model at hand: its materials and meshes, which can be selected, hidden and searched for, and the
/// texture of the selected one.
class ModelDock final : public QDockWidget {
  Q_OBJECT

 public:
  ModelDock(ViewWidget& view, QWidget* parent);

  /// Shows the view's model, selection and hidden meshes as they are now. While the dock is hidden, does
  /// nothing.
  void update();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void rebuild();
  void takeSelection();
  void showTexture();
  void showOnlySelected();
  void showAllMeshes();

  ViewWidget& view_;
  ModelTree* tree_;
  QTreeView* rows_;
  QLineEdit* filter_;
  TexturePane* texture_;
  QTimer later_;  ///< decodes the texture when the click is answered
  uint64_t generation_ = 0;
  bool taking_ = false;  ///< the selection of the rows changes because the view's did, or the other way round
};

}  // namespace facet
