#include "wizard/clsWizardFlow.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/modOverwrite.h"
#include "common/text.h"

namespace sandrel {
namespace {

enum Pages : std::int16_t {
  WelcomePage,
  SettingsPage,
  BeforePage,
  InstallPage,
  CompletePage,
  SavePage,
  FinishPage
};

constexpr const char* ManagerTitle = "Sandrel Manager";

bool IsBlank(const std::string& text) {
  return text::Trim(text).empty();
}

}  // namespace

clsWizardFlow::clsWizardFlow(clsWizardCommands& commands, clsWizardView& view)
    : m_commands(commands), m_view(view) {}

std::string clsWizardFlow::MainText() {
  return "This Wizard will guide you through creating snapshots, installing software and analyzing "
         "the results.\n\n"
         "  - A 'Before Snapshot' will be created (or an existing one will be used)\n\n"
         "  - Your desired software program will be installed\n\n"
         "  - An 'After Snapshot' will be created \n\n"
         "  - An analysis of the installed software will be created from the snapshots\n\n";
}

void clsWizardFlow::Load() {
  m_page = -1;
  DisplayPage(m_page, true, true);
}

void clsWizardFlow::DisplayPage(std::int16_t& page, bool forward, bool runActions) {
  if (runActions && m_commands.IsBusy()) return;
  if (runActions && forward) {
    clsWizard::Inc(page);
    if (!LeaveForward(page)) return;
  } else if (runActions) {
    clsWizard::DInc(page);
    if (page == WelcomePage && m_shown.optScanSettings == 1) ViewSettings();
  }
  if (page == BeforePage) ShowSnapshots();
  // A caller's own variable names the page when the wizard goes on after a restart.
  if (page == CompletePage) m_page = CompletePage;
  clsWizard::SetPageVisible(m_shown.picPage, page, m_shown.cmdNextEnabled,
                            m_shown.cmdPreviousEnabled);
  m_shown.cmdFinishEnabled = page == FinishPage;
  m_shown.cmdCancelEnabled = page != FinishPage;
  if (page == InstallPage) m_shown.cmdNextEnabled = !IsBlank(m_shown.txtRun);
  if (page == SavePage) m_shown.cmdNextEnabled = !IsBlank(m_shown.txtViewName);
  m_view.Refresh();
  if (page == InstallPage) m_view.SetFocus(WizardControl::txtRun);
  if (page == SavePage) m_view.SetFocus(WizardControl::txtViewName);
  if (page == FinishPage) m_view.SetFocus(WizardControl::cmdFinish);
}

// What belongs to the page just left, by the number of the new one. False when the wizard is gone.
bool clsWizardFlow::LeaveForward(std::int16_t& page) {
  switch (page) {
    case BeforePage:
      if (m_shown.optScanSettings == 1) ViewSettings();
      break;
    case InstallPage:
      if (m_shown.optBeforeSS == 0) {
        if (!CreateBefore()) return false;
      } else if (m_shown.optBeforeSS == 1 ? !m_commands.ReplaceBefore() : !UseExisting()) {
        page = BeforePage;
        break;
      }
      m_shown.optBeforeSS = 2;
      break;
    case CompletePage:
      if (!m_shown.txtRun.empty()) Install(page);
      break;
    case SavePage:
      if (m_shown.optInstComplete == 1) WaitLonger(page);
      break;
    case FinishPage:
      txtViewName_LostFocus();
      if (!m_shown.txtViewName.empty()) return CreateAnalysis(page);
      break;
    default:
      break;
  }
  return !m_commands.IsGone();
}

void clsWizardFlow::ViewSettings() {
  m_commands.ShowConfig();
  m_shown.optScanSettings = 0;
}

bool clsWizardFlow::CreateBefore() {
  m_commands.Ask(
      {"You will be returned to the Snapshot / Analysis Wizard when the snapshot is complete",
       ManagerTitle, Buttons::Ok, BoxIcon::Information});
  m_view.SetWizardVisible(false);
  if (!m_commands.BeforeSnapshot() || m_commands.IsGone()) {
    Unload();
    return false;
  }
  m_view.SetWizardVisible(true);
  return true;
}

bool clsWizardFlow::TellNoBefore() {
  if (m_commands.GetSnapshotLevel() != SnapshotLevel::None) return false;
  m_commands.Ask({"There is no 'Before' snapshot to compare with. Go back and create one.",
                  ManagerTitle, Buttons::Ok, BoxIcon::Exclamation});
  return true;
}

// What the comparison would ask about is asked before the installation.
bool clsWizardFlow::UseExisting() {
  if (TellNoBefore()) return false;
  bool confirmed = false;
  return IsPossible([&] { confirmed = m_commands.ConfirmBefore(); }) && confirmed;
}

// What can't be done is told before anything is hidden or begun.
bool clsWizardFlow::IsPossible(const std::function<void()>& check) {
  try {
    check();
    return true;
  } catch (const clsError& error) {
    m_commands.Ask({error.Description(), ManagerTitle, Buttons::Ok, BoxIcon::Exclamation});
    return false;
  }
}

// A user who can't be brought back after a restart is told before the installer runs.
bool clsWizardFlow::StoreRunOnce() {
  try {
    m_commands.StoreRunOnce();
    return true;
  } catch (const clsError& error) {
    return m_commands.Ask({error.Description() +
                               "\n\nThe wizard can't come back by itself if the machine is "
                               "restarted now. Go on without?",
                           ManagerTitle, Buttons::YesNo, BoxIcon::Exclamation}) == Answer::Yes;
  }
}

void clsWizardFlow::Hide() {
  m_view.SetWizardVisible(false);
  m_commands.SetMainVisible(false);
}

// When the program ends in the middle, as by the restart of the machine, the entry that brings the
// wizard back stays.
bool clsWizardFlow::ComeBack() {
  if (m_commands.IsGone()) {
    Unload();
    return false;
  }
  m_commands.DeleteRunOnce();
  m_commands.SetMainVisible(true);
  m_view.SetWizardVisible(true);
  return true;
}

void clsWizardFlow::Install(std::int16_t& page) {
  m_shown.optInstComplete = 0;
  if (TellNoBefore() || !IsPossible([&] { m_commands.CheckProgram(m_shown.txtRun); }) ||
      !StoreRunOnce()) {
    page = InstallPage;
    return;
  }
  Hide();
  m_commands.RunProgram(m_shown.txtRun);
  ComeBack();
}

void clsWizardFlow::WaitLonger(std::int16_t& page) {
  constexpr double SecondsPerMinute = 60;
  const double seconds = text::Val(m_shown.txtWait) * SecondsPerMinute;
  clsWizard::DInc(page);
  if (m_shown.txtWait.empty() || seconds > std::numeric_limits<std::int32_t>::max()) {
    m_commands.Ask({"Type the number of minutes to wait for the install to complete.", ManagerTitle,
                    Buttons::Ok, BoxIcon::Exclamation});
    return;
  }
  if (!StoreRunOnce()) return;
  Hide();
  m_commands.Wait(static_cast<std::int32_t>(seconds));
  ComeBack();
}

bool clsWizardFlow::CreateAnalysis(std::int16_t& page) {
  m_shown.txtViewName = clsFileWorks::ExpandHome(m_shown.txtViewName);
  m_shown.txtViewName = m_shown.txtViewName.find('/') == std::string::npos
                            ? clsFileWorks::Join(m_commands.Folder(), m_shown.txtViewName)
                            : clsFileWorks::Absolute(m_shown.txtViewName);
  const auto ask = [&](std::string text, Buttons buttons, BoxIcon icon, const char* title) {
    return m_commands.Ask({std::move(text), title, buttons, icon});
  };
  if (TellNoBefore() || !IsPossible([&] { m_commands.CheckAnalysis(m_shown.txtViewName); })) {
    page = SavePage;
    return true;
  }
  if (clsFileWorks::FileExists(m_shown.txtViewName) &&
      ask(OverwriteText(m_shown.txtViewName), Buttons::YesNo, BoxIcon::Exclamation,
          "Confirmation Required") != Answer::Yes) {
    page = SavePage;
    return true;
  }
  ask("You will be returned to the Snapshot / Analysis Wizard when the snapshot and analysis "
      "completes",
      Buttons::Ok, BoxIcon::Information, ManagerTitle);
  m_view.SetWizardVisible(false);
  if (!m_commands.MakeAnalysis(m_shown.txtViewName) || m_commands.IsGone()) {
    Unload();
    return false;
  }
  m_view.SetWizardVisible(true);
  return true;
}

void clsWizardFlow::Unload() {
  m_view.Unload();
}

void clsWizardFlow::ShowSnapshots() {
  const SnapshotLevel level = m_commands.GetSnapshotLevel();
  const auto age = [this](const char* which) {
    const std::string time = m_commands.SnapshotTime(which);
    return time.empty() || time == "0"
               ? std::string()
               : fmt::format("Existing '{} Snapshot' created: {}", which, time);
  };
  m_shown.lblMachine = m_commands.MachineText();
  m_shown.canReplace = m_commands.CanReplaceBefore();
  m_shown.canUseExisting = level != SnapshotLevel::None;
  if ((m_shown.optBeforeSS == 1 && !m_shown.canReplace) ||
      (m_shown.optBeforeSS == 2 && !m_shown.canUseExisting)) {
    m_shown.optBeforeSS = 0;
  }
  m_shown.lblBeforeSnapshotAge = m_shown.canUseExisting ? age("Before") : std::string();
  m_shown.lblAfterSnapshotAge =
      level == SnapshotLevel::BeforeAndAfter ? age("After") : std::string();
}

void clsWizardFlow::cmdBrowse_Click() {
  const std::string program = m_commands.ChooseProgram();
  if (!program.empty()) txtRun_Change('"' + program + '"');
}

void clsWizardFlow::cmdSaveAnalysisBrowse_Click() {
  std::string path = m_commands.ChooseAnalysis();
  if (!path.empty()) txtViewName_Change(std::move(path));
}

void clsWizardFlow::txtRun_Change(std::string text) {
  m_shown.txtRun = std::move(text);
  m_shown.cmdNextEnabled = !IsBlank(m_shown.txtRun);
  m_view.Refresh();
}

void clsWizardFlow::txtViewName_Change(std::string text) {
  m_shown.txtViewName = std::move(text);
  m_shown.cmdNextEnabled = !IsBlank(m_shown.txtViewName);
  m_view.Refresh();
}

void clsWizardFlow::txtViewName_LostFocus() {
  if (IsBlank(m_shown.txtViewName) ||
      text::EqualNoCase(clsPathText::ExtensionOf(m_shown.txtViewName), "mdb")) {
    return;
  }
  m_shown.txtViewName += ".mdb";
  m_view.Refresh();
}

void clsWizardFlow::optInstComplete_Click(int index) {
  m_shown.optInstComplete = index;
  m_view.Refresh();
}

std::string clsWizardFlow::WaitText(std::string_view typed) {
  std::string digits;
  std::copy_if(typed.begin(), typed.end(), std::back_inserter(digits),
               [](char c) { return c >= '0' && c <= '9'; });
  return digits;
}

}  // namespace sandrel
