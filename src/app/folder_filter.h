#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

namespace facet {

/// What a model holds, as filters and tool tips want it.
struct ModelFigures {
  uint32_t triangles = 0;
  uint32_t missingTextures = 0;  ///< names that were not found
  QString type;                  ///< "Vantor VXM, version 4"
  bool operator==(const ModelFigures&) const = default;
};

/// Which models of a folder are listed: "barrel tris>1000 missing:yes" are those whose name contains
/// "barrel", with more than 1000 triangles, that lack a texture. All must hold; letter case does not count.
class FolderFilter {
 public:
  FolderFilter() = default;

  /// What cannot be read is left out, and error() says what it takes.
  explicit FolderFilter(const QString& text);

  /// One line for the user, empty where all was read.
  const QString& error() const { return error_; }

  /// True when names alone do not decide.
  bool needsFigures() const { return !conditions_.empty(); }

  bool acceptsName(const QString& name) const;
  bool acceptsFigures(const ModelFigures& figures) const;

 private:
  struct Field;
  struct Condition {
    const Field* field;
    QString sign;  ///< ":", "=", "<", "<=", ">" or ">="
    QString value;
  };
  static const Field fields[];

  void addCondition(const QString& name, const QString& sign, const QString& value);

  QStringList words_;
  std::vector<Condition> conditions_;
  QString error_;
};

}  // namespace facet
