#include "platform/qt/Icons.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <cstdlib>
#include <string>

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
  for (const char* key :
       {"Open",     "Close",        "PrintPreview",   "Print",         "Undo",
        "Copy",     "Delete",       "BeforeSnapshot", "AfterSnapshot", "ReplaceBeforeSnapshot",
        "Wizard",   "StopScanning", "Help",           "MoveFirst",     "MovePrevious",
        "MoveNext", "MoveLast",     "Refresh",        "Export",        "CopyFiles",
        "Font",     "Configure",    "Exit",           "SelectAll"}) {
    ASSERT_FALSE(Tool(key).isNull()) << key;
    EXPECT_FALSE(IsBlank(Shape(Tool(key)))) << key;
  }
  EXPECT_FALSE(IsBlank(Shape(Window())));
  EXPECT_TRUE(Image("nofolder").isNull());
  EXPECT_TRUE(Tool("lastssplaceholder").isNull());
}

TEST(Icons, WhatBecameOfAThingIsToldByShape) {
  for (const std::string kind : {"folder", "registry", "ini", "element", "file"}) {
    const QImage added = Shape(Image("new" + kind));
    const QImage changed = Shape(Image("changed" + kind));
    const QImage deleted = Shape(Image("deleted" + kind));
    EXPECT_GE(PixelsThatDiffer(added, changed), 8) << kind;
    EXPECT_GE(PixelsThatDiffer(added, deleted), 8) << kind;
    EXPECT_GE(PixelsThatDiffer(changed, deleted), 8) << kind;
  }
}

TEST(Icons, PixmapsFollowRatioAndAreDrawnOnce) {
  const QIcon folder = Image("closedfolder");
  for (const double ratio : {1.0, 1.5, 2.0}) {
    const QPixmap pixmap = folder.pixmap(Small, ratio);
    EXPECT_EQ(pixmap.size(), Small * ratio);
    EXPECT_EQ(pixmap.devicePixelRatio(), ratio);
    EXPECT_EQ(pixmap.cacheKey(), Image("closedfolder").pixmap(Small, ratio).cacheKey());
  }
}

TEST(Icons, DisabledPicturesAreGreyAndDarkWindowsHaveTheirOwn) {
  const QImage grey = Tool("Open").pixmap(Small, 1.0, QIcon::Disabled).toImage();
  EXPECT_TRUE(grey.allGray());

  const QPalette before = QApplication::palette();
  const auto printAt = [](const QColor& window) {
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Window, window);
    QApplication::setPalette(palette);
    return Tool("Print").pixmap(Small, 1.0).toImage();
  };
  EXPECT_NE(printAt(Qt::white), printAt(Qt::black));
  QApplication::setPalette(before);
}

TEST(Icons, PaintingKeepsToWholePixels) {
  // At this ratio the row's corner lies between two pixels.
  constexpr double Ratio = 1.5;
  QImage row(36, 36, QImage::Format_ARGB32_Premultiplied);
  row.setDevicePixelRatio(Ratio);
  row.fill(Qt::transparent);
  QPainter painter(&row);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  Image("closedfolder").paint(&painter, QRect(QPoint(3, 3), Small));
  painter.end();
  QImage drawn = Image("closedfolder").pixmap(Small, Ratio).toImage();
  drawn.setDevicePixelRatio(1);
  row.setDevicePixelRatio(1);
  EXPECT_EQ(row.copy(QRect(QPoint(5, 5), drawn.size())), drawn);
}

}  // namespace
}  // namespace sandrel::icons
