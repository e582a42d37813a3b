// Texts for the toolkit.
#pragma once

#include <QFont>
#include <QFontMetrics>
#include <QString>
#include <string_view>

namespace sandrel::qt {

/// Of a text in UTF-8; bytes that are none give replacement characters.
inline QString FromText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The best width of a text for reading, pixels.
inline int ReadableWidth(const QFont& font) {
  constexpr int Characters = 92;
  return QFontMetrics(font).averageCharWidth() * Characters;
}

}  // namespace sandrel::qt
