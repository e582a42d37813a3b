// The devices that pages are drawn on with Qt: a printer's pages and the pictures of a preview.
//
// A picture shows a sheet of paper at some zoom. It has the sheet's own inches and the printer's
// pixels whatever that zoom is, so that what is laid out on it is what the printer gets, to the
// last break of a line.
#pragma once

#include <QImage>
#include <QPainter>
#include <QSizeF>
#include <memory>
#include <vector>

#include "platform/printing/clsPrintDevice.h"
#include "platform/qt/clsTextMeasure.h"

namespace sandrel {

namespace qt {
/// Pixels to the inch of printers and of the sheets in pictures. Fine enough for print, and the
/// largest paper stays within 16 bits.
inline constexpr int PrintDpi = 600;
}  // namespace qt

/// What both have in common: texts and lines on a painter.
class clsPainterDevice : public clsPrintDevice {
 public:
  double ScaleWidth() const override { return InUnit(m_width); }
  double ScaleHeight() const override { return InUnit(m_height); }
  double DpiX() const override { return qt::PrintDpi; }
  double DpiY() const override { return qt::PrintDpi; }
  void SetFont(const PrintFont& font) override;
  const PrintFont& Font() const override { return m_font; }
  int TextHeight() const override { return Measure().LineHeight(); }
  double TextWidth(std::string_view text) const override { return InUnit(Measure().Width(text)); }
  PrintRect DrawText(std::string_view text, const PrintRect& rect, unsigned flags) override;
  void Line(int x1, int y1, int x2, int y2) override;

 protected:
  /// `width` and `height` are pixels. Devices may share a measure, whatever their fonts.
  clsPainterDevice(std::shared_ptr<clsTextMeasure> measure, int width, int height);

  /// Where is drawn now.
  virtual QPainter& Painter() = 0;
  /// Pixels to the inch that the painter's fonts are for.
  virtual double FontDpi() const = 0;
  void SetPixels(int width, int height) { m_width = width, m_height = height; }
  int PixelWidth() const { return m_width; }
  int PixelHeight() const { return m_height; }
  void ForgetPainter() { m_fontIsSet = false; }

 private:
  double InUnit(double pixels) const {
    return Mode == sandrel::ScaleMode::Pixels ? pixels : pixels / qt::PrintDpi;
  }
  clsTextMeasure& Measure() const;
  void DrawLines(std::string_view text, const std::vector<clsTextMeasure::Line>& lines,
                 const PrintRect& rect, bool right);

  std::shared_ptr<clsTextMeasure> m_measure;
  PrintFont m_font;
  int m_width, m_height;
  bool m_fontIsSet = false;  // on the painter
};

/// A sheet of paper on the screen.
class clsPictureDevice final : public clsPainterDevice {
 public:
  /// `sheet` is in inches. It takes memory for pixels when it is drawn on first.
  clsPictureDevice(std::shared_ptr<clsTextMeasure> measure, QSizeF sheet, double pixelRatio);

  bool IsPrinter() const override { return false; }
  int PhysicalOffsetX() const override { return 0; }
  int PhysicalOffsetY() const override { return 0; }
  void NewPage() override {}
  void Cls() override;
  /// The size in which the sheet shows: the zoom.
  void SetSize(double width, double height) override;

  /// Size on the screen, in its pixels without regard to their ratio.
  QSize ShownSize() const;
  QSizeF Shown() const { return m_shown; }  ///< inches
  /// The picture in pixels of the screen; null when nothing was drawn.
  const QImage& Image();

 private:
  QPainter& Painter() override;
  double FontDpi() const override;

  QSizeF m_shown;  // inches
  double m_pixelRatio;
  QImage m_image;
  std::unique_ptr<QPainter> m_painter;  // of m_image, which it ends before
};

/// The pictures of a preview.
class clsQtPictures final : public clsPictures {
 public:
  clsQtPictures(std::shared_ptr<clsTextMeasure> measure, QSizeF sheet, double pixelRatio);

  clsPictureDevice& Item(int index) override;
  void Load(int index) override;
  int Count() const { return static_cast<int>(m_pictures.size()); }

 private:
  std::shared_ptr<clsTextMeasure> m_measure;
  QSizeF m_sheet;
  double m_pixelRatio;
  std::vector<std::unique_ptr<clsPictureDevice>> m_pictures;
};

}  // namespace sandrel
