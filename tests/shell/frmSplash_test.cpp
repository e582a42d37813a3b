#include "shell/frmSplash.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QTest>
#include <QTimer>

namespace sandrel {
namespace {

TEST(frmSplash, GoesOnceByTimerClickOrClose) {
  const std::function<void(frmSplash&)> ways[] = {
      [](frmSplash& splash) {
        auto* const timer = splash.findChild<QTimer*>("Timer1");
        EXPECT_TRUE(timer->isActive());
        EXPECT_EQ(timer->interval(), 5000);
        timer->start(0);
        QTest::qWait(10);
      },
      [](frmSplash& splash) { QTest::mouseClick(&splash, Qt::LeftButton); },
      [](frmSplash& splash) { splash.close(); }};
  for (const auto& way : ways) {
    frmSplash splash("1.2.3");
    int unloads = 0;
    splash.OnUnload = [&unloads] { ++unloads; };
    splash.show();
    EXPECT_EQ(splash.findChild<QLabel*>("lblVersion")->text(), "Version 1.2.3");
    way(splash);
    EXPECT_TRUE(splash.isHidden());
    splash.Unload();
    EXPECT_EQ(unloads, 1);
  }
}

}  // namespace
}  // namespace sandrel
