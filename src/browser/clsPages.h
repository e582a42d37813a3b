// Fills the lists of the pages. Thirteen are filled by statements, once for each open analysis, and
// then act as a cache; the view of one hive and the view of one folder are made from their rows.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "browser/clsColumnLayout.h"
#include "browser/clsMainControls.h"
#include "common/clsShell.h"
#include "snapshot/clsStatements.h"

namespace sandrel {

class clsPages {
 public:
  /// All must outlive the object.
  clsPages(clsShell& shell, clsMainControls& controls, clsColumnLayout& layout);

  /// Called when the open file turns out to be no analysis, after the user was told.
  std::function<void(const std::string& path)> OnInvalidDatabase;

  /// Shows the page that the tag names and fills its list when it has no rows.
  void FillList();
  /// Makes `index` the page on show.
  void ShowPage(int index);

  /// The rows of one hive of a registry page. `source` is that page, `kind` "New", "Changed" or
  /// "Deleted".
  void FillSharedPage(std::string_view hive, int source, const char* iconKey,
                      std::string_view kind);
  /// The files and subfolders of one folder of a file page; nothing for another `kind`. `folder`
  /// is written as its tree node has it.
  void FillFilteredPage(std::string_view folder, std::string_view kind);

  /// Puts the number of rows of each list on the statistics page.
  void UpdateStatCounts();

  /// The list on show.
  int CurrentListIndex() const { return PageIndex(m_controls.PageTag()); }
  ListView& CurrentList() { return m_controls.List(CurrentListIndex()); }
  /// 0, 1 or 2 for more selected rows of the list on show; a folder of a folder's page counts only
  /// with `includeFolders`.
  int CountSelected(bool includeFolders) const;

  void listView_ColumnClick(int index, std::size_t column);

  /// A folder as its tree node writes it: the first letter of each part in upper case, the others,
  /// but in the first part, in lower case; without a last backslash.
  static std::string FolderText(std::string_view path);

 private:
  struct Reading;  // what one statement's rows go through

  bool GetStatements(int index, std::vector<PageStatement>& statements);
  bool RunStatement(const PageStatement& statement, int number, ListView& list, clsStatements& run,
                    bool& valid);
  void CopyRows(Reading& reading, ListView& list);
  void TellInvalidDatabase();
  void ShowOnly(int index);
  void AddChildFolderRows(ListView& list, int source, const char* iconKey);

  clsShell& m_shell;
  clsMainControls& m_controls;
  clsColumnLayout& m_layout;
  std::set<int> m_unread;  // pages that could not be read whole
};

}  // namespace sandrel
