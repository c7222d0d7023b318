#pragma once

#include <QAbstractItemModel>
#include <QString>
#include <vector>

#include "commands/commands.h"

namespace facet {

/// The shown model as a tree for views: its own materials, and under each the meshes drawn with it. A check
/// box shows or hides. Made for many thousand meshes: rows are made when they are looked at.
class ModelTree final : public QAbstractItemModel {
  Q_OBJECT

 public:
  enum Column : int { nameColumn, triangleColumn, vertexColumn, sizeColumn, flagColumn, columns };

  ModelTree(Viewer& viewer, QObject* parent) : QAbstractItemModel(parent), viewer_(viewer) {}

  /// Shows the model as it is now: the materials whose texture or shader, and the meshes whose number or
  /// surface, hold the text, letter case ignored. All for an empty text.
  void rebuild(const QString& filter);

  /// Meshes were shown or hidden elsewhere.
  void checksChanged();

  /// The meshes of a row, all those of a material, in rising order.
  std::vector<uint32_t> meshesOf(const QModelIndex& index) const;

  /// The material of a row, none for no row.
  std::optional<uint32_t> materialOf(const QModelIndex& index) const;

  /// The row of a mesh; an invalid one where the filter leaves it out.
  QModelIndex indexOf(uint32_t mesh) const;

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& index) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& = {}) const override { return columns; }
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 signals:
  /// Check boxes were clicked: the picture is another.
  void hiddenChanged();

 private:
  struct Group {
    uint32_t material;
    std::vector<uint32_t> meshes;
  };

  const Model* model() const { return viewer_.view.scene.model.get(); }
  QString materialText(const Group& group, int column) const;
  QString meshText(uint32_t mesh, int column) const;

  Viewer& viewer_;
  std::vector<Group> groups_;
};

}  // namespace facet
