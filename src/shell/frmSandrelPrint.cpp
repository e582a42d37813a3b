// The print commands' windows.
#include <QFontDialog>

#include "print/frmPrintPreview.h"
#include "print/frmPrintSetup.h"
#include "shell/frmSandrel.h"

namespace sandrel {
namespace {

QFont ToQt(const PrintFont& font) {
  QFont shown(QString::fromStdString(font.Name));
  shown.setPointSizeF(font.Size);
  shown.setBold(font.Bold);
  shown.setItalic(font.Italic);
  shown.setStrikeOut(font.StrikeThrough);
  shown.setUnderline(font.Underline);
  return shown;
}

// The dialog shows the font that stands in for a missing one, and whole sizes: what the user left
// as it was shown stays as it was.
PrintFont Chosen(const PrintFont& font, const QFont& shown, const QFont& chosen) {
  PrintFont changed = font;
  if (chosen.family() != shown.family()) changed.Name = chosen.family().toStdString();
  if (chosen.pointSizeF() != shown.pointSizeF()) changed.Size = chosen.pointSizeF();
  changed.Bold = chosen.bold();
  changed.Italic = chosen.italic();
  changed.StrikeThrough = chosen.strikeOut();
  changed.Underline = chosen.underline();
  return changed;
}

}  // namespace

void frmSandrel::SetPrintCommands() {
  m_print.ShowPreview = [this](const PrintData& printed) {
    frmPrintPreview preview(*this, m_settings, m_printer, printed, BoxParent());
    preview.Print = [&] { m_print.PrintPreviewed(printed); };
    preview.exec();
  };
  m_print.ShowSetup = [this] { frmPrintSetup(m_printer, BoxParent()).exec(); };
  m_print.ChooseFont = [this](PrintFont& font) {
    QFontDialog dialog(ToQt(font), BoxParent());
    dialog.setObjectName("commdlg");
    dialog.setWindowTitle("Print Font");
    dialog.setOption(QFontDialog::DontUseNativeDialog);
    dialog.setOption(QFontDialog::ScalableFonts);
    const QFont shown = dialog.currentFont();
    if (dialog.exec() != QDialog::Accepted) return false;
    font = Chosen(font, shown, dialog.selectedFont());
    return true;
  };
  const auto set = [this](const char* item, void (clsPrintCommands::*command)()) {
    m_controls.Menus[item].Click = [this, method = std::string("frmSandrel.") + item, command] {
      m_browser.Command(method.c_str(), [this, command] { (m_print.*command)(); });
    };
  };
  set("mnuFilePrint", &clsPrintCommands::mnuFilePrint_Click);
  set("mnuFilePrintPreview", &clsPrintCommands::mnuFilePrintPreview_Click);
  set("mnuFilePrintSetup", &clsPrintCommands::mnuFilePrintSetup_Click);
  set("mnuSettingsPrintFont", &clsPrintCommands::mnuSettingsPrintFont_Click);
}

}  // namespace sandrel
