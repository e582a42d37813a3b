// The pictures of tree and lists, and the application's icon.
#include <array>

#include "platform/controls/ImageKeys.h"
#include "platform/qt/IconPictures.h"

namespace sandrel::icons {

void DrawPage(clsIconCanvas& c, double x, double y, double width, double height, double fold) {
  const double right = x + width;
  c.Body(c.Polygon(
             {{x, y}, {right - fold, y}, {right, y + fold}, {right, y + height}, {x, y + height}}),
         Hue::Paper);
  c.Fill(c.Polygon({{right - fold, y}, {right - fold, y + fold}, {right, y + fold}}), Hue::Paper,
         Tone::Edge);
}

void DrawWindow(clsIconCanvas& c) {
  // Two states of a machine, one laid over the other, and what differs.
  c.Body(c.Box(0, 0, 16, 16, 3), Hue::Teal);
  c.Fill(c.Box(2, 2, 9, 9, 1), Hue::Teal, Tone::Edge);
  c.Fill(c.Box(5, 5, 9, 9, 1), Hue::White, Tone::Base);
  c.Fill(c.Box(8, 8, 4, 4, c.IsSmall() ? 0 : 0.5), Hue::Amber, Tone::Base);
}

namespace {

void DrawFolder(clsIconCanvas& c) {
  c.Body(c.Polygon({{0, 3}, {1, 2}, {6, 2}, {8, 4}, {15, 4}, {16, 5}, {16, 14}, {0, 14}}),
         Hue::Amber);
  c.Body(c.Box(0, 6, 16, 8), Hue::Folder);
  if (!c.IsSmall()) c.Fill(c.Bar(1, 7, 14, 0.5), Hue::Paper, Tone::Light);
}

void DrawNone(clsIconCanvas& /*c*/) {}

// A key, and the first key below it.
void DrawUpperKeys(clsIconCanvas& c) {
  c.Fill(c.Bar(3, 6, 1, 8), Hue::Slate, Tone::Base);
  c.Fill(c.Bar(3, 7, 5, 1), Hue::Slate, Tone::Base);
  c.Fill(c.Bar(3, 13, 4, 1), Hue::Slate, Tone::Base);
  c.Body(c.Box(0, 0, 8, 6), Hue::Teal);
  c.Body(c.Box(7, 5, 8, 5), Hue::Teal);
}

void DrawRegistry(clsIconCanvas& c) {
  DrawUpperKeys(c);
  c.Body(c.Box(7, 11, 8, 5), Hue::Teal);
}

void DrawFile(clsIconCanvas& c) {
  DrawPage(c, 2, 0, 12, 16, 4);
  c.Fill(c.Bar(4, 4, 4, 1), Hue::Ink, Tone::Light);
  for (const int y : {7, 10, 13}) c.Fill(c.Bar(4, y, 8, 1), Hue::Ink, Tone::Light);
}

void DrawIni(clsIconCanvas& c) {
  DrawPage(c, 2, 0, 12, 16, 4);
  // A section's brackets over its entries.
  for (const int x : {4, 9}) c.Fill(c.Bar(x, 2, 1, 5), Hue::Violet, Tone::Base);
  for (const int x : {5, 8}) {
    c.Fill(c.Bar(x, 2, 1, 1), Hue::Violet, Tone::Base);
    c.Fill(c.Bar(x, 6, 1, 1), Hue::Violet, Tone::Base);
  }
  for (const int y : {9, 12}) {
    c.Fill(c.Bar(4, y, 3, 2), Hue::Violet, Tone::Light);
    c.Fill(c.Bar(8, y, 4, 1), Hue::Ink, Tone::Light);
  }
}

void DrawElement(clsIconCanvas& c) {
  c.Body(c.Polygon({{0, 8}, {5, 3}, {16, 3}, {16, 13}, {5, 13}}), Hue::Teal);
  c.Fill(c.Disc(5, 8, 1), Hue::White, Tone::Base);
  c.Fill(c.Bar(8, 6, 6, 1), Hue::White, Tone::Base);
  c.Fill(c.Bar(8, 9, 4, 1), Hue::White, Tone::Base);
}

void DrawControlPanel(clsIconCanvas& c) {
  c.Body(c.Box(1, 1, 14, 14, 2), Hue::Blue);
  const QPointF knobs[] = {{9, 4}, {4, 7}, {8, 10}};
  for (const QPointF& knob : knobs) {
    c.Fill(c.Bar(3, knob.y() + 1, 10, 1), Hue::White, Tone::Base);
    c.Fill(c.Bar(knob.x(), knob.y(), 2, 3), Hue::White, Tone::Base);
  }
}

// Badges, at the lower right. Their outlines differ, so that they are told apart without colour.

void DrawBadge(clsIconCanvas& c, const QPainterPath& shape, Hue hue) {
  c.CutOut(shape, 1);
  if (c.IsSmall()) {
    c.Fill(shape, hue, Tone::Base);
  } else {
    c.Body(shape, hue);
  }
}

void DrawNew(clsIconCanvas& c) {
  DrawBadge(c,
            c.Polygon({{11, 9},
                       {14, 9},
                       {14, 11},
                       {16, 11},
                       {16, 14},
                       {14, 14},
                       {14, 16},
                       {11, 16},
                       {11, 14},
                       {9, 14},
                       {9, 11},
                       {11, 11}}),
            Hue::Green);
}

void DrawChanged(clsIconCanvas& c) {
  DrawBadge(c, c.Polygon({{12, 8}, {16, 16}, {8, 16}}), Hue::Blue);
}

void DrawDeleted(clsIconCanvas& c) {
  DrawBadge(c,
            c.Polygon({{10, 8},
                       {12, 10},
                       {14, 8},
                       {16, 10},
                       {14, 12},
                       {16, 14},
                       {14, 16},
                       {12, 14},
                       {10, 16},
                       {8, 14},
                       {10, 12},
                       {8, 10}}),
            Hue::Red);
}

template <Picture Thing, Picture Badge>
void Badged(clsIconCanvas& c) {
  Thing(c);
  Badge(c);
}

// In the order of ImageKeys.
constexpr std::array<Picture, ImageKeys.size()> Pictures = {DrawWindow,
                                                            DrawRegistry,
                                                            DrawFolder,
                                                            DrawIni,
                                                            DrawFile,
                                                            DrawElement,
                                                            DrawControlPanel,
                                                            DrawNone,
                                                            Badged<DrawFolder, DrawNew>,
                                                            Badged<DrawFolder, DrawChanged>,
                                                            Badged<DrawFolder, DrawDeleted>,
                                                            Badged<DrawUpperKeys, DrawNew>,
                                                            Badged<DrawUpperKeys, DrawChanged>,
                                                            Badged<DrawUpperKeys, DrawDeleted>,
                                                            Badged<DrawIni, DrawNew>,
                                                            Badged<DrawIni, DrawChanged>,
                                                            Badged<DrawIni, DrawDeleted>,
                                                            Badged<DrawElement, DrawNew>,
                                                            Badged<DrawElement, DrawChanged>,
                                                            Badged<DrawElement, DrawDeleted>,
                                                            Badged<DrawFile, DrawNew>,
                                                            Badged<DrawFile, DrawChanged>,
                                                            Badged<DrawFile, DrawDeleted>};

}  // namespace

Picture FindImagePicture(std::string_view key) {
  const int index = ImageIndex(key);
  return index < 0 ? nullptr : Pictures[static_cast<std::size_t>(index)];
}

}  // namespace sandrel::icons
