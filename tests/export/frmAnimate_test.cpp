#include "export/frmAnimate.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <functional>
#include <memory>

namespace sandrel {
namespace {

class frmAnimateTest : public testing::Test {
 protected:
  frmAnimateTest() {
    m_owner.show();
    m_form->Show();
  }

  QLabel* Label(const char* name) { return m_form->findChild<QLabel*>(name); }

  QWidget m_owner;
  std::unique_ptr<frmAnimate> m_form = std::make_unique<frmAnimate>(&m_owner);
};

TEST_F(frmAnimateTest, OnlyItsCopyEndsItAndFreesTheOwner) {
  auto* const cancel = m_form->findChild<QPushButton*>("cmdCancel");
  const std::function<void()> ways[] = {[&] { QTest::mouseClick(cancel, Qt::LeftButton); },
                                        [&] { QTest::keyClick(m_form.get(), Qt::Key_Escape); },
                                        [&] { m_form->close(); }};
  for (const auto& way : ways) {
    m_form->Show();
    EXPECT_FALSE(m_form->CancelAnimate());
    for (int times = 0; times < 2; ++times) {
      way();
      EXPECT_TRUE(m_form->CancelAnimate() && m_form->isVisible() && m_form->isEnabled());
      EXPECT_FALSE(m_owner.isEnabled());
    }
    m_form->Close();
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_TRUE(m_owner.isEnabled());
  }
  m_form->Show();
  m_form.reset();  // the copy failed in its midst
  EXPECT_TRUE(m_owner.isEnabled());
}

TEST_F(frmAnimateTest, TextsNeverChangeItsSize) {
  const QSize size = m_form->size();
  m_form->SetFile(std::string(300, 'f') + ".exe");
  m_form->SetFolder("'C:\\Program Files\\" + std::string(300, 'd') + "\\end' to '/home/<b>'");
  m_form->SetMessage("Time Remaining: 12");
  QApplication::processEvents();
  EXPECT_EQ(m_form->size(), size);
  EXPECT_LT(Label("lblFile")->text().size(), 200);
  EXPECT_TRUE(Label("lblFile")->text().endsWith("f.exe"));
  EXPECT_TRUE(Label("lblFile")->toolTip().contains(QString(300, 'f') + ".exe"));
  const QStringList lines = Label("lblFolder")->text().split('\n');
  ASSERT_EQ(lines.size(), 2);
  EXPECT_TRUE(lines[0].startsWith("'C:\\Program Files\\d") && lines[0].endsWith("\\end'"));
  EXPECT_EQ(lines[1], "to '/home/<b>'");
  EXPECT_TRUE(Label("lblFolder")->toolTip().contains("&lt;b&gt;"));
}

}  // namespace
}  // namespace sandrel
