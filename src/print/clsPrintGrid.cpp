#include "print/clsPrintGrid.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "common/text.h"
#include "print/modBreakWords.h"

namespace sandrel {
namespace {

constexpr const char* FontSection = "PrintGridFont";
constexpr double PointsOfInch = 72;
constexpr double TwipsOfInch = 1440;

PrintFont ReadFont(clsSettings& settings) {
  const auto read = [&](const char* key, const char* fallback) {
    return settings.GetSetting(FontSection, key, fallback);
  };
  const auto flag = [&](const char* key) { return text::ReadBoolean(read(key, "False"), false); };
  PrintFont font;
  font.Bold = flag("Bold");
  font.Italic = flag("Italic");
  if (std::string name = read("Name", "Arial"); !name.empty()) font.Name = std::move(name);
  if (const double size = text::Val(read("Size", "8.25")); size >= 1 && size <= 1000) {
    font.Size = size;
  }
  font.StrikeThrough = flag("StrikeThrough");
  font.Underline = flag("Underline");
  return font;
}

void WriteFont(clsSettings& settings, const PrintFont& font) {
  settings.Together([&] {
    const auto write = [&](const char* key, const std::string& text) {
      if (settings.GetSetting(FontSection, key) == text) return;
      settings.SaveSetting(FontSection, key, text);
    };
    write("Bold", text::BooleanText(font.Bold));
    write("Italic", text::BooleanText(font.Italic));
    write("Name", font.Name);
    write("Size", fmt::format("{}", font.Size));
    write("StrikeThrough", text::BooleanText(font.StrikeThrough));
    write("Underline", text::BooleanText(font.Underline));
  });
}

/// Whole pixels in an inch; leaves the device's unit at pixels.
GridScale ScaleOf(clsPrintDevice& device) {
  device.Mode = ScaleMode::Inches;
  const double width = device.ScaleWidth(), height = device.ScaleHeight();
  device.Mode = ScaleMode::Pixels;
  if (!(width > 0 && height > 0)) {
    throw clsError(errnum::PageTooSmall, "The page has no size to print on.");
  }
  return {static_cast<int>(std::floor(device.ScaleWidth() / width + 0.5)),
          static_cast<int>(std::floor(device.ScaleHeight() / height + 0.5))};
}

/// Where what can be drawn on begins, inches.
struct Offset {
  double X = 0, Y = 0;
};

Offset PhysicalOffset(const clsPrintDevice& device) {
  if (!device.IsPrinter()) return {};
  return {device.PhysicalOffsetX() / device.DpiX(), device.PhysicalOffsetY() / device.DpiY()};
}

/// Cuts one direction's margin and length to what the printer can print on. `begin` and `printable`
/// are the printer's, `deviceBegin` is of what is drawn on.
void Cut(float& margin, float& length, double begin, double printable, double deviceBegin) {
  if (margin < begin) margin = static_cast<float>(deviceBegin);
  if (length > printable) length = static_cast<float>(printable);
  const double beyond = length + margin - (begin + printable);
  if (beyond > 0) length = static_cast<float>(length - beyond);
}

}  // namespace

clsPrintGrid::clsPrintGrid(clsSettings& settings) : Font(ReadFont(settings)), m_settings(settings) {
  SetNumColumns(1);
}

void clsPrintGrid::SaveFont() {
  WriteFont(m_settings, Font);
}

clsPrintGrid::~clsPrintGrid() {
  try {
    WriteFont(m_settings, Font);
  } catch (const clsError&) {
    // The font is a convenience: what was printed stays printed.
  }
}

void clsPrintGrid::SetNumColumns(int columns) {
  if (columns < 0 || columns > MaxColumns) {
    throw clsError(errnum::SubscriptOutOfRange, "Subscript out of range",
                   "clsPrintGrid.NumColumns");
  }
  m_numColumns = columns;
  MinColumnWidths.Clear();
  for (int column = 1; column <= columns; ++column) {
    MinColumnWidths.Add(column, DefaultMinColumnWidth);
  }
}

void clsPrintGrid::SetNumRows(int rows) {
  if (rows < 0 || rows > MaxRows) {
    throw clsError(errnum::SubscriptOutOfRange, "Subscript out of range", "clsPrintGrid.NumRows");
  }
  m_numRows = rows;
}

PrintFont clsPrintGrid::ScaledFont(double scaleFactor) const {
  PrintFont font = Font;
  font.Size *= scaleFactor;
  return font;
}

double clsPrintGrid::ScalePicPreviewToPrinterInches(clsPrintDevice& picture, const clsPaper& paper,
                                                    int zoomPercent) const {
  return RaiseAs("clsPrintGrid.ScalePicPreviewToPrinterInches", [&] {
    double factor = std::clamp(zoomPercent / 100.0, 0.01, 2.0);
    picture.SetFont(ScaledFont(factor));
    // Text and page are scaled together, by what the picture made of the font's size.
    if (const double taken = picture.Font().Size; taken > 0) factor = taken / Font.Size;
    picture.SetSize(paper.Width() / TwipsOfInch * factor, paper.Height() / TwipsOfInch * factor);
    picture.Cls();
    return factor;
  });
}

std::string clsPrintGrid::BreakIfNoSpaceIn(double width, const std::string& text,
                                           clsPrintDevice& device) const {
  return RaiseAs("clsPrintGrid.BreakIfNoSpaceIn", [&]() -> std::string {
    const ScaleMode mode = device.Mode;
    const GridScale scale = ScaleOf(device);
    device.SetFont(Font);
    bool isWide = false;
    try {
      // Pixels against inches: nearly any text goes on to be measured.
      isWide = device.TextWidth(text) > width;
    } catch (const clsError& error) {
      if (error.Number() == errnum::Overflow) return text;
      throw;
    }
    if (isWide) {
      const PrintRect size =
          clsGridLayout::SizeOf(text, GridScale::Pixels(scale.X * width), device);
      if (scale.X * width >= size.Right - size.Left) return text;
      device.Mode = ScaleMode::Inches;
    }
    std::string result = isWide ? BreakWords(text, width, device) : text;
    device.Mode = mode;
    return result;
  });
}

bool clsPrintGrid::PrintGrid(PrintArea& area, const clsPaper& paper, clsPictures& pictures,
                             double scaleFactor, PageRange range) {
  return Print(area, paper, pictures.Item(0), &pictures, scaleFactor, range);
}

bool clsPrintGrid::PrintGrid(PrintArea& area, const clsPaper& paper, clsPrintDevice& printer,
                             double scaleFactor) {
  return Print(area, paper, printer, nullptr, scaleFactor, {});
}

bool clsPrintGrid::Print(PrintArea& area, const clsPaper& paper, clsPrintDevice& device,
                         clsPictures* pictures, double scaleFactor, PageRange range) {
  return RaiseAs("clsPrintGrid.PrintGrid", [&] {
    m_numPages = 0;
    const clsScaleModeGuard guard(device);
    const PrintFont font = ScaledFont(scaleFactor);
    device.SetFont(font);
    const GridFrame frame = FrameOf(area, paper, device, scaleFactor);
    Measure(device, scaleFactor);
    clsGridPages pages(m_cells, m_layout, frame, Caption, font, device, pictures, range);
    try {
      pages.Run();
    } catch (...) {
      m_numPages = pages.PageNumber();
      throw;
    }
    m_numPages = pages.PageNumber();
    return pages.PagePrinted();
  });
}

/// Corrects the area to what the printer can print on and puts it in the device's pixels.
GridFrame clsPrintGrid::FrameOf(PrintArea& area, const clsPaper& paper, clsPrintDevice& device,
                                double scaleFactor) const {
  const Offset offset = PhysicalOffset(device);
  Cut(area.LeftMargin, area.PrintWidth, paper.OffsetX(), paper.PrintableWidth(), offset.X);
  Cut(area.TopMargin, area.PrintHeight, paper.OffsetY(), paper.PrintableHeight(), offset.Y);
  const GridScale scale = ScaleOf(device);
  const auto pixels = [&](int perInch, double inches) {
    return GridScale::Pixels(perInch * (inches * scaleFactor));
  };
  const auto space = [&](int points, int perInch) {
    return GridScale::Pixels(points / PointsOfInch * perInch * scaleFactor);
  };
  GridFrame frame;
  frame.Left = pixels(scale.X, area.LeftMargin - offset.X);
  frame.Width = pixels(scale.X, area.PrintWidth);
  frame.Top = pixels(scale.Y, area.TopMargin - offset.Y);
  frame.Height = pixels(scale.Y, area.PrintHeight);
  frame.HorizSpace = space(HorizPointsSpace, scale.X);
  frame.VertSpace = space(VertPointsSpace, scale.Y);
  frame.LineHeight = device.TextHeight();
  if (frame.LineHeight <= 0) {
    throw clsError(errnum::PrintMetrics, "Error getting print meterics.");
  }
  return frame;
}

void clsPrintGrid::Measure(clsPrintDevice& device, double scaleFactor) {
  GridShape shape;
  shape.Rows = m_numRows;
  shape.Columns = m_numColumns;
  for (int column = 1; column <= m_numColumns; ++column) {
    shape.MinWidths.push_back(MinColumnWidths.Item(column).Width);
  }
  shape.MaxFieldLength = MaxFieldLength;
  shape.Scale = ScaleOf(device);
  shape.Scale.Factor = scaleFactor;
  shape.Font = device.Font();
  shape.OnPrinter = device.IsPrinter();
  m_layout.Measure(shape, m_cells, device);
}

}  // namespace sandrel
