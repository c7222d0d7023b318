#include "app/model_tree.h"

#include <QLocale>
#include <algorithm>

#include "app/dialogs.h"
#include "commands/looking.h"

namespace facet {

namespace {

/// What an index points at: 0 for a material, else 1 and the place of its group.
constexpr quintptr materialRow = 0;

QString counted(uint64_t count) {
  return toQString(groupedNumber(count));
}

QString flagsText(const Material& material) {
  if (material.hasTexture == 0) return material.textureName.empty() ? "" : "no texture";
  constexpr std::pair<uint8_t, const char*> names[] = {{renderAlphaTest, "alpha test"},
                                                       {renderNeedsLight, "needs light"}};
  QStringList texts;
  for (const auto& [bit, text] : names)
    if (material.renderFlags & bit) texts += text;
  const int blend = material.renderFlags & renderSelfLight;
  if (blend != 0)
    texts += blend == renderBlend ? "blended" : blend == renderLightPlane ? "light plane" : "self-lit";
  return texts.join(", ");
}

/// "1.5 x 2 x 0.25": how far the vertices reach along x, y and z.
QString sizeText(const Mesh& mesh) {
  if (mesh.vertexCount == 0) return {};
  const auto [low, high] = vertexBox(mesh);
  return QString::asprintf("%.4g x %.4g x %.4g", high.x - low.x, high.y - low.y, high.z - low.z);
}

}  // namespace

void ModelTree::rebuild(const QString& filter) {
  beginResetModel();
  groups_.clear();
  if (const Model* shown = model()) {
    const auto holds = [&](const std::string& text) {
      return toQString(text).contains(filter, Qt::CaseInsensitive);
    };
    std::vector<Group> groups(ownMaterials(*shown).size());
    std::vector<bool> whole(groups.size());
    for (uint32_t i = 0; i < groups.size(); ++i) {
      groups[i].material = i;
      whole[i] =
          filter.isEmpty() || holds(shown->materials[i].textureName) || holds(shown->materials[i].shaderName);
    }
    for (uint32_t i = 0; i < shown->meshes.size(); ++i) {
      const Mesh& mesh = shown->meshes[i];
      if (mesh.materialIndex >= groups.size()) continue;
      if (whole[mesh.materialIndex] || holds(mesh.surfaceName) || QString::number(i) == filter)
        groups[mesh.materialIndex].meshes.push_back(i);
    }
    for (Group& group : groups)
      if (whole[group.material] || !group.meshes.empty()) groups_.push_back(std::move(group));
  }
  endResetModel();
}

void ModelTree::checksChanged() {
  if (!groups_.empty())
    emit dataChanged(index(0, 0), index(static_cast<int>(groups_.size()) - 1, 0), {Qt::CheckStateRole});
}

std::vector<uint32_t> ModelTree::meshesOf(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  if (index.internalId() == materialRow) return groups_[static_cast<size_t>(index.row())].meshes;
  return {groups_[index.internalId() - 1].meshes[static_cast<size_t>(index.row())]};
}

std::optional<uint32_t> ModelTree::materialOf(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  const quintptr id = index.internalId();
  return groups_[id == materialRow ? static_cast<size_t>(index.row()) : id - 1].material;
}

QModelIndex ModelTree::indexOf(uint32_t mesh) const {
  for (size_t g = 0; g < groups_.size(); ++g) {
    const auto& meshes = groups_[g].meshes;
    const auto found = std::ranges::lower_bound(meshes, mesh);
    if (found != meshes.end() && *found == mesh)
      return createIndex(static_cast<int>(found - meshes.begin()), 0, g + 1);
  }
  return {};
}

QModelIndex ModelTree::index(int row, int column, const QModelIndex& parent) const {
  if (row < 0 || row >= rowCount(parent) || column < 0 || column >= columns) return {};
  return createIndex(row, column, parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : materialRow);
}

QModelIndex ModelTree::parent(const QModelIndex& index) const {
  if (!index.isValid() || index.internalId() == materialRow) return {};
  return createIndex(static_cast<int>(index.internalId() - 1), 0, materialRow);
}

int ModelTree::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return static_cast<int>(groups_.size());
  if (parent.internalId() != materialRow || parent.column() != 0) return 0;
  return static_cast<int>(groups_[static_cast<size_t>(parent.row())].meshes.size());
}

QString ModelTree::materialText(const Group& group, int column) const {
  const Material& material = model()->materials[group.material];
  const auto sum = [&](uint32_t Mesh::*count) {
    uint64_t total = 0;
    for (const uint32_t mesh : group.meshes) total += model()->meshes[mesh].*count;
    return total;
  };
  switch (column) {
    case nameColumn:
      return material.textureName.empty() ? toQString(material.shaderName) : toQString(material.textureName);
    case triangleColumn:
      return counted(sum(&Mesh::indexCount) / 3);
    case vertexColumn:
      return counted(sum(&Mesh::vertexCount));
    case sizeColumn:
      return counted(group.meshes.size()) + (group.meshes.size() == 1 ? " mesh" : " meshes");
    default:
      return flagsText(material);
  }
}

QString ModelTree::meshText(uint32_t number, int column) const {
  const Mesh& mesh = model()->meshes[number];
  switch (column) {
    case nameColumn:
      return "Mesh " + QString::number(number) +
             (mesh.surfaceName.empty() ? "" : " " + toQString(mesh.surfaceName));
    case triangleColumn:
      return counted(mesh.indexCount / 3);
    case vertexColumn:
      return counted(mesh.vertexCount);
    case sizeColumn:
      return sizeText(mesh);
    default:
      return mesh.visibility == 2 ? "never cut by distance" : "";
  }
}

QVariant ModelTree::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || !model()) return {};
  const bool isMaterial = index.internalId() == materialRow;
  if (role == Qt::DisplayRole)
    return isMaterial ? materialText(groups_[static_cast<size_t>(index.row())], index.column())
                      : meshText(meshesOf(index).front(), index.column());
  if (role == Qt::ToolTipRole && isMaterial)
    return toQString("shader " + model()->materials[*materialOf(index)].shaderName);
  if (role == Qt::TextAlignmentRole && (index.column() == triangleColumn || index.column() == vertexColumn))
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::CheckStateRole || index.column() != nameColumn) return {};
  const std::vector<uint32_t> meshes = meshesOf(index);
  const auto hidden =
      std::ranges::count_if(meshes, [&](uint32_t mesh) { return model()->meshes[mesh].hidden; });
  if (hidden == 0) return Qt::Checked;
  return hidden == std::ssize(meshes) ? Qt::Unchecked : Qt::PartiallyChecked;
}

QVariant ModelTree::headerData(int section, Qt::Orientation orientation, int role) const {
  constexpr const char* titles[] = {"Material, mesh", "Triangles", "Vertices", "Size", "Flags"};
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return titles[section];
}

Qt::ItemFlags ModelTree::flags(const QModelIndex& index) const {
  const Qt::ItemFlags usual = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  return index.column() == nameColumn ? usual | Qt::ItemIsUserCheckable : usual;
}

bool ModelTree::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole || !index.isValid() || !model()) return false;
  setHidden(viewer_, meshesOf(index), value.toInt() == Qt::Unchecked);
  emit hiddenChanged();
  return true;
}

}  // namespace facet
