#include "platform/controls/Bars.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QTest>
#include <QToolButton>
#include <string>

#include "common/clsShell.h"
#include "platform/qt/clsStatusBarWidget.h"
#include "platform/qt/clsToolbarWidget.h"

namespace sandrel {
namespace {

TEST(clsToolbarWidget, ThePlaceForATextTakesTheRoomBehindTheButtons) {
  Toolbar model;
  model.Buttons = {{"Open", "Open an analysis", "mnuFileOpen"},
                   {},
                   {"StopScanning", "Stop", "mnuSnapShotCancelOperation"},
                   {clsToolbarWidget::PlaceHolderKey, "Time", ""}};
  QWidget window;
  clsToolbarWidget bar(model, &window);
  bar.resize(400, bar.height());
  window.show();
  const QRect stop = bar.findChild<QToolButton*>("tlbarMain.StopScanning")->geometry();
  EXPECT_EQ(bar.height(), 24);
  EXPECT_LE(stop.bottom(), 23);
  EXPECT_GT(bar.PlaceHolder().left(), stop.right());
  EXPECT_GT(bar.PlaceHolder().right(), 380);
  bar.resize(30, bar.height());
  QTest::qWait(1);
  EXPECT_TRUE(bar.PlaceHolder().isEmpty());
}

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
  auto* const status = bar.findChild<QLabel*>("stbrStatus.Status");
  for (const int percent : {0, 3, 42, 100}) {
    model.SetProgress(ProgressText(percent));
    QTest::qWait(1);
    EXPECT_EQ(BlocksOf(*progress), percent / 4);
  }

  const std::string path = "<b>\\" + std::string(300, 'x');
  model.SetStatus(path);
  QTest::qWait(1);
  EXPECT_EQ(status->text().toStdString(), path);
  EXPECT_TRUE(status->toolTip().contains("&lt;b&gt;"));
  EXPECT_EQ(bar.size(), QSize(500, 23));
}

}  // namespace
}  // namespace sandrel
