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
#include "platform/qt/clsTrayIcon.h"

namespace sandrel {
namespace {

TEST(clsToolbarWidget, RaisesClicksOfEnabledButtons) {
  Toolbar model;
  model.Buttons = {{"Open", "Open an analysis", "mnuFileOpen"},
                   {},
                   {"StopScanning", "Stop", "mnuSnapShotCancelOperation"},
                   {clsToolbarWidget::PlaceHolderKey, "Time", ""}};
  std::string clicked;
  model.ButtonClick = [&clicked](const std::string& key) { clicked += key + " "; };
  QWidget window;
  clsToolbarWidget bar(model, &window);
  bar.resize(400, bar.height());
  window.show();

  auto* const open = bar.findChild<QToolButton*>("tlbarMain.Open");
  auto* const stop = bar.findChild<QToolButton*>("tlbarMain.StopScanning");
  model.Enable("StopScanning", false);
  QTest::mouseClick(open, Qt::LeftButton);
  QTest::mouseClick(stop, Qt::LeftButton);
  EXPECT_EQ(clicked, "Open ");
  EXPECT_EQ(bar.height(), 24);
  EXPECT_LE(open->geometry().bottom(), 23);
  EXPECT_EQ(open->accessibleName(), "Open an analysis");
  EXPECT_GT(bar.PlaceHolder().left(), stop->geometry().right());
  EXPECT_GT(bar.PlaceHolder().right(), 380);

  bar.resize(30, bar.height());
  QTest::qWait(1);
  EXPECT_TRUE(bar.PlaceHolder().isEmpty());
  model.SetVisible(false);
  EXPECT_TRUE(bar.isHidden());
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
  const int width = progress->width();
  for (const int percent : {0, 3, 42, 100}) {
    model.SetProgress(ProgressText(percent));
    QTest::qWait(1);
    EXPECT_EQ(BlocksOf(*progress), percent / 4);
    EXPECT_EQ(progress->accessibleName(),
              percent == 0 ? QString() : QString::number(percent) + "%");
    EXPECT_EQ(progress->width(), width);
  }

  const std::string path = "<b>\\" + std::string(300, 'x');
  model.SetStatus(path);
  QTest::qWait(1);
  EXPECT_EQ(status->text().toStdString(), path);
  EXPECT_TRUE(status->toolTip().contains("&lt;b&gt;"));
  EXPECT_EQ(bar.size(), QSize(500, 23));
  model.SetStatus("Ready");
  QTest::qWait(1);
  EXPECT_EQ(status->toolTip(), "");
}

TEST(clsTrayIcon, RaisesItsGestures) {
  SysTray model;
  std::string raised;
  model.DblClick = [&raised] { raised += "restore "; };
  model.MouseDown = [&raised](int button) { raised += std::to_string(button) + " "; };
  clsTrayIcon icon(model, nullptr);
  for (const auto reason : {QSystemTrayIcon::Trigger, QSystemTrayIcon::DoubleClick,
                            QSystemTrayIcon::MiddleClick, QSystemTrayIcon::Context}) {
    Q_EMIT icon.activated(reason);
  }
  EXPECT_EQ(raised, "restore restore 2 ");
  model.SetTip("Untitled - Sandrel");
  EXPECT_EQ(icon.toolTip(), "Untitled - Sandrel");
  model.SetInTray(true);
  EXPECT_EQ(icon.isVisible(), model.Available);
}

}  // namespace
}  // namespace sandrel
