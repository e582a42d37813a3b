#include "platform/controls/Bars.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QTest>

#include "common/clsShell.h"
#include "platform/qt/clsStatusBarWidget.h"

namespace sandrel {
namespace {

// Runs of the highlight colour along the middle of the panel.
int BlocksOf(QWidget& panel) {
  const QImage picture = panel.grab().toImage();
  const QRgb colour = panel.palette().color(QPalette::Active, QPalette::Highlight).rgb();
  int blocks = 0;
  bool inside = false;
  for (int x = 0; x < picture.width(); ++x) {
    const bool block = picture.pixel(x, picture.height() / 2) == colour;
    if (block && !inside) ++blocks;
    inside = block;
  }
  return blocks;
}

TEST(clsStatusBarWidget, DrawsABlockForEachFourPercent) {
  StatusBar model;
  QWidget window;
  clsStatusBarWidget bar(model, &window);
  bar.resize(500, bar.height());
  window.show();
  auto* const progress = bar.findChild<QLabel*>("stbrStatus.Progress");
  for (const int percent : {0, 3, 42, 100}) {
    model.SetProgress(ProgressText(percent));
    QTest::qWait(1);
    EXPECT_EQ(BlocksOf(*progress), percent / 4);
  }
}

}  // namespace
}  // namespace sandrel
