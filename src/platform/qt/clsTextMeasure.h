// Measures texts in a font and breaks them into lines. A printer and a preview share its results,
// so that both break every text at the same places.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QString>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/printing/clsPrintDevice.h"

namespace sandrel {

class clsTextMeasure {
 public:
  /// The bytes of a line in its text (UTF-8), without the blanks at which it was broken, and its
  /// width in pixels.
  struct Line {
    std::size_t From = 0, Length = 0;
    double Width = 0;
  };

  clsTextMeasure();

  /// False where no fonts are installed, so that not even another one can stand in for `font`.
  static bool IsThere(const QFont& font);

  /// At `dpi` pixels to the inch. Costs nothing for the font that is set.
  void SetFont(const PrintFont& font, double dpi);
  /// The font for a painter with this many pixels to the inch.
  QFont FontFor(double dpi) const;

  /// Pixels from the top of a line to its base line, and to the next line.
  double Ascent() const { return m_ascent; }
  int LineHeight() const { return m_lineHeight; }
  /// Width of the text's widest line, unbroken.
  double Width(std::string_view text);
  /// Lines break at blanks where they would be wider than `width`, and at line ends; a wider word
  /// has a line of its own. An empty text has one line. The result lives until the next call.
  const std::vector<Line>& Break(std::string_view text, double width);

  /// A part of a text as it is drawn, without control characters.
  static QString Shown(std::string_view text);

 private:
  static constexpr std::size_t Simple = 0x250;  // Latin characters end here

  bool AddsUp() const;
  double MeasureWord(std::string_view word);
  void BreakParagraph(std::string_view text, std::size_t from, std::size_t end, double width);

  QImage m_device;  // one with 72 pixels to the inch: points are pixels
  PrintFont m_asked;
  double m_dpi = 0;
  QFont m_font;
  QFontMetricsF m_metrics;
  double m_pixelSize = 0;
  double m_ascent = 0;
  int m_lineHeight = 0;
  bool m_addsUp = false;  // a text is as wide as its characters together
  double m_blank = 0;
  std::array<double, Simple> m_characters{};        // widths; below 0 where unknown
  std::unordered_map<std::string, double> m_words;  // that hold other characters
  std::vector<Line> m_lines;
};

}  // namespace sandrel
