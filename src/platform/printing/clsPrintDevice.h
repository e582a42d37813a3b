// What a page is drawn on: a printer, a picture of the preview, or a recorder in tests.
//
// Pixels are the device's own. Sizes of fonts are in points, paper is measured in inches and twips
// (1440 to the inch).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sandrel {

struct PrintFont {
  std::string Name = "Arial";
  double Size = 8.25;  ///< points
  bool Bold = false;
  bool Italic = false;
  bool StrikeThrough = false;
  bool Underline = false;
  bool operator==(const PrintFont&) const = default;
};

struct PrintRect {
  int Left = 0, Top = 0, Right = 0, Bottom = 0;  // pixels
  bool operator==(const PrintRect&) const = default;
};

/// Flags of DrawText, by the platform's numbers.
namespace drawtext {
inline constexpr unsigned Right = 0x002;      ///< aligned to the right edge, in one line
inline constexpr unsigned WordBreak = 0x010;  ///< lines break at blanks and line ends
inline constexpr unsigned NoClip = 0x100;
inline constexpr unsigned CalcRect = 0x400;  ///< measures and draws nothing
}  // namespace drawtext

/// Units of ScaleWidth, ScaleHeight and TextWidth, by the platform's numbers.
enum class ScaleMode : std::uint8_t { Pixels = 3, Inches = 5 };

class clsPrintDevice {
 public:
  virtual ~clsPrintDevice() = default;

  /// True for a printer, whose pages are told by NewPage; false for a picture, which is one page.
  virtual bool IsPrinter() const = 0;

  /// The unit in force; the caller puts it back.
  sandrel::ScaleMode Mode = sandrel::ScaleMode::Pixels;
  /// Size of what can be drawn on, in the unit in force.
  virtual double ScaleWidth() const = 0;
  virtual double ScaleHeight() const = 0;
  /// Pixels between the paper's edge and what can be drawn on; 0 for a picture.
  virtual int PhysicalOffsetX() const = 0;
  virtual int PhysicalOffsetY() const = 0;
  /// Pixels in an inch.
  virtual double DpiX() const = 0;
  virtual double DpiY() const = 0;

  virtual void SetFont(const PrintFont& font) = 0;
  /// The font as the device took it: its size may have been rounded.
  virtual const PrintFont& Font() const = 0;
  /// Height of a line in pixels; 0 when the device can't tell.
  virtual int TextHeight() const = 0;
  /// Width of the text's widest line, unbroken, in the unit in force.
  virtual double TextWidth(std::string_view text) const = 0;

  /// Draws the text into the rectangle, clipped by it unless NoClip is set. With CalcRect it gives
  /// the rectangle that the text needs instead: with WordBreak its width is that of the widest line
  /// when lines break at blanks to fit the given width (a word that is wider stands alone on its
  /// line and widens the result), its height that of all lines.
  virtual PrintRect DrawText(std::string_view text, const PrintRect& rect, unsigned flags) = 0;
  /// A black line in pixels, its last point included.
  virtual void Line(int x1, int y1, int x2, int y2) = 0;

  /// Ends the printer's page and begins another one.
  virtual void NewPage() = 0;
  /// Empties a picture.
  virtual void Cls() = 0;
  /// Gives a picture another size, in inches. Neither of the two is called for a printer.
  virtual void SetSize(double width, double height) = 0;
};

/// Puts the device's unit back.
class clsScaleModeGuard {
 public:
  explicit clsScaleModeGuard(clsPrintDevice& device) : m_device(device), m_mode(device.Mode) {}
  ~clsScaleModeGuard() { m_device.Mode = m_mode; }
  clsScaleModeGuard(const clsScaleModeGuard&) = delete;
  clsScaleModeGuard& operator=(const clsScaleModeGuard&) = delete;

 private:
  clsPrintDevice& m_device;
  ScaleMode m_mode;
};

/// The pictures of a preview; number 0 is always there.
class clsPictures {
 public:
  virtual ~clsPictures() = default;
  virtual clsPrintDevice& Item(int index) = 0;
  /// Makes another picture of the size and font of number 0; nothing when there is one.
  virtual void Load(int index) = 0;
};

/// The paper of the printer that is chosen.
class clsPaper {
 public:
  virtual ~clsPaper() = default;
  /// The whole sheet, twips.
  virtual int Width() const = 0;
  virtual int Height() const = 0;
  /// What the printer can print on, and where that begins, inches.
  virtual double PrintableWidth() const = 0;
  virtual double PrintableHeight() const = 0;
  virtual double OffsetX() const = 0;
  virtual double OffsetY() const = 0;
};

}  // namespace sandrel
