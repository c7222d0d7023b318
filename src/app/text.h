#pragma once

#include <QString>
#include <string>

#include "platform/text.h"

namespace facet {

/// Bytes as text: UTF-8 where they are, otherwise one character a byte.
inline QString toQString(std::string_view bytes) {
  return QString::fromStdString(utf8FromPath(bytes));
}

inline std::string toBytes(const QString& text) {
  return text.toStdString();
}

}  // namespace facet
