#include "platform/qt/clsIconCanvas.h"

#include <QLinearGradient>
#include <QPainterPathStroker>
#include <QPolygonF>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>

namespace sandrel::icons {
namespace {

constexpr double GridUnits = 16;

using Tones = std::array<QRgb, 3>;  // Light, Base, Edge

// In the order of Hue.
constexpr std::array<Tones, 11> OnLight = {{{0xFFFFFF, 0xE8EEF4, 0x70808F},
                                            {0xFFFFFF, 0xFFFFFF, 0xFFFFFF},
                                            {0x8997A5, 0x5B6977, 0x3F4C58},
                                            {0x8997A5, 0x5B6977, 0x3F4C58},
                                            {0xFFDA80, 0xF3B63B, 0xB07A18},
                                            {0xFFC552, 0xEE9A12, 0xA86300},
                                            {0xF27A72, 0xD6342C, 0x9C1F19},
                                            {0x4FC263, 0x23963F, 0x156A2C},
                                            {0x5CCCC2, 0x1F9E95, 0x0E6A65},
                                            {0x66B0F5, 0x2C7CD6, 0x1A58A3},
                                            {0xA990F2, 0x7B58D3, 0x573AA6}}};

constexpr std::array<Tones, 11> OnDark = {{{0xF7F9FB, 0xD3DBE3, 0x8593A1},
                                           {0xFFFFFF, 0xFFFFFF, 0xFFFFFF},
                                           {0xD2DAE2, 0xA9B5C1, 0x8593A1},
                                           {0x8997A5, 0x5B6977, 0x3F4C58},
                                           {0xFFDA80, 0xEDB23C, 0xC08A28},
                                           {0xFFCE6B, 0xF5A726, 0xC47C0C},
                                           {0xFF9088, 0xEB5048, 0xC23A32},
                                           {0x74DB86, 0x3DB95A, 0x279644},
                                           {0x79DED5, 0x35B5AB, 0x219087},
                                           {0x8CC6FB, 0x4A98EC, 0x3479C9},
                                           {0xC0AEF8, 0x9678E6, 0x7B5DCB}}};

// Greys keep the order of the tones, pressed together into a range that is faint on the window.
QColor Faint(const QColor& colour, bool dark) {
  const int from = dark ? 62 : 146;
  const int to = dark ? 160 : 250;
  const int grey = from + (to - from) * qGray(colour.rgb()) / 255;
  return {grey, grey, grey};
}

}  // namespace

clsIconCanvas::clsIconCanvas(QPainter& painter, int side, Look look)
    : m_painter(painter), m_scale(side / GridUnits), m_look(look) {
  m_painter.setRenderHint(QPainter::Antialiasing);
  m_painter.setPen(Qt::NoPen);
}

QColor clsIconCanvas::Colour(Hue hue, Tone tone) const {
  const auto& hues = m_look.Dark ? OnDark : OnLight;
  const QColor colour(hues[static_cast<std::size_t>(hue)][static_cast<std::size_t>(tone)]);
  return m_look.Disabled ? Faint(colour, m_look.Dark) : colour;
}

double clsIconCanvas::Snap(double units) const {
  return std::round(units * m_scale);
}

double clsIconCanvas::Thickness(double units) const {
  return std::max(1.0, Snap(units));
}

QPainterPath clsIconCanvas::Box(double x, double y, double width, double height,
                                double radius) const {
  const QRectF box(QPointF(Snap(x), Snap(y)), QPointF(Snap(x + width), Snap(y + height)));
  QPainterPath path;
  path.addRoundedRect(box, radius * m_scale, radius * m_scale);
  return path;
}

QPainterPath clsIconCanvas::Disc(double centreX, double centreY, double radius) const {
  const double diameter = Thickness(2 * radius);
  QPainterPath path;
  const double left = (Snap(2 * centreX) - diameter) / 2;
  const double top = (Snap(2 * centreY) - diameter) / 2;
  path.addEllipse(left, top, diameter, diameter);
  return path;
}

QPainterPath clsIconCanvas::Polygon(std::initializer_list<QPointF> corners) const {
  QPolygonF polygon;
  for (const QPointF& corner : corners) polygon << QPointF(Snap(corner.x()), Snap(corner.y()));
  QPainterPath path;
  path.addPolygon(polygon);
  path.closeSubpath();
  return path;
}

QPainterPath clsIconCanvas::Bar(double x, double y, double width, double height) const {
  QPainterPath path;
  path.addRect(Snap(x), Snap(y), Thickness(width), Thickness(height));
  return path;
}

QPainterPath clsIconCanvas::Free(const QPainterPath& units) const {
  return QTransform::fromScale(m_scale, m_scale).map(units);
}

QPainterPath clsIconCanvas::Stroke(const QPainterPath& units, double width,
                                   Qt::PenCapStyle cap) const {
  QPainterPathStroker stroker;
  stroker.setWidth(width * m_scale);
  stroker.setCapStyle(cap);
  stroker.setJoinStyle(cap == Qt::RoundCap ? Qt::RoundJoin : Qt::MiterJoin);
  stroker.setCurveThreshold(0.05);
  QPainterPath outline = stroker.createStroke(Free(units));
  outline.setFillRule(Qt::WindingFill);
  return outline;
}

void clsIconCanvas::Fill(const QPainterPath& shape, Hue hue, Tone tone) {
  m_painter.fillPath(shape, Colour(hue, tone));
}

void clsIconCanvas::Shade(const QPainterPath& shape, Hue hue) {
  const QRectF bounds = shape.boundingRect();
  QLinearGradient gradient(bounds.topLeft(), bounds.bottomLeft());
  gradient.setColorAt(0, Colour(hue, Tone::Light));
  gradient.setColorAt(1, Colour(hue, Tone::Base));
  m_painter.fillPath(shape, gradient);
}

void clsIconCanvas::Body(const QPainterPath& shape, Hue hue) {
  Shade(shape, hue);
  // Of a pen twice as wide as the edge, the clip leaves the inner half.
  const double edge = std::max(1.0, std::round(m_scale * 0.8));
  m_painter.save();
  m_painter.setClipPath(shape);
  m_painter.strokePath(
      shape, QPen(Colour(hue, Tone::Edge), 2 * edge, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
  m_painter.restore();
}

void clsIconCanvas::CutOut(const QPainterPath& shape, double margin) {
  m_painter.save();
  m_painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
  m_painter.fillPath(shape, Qt::black);
  m_painter.strokePath(
      shape, QPen(Qt::black, 2 * Thickness(margin), Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  m_painter.restore();
}

}  // namespace sandrel::icons
