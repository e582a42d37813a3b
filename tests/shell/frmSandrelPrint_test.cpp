// Print, Print Preview, Print Setup and Print Font through the main window.
#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontDialog>
#include <QRadioButton>
#include <QRegularExpression>

#include "print/frmPrintPreview.h"
#include "print/frmPrintSetup.h"
#include "window/support/BrowserFixture.h"

namespace sandrel::test {
namespace {

class frmSandrelPrintTest : public BrowserFixture {
 protected:
  frmSandrelPrintTest() {
    m_boxes.OnBox = [this](QWidget& box) {
      if (OnDialog) OnDialog(box);
    };
  }

  std::string Pdf() { return m_temp.Of("out.pdf"); }
  /// Chooses a command, with this answer to the question for a file.
  void Run(const std::string& item, const std::string& file = "") {
    m_boxes.Log.clear();
    m_boxes.Files = {file};
    EXPECT_TRUE(Choose(item));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  }
  /// The pages of the file and their width in points.
  std::string PagesOf(const std::string& path) {
    const QString pdf =
        QString::fromLatin1(QByteArray::fromStdString(clsFileWorks::ReadWhole(path)));
    const auto part = [&pdf](const char* pattern) {
      return QRegularExpression(pattern).match(pdf).captured(1).toStdString();
    };
    return part("/Count (\\d+)") + " of " + part("/MediaBox \\[0 0 (\\d+)");
  }
  /// Presses a dialog's button.
  static void Answer(QWidget& dialog, QDialogButtonBox::StandardButton button) {
    dialog.findChild<QDialogButtonBox*>()->button(button)->click();
  }

  std::function<void(QWidget& box)> OnDialog;
};

TEST_F(frmSandrelPrintTest, PrintsTheListOnShowToAFile) {
  Start();
  EXPECT_FALSE(Choose("mnuFilePrint"));
  EXPECT_FALSE(Choose("mnuFilePrintPreview"));
  Open(MakeSample());
  ClickNode("NewRegistry");
  Run("mnuFilePrint");  // cancelled
  EXPECT_EQ(m_boxes.Log, Lines{"Print To PDF File|"});
  EXPECT_FALSE(clsFileWorks::FileExists(Pdf()));
  Run("mnuFilePrint", Pdf());
  EXPECT_EQ(m_boxes.Log, Lines{"Print To PDF File|"});
  EXPECT_EQ(PagesOf(Pdf()), "2 of 595");
  EXPECT_EQ(Status(), "2 Page(s) Printed");
  // A file that can't be written is told, and the program goes on; the analysis is spared.
  for (const char* name : {"none/out.pdf", "x.mdb"}) {
    m_boxes.Buttons = {"Ignore"};
    Run("mnuFilePrint", m_temp.Of(name));
    EXPECT_TRUE(m_boxes.Has("Method: frmSandrel.mnuFilePrint")) << name;
  }
  // A list without rows has its header.
  List(page::NewRegistry).ClearRows();
  m_boxes.Buttons = {"Yes"};
  Run("mnuFilePrint", Pdf());
  EXPECT_EQ(PagesOf(Pdf()), "2 of 595");
}

TEST_F(frmSandrelPrintTest, CommitsDeletesAndPreviews) {
  OpenSample();
  ClickNode("NewFiles");
  ClickRow(page::NewFiles, 0);
  m_boxes.Buttons = {"Yes"};
  Choose("mnuEditDelete");
  ASSERT_TRUE(Controls().Deletes.Any());
  Lines seen;
  OnDialog = [&](QWidget& box) {
    auto* const preview = dynamic_cast<frmPrintPreview*>(&box);
    if (preview == nullptr) return;
    QTest::qWait(50);
    seen.push_back(preview->PageCaption() + " " + std::to_string(preview->Block().TotalPages()));
    // From the loop: boxes of a click in here would stay unanswered.
    QTimer::singleShot(0, preview, [preview] {
      preview->findChild<QToolButton*>("tlbToolbar.Print")->click();
      preview->reject();
    });
  };
  Run("mnuFilePrintPreview", Pdf());
  EXPECT_FALSE(Controls().Deletes.Any());
  EXPECT_EQ(seen.front(), "Files - New - x.mdb 2");
  EXPECT_EQ(PagesOf(Pdf()), "2 of 595");
}

TEST_F(frmSandrelPrintTest, SetupHoldsForTheSession) {
  OpenSample();
  ClickNode("Root");
  for (const auto button : {QDialogButtonBox::Ok, QDialogButtonBox::Cancel}) {
    OnDialog = [&](QWidget& box) {
      if (dynamic_cast<frmPrintSetup*>(&box) == nullptr) return;
      const bool first = button == QDialogButtonBox::Ok;
      auto* const papers = box.findChild<QComboBox*>("cbxPaper");
      EXPECT_EQ(papers->currentText(), first ? "A4" : "Letter / ANSI A");
      EXPECT_EQ(box.findChild<QRadioButton*>("optPortrait")->isChecked(), first);
      papers->setCurrentIndex(papers->findText(first ? "Letter / ANSI A" : "A3"));
      box.findChild<QRadioButton*>("optLandscape")->click();
      Answer(box, button);
    };
    Run("mnuFilePrintSetup");
    Run("mnuFilePrint", Pdf());
    EXPECT_EQ(PagesOf(Pdf()), "1 of 792");
  }
}

TEST_F(frmSandrelPrintTest, FontIsKeptWhenChosen) {
  Start();
  const auto saved = [this] {
    std::string font;
    for (const char* key : {"Name", "Size", "Bold", "Underline"}) {
      font += m_settings.GetSetting("PrintGridFont", key) + " ";
    }
    return font;
  };
  bool accepts = false;
  OnDialog = [&](QWidget& box) {
    auto* const dialog = dynamic_cast<QFontDialog*>(&box);
    if (dialog == nullptr) return;
    for (QCheckBox* const effect : dialog->findChildren<QCheckBox*>()) {
      if (effect->text() == "&Underline") effect->click();
    }
    Answer(box, accepts ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
  };
  Run("mnuSettingsPrintFont");
  EXPECT_EQ(saved(), "Arial 8.25 False False ");
  accepts = true;
  Run("mnuSettingsPrintFont");
  EXPECT_EQ(saved(), "Arial 8.25 False True ");
}

}  // namespace
}  // namespace sandrel::test
