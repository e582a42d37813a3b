#include "platform/qt/modBoxes.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <fstream>
#include <functional>
#include <string>

#include "support/TempFolder.h"

namespace sandrel::qt {
namespace {

/// Runs `act` with the dialog that comes up next.
template <class Dialog>
void WhenUp(std::function<void(Dialog&)> act) {
  QTimer::singleShot(0, qApp, [act = std::move(act)] {
    auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    act(*dialog);
  });
}

int AnswerTo(Buttons choice, BoxIcon icon, std::function<void(QMessageBox&)> act) {
  WhenUp<QMessageBox>(std::move(act));
  return static_cast<int>(AskBox(nullptr, {"Text <b>", "Title", choice, icon}));
}

std::function<void(QMessageBox&)> Press(Qt::Key key) {
  return [key](QMessageBox& box) { QTest::keyClick(&box, key); };
}

TEST(modBoxes, EscapeAndEnterAreTheCarefulAnswers) {
  EXPECT_EQ(AnswerTo(Buttons::Ok, BoxIcon::None, Press(Qt::Key_Escape)), 1);
  EXPECT_EQ(AnswerTo(Buttons::YesNo, BoxIcon::Question, Press(Qt::Key_Escape)), 7);
  EXPECT_EQ(AnswerTo(Buttons::YesNo, BoxIcon::Question, Press(Qt::Key_Return)), 6);
  EXPECT_EQ(AnswerTo(Buttons::YesNo, BoxIcon::Exclamation, Press(Qt::Key_Return)), 7);
  EXPECT_EQ(AnswerTo(Buttons::AbortRetryIgnore, BoxIcon::Critical,
                     [](QMessageBox& box) {
                       QTest::keyClick(&box, Qt::Key_Escape);
                       box.close();
                       EXPECT_TRUE(box.isVisible());
                       QTest::keyClick(&box, Qt::Key_Return);
                     }),
            4);
}

TEST(modBoxes, LongTextsStayOnTheScreenAndWhole) {
  const std::string text(5000, 'W');
  WhenUp<QMessageBox>([&text](QMessageBox& box) {
    EXPECT_LE(box.width(), box.screen()->size().width());
    EXPECT_LE(box.height(), box.screen()->size().height());
    EXPECT_EQ(box.detailedText().toStdString(), text);
    box.close();
  });
  AskBox(nullptr, {text});
}

TEST(modBoxes, ChoosesFilesThatNeedNotExist) {
  const test::TempFolder folder;
  const std::string at = folder.Path() + "/";
  for (const char* name : {"plain", "there.mdb"}) std::ofstream(at + name) << "x";
  const std::pair<const char*, const char*> cases[] = {
      {nullptr, "Sandrel.mdb"}, {"new \xC3\xA9", "new \xC3\xA9.mdb"},
      {"new.txt", "new.txt"},   {"Office 2.0", "Office 2.0.mdb"},
      {"plain", "plain"},       {"there.mdb", "there.mdb"}};
  for (const bool save : {false, true}) {
    for (const auto& [typed, chosen] : cases) {
      WhenUp<QFileDialog>([typed = typed](QFileDialog& dialog) {
        EXPECT_EQ(dialog.nameFilters().join('|'),
                  QString("MS Access *.mdb;*.x (*.mdb *.x)|All Files *.* (*)"));
        auto* const name = dialog.findChild<QLineEdit*>();
        if (typed != nullptr) name->setText(typed);
        QTest::keyClick(name, Qt::Key_Return);
      });
      EXPECT_EQ(ChooseFile(nullptr, {"Title", ".mdb", "Sandrel.mdb",
                                     "MS Access *.mdb;*.x|*.mdb;*.x|All Files *.*|*.*",
                                     folder.Path(), save}),
                at + chosen);
    }
  }
  WhenUp<QFileDialog>([](QFileDialog& dialog) {
    dialog.findChild<QLineEdit*>()->setText("~/mine");
    QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return);
  });
  EXPECT_EQ(ChooseFile(nullptr, {"Title", ".mdb", "", "All Files *.*|*.*", folder.Path(), true}),
            QDir::homePath().toStdString() + "/mine.mdb");
}

}  // namespace
}  // namespace sandrel::qt
