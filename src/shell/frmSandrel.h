// The main window: it owns the controls and one object for each group of commands, brings the
// program up and down, and is the shell that the commands speak to.
#pragma once

#include <QMainWindow>
#include <QString>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "browser/clsAnalysisBrowser.h"
#include "browser/clsMainControls.h"
#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"
#include "export/clsExportCommands.h"
#include "platform/process/clsWindowList.h"
#include "platform/qt/clsQtPrinter.h"
#include "platform/qt/modGuard.h"
#include "print/clsPrintCommands.h"
#include "shell/clsCommandState.h"
#include "snapshot/clsAnalysis.h"
#include "snapshot/clsSnapshots.h"

class QLabel;
class QMenu;
class QTimer;

namespace sandrel {

class clsListWidget;
class clsSplitBar;
class clsStatusBarWidget;
class clsToolbarWidget;
class clsTreeWidget;
class clsWizardCommands;
class frmAbout;
class frmHelp;
class frmSplash;
class frmWizard;

/// The one command that the program knows: the wizard goes on after a restart.
inline constexpr std::string_view WizardCommand = "/wizard page4";

/// What the program was started with.
struct StartOptions {
  std::string Machine;   ///< host path of the machine's folder; empty for the one the settings name
  std::string File;      ///< host path of the analysis to open; empty for the last one
  std::string Command;   ///< the rest of the command line
  std::string HelpFile;  ///< host path; empty for the one that comes with the program
  bool PrevInstance = false;  ///< the program runs on this home folder already
  std::string Program;        ///< host path of the executable that a restart goes on with
  /// Asks the program that runs already to come forward and to open a file, empty for none. False
  /// when it doesn't hear.
  std::function<bool(const std::string& file)> CallPrevious;
};

class frmSandrel final : public QMainWindow, public clsShell {
 public:
  /// All but the options must outlive the window. Nothing shows before `Form_Load`.
  frmSandrel(clsSettings& settings, const clsHome& home, clsWindowList& windows,
             StartOptions options);
  ~frmSandrel() override;

  /// Brings the program up. It may ask and run a snapshot before it returns.
  void Form_Load();
  /// Shows the window before all others, and opens the analysis at the host path unless that is
  /// empty.
  void ComeForward(const std::string& file);
  /// Makes final and stores what the end of the program would; the program goes on.
  void Save();
  /// The help viewer; null until it was asked for.
  frmHelp* Help() const { return m_help.get(); }
  /// True when the window is gone for good: the program is to end.
  bool IsUnloaded() const { return m_unloaded; }

  // What other forms and tests reach.
  clsMainControls& Controls() { return m_controls; }
  clsAnalysisBrowser& Browser() { return m_browser; }
  clsSnapshots& Snapshots() { return m_snapshots; }
  void SetNoAutoLoadDatabase(bool value) { m_noAutoLoadDatabase = value; }
  bool CloseDown() const { return State.CloseDown; }
  void SetBeforeSSCompleteNotify(bool value) { State.BeforeSSCompleteNotify = value; }

  // The shell.
  void SetStatusText(std::string_view text) override;
  void SetProgress(int percent) override;
  void Tell(std::string_view text) override;
  Answer Ask(const MessageBox& box) override;
  Answer ReportError(std::int32_t number, std::string_view description, std::string_view source,
                     std::string_view method) override;
  std::string ChooseFile(const FileDialog& dialog) override;
  void SetMousePointer(int shape) override;
  void DoEvents(bool often) override;
  void SetClipboard(std::string_view text) override;
  void UpdateCommandState() override;
  void RefreshMenus() override { m_commandState.RefreshMenus(); }
  void ShowBeforeTime(std::string_view text) override;
  void BeforeSnapshotEnded() override;
  void CommitPendingDeletes() override { m_browser.Editing.CommitPendingDeletes(); }
  void CloseAnalysis() override { m_browser.mnuFileClose_Click(); }
  void OpenAnalysis(const std::string& path) override;
  void Unload() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  // frmSandrel.cpp
  void MakeControls();
  void SetCommands();
  void SetExportCommands();
  class clsBusy;
  void SnapshotCommand(const std::function<void()>& command);
  bool ReportSlot(const clsError& error, const std::string& where);
  void Form_Resize();
  void ShowNotes();
  QWidget* BoxParent();
  // frmSandrelPrint.cpp
  void SetPrintCommands();
  // frmSandrelStart.cpp
  void ActivatePreviousInstance();
  void ShowSplash();
  void UnloadSplash();
  void ShowInTrayOrOnScreen();
  void LoadWindowPlacement();
  void SaveWindowPlacement();
  void ReopenLast(bool& checkBeforeSnapshot);
  void AskForBefore();
  bool Form_Unload();
  void TearDown();
  // frmSandrelTray.cpp
  void SetTrayEvents();
  void mnuSettingsSystray_Click();
  void SysTray_MouseDown(int button);
  void Timer_Tick();
  void TakeTray();
  void RestoreForm();
  void mnuSysTrayPopupExit_Click();
  // frmSandrelMachine.cpp
  std::string MachineToOpen();
  std::shared_ptr<clsMachine> OpenMachine();
  bool HasMachine();
  void ForgetMachine();
  void mnuSettingsMachine_Click();
  // frmSandrelWizard.cpp
  class clsWaiting;
  class clsWizardSide;
  void SetWizardCommands();
  void mnuSnapShotWizard_Click();
  void GoOnWithWizard();
  void GoToInstalled();
  // frmSandrelConfig.cpp
  void mnuSettingsConfig_Click();
  // frmSandrelHelp.cpp
  void SetHelpCommands();
  void SetHelpFile();
  void ShowHelp(int command);
  void mnuHelpAbout_Click();
  void UnloadHelp();

  clsSettings& m_settings;
  const clsHome& m_home;
  clsWindowList& m_windows;
  StartOptions m_options;
  clsMainControls m_controls;
  clsSnapshots m_snapshots;
  clsAnalysis m_analysis;
  clsAnalysisBrowser m_browser;
  clsExportCommands m_export;
  clsQtPrinter m_printer;
  clsPrintCommands m_print;
  clsCommandState m_commandState;
  qt::clsErrorReport m_errorReport;  // of slots and event handlers

  QWidget* m_client = nullptr;  // what the layout divides
  clsToolbarWidget* tlbarMain = nullptr;
  QLabel* txtLastBeforeSnapshot = nullptr;
  QString m_beforeTime;  // what it shows, whole
  clsTreeWidget* treeView = nullptr;
  std::array<clsListWidget*, page::Count> listView{};
  clsSplitBar* picSplit = nullptr;
  clsStatusBarWidget* stbrStatus = nullptr;
  QTimer* Timer = nullptr;
  QMenu* mnuSysTrayPopup = nullptr;
  std::unique_ptr<frmSplash> m_splash;
  std::unique_ptr<clsWizardCommands> m_wizardCommands;
  std::unique_ptr<frmWizard> m_wizard;
  std::unique_ptr<frmHelp> m_help;
  std::unique_ptr<frmAbout> m_about;

  std::string m_notes;  // to be told when no scan runs
  std::string m_helpFile;
  std::string m_machineFolder;  // what was chosen in this session; empty for none
  bool m_noAutoLoadDatabase = false;
  bool m_trayMenuPending = false;
  bool m_wizardWanted = false;  // the user wants the wizard back while it waits
  bool m_loaded = false;        // Form_Load has begun: there is something to save
  bool m_unloading = false;     // inside the tear-down
  bool m_unloaded = false;
};

}  // namespace sandrel
