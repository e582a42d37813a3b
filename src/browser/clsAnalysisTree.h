// The tree: the table of contents of one analysis. A fixed skeleton of nodes, and folder nodes
// under the three branches of files. Selecting a node chooses the page that is shown.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "browser/clsMainControls.h"
#include "browser/clsPages.h"
#include "common/clsShell.h"

namespace sandrel {

class clsAnalysisTree {
 public:
  /// All must outlive the object.
  clsAnalysisTree(clsShell& shell, clsMainControls& controls, clsColumnLayout& layout,
                  clsPages& pages);

  /// Empties the tree and all lists and adds the nodes that every analysis has.
  void BuildTree();
  /// Empties the tree and all lists.
  void ClearAll();
  /// Makes the folder nodes under one of the three branches of files anew, from the list of the
  /// page on show; nothing for any other node.
  void BuildFileBranch(Node& node);
  /// The folders of the page on show in the order of their first rows; ones that differ only in
  /// case are one.
  std::vector<std::string_view> GetUniqueFolders();
  /// The child of that text, made when there is none.
  Node& AddFolderNode(Node& parent, const std::string& text, const char* imageKey);

  /// The heading of the page on show: "Files - New - x.mdb".
  std::string PageCaption() const;
  /// How the heading of a page begins: "Files - New".
  static std::string CaptionStem(int page);
  /// The last part of the analysis' path.
  std::string AnalysisName() const;

  void treeView_Click();
  void treeView_NodeClick(Node& node);
  void treeView_Collapse();
  void treeView_KeyUp(int keyCode);
  void listView_KeyUp(int keyCode);
  /// Goes down into the folder whose row has the focus.
  void listView_DblClick();
  /// What the program does where the user would click on a node.
  void ShowNode(Node& node);

  void SetExpandedDeep(Node& node, bool expanded);
  /// Takes the bold marks off the tree.
  void ClearNodeMarks();
  void mnuViewExpandCurrent_Click();
  void mnuViewCollapseCurrent_Click();
  void mnuViewExpandAll_Click();
  void mnuViewCollapseAll_Click();
  void mnuView_Click();

 private:
  void SelectPage(const std::string& key);
  void ShowParent(Node& node);

  clsShell& m_shell;
  clsMainControls& m_controls;
  clsColumnLayout& m_layout;
  clsPages& m_pages;
  std::string m_shown;  // key of the node whose page is on show
};

}  // namespace sandrel
