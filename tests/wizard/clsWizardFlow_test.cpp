#include "wizard/clsWizardFlow.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

using testing::ElementsAre;
using Log = std::vector<std::string>;

// The main window and the wizard's window: what they are asked for, in order.
class Desk final : public clsWizardCommands, public clsWizardView {
 public:
  explicit Desk(const std::string& folder) : m_folder(folder) {}

  Log Done;
  bool Gone = false, Busy = false, EndsWell = true, CanStore = true, ProgramEndsAll = false;
  bool Confirms = true;
  SnapshotLevel Level = SnapshotLevel::Before;
  std::string Refusal;
  Answer Says = Answer::Yes;

  Log Take() { return std::exchange(Done, {}); }

  bool IsGone() const override { return Gone; }
  bool IsBusy() const override { return Busy; }
  Answer Ask(const MessageBox& box) override {
    Done.push_back(box.Title + ": " + box.Text);
    return box.Choice == Buttons::Ok ? Answer::Ok : Says;
  }
  void SetMainVisible(bool visible) override { Done.emplace_back(visible ? "main" : "no main"); }
  std::string Folder() const override { return m_folder; }
  void ShowConfig() override { Done.emplace_back("config"); }
  bool BeforeSnapshot() override {
    Done.emplace_back("before");
    return EndsWell;
  }
  bool ReplaceBefore() override {
    Done.emplace_back("replace");
    return EndsWell;
  }
  bool ConfirmBefore() override { return Confirms; }
  std::string MachineText() const override { return "Machine: /m"; }
  bool CanReplaceBefore() const override { return Level == SnapshotLevel::BeforeAndAfter; }
  SnapshotLevel GetSnapshotLevel() const override { return Level; }
  std::string SnapshotTime(const char* which) const override {
    return std::string(which) == "Before" ? "Monday" : "0";
  }
  void CheckAnalysis(const std::string&) override { CheckProgram(""); }
  bool MakeAnalysis(const std::string& path) override {
    Done.push_back("analysis " + path);
    return EndsWell;
  }
  void CheckProgram(const std::string&) override {
    if (!Refusal.empty()) throw clsError(errnum::Machine, Refusal);
  }
  void RunProgram(const std::string& line) override {
    Done.push_back("run " + line);
    Gone = ProgramEndsAll;
  }
  void Wait(std::int32_t seconds) override { Done.push_back("wait " + std::to_string(seconds)); }
  void StoreRunOnce() override {
    if (!CanStore) throw clsError(errnum::DiskFull, "Disk full");
    Done.emplace_back("store");
  }
  void DeleteRunOnce() override { Done.emplace_back("delete"); }
  std::string ChooseProgram() override { return "/my setup.exe"; }
  std::string ChooseAnalysis() override { return "/tmp/a.mdb"; }

  void Refresh() override {}
  void SetFocus(WizardControl control) override { Focus = control; }
  void SetWizardVisible(bool visible) override { Done.emplace_back(visible ? "show" : "hide"); }
  void Unload() override { Done.emplace_back("unload"); }
  WizardControl Focus{};

 private:
  std::string m_folder;
};

class WizardFlow : public testing::Test {
 protected:
  WizardFlow() { m_flow.Load(); }

  /// Shows a page without what leads there.
  void GoTo(std::int16_t page) {
    while (m_flow.Page() > page) m_flow.cmdPrevious_Click();
    while (m_flow.Page() < page) {
      m_flow.optBeforeSS_Click(2);
      m_flow.cmdNext_Click();
    }
    m_desk.Take();
  }
  Log Next() {
    m_flow.cmdNext_Click();
    return m_desk.Take();
  }
  /// The page on show and the usable buttons, as "3 npfc".
  std::string State() const {
    std::string state;
    for (std::size_t i = 0; i < m_flow.Shown().picPage.size(); ++i) {
      if (m_flow.Shown().picPage[i].Visible) state += std::to_string(i);
    }
    const auto add = [&](bool enabled, char letter) { state += enabled ? letter : '-'; };
    state += ' ';
    add(m_flow.Shown().cmdPreviousEnabled, 'p');
    add(m_flow.Shown().cmdNextEnabled, 'n');
    add(m_flow.Shown().cmdFinishEnabled, 'f');
    add(m_flow.Shown().cmdCancelEnabled, 'c');
    return state;
  }

  test::TempFolder m_temp;
  Desk m_desk{m_temp.Path()};
  clsWizardFlow m_flow{m_desk, m_desk};
};

TEST_F(WizardFlow, ShowsItsPagesAndButtons) {
  EXPECT_EQ(State(), "0 -n-c");
  EXPECT_EQ(Next(), Log{});
  EXPECT_EQ(State(), "1 pn-c");
  m_flow.optScanSettings_Click(1);
  EXPECT_THAT(Next(), ElementsAre("config"));
  EXPECT_EQ(m_flow.Shown().optScanSettings, 0);
  EXPECT_EQ(State(), "2 pn-c");
  m_flow.optScanSettings_Click(1);
  GoTo(1);
  m_flow.cmdPrevious_Click();
  EXPECT_THAT(m_desk.Take(), ElementsAre("config"));
  GoTo(3);
  EXPECT_EQ(State(), "3 p--c");
  EXPECT_EQ(m_desk.Focus, WizardControl::txtRun);
  m_flow.txtRun_Change("  ");
  EXPECT_EQ(State(), "3 p--c");
  m_flow.cmdBrowse_Click();
  EXPECT_EQ(m_flow.Shown().txtRun, "\"/my setup.exe\"");
  EXPECT_EQ(State(), "3 pn-c");
  m_desk.Busy = true;
  EXPECT_EQ(Next(), Log{});
  EXPECT_EQ(State(), "3 pn-c");
}

TEST_F(WizardFlow, OffersTheSnapshotsThatExist) {
  const auto ages = [this] {
    GoTo(1);
    GoTo(2);
    return m_flow.Shown().lblBeforeSnapshotAge + "|" + m_flow.Shown().lblAfterSnapshotAge + "|" +
           (m_flow.Shown().canUseExisting ? "use" : "") +
           (m_flow.Shown().canReplace ? " replace" : "");
  };
  m_desk.Level = SnapshotLevel::None;
  EXPECT_EQ((GoTo(1), Next(), m_flow.Shown().canUseExisting), false);
  EXPECT_EQ(m_flow.Shown().lblMachine, "Machine: /m");
  m_desk.Level = SnapshotLevel::Before;
  EXPECT_EQ(ages(), "Existing 'Before Snapshot' created: Monday||use");
  m_desk.Level = SnapshotLevel::BeforeAndAfter;  // taken at a time that isn't known
  EXPECT_EQ(ages(), "Existing 'Before Snapshot' created: Monday||use replace");
}

TEST_F(WizardFlow, TakesTheBeforeSnapshot) {
  const std::string told =
      "Sandrel Manager: You will be returned to the Snapshot / Analysis Wizard when the snapshot "
      "is complete";
  GoTo(2);
  m_flow.optBeforeSS_Click(0);
  EXPECT_THAT(Next(), ElementsAre(told, "hide", "before", "show"));
  EXPECT_EQ(m_flow.Shown().optBeforeSS, 2);
  GoTo(2);
  m_flow.optBeforeSS_Click(1);
  EXPECT_THAT(Next(), ElementsAre("replace"));
  // What can't be used is told before the installation, not after it.
  GoTo(2);
  m_flow.optBeforeSS_Click(2);
  m_desk.Level = SnapshotLevel::None;
  EXPECT_THAT(Next(), ElementsAre(testing::HasSubstr("no 'Before' snapshot to compare with")));
  EXPECT_EQ(State() + std::to_string(m_flow.Shown().optBeforeSS), "2 pn-c0");
  m_desk.Level = SnapshotLevel::Before;
  m_desk.Confirms = false;
  m_flow.optBeforeSS_Click(2);
  EXPECT_EQ(Next(), Log{});
  EXPECT_EQ(State(), "2 pn-c");
  m_desk.EndsWell = false;
  m_flow.optBeforeSS_Click(1);
  EXPECT_THAT(Next(), ElementsAre("replace"));
  EXPECT_EQ(State(), "2 pn-c");
  m_flow.optBeforeSS_Click(0);
  EXPECT_THAT(Next(), ElementsAre(told, "hide", "before", "unload"));
}

TEST_F(WizardFlow, RunsTheInstaller) {
  GoTo(3);
  m_flow.txtRun_Change("setup /S");
  m_flow.optInstComplete_Click(1);
  EXPECT_THAT(Next(),
              ElementsAre("store", "hide", "no main", "run setup /S", "delete", "main", "show"));
  EXPECT_EQ(State(), "4 pn-c");
  EXPECT_FALSE(m_flow.Shown().CanWait());
  GoTo(3);
  m_desk.Refusal = "No Wine";
  EXPECT_THAT(Next(), ElementsAre("Sandrel Manager: No Wine"));
  EXPECT_EQ(State(), "3 pn-c");
  m_desk.Refusal.clear();
  m_desk.CanStore = false;
  m_desk.Says = Answer::No;
  EXPECT_THAT(Next(), ElementsAre(testing::HasSubstr("Disk full")));
  EXPECT_EQ(State(), "3 pn-c");
  m_desk.CanStore = true;
  m_desk.ProgramEndsAll = true;  // the entry stays
  EXPECT_THAT(Next(), ElementsAre("store", "hide", "no main", "run setup /S", "unload"));
}

TEST_F(WizardFlow, WaitsLonger) {
  std::int16_t installed = 4;
  m_flow.DisplayPage(installed, true, false);
  EXPECT_EQ(m_flow.Page(), 4);
  EXPECT_EQ(m_desk.Take(), Log{});
  m_flow.optInstComplete_Click(1);
  for (const char* minutes : {"", "99999999"}) {
    m_flow.txtWait_Change(minutes);
    EXPECT_THAT(Next(), ElementsAre(testing::HasSubstr("number of minutes"))) << minutes;
    EXPECT_EQ(State(), "4 pn-c");
  }
  m_flow.txtWait_Change("1x0");
  EXPECT_THAT(Next(),
              ElementsAre("store", "hide", "no main", "wait 600", "delete", "main", "show"));
  EXPECT_EQ(State(), "4 pn-c");
  m_flow.optInstComplete_Click(0);
  EXPECT_EQ(Next(), Log{});
  EXPECT_EQ(State(), "5 p--c");
  EXPECT_EQ(m_desk.Focus, WizardControl::txtViewName);
}

TEST_F(WizardFlow, MakesTheAnalysis) {
  const std::string told =
      "Sandrel Manager: You will be returned to the Snapshot / Analysis Wizard when the snapshot "
      "and analysis completes";
  GoTo(5);
  m_flow.txtViewName_Change("analysis");
  m_desk.Level = SnapshotLevel::None;
  EXPECT_THAT(Next(), ElementsAre(testing::HasSubstr("no 'Before' snapshot")));
  m_desk.Level = SnapshotLevel::Before;
  m_flow.txtViewName_Change("analysis.MDB");
  m_desk.Refusal = "No folder";
  EXPECT_THAT(Next(), ElementsAre("Sandrel Manager: No folder"));
  EXPECT_EQ(State(), "5 pn-c");
  m_desk.Refusal.clear();
  const std::string path = m_temp.Of("analysis.MDB");
  EXPECT_THAT(Next(), ElementsAre(told, "hide", "analysis " + path, "show"));
  EXPECT_EQ(State(), "6 p-f-");
  EXPECT_EQ(m_desk.Focus, WizardControl::cmdFinish);

  GoTo(5);
  m_flow.txtViewName_Change("./" + std::filesystem::relative(path).string());
  clsFileWorks::ReplaceWhole(path, "");
  m_desk.Says = Answer::No;
  const std::string question = "Confirmation Required: WARNING! An existing file by that name (" +
                               path + ") has been found!\n\nOverwrite the existing file?";
  EXPECT_THAT(Next(), ElementsAre(question));
  EXPECT_EQ(State(), "5 pn-c");
  m_desk.Says = Answer::Yes;
  m_desk.EndsWell = false;
  EXPECT_THAT(Next(), ElementsAre(question, told, "hide", "analysis " + path, "unload"));

  m_flow.cmdSaveAnalysisBrowse_Click();
  EXPECT_EQ(m_flow.Shown().txtViewName, "/tmp/a.mdb");
  for (const auto& [typed, left] : {std::pair(" ", " "), {"a.txt", "a.txt.mdb"}}) {
    m_flow.txtViewName_Change(typed);
    m_flow.txtViewName_LostFocus();
    EXPECT_EQ(m_flow.Shown().txtViewName, left);
  }
}

}  // namespace
}  // namespace sandrel
