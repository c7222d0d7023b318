#include "app/folder_filter.h"

#include <QRegularExpression>
#include <algorithm>

namespace facet {

/// What a condition can be about.
struct FolderFilter::Field {
  const char* name;
  const char* takes;  ///< for the user
  bool (*isReadable)(const QString& sign, const QString& value);
  bool (*holds)(const ModelFigures& figures, const QString& sign, const QString& value);
};

namespace {

bool isEqualSign(const QString& sign) {
  return sign == ":" || sign == "=";
}

bool isNumber(const QString&, const QString& value) {
  bool ok = false;
  value.toUInt(&ok);
  return ok;
}

bool compare(uint32_t number, const QString& sign, uint32_t value) {
  if (sign.startsWith('<')) return number < value || (sign.size() > 1 && number == value);
  if (sign.startsWith('>')) return number > value || (sign.size() > 1 && number == value);
  return number == value;
}

}  // namespace

const FolderFilter::Field FolderFilter::fields[] = {
    {"tris", "a number of triangles: tris>1000, tris<=500", isNumber,
     [](const ModelFigures& figures, const QString& sign, const QString& value) {
       return compare(figures.triangles, sign, value.toUInt());
     }},
    {"missing", "yes or no, whether textures are missing: missing:yes",
     [](const QString& sign, const QString& value) {
       return isEqualSign(sign) && (value == "yes" || value == "no");
     },
     [](const ModelFigures& figures, const QString&, const QString& value) {
       return (figures.missingTextures > 0) == (value == "yes");
     }},
    {"type", "a part of the format's name: type:object, type:vxm",
     [](const QString& sign, const QString& value) { return isEqualSign(sign) && !value.isEmpty(); },
     [](const ModelFigures& figures, const QString&, const QString& value) {
       return figures.type.contains(value, Qt::CaseInsensitive);
     }},
};

FolderFilter::FolderFilter(const QString& text) {
  static const QRegularExpression condition("^([a-z]+)(:|=|<=|>=|<|>)(.*)$");
  for (const QString& word : text.toLower().simplified().split(' ', Qt::SkipEmptyParts)) {
    const QRegularExpressionMatch match = condition.match(word);
    if (match.hasMatch())
      addCondition(match.captured(1), match.captured(2), match.captured(3));
    else
      words_ += word;
  }
}

void FolderFilter::addCondition(const QString& name, const QString& sign, const QString& value) {
  const auto* field = std::ranges::find_if(fields, [&](const Field& one) { return name == one.name; });
  if (field == std::end(fields))
    error_ = QString("\"%1\" is no condition; there are tris>1000, missing:yes, type:object").arg(name);
  else if (!field->isReadable(sign, value))
    error_ = QString("%1 takes %2").arg(name, field->takes);
  else
    conditions_.push_back({field, sign, value});
}

bool FolderFilter::acceptsName(const QString& name) const {
  return std::ranges::all_of(words_,
                             [&](const QString& word) { return name.contains(word, Qt::CaseInsensitive); });
}

bool FolderFilter::acceptsFigures(const ModelFigures& figures) const {
  return std::ranges::all_of(
      conditions_, [&](const Condition& one) { return one.field->holds(figures, one.sign, one.value); });
}

}  // namespace facet
