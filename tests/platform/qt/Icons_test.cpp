#include "platform/qt/Icons.h"

#include <gtest/gtest.h>

#include <QImage>
#include <cstdlib>
#include <string>
#include <vector>

#include "browser/clsMainControls.h"
#include "platform/controls/ImageKeys.h"

namespace sandrel::icons {
namespace {

constexpr QSize Small(16, 16);

// What is there of a picture, whatever its colours.
QImage Shape(const QIcon& icon) {
  return icon.pixmap(Small, 1.0).toImage().convertToFormat(QImage::Format_Alpha8);
}

int PixelsThatDiffer(const QImage& left, const QImage& right) {
  int count = 0;
  for (int y = 0; y < left.height(); ++y) {
    for (int x = 0; x < left.width(); ++x) {
      if (std::abs(qAlpha(left.pixel(x, y)) - qAlpha(right.pixel(x, y))) > 128) ++count;
    }
  }
  return count;
}

bool IsBlank(const QImage& shape) {
  QImage blank(shape.size(), QImage::Format_Alpha8);
  blank.fill(0);
  return shape == blank;
}

TEST(Icons, EveryKeyHasItsPictureAndOnlyNoneIsBlank) {
  for (const char* key : ImageKeys) {
    EXPECT_EQ(IsBlank(Shape(Image(key))), std::string(key) == "none") << key;
  }
  const clsMainControls controls;
  std::vector<std::string> tools = {"MoveFirst", "MovePrevious", "MoveNext", "MoveLast"};
  for (const ToolbarButton& button : controls.tlbarMain.Buttons) {
    if (!button.Item.empty()) tools.push_back(button.Key);
  }
  for (const std::string& key : tools) EXPECT_FALSE(IsBlank(Shape(Tool(key)))) << key;
  EXPECT_FALSE(IsBlank(Shape(Window())));
  EXPECT_TRUE(Image("nofolder").isNull());
}

TEST(Icons, WhatBecameOfAThingIsToldByShape) {
  for (const std::string kind : {"folder", "registry", "ini", "element", "file"}) {
    const QImage shapes[] = {Shape(Image("new" + kind)), Shape(Image("changed" + kind)),
                             Shape(Image("deleted" + kind))};
    for (const auto& [a, b] : {std::pair(0, 1), {0, 2}, {1, 2}}) {
      EXPECT_GE(PixelsThatDiffer(shapes[a], shapes[b]), 8) << kind;
    }
  }
}

}  // namespace
}  // namespace sandrel::icons
