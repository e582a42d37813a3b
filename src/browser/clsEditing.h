// The Edit menu: deleting rows of the open analysis with one level of undo, copying and selecting.
//
// A delete is held in an open transaction of the DeletesWorkspace until the next delete begins or
// the analysis is left; undoing it is a rollback and a reload of all pages.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "browser/clsAnalysisTree.h"
#include "browser/clsMainControls.h"
#include "browser/clsPages.h"
#include "common/clsShell.h"
#include "snapshot/clsStatements.h"

namespace sandrel {

class clsEditing {
 public:
  /// All must outlive the object.
  clsEditing(clsShell& shell, clsMainControls& controls, clsPages& pages, clsAnalysisTree& tree);

  /// Asked before a delete: true when the open analysis is another file by now.
  std::function<bool()> IsReplaced;
  /// Fills all pages anew.
  std::function<void()> LoadAllpages;

  /// Makes the deletes since the last commit final.
  void CommitPendingDeletes();

  /// Deletes the selected rows of the list on show from the analysis, after asking when `confirm`
  /// is set. A row goes from its list when exactly one record went from its table.
  void DeleteListViewItems(bool confirm);

  void mnuEditDelete_Click();
  /// Takes the last delete back.
  void mnuEditUndo_Click();
  /// The selected rows as text: cells separated by tabs, each row ended by CR LF.
  void mnuEditCopy_Click();
  void mnuEditSelectAll_Click();
  /// Sets what the Edit menu and the toolbar offer.
  void mnuEdit_Click();

 private:
  std::string SelectedText() const;
  void DeleteFromSourcePage();
  void DeleteFromTables(clsStatements& run);
  std::vector<RowKey> DeleteRecords(const ListView& list, clsStatements& run);
  void RemoveTwins(int page, const std::vector<RowKey>& removed);
  void RebuildBranches(const std::vector<int>& filePages);
  void SelectNodeOrBranch(const std::string& key);

  clsShell& m_shell;
  clsMainControls& m_controls;
  clsPages& m_pages;
  clsAnalysisTree& m_tree;
  bool m_inNestedDelete = false;  // runs on a source page for the view of a hive or folder
};

}  // namespace sandrel
