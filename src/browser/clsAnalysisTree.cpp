#include "browser/clsAnalysisTree.h"

#include <unordered_set>
#include <utility>

#include "common/clsPathText.h"
#include "common/text.h"
#include "platform/controls/ImageKeys.h"
#include "platform/controls/KeyCodes.h"

namespace sandrel {
namespace {

struct FixedNode {
  const char *Key, *Text, *Parent, *Image;
  bool EndsGroup = false;
};

constexpr FixedNode Nodes[] = {
    {"Registry", "Registry", "Root", "registry"},
    {"Files", "Files", "Root", "closedfolder"},
    {"Ini", "INI Settings", "Root", "ini", true},
    {"NewRegistry", "New", "Registry", "newregistry"},
    {"ChangedRegistry", "Changed", "Registry", "changedregistry"},
    {"DeletedRegistry", "Deleted", "Registry", "deletedregistry", true},
    {"NewFiles", "New", "Files", "newfolder"},
    {"ChangedFiles", "Changed", "Files", "changedfolder"},
    {"DeletedFiles", "Deleted", "Files", "deletedfolder", true},
    {"NewIni", "New", "Ini", "newini"},
    {"ChangedIni", "Changed", "Ini", "changedini"},
    {"DeletedIni", "Deleted", "Ini", "deletedini", true},
};

struct RegistryBranch {
  const char* Key;
  const char* Image;
  int Source;
  const char* Icon;
  const char* Kind;
};

constexpr RegistryBranch RegistryBranches[] = {
    {"NewRegistry", "newregistry", page::NewRegistry, "newelement", "New"},
    {"ChangedRegistry", "changedregistry", page::ChangedRegistry, "changedelement", "Changed"},
    {"DeletedRegistry", "deletedregistry", page::DeletedRegistry, "deletedelement", "Deleted"},
};

constexpr const char* Hives[] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE",
                                 "HKEY_USERS", "HKEY_CURRENT_CONFIG"};

std::string HiveKey(const char* hive, const RegistryBranch& branch) {
  return std::string(hive) + "_" + branch.Key;
}

constexpr std::pair<const char*, int> PageNodes[] = {
    {"Root", page::Stats},
    {"Registry", page::AllRegistry},
    {"Files", page::AllFiles},
    {"Ini", page::AllIniFiles},
    {"NewRegistry", page::NewRegistry},
    {"ChangedRegistry", page::ChangedRegistry},
    {"DeletedRegistry", page::DeletedRegistry},
    {"NewFiles", page::NewFiles},
    {"ChangedFiles", page::ChangedFiles},
    {"DeletedFiles", page::DeletedFiles},
    {"NewIni", page::NewIniFiles},
    {"ChangedIni", page::ChangedIniFiles},
    {"DeletedIni", page::DeletedIniFiles},
};

constexpr const char* CaptionStems[] = {"Registry - New",
                                        "IniEntries - New",
                                        "Files - New",
                                        "Registry - Changed",
                                        "IniEntries - Changed",
                                        "Files - Changed",
                                        "Registry - Deleted",
                                        "IniEntries - Deleted",
                                        "Files - Deleted",
                                        "Sandrel Statistics",
                                        "Registry - New, Changed and Deleted",
                                        "IniEntries - New, Changed and Deleted",
                                        "Files - New, Changed and Deleted",
                                        "Registry - ",
                                        "Files - "};

const char* FolderImage(const Node& branch) {
  const std::string key = text::Lower(branch.Key());
  for (const char* name : {"newfiles", "changedfiles", "deletedfiles"}) {
    if (key == name) return branch.Image();
  }
  return nullptr;
}

}  // namespace

clsAnalysisTree::clsAnalysisTree(clsShell& shell, clsMainControls& controls,
                                 clsColumnLayout& layout, clsPages& pages)
    : m_shell(shell), m_controls(controls), m_layout(layout), m_pages(pages) {}

std::string clsAnalysisTree::AnalysisName() const {
  return clsPathText::TextAfterLast(m_shell.State.AnalysisPath, "/");
}

void clsAnalysisTree::ClearAll() {
  m_controls.treeView.Clear();
  for (ListView& list : m_controls.listView) {
    list.BeginUpdate();
    list.ClearRows();
    list.ClearColumns();
    list.EndUpdate();
    list.Tag.clear();
  }
  // What named things of the analysis that was open means nothing any more.
  m_controls.Texts.Clear();
  m_layout.ForgetSharedSelections();
}

void clsAnalysisTree::BuildTree() {
  ClearAll();
  TreeView& tree = m_controls.treeView;
  tree.Add(nullptr, "Root", AnalysisName(), "sandr");
  for (const FixedNode& fixed : Nodes) {
    Node& node = tree.Add(&tree.Item(fixed.Parent), fixed.Key, fixed.Text, fixed.Image);
    if (fixed.EndsGroup) tree.EnsureVisible(node);
  }
  for (const RegistryBranch& branch : RegistryBranches) {
    for (const char* hive : Hives) {
      tree.Add(&tree.Item(branch.Key), HiveKey(hive, branch), hive, branch.Image);
    }
  }
}

std::vector<std::string_view> clsAnalysisTree::GetUniqueFolders() {
  const ListView& list = m_pages.CurrentList();
  std::vector<std::string_view> folders;
  std::unordered_set<TextPool::Id> seen;
  std::unordered_set<std::string> folded;
  for (std::size_t row = 0; row < list.RowCount(); ++row) {
    if (!seen.insert(list.TextId(row)).second) continue;
    if (folded.insert(text::Fold(list.Text(row))).second) folders.push_back(list.Text(row));
  }
  return folders;
}

void clsAnalysisTree::BuildFileBranch(Node& node) {
  const char* const image = FolderImage(node);
  if (image != nullptr) {
    m_controls.treeView.Rebuild(node, [&] {
      for (const std::string_view folder : GetUniqueFolders()) {
        // A folder ends in a backslash; what stands behind the last one has no node.
        const std::size_t end = folder.rfind('\\');
        if (end == std::string_view::npos) continue;
        const std::string path = clsPages::FolderText(folder.substr(0, end));
        Node* parent = &node;
        for (std::size_t from = 0; from <= path.size();) {
          const std::size_t to = std::min(path.find('\\', from), path.size());
          parent = &AddFolderNode(*parent, path.substr(from, to - from), image);
          from = to + 1;
        }
      }
    });
  }
  m_shell.UpdateCommandState();
}

Node& clsAnalysisTree::AddFolderNode(Node& parent, const std::string& text, const char* imageKey) {
  std::string key = parent.FullPath();
  key += '\\';
  key += text;
  Node* const there = m_controls.treeView.Find(key);
  return there != nullptr ? *there : m_controls.treeView.Add(&parent, key, text, imageKey);
}

std::string clsAnalysisTree::CaptionStem(int page) {
  return CaptionStems[page];
}

std::string clsAnalysisTree::PageCaption() const {
  const std::string& tag = m_controls.listView[0].Tag;
  const int index = PageIndex(tag);
  std::string stem;
  if (index != 0 || tag == PageName(0)) stem = CaptionStem(index);
  if (index >= page::SharedPage) stem += m_controls.listView[static_cast<std::size_t>(index)].Tag;
  return stem + " - " + AnalysisName();
}

void clsAnalysisTree::treeView_Click() {
  const Node* selected = m_controls.treeView.SelectedItem();
  if (selected == nullptr) return;
  const clsPointerGuard pointer(m_shell, pointer::Hourglass);
  m_layout.SaveColumnPositions();
  m_shell.DoEvents(false);
  // What came through meanwhile may have closed the analysis or chosen another node.
  selected = m_controls.treeView.SelectedItem();
  if (selected != nullptr) SelectPage(selected->Key());
}

void clsAnalysisTree::SelectPage(const std::string& key) {
  m_shown = key;
  for (const auto& [node, index] : PageNodes) {
    if (key == node) return m_pages.ShowPage(index);
  }
  for (const RegistryBranch& branch : RegistryBranches) {
    for (const char* hive : Hives) {
      if (key != HiveKey(hive, branch)) continue;
      m_controls.PageTag() = PageName(page::SharedPage);
      m_pages.FillSharedPage(hive, branch.Source, branch.Icon, branch.Kind);
      return;
    }
  }
  // "x.mdb\Files\New\C:\Program files"; the file's name may hold anything.
  const std::size_t prefix = AnalysisName().size() + std::string_view("\\files").size();
  if (key.size() > prefix + 1) {
    const std::string_view rest = std::string_view(key).substr(prefix + 1);
    const std::size_t end = rest.find('\\');
    if (end != std::string_view::npos) {
      return m_pages.FillFilteredPage(rest.substr(end + 1), rest.substr(0, end));
    }
  }
  m_pages.FillFilteredPage("", "");
}

void clsAnalysisTree::ClearNodeMarks() {
  m_controls.treeView.ClearBold();
  for (const ListView& list : m_controls.listView) {
    m_controls.ListOfTag(list.Tag).SetHideColumnHeaders(true);
  }
}

void clsAnalysisTree::treeView_NodeClick(Node& node) {
  ClearNodeMarks();
  for (Node* marked = &node; marked != nullptr; marked = marked->Parent()) {
    m_controls.treeView.SetBold(*marked, true);
  }
  for (const ListView& list : m_controls.listView) {
    m_controls.ListOfTag(list.Tag).SetHideColumnHeaders(false);
  }
}

void clsAnalysisTree::ShowNode(Node& node) {
  m_controls.treeView.SetSelectedItem(&node);
  treeView_NodeClick(node);
  treeView_Click();
}

void clsAnalysisTree::treeView_Collapse() {
  Node* const selected = m_controls.treeView.SelectedItem();
  if (!m_controls.SuppressTreeClick && selected != nullptr) ShowNode(*selected);
}

void clsAnalysisTree::treeView_KeyUp(int keyCode) {
  Node* const selected = m_controls.treeView.SelectedItem();
  if (selected == nullptr) return;
  // Keys other than the arrows move the selection too: the page follows it.
  if (keyCode == key::Back) {
    ShowParent(*selected);
  } else if ((keyCode >= key::Left && keyCode <= key::Down) || selected->Key() != m_shown) {
    ShowNode(*selected);
  }
}

void clsAnalysisTree::listView_KeyUp(int keyCode) {
  if (keyCode == key::Return) return listView_DblClick();
  Node* const selected = m_controls.treeView.SelectedItem();
  if (keyCode == key::Back && selected != nullptr) ShowParent(*selected);
}

void clsAnalysisTree::ShowParent(Node& node) {
  ShowNode(node.Parent() == nullptr ? node : *node.Parent());
}

void clsAnalysisTree::listView_DblClick() {
  const int index = m_pages.CurrentListIndex();
  const ListView& list = m_controls.List(index);
  if (m_pages.CountSelected(true) == 0 || index == page::Stats) return;
  const std::size_t row = list.SelectedItem();
  if (row == ListView::NoRow) return;
  bool isFolder = false;
  for (const char* icon : {"closedfolder", "changedfolder", "newfolder", "deletedfolder"}) {
    isFolder = isFolder || list.SmallIcon(row) == ImageIndex(icon);
  }
  if (!isFolder) return;
  Node& node = m_controls.treeView.Item(list.KeyText(row));
  m_controls.treeView.SetSelectedItem(&node);
  m_controls.treeView.EnsureVisible(node);
  m_controls.treeView.SetExpanded(node, true);
  ShowNode(node);
}

void clsAnalysisTree::SetExpandedDeep(Node& node, bool expanded) {
  m_controls.treeView.SetExpandedDeep(node, expanded);
}

void clsAnalysisTree::mnuViewExpandCurrent_Click() {
  Node* const selected = m_controls.treeView.SelectedItem();
  if (selected == nullptr) return;
  m_controls.treeView.SetExpanded(*selected, true);
  SetExpandedDeep(*selected, true);
}

void clsAnalysisTree::mnuViewCollapseCurrent_Click() {
  Node* const selected = m_controls.treeView.SelectedItem();
  if (selected == nullptr) return;
  m_controls.SuppressTreeClick = true;
  m_controls.treeView.SetExpanded(*selected, false);
  SetExpandedDeep(*selected, false);
  m_controls.SuppressTreeClick = false;
}

void clsAnalysisTree::mnuViewExpandAll_Click() {
  m_controls.treeView.SetExpandedAll(true);
}

void clsAnalysisTree::mnuViewCollapseAll_Click() {
  m_controls.SuppressTreeClick = true;
  m_controls.treeView.SetExpandedAll(false);
  m_controls.SuppressTreeClick = false;
}

void clsAnalysisTree::mnuView_Click() {
  const bool open = !m_shell.State.AnalysisPath.empty();
  for (const char* item : {"mnuViewExpandCurrent", "mnuViewCollapseCurrent", "mnuViewExpandAll",
                           "mnuViewCollapseAll"}) {
    m_controls.Menus[item].SetEnabled(open);
  }
}

}  // namespace sandrel
