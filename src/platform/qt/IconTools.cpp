// The pictures of the commands.
#include <array>
#include <utility>

#include "platform/qt/IconPictures.h"

namespace sandrel::icons {
namespace {

// Parts that several commands share.

QPainterPath Line(std::initializer_list<QPointF> points) {
  QPainterPath path(*points.begin());
  for (const QPointF& point : points) path.lineTo(point);
  return path;
}

QPainterPath Arc(double centreX, double centreY, double radius, double start, double sweep) {
  const QRectF box(centreX - radius, centreY - radius, 2 * radius, 2 * radius);
  QPainterPath path;
  path.arcMoveTo(box, start);
  path.arcTo(box, start, sweep);
  return path;
}

void DrawMagnifier(clsIconCanvas& c, double centreX, double centreY, double radius) {
  const double rim = radius * 0.7;
  const QPainterPath handle =
      c.Stroke(Line({{centreX + rim, centreY + rim}, {15, 15}}), 2, Qt::RoundCap);
  const QPainterPath lens = c.Disc(centreX, centreY, radius);
  c.CutOut(lens, 1);
  c.CutOut(handle, 0.5);
  c.Fill(handle, Hue::Slate, Tone::Edge);
  c.Body(lens, Hue::Blue);
  c.Fill(c.Disc(centreX, centreY, radius - 1), Hue::Paper, Tone::Base);
}

// Files and printing.

void DrawOpen(clsIconCanvas& c) {
  c.Body(c.Polygon({{0, 3}, {1, 2}, {5, 2}, {7, 4}, {13, 4}, {13, 14}, {0, 14}}), Hue::Amber);
  c.Body(c.Polygon({{3, 7}, {16, 7}, {13, 14}, {0, 14}}), Hue::Folder);
}

void DrawClose(clsIconCanvas& c) {
  c.Body(c.Box(0, 1, 16, 14, 1), Hue::Paper);
  c.Shade(c.Box(0, 1, 16, 4, 1), Hue::Slate);
  c.Fill(c.Stroke(Line({{5, 7}, {11, 13}}), 2), Hue::Red, Tone::Base);
  c.Fill(c.Stroke(Line({{11, 7}, {5, 13}}), 2), Hue::Red, Tone::Base);
}

void DrawPrint(clsIconCanvas& c) {
  c.Body(c.Box(3, 0, 10, 8), Hue::Paper);
  c.Body(c.Box(0, 5, 16, 8, 1), Hue::Slate);
  c.Fill(c.Bar(12, 7, 2, 1), Hue::Green, Tone::Light);
  c.Body(c.Box(3, 9, 10, 7), Hue::Paper);
  c.Fill(c.Bar(5, 11, 6, 1), Hue::Ink, Tone::Light);
  c.Fill(c.Bar(5, 13, 4, 1), Hue::Ink, Tone::Light);
}

void DrawPrintPreview(clsIconCanvas& c) {
  DrawPage(c, 1, 0, 11, 16, 4);
  for (const int y : {4, 7, 10, 13}) {
    c.Fill(c.Bar(3, y, y == 4 ? 3 : 7, 1), Hue::Ink, Tone::Light);
  }
  DrawMagnifier(c, 10, 10, 4);
}

// Editing.

void DrawUndo(clsIconCanvas& c) {
  QPainterPath turn(QPointF(4, 5));
  turn.lineTo(10, 5);
  turn.arcTo(QRectF(6, 5, 8, 8), 90, -180);
  turn.lineTo(5, 13);
  c.Fill(c.Stroke(turn, 2), Hue::Blue, Tone::Base);
  c.Fill(c.Polygon({{1, 5}, {6, 0}, {6, 10}}), Hue::Blue, Tone::Base);
}

void DrawCopy(clsIconCanvas& c) {
  DrawPage(c, 1, 0, 9, 11, 3);
  const QPainterPath front = c.Box(6, 5, 9, 11);
  c.CutOut(front, 0.5);
  DrawPage(c, 6, 5, 9, 11, 3);
  for (const int y : {9, 11, 13}) c.Fill(c.Bar(8, y, 5, 1), Hue::Blue, Tone::Base);
}

void DrawDelete(clsIconCanvas& c) {
  c.Body(c.Polygon({{4, 1},
                    {8, 5},
                    {12, 1},
                    {15, 4},
                    {11, 8},
                    {15, 12},
                    {12, 15},
                    {8, 11},
                    {4, 15},
                    {1, 12},
                    {5, 8},
                    {1, 4}}),
         Hue::Red);
}

// Snapshots: a camera whose lens tells which picture it takes.

void DrawCamera(clsIconCanvas& c, Hue lens) {
  c.Body(c.Polygon({{4, 1}, {11, 1}, {12, 3}, {15, 3}, {15, 15}, {0, 15}, {0, 3}, {3, 3}}),
         Hue::Slate);
  const QPainterPath ring = c.Disc(7.5, 8.5, 5.5);
  c.Fill(ring, Hue::White, Tone::Base);
  c.Fill(c.Disc(7.5, 8.5, 4.5), lens, Tone::Base);
}

void DrawDigit(clsIconCanvas& c, const QPainterPath& line) {
  c.Fill(c.Stroke(line, 1), Hue::White, Tone::Base);
}

void DrawBeforeSnapshot(clsIconCanvas& c) {
  DrawCamera(c, Hue::Blue);
  DrawDigit(c, Line({{6, 6.5}, {7.5, 6.5}, {7.5, 11}}));
  DrawDigit(c, Line({{6, 10.5}, {9, 10.5}}));
}

void DrawAfterSnapshot(clsIconCanvas& c) {
  DrawCamera(c, Hue::Green);
  DrawDigit(c, Line({{6, 6.5}, {8.5, 6.5}, {8.5, 8.5}, {6.5, 8.5}, {6.5, 10.5}, {9, 10.5}}));
}

void DrawReplaceBeforeSnapshot(clsIconCanvas& c) {
  DrawCamera(c, Hue::Amber);
  c.Fill(c.Bar(7, 8, 4, 1), Hue::White, Tone::Base);
  c.Fill(c.Polygon({{4, 8.5}, {8, 5}, {8, 12}}), Hue::White, Tone::Base);
}

void DrawStopScanning(clsIconCanvas& c) {
  c.Body(c.Polygon({{5, 0}, {11, 0}, {16, 5}, {16, 11}, {11, 16}, {5, 16}, {0, 11}, {0, 5}}),
         Hue::Red);
  c.Fill(c.Box(5, 5, 6, 6), Hue::White, Tone::Base);
}

// Help and settings.

QPainterPath Star(double x, double y, double reach) {
  const double waist = reach * 0.3;
  QPainterPath star(QPointF(x, y - reach));
  star.lineTo(x + waist, y - waist);
  star.lineTo(x + reach, y);
  star.lineTo(x + waist, y + waist);
  star.lineTo(x, y + reach);
  star.lineTo(x - waist, y + waist);
  star.lineTo(x - reach, y);
  star.lineTo(x - waist, y - waist);
  star.closeSubpath();
  return star;
}

void DrawWizard(clsIconCanvas& c) {
  c.Fill(c.Stroke(Line({{1.5, 14.5}, {10, 6}}), 2.6), Hue::Violet, Tone::Base);
  c.Fill(c.Stroke(Line({{8.5, 7.5}, {10.5, 5.5}}), 2.6), Hue::White, Tone::Base);
  c.Fill(c.Free(Star(11.5, 4.5, 4.5)), Hue::Amber, Tone::Base);
  c.Fill(c.Free(Star(4, 4, 3)), Hue::Amber, Tone::Base);
  c.Fill(c.Free(Star(13, 12, 3)), Hue::Amber, Tone::Base);
}

void DrawHelp(clsIconCanvas& c) {
  c.Body(c.Disc(8, 8, 8), Hue::Blue);
  QPainterPath hook = Arc(8, 6, 2.5, 170, -215);
  hook.lineTo(8, 9);
  hook.lineTo(8, 10.5);
  c.Fill(c.Stroke(hook, 2), Hue::White, Tone::Base);
  c.Fill(c.Bar(7, 11.5, 2, 2), Hue::White, Tone::Base);
}

// Moving through pages.

void DrawMovePrevious(clsIconCanvas& c) {
  c.Body(c.Polygon({{4, 8}, {11, 1}, {11, 15}}), Hue::Blue);
}

void DrawMoveNext(clsIconCanvas& c) {
  c.Body(c.Polygon({{12, 8}, {5, 1}, {5, 15}}), Hue::Blue);
}

void DrawMoveFirst(clsIconCanvas& c) {
  c.Body(c.Box(2, 2, 3, 12), Hue::Blue);
  c.Body(c.Polygon({{6, 8}, {13, 1}, {13, 15}}), Hue::Blue);
}

void DrawMoveLast(clsIconCanvas& c) {
  c.Body(c.Box(11, 2, 3, 12), Hue::Blue);
  c.Body(c.Polygon({{10, 8}, {3, 1}, {3, 15}}), Hue::Blue);
}

constexpr std::array<std::pair<std::string_view, Picture>, 17> Pictures = {
    {{"Open", DrawOpen},
     {"Close", DrawClose},
     {"PrintPreview", DrawPrintPreview},
     {"Print", DrawPrint},
     {"Undo", DrawUndo},
     {"Copy", DrawCopy},
     {"Delete", DrawDelete},
     {"BeforeSnapshot", DrawBeforeSnapshot},
     {"AfterSnapshot", DrawAfterSnapshot},
     {"ReplaceBeforeSnapshot", DrawReplaceBeforeSnapshot},
     {"Wizard", DrawWizard},
     {"StopScanning", DrawStopScanning},
     {"Help", DrawHelp},
     {"MoveFirst", DrawMoveFirst},
     {"MovePrevious", DrawMovePrevious},
     {"MoveNext", DrawMoveNext},
     {"MoveLast", DrawMoveLast}}};

}  // namespace

Picture FindToolPicture(std::string_view key) {
  for (const auto& [name, picture] : Pictures) {
    if (name == key) return picture;
  }
  return nullptr;
}

}  // namespace sandrel::icons
