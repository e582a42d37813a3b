#include "shell/frmSandrel.h"

#include "window/support/WindowFixture.h"

namespace sandrel::test {
namespace {

class frmSandrelTest : public WindowFixture {};

TEST_F(frmSandrelTest, AsksForABeforeSnapshotWhereThereIsNone) {
  m_boxes.Buttons = {"No"};
  Start();
  EXPECT_EQ(m_boxes.Log,
            std::vector<std::string>{
                "Sandrel Manager|A 'Before' Snapshot of your drive(s) and registry was not "
                "found!\n\nWould you like to create one now?"});
  EXPECT_FALSE(IsEnabled("mnuSnapShotAfter"));
  EXPECT_TRUE(IsEnabled("mnuSnapShotBefore"));
  PressButton("BeforeSnapshot");
  EXPECT_EQ(Status(), "Before Snapshot Complete");
  EXPECT_TRUE(IsEnabled("mnuSnapShotAfter"));
  EXPECT_FALSE(IsEnabled("mnuSnapShotRollUp"));
}

}  // namespace
}  // namespace sandrel::test
