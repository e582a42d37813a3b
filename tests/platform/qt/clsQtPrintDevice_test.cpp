// Measuring and drawing texts, on pictures and in PDF files.
#include "platform/qt/clsQtPrintDevice.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "platform/qt/clsQtPrinter.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

using test::NumberOf;
using test::TempFolder;

constexpr unsigned Measure = drawtext::CalcRect | drawtext::NoClip | drawtext::WordBreak;

// The lines of a text in a room that is as wide as `fitting`.
std::vector<std::string> LinesOf(const std::string& text, const std::string& fitting) {
  clsTextMeasure measure;
  measure.SetFont({}, qt::PrintDpi);
  std::vector<std::string> lines;
  for (const auto& line : measure.Break(text, measure.Width(fitting))) {
    lines.push_back(text.substr(line.From, line.Length));
    EXPECT_DOUBLE_EQ(line.Width, measure.Width(lines.back()));
  }
  return lines;
}

TEST(TextMeasure, BreaksAtBlanksAndLineEnds) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(LinesOf("one two three", "one two"), (Lines{"one two", "three"}));
  EXPECT_EQ(LinesOf("one two  three ", "one tw"), (Lines{"one", "two", "three"}));
  EXPECT_EQ(LinesOf("a overwide b", "ove"), (Lines{"a", "overwide", "b"}));
  EXPECT_EQ(LinesOf("a\r\n\nb\rc\td", "a c d"), (Lines{"a", "", "b", "c\td"}));
  EXPECT_EQ(LinesOf("  in front", "  in"), (Lines{"  in", "front"}));
  EXPECT_EQ(LinesOf("", "x"), Lines{""});
  EXPECT_EQ(LinesOf("ab cd", "ab\ncd\r\nab c"), (Lines{"ab", "cd"}));
}

// The quick sum over characters is what laying the text out gives.
TEST(TextMeasure, WidthsAreThoseOfTheFont) {
  QImage device(1, 1, QImage::Format_RGB32);
  device.setDotsPerMeterX(2835);
  device.setDotsPerMeterY(2835);
  for (const PrintFont& font : {PrintFont{}, PrintFont{"Liberation Serif", 12, true, true}}) {
    clsTextMeasure measure;
    measure.SetFont(font, qt::PrintDpi);
    const QFontMetricsF metrics(measure.FontFor(72), &device);
    for (const char* text : {"AVA office To fi", "Größe – Ω", "漢字 e\xCC\x81 \xF0\x9F\x98\x80"}) {
      EXPECT_NEAR(measure.Width(text), metrics.horizontalAdvance(QString::fromUtf8(text)), 0.05)
          << text;
    }
    const QFont printer = measure.FontFor(qt::PrintDpi);
    EXPECT_NEAR(printer.pointSizeF(), font.Size, 0.001);
  }
}

class Picture : public testing::Test {
 protected:
  /// The sheet's columns of pixels, from left to right, that hold ink in these rows.
  static std::vector<int> Inked(const QImage& image, int top, int bottom) {
    std::vector<int> columns;
    for (int x = 0; x < image.width(); ++x) {
      for (int y = top; y < bottom; ++y) {
        if (qGray(image.pixel(x, y)) > 160) continue;
        columns.push_back(x);
        break;
      }
    }
    return columns;
  }

  std::shared_ptr<clsTextMeasure> m_measure = std::make_shared<clsTextMeasure>();
};

TEST_F(Picture, HasTheSheetsInchesAtEveryZoom) {
  clsQtPictures pictures(m_measure, QSizeF(4, 2), 2.0);
  clsPictureDevice& device = pictures.Item(0);
  device.SetFont({"Arial", 20});
  const PrintRect needed = device.DrawText("some text", {0, 0, 10000, 10}, Measure);
  for (const double zoom : {0.5, 2.0}) {
    device.SetSize(4 * zoom, 2 * zoom);
    device.Mode = ScaleMode::Inches;
    EXPECT_DOUBLE_EQ(device.ScaleWidth(), 4);
    device.Mode = ScaleMode::Pixels;
    EXPECT_DOUBLE_EQ(device.ScaleHeight(), 1200);
    EXPECT_TRUE(device.Image().isNull());
    EXPECT_EQ(device.DrawText("some text", {0, 0, 10000, 10}, Measure), needed);
    device.DrawText("some text", needed, drawtext::WordBreak);
    device.Line(600, 900, 1200, 900);
    EXPECT_EQ(device.ShownSize(), QSize(384, 192) * zoom);
    const QImage& image = device.Image();
    EXPECT_EQ(image.size(), device.ShownSize() * 2);  // pixels of a fine screen
    // The ink is where it was measured, and the line where it was drawn.
    const double scale = image.width() / 2400.0;
    const auto text = Inked(image, 0, static_cast<int>(needed.Bottom * scale));
    EXPECT_NEAR(text.front(), 0, 0.02 * image.width());
    EXPECT_NEAR(text.back(), needed.Right * scale, 0.02 * image.width());
    const int y = static_cast<int>(900 * scale);
    const auto line = Inked(image, y, y + 1);
    EXPECT_NEAR(line.front(), 600 * scale, 1);
    EXPECT_NEAR(line.back(), 1200 * scale, 1);
    EXPECT_TRUE(Inked(image, y - 3, y - 1).empty());
  }
  pictures.Load(2);
  EXPECT_EQ(pictures.Count(), 3);
  EXPECT_EQ(pictures.Item(2).ShownSize(), device.ShownSize());
  EXPECT_TRUE(pictures.Item(2).Image().isNull()) << "a picture that isn't drawn on costs nothing";
}

TEST_F(Picture, TextsStayInTheirRectangle) {
  clsPictureDevice device(m_measure, QSizeF(2, 1), 1.0);
  device.SetFont({"Arial", 20});
  device.DrawText("overwide", {100, 0, 200, device.TextHeight()}, drawtext::WordBreak);
  device.DrawText("right", {0, 300, 1000, 500}, drawtext::Right);
  const auto clipped = Inked(device.Image(), 0, 40);
  EXPECT_GE(clipped.front(), 15);
  EXPECT_LE(clipped.back(), 32);
  EXPECT_NEAR(Inked(device.Image(), 48, 80).back(), 160, 3);
}

TEST(PdfFile, IsReplacedWhenItIsWhole) {
  const TempFolder temp;
  const std::string file = temp.Of("out.pdf");
  clsFileWorks::ReplaceWhole(file, "old");
  clsQtPrinter printer(true);
  EXPECT_TRUE(printer.WritesFile());
  printer.Choose({}, QPageSize(QPageSize::Letter), QPageLayout::Landscape);
  EXPECT_EQ(printer.Width(), 11 * 1440);
  EXPECT_DOUBLE_EQ(printer.PrintableHeight(), 8.5);
  EXPECT_EQ(printer.OffsetX(), 0);
  const auto draw = [](clsPrintDocument& document) {
    EXPECT_TRUE(document.Device().IsPrinter());
    EXPECT_EQ(document.Device().ScaleWidth(), 6600);
    document.Device().DrawText("text", {0, 0, 1000, 200}, drawtext::WordBreak);
    document.Device().NewPage();
  };
  draw(*printer.StartDoc("", file));  // not ended
  EXPECT_EQ(clsFileWorks::ReadWhole(file), "old");
  const auto document = printer.StartDoc("", file);
  draw(*document);
  document->EndDoc();
  const std::string pdf = clsFileWorks::ReadWhole(file);
  EXPECT_TRUE(pdf.starts_with("%PDF-"));
  EXPECT_NE(pdf.find("/MediaBox [0 0 792"), std::string::npos);

  const std::string none = temp.Of("none/out.pdf");
  EXPECT_EQ(NumberOf([&] { printer.StartDoc("", none); }), errnum::PathFileAccess);
  printer.Choose("no such printer", QPageSize(QPageSize::A4), QPageLayout::Portrait);
  EXPECT_EQ(NumberOf([&] { printer.StartDoc("", none); }), errnum::DeviceIo);
}

}  // namespace
}  // namespace sandrel
