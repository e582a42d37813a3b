// The browser of analyses: tree, pages, column layout, editing and files together, tied to the
// controls' events. What the window and the layers above call.
#pragma once

#include <functional>
#include <string>

#include "browser/clsAnalysisFiles.h"
#include "browser/clsAnalysisTree.h"
#include "browser/clsColumnLayout.h"
#include "browser/clsEditing.h"
#include "browser/clsMainControls.h"
#include "browser/clsPages.h"
#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"

namespace sandrel {

class clsAnalysisBrowser {
 public:
  /// All must outlive the object. Sets the events of tree and lists and the commands of the File,
  /// Edit and View menus and of the column resets.
  clsAnalysisBrowser(clsShell& shell, clsSettings& settings, clsMainControls& controls,
                     const clsHome& home);

  clsColumnLayout Layout;
  clsPages Pages;
  clsAnalysisTree Tree;
  clsEditing Editing;
  clsAnalysisFiles Files;

  /// Opens the analysis at the host path, with all its pages. False when it is none; nothing is
  /// open then.
  bool Open(const std::string& path);
  /// Offers to open the analysis anew when another program has replaced its file; what was deleted
  /// and not yet committed is taken back then. True when it was replaced, whatever the answer.
  bool AskIfReplaced();
  /// The same, but not again about a file that the user didn't want to open.
  void AskIfReplacedOnce();
  /// Closes the open analysis; its pending deletes stay done.
  void mnuFileClose_Click();
  /// Fills all pages and the folder nodes.
  void LoadAllpages();
  /// What is kept when the program ends.
  void SaveLayout();

  /// Runs `body` as a command: an error is reported, with Retry and Ignore.
  void Command(const char* method, const std::function<void()>& body);

 private:
  void SetEvents();
  void SetCommands();
  void LeavePages();
  bool Load(const std::string& path);

  clsShell& m_shell;
  clsMainControls& m_controls;
  std::string m_declined;  // the file that the user did not want in the place of the open one
  bool m_loading = false;  // pages are being filled
};

}  // namespace sandrel
