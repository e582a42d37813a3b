// Measuring and drawing texts, on pictures and in PDF files.
#include "platform/qt/clsQtPrintDevice.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "platform/qt/clsQtPrinter.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

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

TEST(Picture, KeepsTextsInTheirRectangle) {
  clsPictureDevice device(std::make_shared<clsTextMeasure>(), QSizeF(2, 1), 1.0);
  device.SetFont({"Arial", 20});
  device.DrawText("overwide", {100, 0, 200, device.TextHeight()}, drawtext::WordBreak);
  device.DrawText("right", {0, 300, 1000, 500}, drawtext::Right);
  // The first and last column of pixels that holds ink in these rows.
  const auto inked = [&](int top, int bottom) {
    std::pair<int, int> columns(1000, 0);
    for (int x = 0; x < device.Image().width(); ++x) {
      for (int y = top; y < bottom; ++y) {
        if (qGray(device.Image().pixel(x, y)) <= 160) columns = {std::min(columns.first, x), x};
      }
    }
    return columns;
  };
  EXPECT_GE(inked(0, 40).first, 15);
  EXPECT_LE(inked(0, 40).second, 32);
  EXPECT_NEAR(inked(48, 80).second, 160, 3);
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
}  // namespace sandrel::test
