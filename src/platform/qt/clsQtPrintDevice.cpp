#include "platform/qt/clsQtPrintDevice.h"

#include <QPen>
#include <algorithm>
#include <cmath>

#include "common/clsError.h"

namespace sandrel {
namespace {

constexpr int ScreenDpi = 96;
constexpr double LineInches = 0.25 / 72;  // thickness of the grid's lines

int Pixels(double inches) {
  return static_cast<int>(std::lround(inches * qt::PrintDpi));
}

}  // namespace

clsPainterDevice::clsPainterDevice(std::shared_ptr<clsTextMeasure> measure, int width, int height)
    : m_measure(std::move(measure)), m_width(width), m_height(height) {}

void clsPainterDevice::SetFont(const PrintFont& font) {
  m_font = font;
  m_fontIsSet = false;
}

clsTextMeasure& clsPainterDevice::Measure() const {
  m_measure->SetFont(m_font, qt::PrintDpi);
  return *m_measure;
}

PrintRect clsPainterDevice::DrawText(std::string_view text, const PrintRect& rect, unsigned flags) {
  const double room = (flags & drawtext::WordBreak) != 0 ? rect.Right - rect.Left : 1e9;
  clsTextMeasure& measure = Measure();
  const auto& lines = measure.Break(text, room);
  double widest = 0;
  for (const clsTextMeasure::Line& line : lines) widest = std::max(widest, line.Width);
  const PrintRect needed{rect.Left, rect.Top,
                         rect.Left + static_cast<int>(std::ceil(widest - 0.001)),
                         rect.Top + static_cast<int>(lines.size()) * measure.LineHeight()};
  if ((flags & drawtext::CalcRect) != 0) return needed;

  // Setting a clip is dear, and most texts fit.
  const bool clip =
      (flags & drawtext::NoClip) == 0 && (needed.Right > rect.Right || needed.Bottom > rect.Bottom);
  QPainter& painter = Painter();
  if (clip) {
    painter.save();
    painter.setClipRect(rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top);
  }
  DrawLines(text, lines, rect, (flags & drawtext::Right) != 0);
  if (clip) {
    painter.restore();
    m_fontIsSet = false;
  }
  return rect;
}

void clsPainterDevice::DrawLines(std::string_view text,
                                 const std::vector<clsTextMeasure::Line>& lines,
                                 const PrintRect& rect, bool right) {
  QPainter& painter = Painter();
  const clsTextMeasure& measure = Measure();
  if (!m_fontIsSet) painter.setFont(measure.FontFor(FontDpi()));
  m_fontIsSet = true;
  double top = rect.Top;
  for (const clsTextMeasure::Line& line : lines) {
    if (line.Length > 0) {
      const double left = right ? rect.Right - line.Width : rect.Left;
      painter.drawText(QPointF(left, top + measure.Ascent()),
                       clsTextMeasure::Shown(text.substr(line.From, line.Length)));
    }
    top += measure.LineHeight();
    if (top >= rect.Bottom) break;  // the rest is clipped
  }
}

// In whole pixels of the page or the screen, at least one of them thick: a finer line might fall
// between two.
void clsPainterDevice::Line(int x1, int y1, int x2, int y2) {
  QPainter& painter = Painter();
  const QTransform to = painter.worldTransform();
  const QPoint from = to.map(QPointF(std::min(x1, x2), std::min(y1, y2))).toPoint();
  const QPoint end = to.map(QPointF(std::max(x1, x2), std::max(y1, y2))).toPoint();
  const int thick = std::max(1, qRound(LineInches * qt::PrintDpi * to.m11()));
  painter.setWorldMatrixEnabled(false);
  painter.fillRect(from.x(), from.y(), end.x() - from.x() + thick, end.y() - from.y() + thick,
                   Qt::black);
  painter.setWorldMatrixEnabled(true);
}

clsPictureDevice::clsPictureDevice(std::shared_ptr<clsTextMeasure> measure, QSizeF sheet,
                                   double pixelRatio)
    : clsPainterDevice(std::move(measure), Pixels(sheet.width()), Pixels(sheet.height())),
      m_shown(sheet),
      m_pixelRatio(pixelRatio) {}

void clsPictureDevice::SetSize(double width, double height) {
  m_shown = QSizeF(width, height);
  Cls();
}

void clsPictureDevice::Cls() {
  ForgetPainter();
  m_painter.reset();
  m_image = QImage();
}

QSize clsPictureDevice::ShownSize() const {
  return QSizeF(m_shown * ScreenDpi).toSize().expandedTo({1, 1});
}

const QImage& clsPictureDevice::Image() {
  ForgetPainter();
  m_painter.reset();
  return m_image;
}

QPainter& clsPictureDevice::Painter() {
  if (m_painter != nullptr) return *m_painter;
  if (m_image.isNull()) {
    const QSize size = (QSizeF(ShownSize()) * m_pixelRatio).toSize();
    m_image = QImage(size, QImage::Format_RGB32);
    if (m_image.isNull()) {
      throw clsError(errnum::OutOfMemory, "There is no memory for a page of this size.",
                     "clsPictureDevice.Cls");
    }
    constexpr double InchesToMeter = 39.3701;
    m_image.setDotsPerMeterX(static_cast<int>(std::lround(72 * InchesToMeter)));
    m_image.setDotsPerMeterY(m_image.dotsPerMeterX());
    m_image.fill(Qt::white);
  }
  m_painter = std::make_unique<QPainter>(&m_image);
  m_painter->scale(static_cast<double>(m_image.width()) / PixelWidth(),
                   static_cast<double>(m_image.height()) / PixelHeight());
  return *m_painter;
}

double clsPictureDevice::FontDpi() const {
  return 72;
}

clsQtPictures::clsQtPictures(std::shared_ptr<clsTextMeasure> measure, QSizeF sheet,
                             double pixelRatio)
    : m_measure(std::move(measure)), m_sheet(sheet), m_pixelRatio(pixelRatio) {
  Load(0);
}

clsPictureDevice& clsQtPictures::Item(int index) {
  return *m_pictures.at(static_cast<std::size_t>(index));
}

void clsQtPictures::Load(int index) {
  while (Count() <= index) {
    auto picture = std::make_unique<clsPictureDevice>(m_measure, m_sheet, m_pixelRatio);
    if (!m_pictures.empty()) {
      picture->SetFont(m_pictures.front()->Font());
      const QSizeF size = m_pictures.front()->Shown();
      picture->SetSize(size.width(), size.height());
    }
    m_pictures.push_back(std::move(picture));
  }
}

}  // namespace sandrel
