#include "browser/clsAnalysisBrowser.h"

#include <utility>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "snapshot/clsStatements.h"

namespace sandrel {
namespace {

// In the order of loading, with the progress told before each page and the branch of the tree that
// is made from it.
struct LoadedPage {
  int Index;
  int Percent;
  const char* Branch;
};

constexpr LoadedPage LoadedPages[] = {
    {page::NewRegistry, 0, nullptr},
    {page::NewIniFiles, 10, nullptr},
    {page::NewFiles, 20, "NewFiles"},
    {page::ChangedRegistry, 30, nullptr},
    {page::ChangedIniFiles, 40, nullptr},
    {page::ChangedFiles, 50, "ChangedFiles"},
    {page::DeletedRegistry, 60, nullptr},
    {page::DeletedIniFiles, 70, nullptr},
    {page::DeletedFiles, 80, "DeletedFiles"},
    {page::Stats, 85, nullptr},
    {page::AllRegistry, 90, nullptr},
    {page::AllIniFiles, 95, nullptr},
    {page::AllFiles, 100, "Root"},
};

// Sets a flag for as long as it lives.
class clsFlag {
 public:
  clsFlag(bool& flag, bool value) : m_flag(flag), m_before(std::exchange(flag, value)) {}
  ~clsFlag() { m_flag = m_before; }
  clsFlag(const clsFlag&) = delete;
  clsFlag& operator=(const clsFlag&) = delete;

 private:
  bool& m_flag;
  bool m_before;
};

}  // namespace

clsAnalysisBrowser::clsAnalysisBrowser(clsShell& shell, clsSettings& settings,
                                       clsMainControls& controls, const clsHome& home)
    : Layout(shell, settings, controls),
      Pages(shell, controls, Layout),
      Tree(shell, controls, Layout, Pages),
      Editing(shell, controls, Pages, Tree),
      Files(shell, settings, controls, Pages, home,
            [this](const std::string& path) { return Open(path); }),
      m_shell(shell),
      m_controls(controls) {
  Pages.OnInvalidDatabase = [this](const std::string& path) {
    clsStatements run(m_shell, "frmSandrel.FillList");
    run([&] { Files.RemoveFromRecentFileList(path); });
    mnuFileClose_Click();
  };
  Editing.LoadAllpages = [this] { LoadAllpages(); };
  Editing.IsReplaced = [this] { return AskIfReplaced(); };
  SetEvents();
  SetCommands();
}

// What the user does while pages are loaded would act on half an analysis.
void clsAnalysisBrowser::Command(const char* method, const std::function<void()>& body) {
  if (m_loading) return;
  clsStatements run(m_shell, method);
  run.Command([&] { run(body); }, [] {});
}

void clsAnalysisBrowser::SetEvents() {
  TreeView& tree = m_controls.treeView;
  tree.Click = [this] {
    m_controls.CurrentPane = clsMainControls::Pane::Tree;
    Command("frmSandrel.treeView_Click", [this] { Tree.treeView_Click(); });
  };
  tree.NodeClick = [this](Node& node) {
    Command("frmSandrel.treeView_NodeClick", [&] { Tree.treeView_NodeClick(node); });
  };
  tree.Collapse = [this](Node&) {
    Command("frmSandrel.treeView_Collapse", [this] { Tree.treeView_Collapse(); });
  };
  tree.KeyUp = [this](int code) {
    Command("frmSandrel.treeView_KeyUp", [&] { Tree.treeView_KeyUp(code); });
  };
  tree.GotFocus = [this] {
    m_controls.CurrentPane = clsMainControls::Pane::Tree;
    m_shell.UpdateCommandState();
  };
  for (int index = 0; index < page::Count; ++index) {
    ListView& list = m_controls.List(index);
    list.ColumnClick = [this, index](std::size_t column) {
      Command("frmSandrel.listView_ColumnClick",
              [&] { Pages.listView_ColumnClick(index, column); });
    };
    list.DblClick = [this] {
      Command("frmSandrel.listView_DblClick", [this] { Tree.listView_DblClick(); });
    };
    list.KeyUp = [this](int code) {
      Command("frmSandrel.listView_KeyUp", [&] { Tree.listView_KeyUp(code); });
    };
    list.LostFocus = [this] { m_shell.UpdateCommandState(); };
    list.ItemClick = list.GotFocus = [this] {
      m_controls.CurrentPane = clsMainControls::Pane::List;
      m_shell.UpdateCommandState();
    };
  }
}

void clsAnalysisBrowser::SetCommands() {
  const auto set = [this](const char* item, std::function<void()> body) {
    m_controls.Menus[item].Click = [this, method = std::string("frmSandrel.") + item,
                                    body = std::move(body)] { Command(method.c_str(), body); };
  };
  set("mnuFile", [this] { Files.mnuFile_Click(); });
  set("mnuFileOpen", [this] { Files.mnuFileOpen_Click(); });
  set("mnuFileClose", [this] { mnuFileClose_Click(); });
  for (int i = 1; i <= 5; ++i) {
    set(clsMainControls::Element("mnuFileRecent", i).c_str(),
        [this, i] { Files.mnuFileRecent_Click(i); });
  }
  set("mnuEdit", [this] { Editing.mnuEdit_Click(); });
  set("mnuEditUndo", [this] { Editing.mnuEditUndo_Click(); });
  set("mnuEditCopy", [this] { Editing.mnuEditCopy_Click(); });
  set("mnuEditDelete", [this] { Editing.mnuEditDelete_Click(); });
  set("mnuEditSelectAll", [this] { Editing.mnuEditSelectAll_Click(); });
  set("mnuView", [this] { Tree.mnuView_Click(); });
  set("mnuViewExpandCurrent", [this] { Tree.mnuViewExpandCurrent_Click(); });
  set("mnuViewCollapseCurrent", [this] { Tree.mnuViewCollapseCurrent_Click(); });
  set("mnuViewExpandAll", [this] { Tree.mnuViewExpandAll_Click(); });
  set("mnuViewCollapseAll", [this] { Tree.mnuViewCollapseAll_Click(); });
  set("mnuSettingsColumnsResetWidthsCurrent",
      [this] { Layout.mnuSettingsColumnsResetWidthsCurrent_Click(); });
  set("mnuSettingsColumnsResetOrderCurrent",
      [this] { Layout.mnuSettingsColumnsResetOrderCurrent_Click(); });
  const auto showAgain = [this] {
    if (Node* const node = m_controls.treeView.SelectedItem()) Tree.ShowNode(*node);
  };
  set("mnuSettingsColumnsResetWidthsAll", [this, showAgain] {
    if (Layout.mnuSettingsColumnsResetWidthsAll_Click()) showAgain();
  });
  set("mnuSettingsColumnsResetOrderAll", [this, showAgain] {
    if (Layout.mnuSettingsColumnsResetOrderAll_Click()) showAgain();
  });
}

// The layout of the page on show, and of the view of a hive that may stand behind it.
void clsAnalysisBrowser::LeavePages() {
  Layout.SaveColumnPositions();
  Layout.SaveSharedColumnWidths();
  Layout.SaveSharedColumnPositions();
}

void clsAnalysisBrowser::SaveLayout() {
  LeavePages();
}

bool clsAnalysisBrowser::AskIfReplaced() {
  const std::string path = m_shell.State.AnalysisPath;
  if (path.empty() || !m_controls.Deletes.IsReplaced()) return false;
  m_controls.Deletes.Rollback();  // in the old file, which nobody sees any more
  if (m_shell.Ask({path + "\n\nAnother program has replaced this analysis. Open it anew?",
                   "Sandrel Manager", Buttons::YesNo, BoxIcon::Question}) == Answer::Yes) {
    Files.OpenNamed(path);
  }
  return true;
}

void clsAnalysisBrowser::AskIfReplacedOnce() {
  const std::string now = clsFileWorks::Identity(m_shell.State.AnalysisPath);
  if (now.empty() || now == m_declined) return;
  if (AskIfReplaced() && m_controls.Deletes.IsReplaced()) m_declined = now;
}

bool clsAnalysisBrowser::Open(const std::string& path) {
  const bool opened = Load(path);
  m_shell.UpdateCommandState();
  return opened;
}

bool clsAnalysisBrowser::Load(const std::string& path) {
  const clsFlag busy(m_shell.State.Busy, true);
  const clsFlag loading(m_loading, true);
  AppState& state = m_shell.State;
  clsStatements run(m_shell, "frmSandrel.mnuFileOpen");
  if (!run([&] { Editing.CommitPendingDeletes(); })) return false;  // it stays open, with its Undo
  if (!state.AnalysisPath.empty()) LeavePages();
  state.AnalysisPath = path;
  m_controls.Deletes.Note(path);
  run([&] { Tree.BuildTree(); });
  run([&] { Tree.ShowNode(m_controls.treeView.Item("Root")); });
  if (state.AnalysisPath != path) return false;
  if (m_controls.List(page::Stats).Columns().empty()) {  // it couldn't be read, as was told
    mnuFileClose_Click();
    return false;
  }
  run([&] { Files.UpdateFileMenu(path); });
  const clsFlag notReady(m_controls.FormReady, false);
  LoadAllpages();
  return state.AnalysisPath == path;
}

void clsAnalysisBrowser::mnuFileClose_Click() {
  clsStatements run(m_shell, "frmSandrel.mnuFileClose");
  if (!m_shell.State.AnalysisPath.empty()) LeavePages();
  if (!run([&] { Editing.CommitPendingDeletes(); }) && m_controls.Deletes.Any()) {
    m_controls.Deletes.Rollback();
    m_shell.Tell("The rows that were deleted last are still in the analysis.");
  }
  m_controls.HideLists();
  Layout.EnableResets(false);
  m_shell.State.AnalysisPath.clear();
  Tree.ClearAll();
  run([&] { Files.UpdateRecentFileMenu(); });
  m_controls.SetCaption("Untitled - Sandrel");
  m_shell.UpdateCommandState();
}

// Window messages come through between the pages; when one of them ended the program, or the file
// turned out to be no analysis, the rest is not loaded.
void clsAnalysisBrowser::LoadAllpages() {
  const Node* const selected = m_controls.treeView.SelectedItem();
  if (selected == nullptr) return;
  const std::string key = selected->Key();
  const std::string tag = m_controls.PageTag();
  const std::string path = m_shell.State.AnalysisPath;
  const clsFlag busy(m_shell.State.Busy, true);
  const clsFlag loading(m_loading, true);
  clsStatements run(m_shell, "frmSandrel.LoadAllpages", [](const clsError& error) {
    return "Error Loading Pages - " + error.Description();
  });
  m_shell.SetMousePointer(pointer::Hourglass);
  m_shell.SetProgress(0);
  m_shell.SetStatusText("Loading...");
  for (const LoadedPage& loaded : LoadedPages) {
    run([&] { m_shell.SetProgress(loaded.Percent); });
    run([&] { Pages.ShowPage(loaded.Index); });
    if (m_shell.State.AnalysisPath != path) {
      m_shell.SetProgress(0);
      m_shell.SetStatusText("");
      return;
    }
    if (loaded.Branch == nullptr) continue;
    run([&] {
      Node& branch = m_controls.treeView.Item(loaded.Branch);
      m_controls.treeView.SetSelectedItem(&branch);
      Tree.BuildFileBranch(branch);
    });
  }
  m_shell.SetProgress(0);
  m_shell.SetStatusText("");
  run([&] { Layout.ResetSharedPage("sort"); });
  m_controls.PageTag() = tag;
  run([&] { m_controls.treeView.SetSelectedItem(&m_controls.treeView.Item(key)); });
  run([&] { Tree.treeView_Click(); });
  run([&] { Pages.UpdateStatCounts(); });
  m_shell.RestorePointer();
  m_shell.UpdateCommandState();
}

}  // namespace sandrel
