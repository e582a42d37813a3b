// A print device with fixed metrics that remembers what was drawn: every character is 6 pixels
// wide, a line 10 high, an inch 96 pixels.
#pragma once

#include <algorithm>
#include <cmath>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "common/clsError.h"
#include "common/text.h"
#include "platform/printing/clsPrintDevice.h"

namespace sandrel::test {

class PrintRecorder : public clsPrintDevice {
 public:
  struct Text {
    std::string Value;
    PrintRect Rect;
    unsigned Flags;
    bool operator==(const Text&) const = default;
  };
  struct Page {
    std::vector<Text> Texts;
    std::vector<PrintRect> Lines;  // from left, top to right, bottom
  };

  int WidthPixels = 0, HeightPixels = 0;
  int Offset = 0;
  bool Printer = false;
  bool RoundsFonts = false;  // to whole points
  int LineHeight = 10;
  int TextWidthError = 0;  // raised by TextWidth
  std::vector<Page> Pages{{}};
  int Measured = 0, Emptied = 0;

  bool IsPrinter() const override { return Printer; }
  double ScaleWidth() const override { return Scaled(WidthPixels); }
  double ScaleHeight() const override { return Scaled(HeightPixels); }
  int PhysicalOffsetX() const override { return Offset; }
  int PhysicalOffsetY() const override { return Offset; }
  double DpiX() const override { return 96; }
  double DpiY() const override { return 96; }
  void SetFont(const PrintFont& font) override {
    m_font = font;
    if (RoundsFonts) m_font.Size = std::nearbyint(font.Size);
  }
  const PrintFont& Font() const override { return m_font; }
  int TextHeight() const override { return LineHeight; }
  double TextWidth(std::string_view text) const override {
    if (TextWidthError != 0) throw clsError(TextWidthError, "Told to fail");
    return Scaled(WidthOf(text));
  }
  PrintRect DrawText(std::string_view text, const PrintRect& rect, unsigned flags) override {
    if ((flags & drawtext::CalcRect) == 0) {
      Pages.back().Texts.push_back({std::string(text), rect, flags});
      return rect;
    }
    ++Measured;
    int lines = 0, widest = 0, line = 0;
    for (std::string_view rest = text; lines == 0 || !rest.empty();) {
      const std::size_t blank = std::min(rest.find(' '), rest.size());
      const int word = WidthOf(rest.substr(0, blank));
      if (lines == 0 || line + 6 + word > rect.Right - rect.Left) {
        ++lines;
        line = word;
      } else {
        line += 6 + word;
      }
      widest = std::max(widest, line);
      rest.remove_prefix(std::min(blank + 1, rest.size()));
    }
    return {rect.Left, rect.Top, rect.Left + widest, rect.Top + lines * LineHeight};
  }
  void Line(int x1, int y1, int x2, int y2) override {
    Pages.back().Lines.push_back({x1, y1, x2, y2});
  }
  void NewPage() override { Pages.emplace_back(); }
  void Cls() override { ++Emptied; }
  void SetSize(double width, double height) override {
    WidthPixels = static_cast<int>(std::lround(width * 96));
    HeightPixels = static_cast<int>(std::lround(height * 96));
  }

 private:
  static int WidthOf(std::string_view text) { return static_cast<int>(text::Length(text)) * 6; }
  double Scaled(int pixels) const { return Mode == ScaleMode::Inches ? pixels / 96.0 : pixels; }

  PrintFont m_font;
};

/// A sheet of 6.5 x 4.5 inches with an edge of 0.25 that can't be printed on.
class PaperRecorder final : public clsPaper {
 public:
  int Width() const override { return 9360; }
  int Height() const override { return 6480; }
  double PrintableWidth() const override { return 6; }
  double PrintableHeight() const override { return 4; }
  double OffsetX() const override { return 0.25; }
  double OffsetY() const override { return 0.25; }
};

/// A printer with that paper.
class PrinterRecorder final : public PrintRecorder {
 public:
  PrinterRecorder() {
    Printer = true;
    WidthPixels = 576;
    HeightPixels = 384;
    Offset = 24;
  }
};

/// Pictures of that sheet.
class PicturesRecorder final : public clsPictures {
 public:
  PicturesRecorder() : Pictures(1) { Pictures[0].SetSize(6.5, 4.5); }
  clsPrintDevice& Item(int index) override { return Pictures.at(static_cast<std::size_t>(index)); }
  void Load(int index) override {
    Loaded.push_back(index);
    if (static_cast<std::size_t>(index) < Pictures.size()) return;
    Pictures.emplace_back().SetSize(6.5, 4.5);
  }
  std::deque<PrintRecorder> Pictures;
  std::vector<int> Loaded;
};

}  // namespace sandrel::test
