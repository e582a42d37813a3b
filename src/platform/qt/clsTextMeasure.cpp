#include "platform/qt/clsTextMeasure.h"

#include <QFontInfo>
#include <algorithm>
#include <cmath>

#include "common/text.h"

namespace sandrel {
namespace {

constexpr double Tolerance = 1e-6;  // of a sum of widths
constexpr std::size_t MostWords = 1 << 16;

bool IsLineEnd(char c) {
  return c == '\n' || c == '\r';
}

// Tabs and stray control characters stand for blanks: a printed cell has no use for them.
bool IsBlank(char c) {
  return (static_cast<unsigned char>(c) <= ' ' && !IsLineEnd(c)) || c == '\x7F';
}

}  // namespace

clsTextMeasure::clsTextMeasure()
    : m_device(1, 1, QImage::Format_RGB32), m_metrics(m_font, &m_device) {
  constexpr double InchesToMeter = 39.3701;
  m_device.setDotsPerMeterX(static_cast<int>(std::lround(72 * InchesToMeter)));
  m_device.setDotsPerMeterY(m_device.dotsPerMeterX());
}

void clsTextMeasure::SetFont(const PrintFont& font, double dpi) {
  if (m_dpi == dpi && m_asked == font) return;
  m_asked = font;
  m_dpi = dpi;
  m_pixelSize = std::max(0.1, font.Size * dpi / 72);
  m_font = QFont(QString::fromStdString(font.Name));
  m_font.setPointSizeF(m_pixelSize);
  m_font.setBold(font.Bold);
  m_font.setItalic(font.Italic);
  m_font.setStrikeOut(font.StrikeThrough);
  m_font.setUnderline(font.Underline);
  // Widths that grow with the size alone, and don't depend on neighbours.
  m_font.setHintingPreference(QFont::PreferNoHinting);
  m_font.setKerning(false);
  m_metrics = QFontMetricsF(m_font, &m_device);
  m_ascent = m_metrics.ascent();
  m_lineHeight =
      IsThere(m_font) ? static_cast<int>(std::ceil(m_metrics.ascent() + m_metrics.descent())) : 0;
  m_characters.fill(-1);
  m_words.clear();
  m_blank = m_metrics.horizontalAdvance(' ');
  m_addsUp = AddsUp();
}

// The toolkit lists generic families even then, and draws boxes in a font without a name.
bool clsTextMeasure::IsThere(const QFont& font) {
  return !QFontInfo(font).family().isEmpty();
}

QFont clsTextMeasure::FontFor(double dpi) const {
  QFont font = m_font;
  font.setPointSizeF(m_pixelSize * 72 / dpi);
  return font;
}

// Not so where letters join or make way for others.
bool clsTextMeasure::AddsUp() const {
  const QString sample = "AVATo fi fl ff ffi ffl fj tt Th C:\\WINDOWS\\system32\\11-->=!=...";
  double sum = 0;
  for (const QChar character : sample) sum += m_metrics.horizontalAdvance(character);
  return std::abs(sum - m_metrics.horizontalAdvance(sample)) < 0.01;
}

QString clsTextMeasure::Shown(std::string_view text) {
  QString shown = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  for (QChar& character : shown) {
    if (character.unicode() < ' ' || character.unicode() == 0x7F) character = ' ';
  }
  return shown;
}

// A sum over the characters costs a fraction of laying the word out.
double clsTextMeasure::MeasureWord(std::string_view word) {
  double sum = 0;
  bool simple = m_addsUp;
  for (std::size_t position = 0; simple && position < word.size();) {
    const char32_t character = text::Next(word, position);
    if (character >= Simple) {
      simple = false;
      break;
    }
    double& width = m_characters[character];
    if (width < 0) width = m_metrics.horizontalAdvance(QChar(static_cast<char16_t>(character)));
    sum += width;
  }
  if (simple) return sum;
  if (m_words.size() >= MostWords) m_words.clear();
  const auto [found, isNew] = m_words.try_emplace(std::string(word), 0);
  if (isNew) found->second = m_metrics.horizontalAdvance(Shown(word));
  return found->second;
}

double clsTextMeasure::Width(std::string_view text) {
  double widest = 0, width = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (IsLineEnd(text[at])) {
      widest = std::max(widest, width);
      width = 0;
      ++at;
    } else if (IsBlank(text[at])) {
      width += m_blank;
      ++at;
    } else {
      std::size_t end = at;
      while (end < text.size() && !IsBlank(text[end]) && !IsLineEnd(text[end])) ++end;
      width += MeasureWord(text.substr(at, end - at));
      at = end;
    }
  }
  return std::max(widest, width);
}

// Blanks in front of the first word belong to it; others go with a break.
void clsTextMeasure::BreakParagraph(std::string_view text, std::size_t from, std::size_t end,
                                    double width) {
  Line line{from, 0, 0};
  bool hasWord = false;
  for (std::size_t at = from; at < end;) {
    const std::size_t blanks = at;
    while (at < end && IsBlank(text[at])) ++at;
    if (at == end) break;
    const std::size_t word = at;
    while (at < end && !IsBlank(text[at])) ++at;
    const double wordWidth = MeasureWord(text.substr(word, at - word));
    const double before = static_cast<double>(word - blanks) * m_blank;
    if (hasWord && line.Width + before + wordWidth > width + Tolerance) {
      m_lines.push_back(line);
      line = {word, at - word, wordWidth};
    } else {
      line.Length = at - line.From;
      line.Width += before + wordWidth;
    }
    hasWord = true;
  }
  m_lines.push_back(line);
}

const std::vector<clsTextMeasure::Line>& clsTextMeasure::Break(std::string_view text,
                                                               double width) {
  m_lines.clear();
  std::size_t from = 0;
  for (;;) {
    const std::size_t end = std::min(text.find_first_of("\r\n", from), text.size());
    BreakParagraph(text, from, end, width);
    if (end == text.size()) return m_lines;
    from = end + (text.substr(end, 2) == "\r\n" ? 2 : 1);
  }
}

}  // namespace sandrel
