// The print commands of the File and Settings menus, without the windows that they show.
#pragma once

#include <functional>
#include <string>

#include "browser/clsAnalysisBrowser.h"
#include "browser/clsMainControls.h"
#include "common/clsShell.h"
#include "config/clsSettings.h"
#include "platform/printing/clsPrinter.h"
#include "print/clsPrintJob.h"

namespace sandrel {

class clsPrintCommands {
 public:
  /// All must outlive the object.
  clsPrintCommands(clsShell& shell, clsSettings& settings, clsMainControls& controls,
                   clsAnalysisBrowser& browser, clsPrinter& printer)
      : m_shell(shell),
        m_settings(settings),
        m_controls(controls),
        m_browser(browser),
        m_printer(printer) {}

  /// Shows the preview and returns when it is closed.
  std::function<void(const PrintData& data)> ShowPreview;
  /// Lets the user choose printer, paper and orientation.
  std::function<void()> ShowSetup;
  /// Lets the user change the font; false when cancelled.
  std::function<bool(PrintFont& font)> ChooseFont;

  /// These raise what fails.
  void mnuFilePrint_Click();
  void mnuFilePrintPreview_Click();
  void mnuFilePrintSetup_Click();
  void mnuSettingsPrintFont_Click();

  /// Prints what the preview shows, with its column widths.
  void PrintPreviewed(const PrintData& data);

 private:
  bool ChooseFile(std::string& file);
  template <class Pages>
  void Print(Pages&& pages);

  clsShell& m_shell;
  clsSettings& m_settings;
  clsMainControls& m_controls;
  clsAnalysisBrowser& m_browser;
  clsPrinter& m_printer;
};

}  // namespace sandrel
