// A square of 16 x 16 units on which icons are drawn.
//
// Edges that run along the grid are moved to whole device pixels, so that they are sharp at any
// size; only round and slanted lines are smoothed. Colours are asked for by hue and tone: what a
// hue looks like on a dark window or in a disabled command is decided here, once.
#pragma once

#include <QPainter>
#include <QPainterPath>
#include <QPointF>
#include <cstdint>
#include <initializer_list>

namespace sandrel::icons {

enum class Hue : std::uint8_t {
  Paper,
  White,
  Slate,  ///< the neutral hue, which stands out from light and dark windows alike
  Ink,    ///< writing on paper
  Folder,
  Amber,
  Red,
  Green,
  Teal,
  Blue,
  Violet
};

enum class Tone : std::uint8_t { Light, Base, Edge };

/// How a picture is to look; equal looks of one size are equal pictures.
struct Look {
  bool Dark = false;      ///< on a dark window
  bool Disabled = false;  ///< in greys
  bool operator==(const Look&) const = default;
};

class clsIconCanvas {
 public:
  /// Draws on the `side` x `side` device pixels at the painter's origin. The painter has no
  /// transformation, is not owned, and outlives the canvas.
  clsIconCanvas(QPainter& painter, int side, Look look);

  /// Whether a unit is less than one and a half pixels: details of half a unit have no room.
  bool IsSmall() const { return m_scale < 1.5; }
  QColor Colour(Hue hue, Tone tone) const;

  // Shapes, to fill; positions and sizes in units, with edges on whole pixels.
  QPainterPath Box(double x, double y, double width, double height, double radius = 0) const;
  /// Its diameter is a whole number of pixels; discs round one centre stay concentric.
  QPainterPath Disc(double centreX, double centreY, double radius) const;
  QPainterPath Polygon(std::initializer_list<QPointF> corners) const;
  /// A line along the grid: at least one pixel thick, and as thick wherever it lies.
  QPainterPath Bar(double x, double y, double width, double height) const;
  /// A shape built in units, as it stands.
  QPainterPath Free(const QPainterPath& units) const;
  /// The outline of a line of this width drawn along a path, both in units.
  QPainterPath Stroke(const QPainterPath& units, double width,
                      Qt::PenCapStyle cap = Qt::FlatCap) const;

  void Fill(const QPainterPath& shape, Hue hue, Tone tone);
  /// Fills with the hue's light tone running into its base tone, from top to bottom.
  void Shade(const QPainterPath& shape, Hue hue);
  /// Shades, and draws the hue's edge along the inside of the shape.
  void Body(const QPainterPath& shape, Hue hue);
  /// Takes the shape and `margin` units round it out of the picture, so that what is drawn there
  /// next stands free on any background.
  void CutOut(const QPainterPath& shape, double margin);

 private:
  double Snap(double units) const;
  double Thickness(double units) const;

  QPainter& m_painter;
  double m_scale;  // pixels a unit
  Look m_look;
};

}  // namespace sandrel::icons
