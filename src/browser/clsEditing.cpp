#include "browser/clsEditing.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <unordered_set>

#include "browser/DeleteStatement.h"
#include "common/clsError.h"
#include "common/text.h"

namespace sandrel {
namespace {

struct FilePage {
  int Page;
  const char* Node;
  const char* Folder;  // of its branch, behind the analysis' name
};

constexpr FilePage FilePages[] = {
    {page::NewFiles, "NewFiles", "\\files\\new"},
    {page::ChangedFiles, "ChangedFiles", "\\files\\changed"},
    {page::DeletedFiles, "DeletedFiles", "\\files\\deleted"},
};

// The "All" page of a page of one table, and the number of that table's statement there.
int AllPageOf(int single) {
  return page::AllRegistry + single % 3;
}
std::uint8_t StatementOf(int single) {
  return static_cast<std::uint8_t>(single / 3 + 1);
}
bool IsAllPage(int index) {
  return index >= page::AllRegistry && index <= page::AllFiles;
}

std::size_t FirstSelected(const ListView& list) {
  std::size_t row = 0;
  while (row < list.RowCount() && !list.Selected(row)) ++row;
  return row;
}

void RemoveKeys(ListView& list, const std::vector<RowKey>& keys) {
  if (keys.empty()) return;
  const std::unordered_set<RowKey, RowKeyHash> gone(keys.begin(), keys.end());
  list.RemoveRows([&](std::size_t row) { return gone.count(list.Key(row)) != 0; });
}

}  // namespace

clsEditing::clsEditing(clsShell& shell, clsMainControls& controls, clsPages& pages,
                       clsAnalysisTree& tree)
    : m_shell(shell), m_controls(controls), m_pages(pages), m_tree(tree) {}

void clsEditing::CommitPendingDeletes() {
  if (m_controls.Deletes.Any() && m_controls.Deletes.IsReplaced()) {
    m_controls.Deletes.Rollback();  // nobody sees that file any more
    m_shell.Tell(
        "Another program has replaced the analysis. The rows that were deleted last are "
        "still in the new one.");
  }
  m_controls.Deletes.Commit();
  m_shell.UpdateCommandState();
}

void clsEditing::mnuEditDelete_Click() {
  DeleteListViewItems(true);
  m_shell.UpdateCommandState();
}

// Which rows are meant, so that nobody deletes what stands selected by itself.
std::string clsEditing::SelectedText() const {
  const ListView& list = m_pages.CurrentList();
  std::size_t count = 0;
  std::string text;
  for (std::size_t row = 0; row < list.RowCount(); ++row) {
    if (!list.Selected(row) || list.Key(row).Statement == 0) continue;  // a folder is no record
    if (++count > 1) continue;
    for (std::size_t cell = 0; cell < std::min<std::size_t>(3, list.Cells(row).size()); ++cell) {
      if (!list.Cell(row, cell).empty()) {
        text += (text.empty() ? "" : "  ") + std::string(text::Left(list.Cell(row, cell), 200));
      }
    }
  }
  return count > 1 ? fmt::format("{} items", count) : text;
}

void clsEditing::DeleteListViewItems(bool confirm) {
  const int count = m_pages.CountSelected(false);
  if (count == 0 || (confirm && IsReplaced && IsReplaced())) return;
  const std::string phrase =
      (count > 1 ? "all the selected items.\n\n" : "the selected item.\n\n") + SelectedText();
  if (confirm && m_shell.Ask({"Are you sure you want to delete " + phrase, "Sandrel Manager",
                              Buttons::YesNo, BoxIcon::Question}) != Answer::Yes) {
    return;
  }
  m_shell.SetMousePointer(pointer::Hourglass);
  clsStatements run(m_shell, "frmSandrel.DeleteListViewItems");
  if (const int index = m_pages.CurrentListIndex();
      index == page::SharedPage || index == page::FilteredPage) {
    DeleteFromSourcePage();
  } else {
    run([&] { CommitPendingDeletes(); });
    DeleteFromTables(run);
  }
  m_shell.RestorePointer();
  m_shell.UpdateCommandState();
}

// The rows of the view of a hive or a folder are copies: their originals are deleted on the page
// that they come from, whose own selection is put back.
void clsEditing::DeleteFromSourcePage() {
  const std::string tag = m_controls.PageTag();
  const Node* const selected = m_controls.treeView.SelectedItem();
  const std::string nodeKey = selected == nullptr ? "" : selected->Key();
  const ListView& view = m_pages.CurrentList();
  const int source = view.RowTag(0);
  ListView& list = m_controls.List(source);
  const std::vector<RowKey> before = list.SelectedKeys();
  list.BeginUpdate();
  list.SelectAll(false);
  list.SelectKeys(view.SelectedKeys());
  list.EndUpdate();
  m_controls.PageTag() = PageName(source);
  m_inNestedDelete = true;
  try {
    DeleteListViewItems(false);
  } catch (...) {
    m_inNestedDelete = false;
    m_controls.PageTag() = tag;
    throw;
  }
  m_inNestedDelete = false;
  list.BeginUpdate();
  list.SelectAll(false);
  list.SelectKeys(before);
  list.EndUpdate();
  m_controls.PageTag() = tag;
  RebuildBranches({source});
  SelectNodeOrBranch(nodeKey);
}

void clsEditing::DeleteFromTables(clsStatements& run) {
  const int index = m_pages.CurrentListIndex();
  ListView& list = m_controls.List(index);
  if (!run([&] { m_controls.Deletes.Begin(); })) return;
  const std::vector<RowKey> removed = DeleteRecords(list, run);
  RemoveTwins(index, removed);
  const std::size_t place = FirstSelected(list);
  RemoveKeys(list, removed);
  // The row that takes the place of the deleted ones.
  if (!removed.empty() && list.RowCount() > 0) {
    list.SelectAll(false);
    list.Select(std::min(place, list.RowCount() - 1), true);
  }
  m_pages.UpdateStatCounts();
  if (m_inNestedDelete) return;
  if (index == page::AllFiles) {
    RebuildBranches({page::NewFiles, page::ChangedFiles, page::DeletedFiles});
  } else {
    RebuildBranches({index});
  }
}

// The keys of the rows whose records are gone. A row that stood for none stays. An error mostly
// holds for all rows, as of an analysis that can't be written: it is told once.
std::vector<RowKey> clsEditing::DeleteRecords(const ListView& list, clsStatements& run) {
  std::vector<RowKey> removed;
  std::unordered_set<std::string> severalAtOnce;  // statements that took equal rows along
  for (std::size_t row = 0; row < list.RowCount() && m_controls.Deletes.Any(); ++row) {
    if (!list.Selected(row)) continue;
    const bool done = run([&] {
      const std::string sql = DeleteStatement(list, row);
      if (severalAtOnce.count(sql) != 0) return removed.push_back(list.Key(row));
      const std::int64_t records = m_controls.Deletes.Execute(sql);
      if (records > 0) removed.push_back(list.Key(row));
      if (records > 1) severalAtOnce.insert(sql);
    });
    if (!done) break;
  }
  if (!m_controls.Deletes.Any()) removed.clear();  // the store undid them all by itself
  if (severalAtOnce.empty()) return removed;
  for (std::size_t row = 0; row < list.RowCount(); ++row) {
    if (!list.Selected(row) && severalAtOnce.count(DeleteStatement(list, row)) != 0) {
      removed.push_back(list.Key(row));
    }
  }
  return removed;
}

void clsEditing::RemoveTwins(int index, const std::vector<RowKey>& removed) {
  if (index == page::Stats) return;
  std::vector<RowKey> twins;
  if (!IsAllPage(index)) {
    for (const RowKey key : removed) twins.push_back({key.Number, StatementOf(index)});
    RemoveKeys(m_controls.List(AllPageOf(index)), twins);
    return;
  }
  for (int single = index - page::AllRegistry; single < page::Stats; single += 3) {
    twins.clear();
    for (const RowKey key : removed) {
      if (key.Statement == StatementOf(single)) twins.push_back({key.Number, 1});
    }
    RemoveKeys(m_controls.List(single), twins);
  }
}

void clsEditing::RebuildBranches(const std::vector<int>& filePages) {
  TreeView& tree = m_controls.treeView;
  const std::string tag = m_controls.PageTag();
  const Node* const selected = tree.SelectedItem();
  const std::string key = selected == nullptr ? "" : selected->Key();
  for (const int index : filePages) {
    for (const FilePage& known : FilePages) {
      if (known.Page != index) continue;
      m_controls.PageTag() = PageName(index);
      Node& branch = tree.Item(known.Node);
      tree.SetSelectedItem(&branch);
      m_tree.BuildFileBranch(branch);
    }
  }
  m_controls.PageTag() = tag;
  if (Node* const before = tree.Find(key)) tree.SetSelectedItem(before);
}

// The node's page is shown anew, or that of its branch when its folder has gone.
void clsEditing::SelectNodeOrBranch(const std::string& key) {
  TreeView& tree = m_controls.treeView;
  Node* node = tree.Find(key);
  const std::string folded = text::Lower(key);
  for (const FilePage& branch : FilePages) {
    if (node == nullptr && folded.starts_with(text::Lower(m_tree.AnalysisName()) + branch.Folder)) {
      node = tree.Find(branch.Node);
    }
  }
  if (node != nullptr) m_tree.ShowNode(*node);
}

void clsEditing::mnuEditUndo_Click() {
  if (!m_controls.Deletes.Any()) return;
  const clsPointerGuard pointer(m_shell, pointer::Hourglass);
  m_controls.Deletes.Rollback();
  const Node* const selected = m_controls.treeView.SelectedItem();
  const std::string key = selected == nullptr ? "" : selected->Key();
  for (ListView& list : m_controls.listView) {
    list.SetHideColumnHeaders(true);
    list.ClearRows();
  }
  {
    const bool ready = m_controls.FormReady;
    m_controls.FormReady = false;
    LoadAllpages();
    m_controls.FormReady = ready;
  }
  m_tree.ShowNode(m_controls.treeView.Item(key));
  m_shell.UpdateCommandState();
}

void clsEditing::mnuEditSelectAll_Click() {
  m_shell.SetMousePointer(pointer::Hourglass);
  m_pages.CurrentList().SelectAll(true);
  m_controls.CurrentPane = clsMainControls::Pane::List;
  m_shell.RestorePointer();
  m_shell.UpdateCommandState();
}

void clsEditing::mnuEditCopy_Click() {
  const ListView& list = m_pages.CurrentList();
  std::string rows;
  for (std::size_t row = 0; row < list.RowCount(); ++row) {
    if (!list.Selected(row)) continue;
    const std::size_t cells = list.Cells(row).size();
    for (std::size_t cell = 0; cell < cells; ++cell) {
      if (cell > 0) rows += '\t';
      rows += list.Cell(row, cell);
    }
    rows += "\r\n";
  }
  m_shell.SetClipboard(rows);
}

void clsEditing::mnuEdit_Click() {
  const auto enable = [&](const char* item, const char* button, bool enabled) {
    m_controls.Menus[item].SetEnabled(enabled);
    m_controls.EnableButton(button, enabled);
  };
  const bool open = !m_shell.State.AnalysisPath.empty();
  // The first row of a page is selected by itself: nobody chose it while the tree has the focus.
  const bool rows = open && m_controls.CurrentPane == clsMainControls::Pane::List &&
                    m_pages.CurrentListIndex() != page::Stats && m_pages.CountSelected(false) >= 1;
  enable("mnuEditUndo", "Undo", open && m_controls.Deletes.Any());
  enable("mnuEditDelete", "Delete", rows);
  enable("mnuEditCopy", "Copy", rows);
  m_controls.Menus["mnuEditSelectAll"].SetEnabled(open && m_pages.CurrentList().RowCount() > 0);
}

}  // namespace sandrel
