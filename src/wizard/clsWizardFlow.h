// The wizard's pages: what stands on them, which come when, and what leaving one does. It knows no
// window: a view shows its state, the main window's commands do the work.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "common/clsShell.h"
#include "store/clsTableMaint.h"
#include "wizard/clsWizard.h"

namespace sandrel {

/// What the wizard asks of the main window. An operation may let window messages pass.
class clsWizardCommands {
 public:
  virtual ~clsWizardCommands() = default;

  /// True once the program is about to end: nothing more is to be shown or asked.
  virtual bool IsGone() const = 0;
  /// True while a snapshot command of the main window runs.
  virtual bool IsBusy() const = 0;
  virtual Answer Ask(const MessageBox& box) = 0;
  virtual void SetMainVisible(bool visible) = 0;
  /// The folder that names without one are meant in; host path.
  virtual std::string Folder() const = 0;

  virtual void ShowConfig() = 0;
  /// Takes a Before snapshot. False unless it is complete or the user keeps the one that exists.
  virtual bool BeforeSnapshot() = 0;
  /// Makes the After snapshot the Before snapshot. False when that failed.
  virtual bool ReplaceBefore() = 0;
  /// Asks whether the Before snapshot that exists, of another machine or other settings, is to be
  /// used; may raise.
  virtual bool ConfirmBefore() = 0;
  /// The machine that is looked at, for the user.
  virtual std::string MachineText() const = 0;
  virtual bool CanReplaceBefore() const = 0;
  virtual SnapshotLevel GetSnapshotLevel() const = 0;
  /// When the snapshot "Before" or "After" was taken; empty or "0" when that isn't known.
  virtual std::string SnapshotTime(const char* which) const = 0;
  /// Raises why no analysis can be written to a host path.
  virtual void CheckAnalysis(const std::string& path) = 0;
  /// Takes the After snapshot and makes the analysis, a host path. False when there is none.
  virtual bool MakeAnalysis(const std::string& path) = 0;

  /// Raises why a command line can't be run at all.
  virtual void CheckProgram(const std::string& commandLine) = 0;
  /// Runs a command line and waits for its end; one that can't start ends at once.
  virtual void RunProgram(const std::string& commandLine) = 0;
  virtual void Wait(std::int32_t seconds) = 0;
  /// Has the wizard brought back at the next logon; may raise.
  virtual void StoreRunOnce() = 0;
  virtual void DeleteRunOnce() = 0;

  /// Ask for a program and for an analysis; empty when the user cancelled.
  virtual std::string ChooseProgram() = 0;
  virtual std::string ChooseAnalysis() = 0;
};

enum class WizardControl : std::uint8_t { txtRun, txtViewName, cmdFinish };

/// The window of the wizard.
class clsWizardView {
 public:
  virtual ~clsWizardView() = default;
  /// Shows the flow's state.
  virtual void Refresh() = 0;
  virtual void SetFocus(WizardControl control) = 0;
  virtual void SetWizardVisible(bool visible) = 0;
  /// The wizard ends.
  virtual void Unload() = 0;
};

class clsWizardFlow {
 public:
  static constexpr int PageCount = 7;

  /// Both outlive the flow.
  clsWizardFlow(clsWizardCommands& commands, clsWizardView& view);

  /// Text of the first page.
  static std::string MainText();

  /// What the controls hold.
  struct Controls {
    std::array<WizardPage, PageCount> picPage;
    int optScanSettings = 0;
    int optBeforeSS = 0;
    int optInstComplete = 0;
    std::string txtRun, txtWait, txtViewName;
    std::string lblMachine, lblBeforeSnapshotAge, lblAfterSnapshotAge;
    bool canReplace = false;      ///< of optBeforeSS(1)
    bool canUseExisting = false;  ///< of optBeforeSS(2)
    bool cmdNextEnabled = false, cmdPreviousEnabled = false;
    bool cmdFinishEnabled = false, cmdCancelEnabled = false;
    bool CanWait() const { return optInstComplete == 1; }
  };
  const Controls& Shown() const { return m_shown; }

  /// Shows the first page.
  void Load();
  /// Goes to the next page or, not `forward`, to the one before; with `runActions` what belongs to
  /// the page that is left is done first, and may keep it; nothing happens while the main window is
  /// busy. Without, `page` itself is shown.
  void DisplayPage(std::int16_t& page, bool forward, bool runActions);
  std::int16_t Page() const { return m_page; }

  void cmdNext_Click() { DisplayPage(m_page, true, true); }
  void cmdPrevious_Click() { DisplayPage(m_page, false, true); }
  void cmdBrowse_Click();
  void cmdSaveAnalysisBrowse_Click();
  void optScanSettings_Click(int index) { m_shown.optScanSettings = index; }
  void optBeforeSS_Click(int index) { m_shown.optBeforeSS = index; }
  void txtWait_Change(std::string_view typed) { m_shown.txtWait = WaitText(typed); }
  void txtRun_Change(std::string text);
  void txtViewName_Change(std::string text);
  void txtViewName_LostFocus();
  void optInstComplete_Click(int index);
  /// The digits of what was typed.
  static std::string WaitText(std::string_view typed);

 private:
  bool LeaveForward(std::int16_t& page);
  void ViewSettings();
  bool CreateBefore();
  bool UseExisting();
  bool TellNoBefore();
  void Install(std::int16_t& page);
  void WaitLonger(std::int16_t& page);
  bool CreateAnalysis(std::int16_t& page);
  void ShowSnapshots();
  bool IsPossible(const std::function<void()>& check);
  bool StoreRunOnce();
  void Hide();
  bool ComeBack();
  void Unload();

  clsWizardCommands& m_commands;
  clsWizardView& m_view;
  Controls m_shown;
  std::int16_t m_page = -1;
};

}  // namespace sandrel
