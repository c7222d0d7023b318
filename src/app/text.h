#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace facet {

/// Bytes as text: UTF-8 where they are, otherwise one character a byte, as old model files hold them.
inline QString toQString(std::string_view bytes) {
  const auto view = QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size()));
  return view.isValidUtf8() ? QString::fromUtf8(view) : QString::fromLatin1(view);
}

inline std::string toBytes(const QString& text) {
  return text.toStdString();
}

}  // namespace facet
