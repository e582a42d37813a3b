// A tree of nodes as a plain model. A view, where there is one, follows it through an observer and
// raises its events.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sandrel {

class TreeView;

class Node {
 public:
  const std::string& Key() const { return m_key; }
  const std::string& Text() const { return m_text; }
  /// Key in the image list; a literal.
  const char* Image() const { return m_image; }
  /// Null for a root.
  Node* Parent() const { return m_parent; }
  const std::vector<std::unique_ptr<Node>>& Children() const { return m_children; }
  /// Its number among its parent's children, or among the roots.
  std::size_t Index() const { return m_index; }
  /// The texts from the root to this node, joined with backslashes.
  std::string FullPath() const;
  bool Expanded() const { return m_expanded; }
  bool Bold() const { return m_bold; }
  bool IsBelow(const Node& other) const;

 private:
  friend class TreeView;
  std::string m_key, m_text;
  const char* m_image = "";
  Node* m_parent = nullptr;
  std::vector<std::unique_ptr<Node>> m_children;
  std::size_t m_index = 0;
  bool m_expanded = false;
  bool m_bold = false;
};

/// What a view does when the tree changes. Called after the change, but for "Going", "Coming" and
/// "Clearing".
class TreeViewObserver {
 public:
  virtual ~TreeViewObserver() = default;
  virtual void NodeGoing(Node* parent) = 0;  ///< a child is about to be added as the last one
  virtual void NodeAdded(Node& node) = 0;
  virtual void ChildrenGoing(Node& node) = 0;  ///< all of its children are about to be removed
  virtual void ChildrenRemoved(Node& node) = 0;
  /// Children were added to a node that had none, with all that is below them.
  virtual void ChildrenComing(Node& node, std::size_t count) = 0;
  virtual void ChildrenAdded(Node& node) = 0;
  virtual void Clearing() = 0;  ///< all nodes are about to be removed
  virtual void Cleared() = 0;
  virtual void Changed(Node& node) = 0;  ///< its look
  /// The expansion of the node, with `deep` of all nodes below it too; null for the whole tree.
  virtual void ExpansionChanged(Node* node, bool deep) = 0;
  virtual void SelectionChanged() = 0;
  virtual void Shown(Node& node) = 0;  ///< is to be scrolled into view
};

class TreeView {
 public:
  TreeView() = default;
  TreeView(const TreeView&) = delete;
  TreeView& operator=(const TreeView&) = delete;

  /// Width of the control in twips.
  int Width = 0;
  void SetObserver(TreeViewObserver* observer) { m_observer = observer; }

  /// Adds a node as its parent's last child, or as the last root. Raises 35602 when the key is
  /// there already. Nodes live until they are removed.
  Node& Add(Node* parent, std::string key, std::string text, const char* image);
  /// Keys compare exactly. Null when there is none.
  Node* Find(std::string_view key) const;
  /// Raises 35601 when there is none.
  Node& Item(std::string_view key) const;
  const std::vector<std::unique_ptr<Node>>& Roots() const { return m_roots; }
  std::size_t Count() const { return m_nodes.size(); }
  void Clear();

  /// Puts whatever `build` adds below `node` in the place of its children; the view sees it in one
  /// step, and nothing of what happens to them before. A selection below `node` moves to `node`; a
  /// child whose key comes back is as open as it was. Rebuilds don't nest.
  void Rebuild(Node& node, const std::function<void()>& build);
  /// True for the node that is being rebuilt: a view takes it for one without children.
  bool IsRebuilding(const Node& node) const { return m_rebuilding == &node; }

  Node* SelectedItem() const { return m_selected; }
  void SetSelectedItem(Node* node);
  /// Expands the nodes above and scrolls.
  void EnsureVisible(Node& node);
  void SetBold(Node& node, bool bold);
  void ClearBold();

  /// Collapsing a node above the selected one selects it instead, and raises `Collapse`.
  void SetExpanded(Node& node, bool expanded);
  /// The node's descendants, without itself.
  void SetExpandedDeep(Node& node, bool expanded);
  void SetExpandedAll(bool expanded);

  // What the user did. Unset events do nothing.
  std::function<void()> Click, GotFocus;
  std::function<void(Node&node)> NodeClick, Collapse;
  std::function<void(int keyCode)> KeyUp;

 private:
  void SetDeep(const std::vector<std::unique_ptr<Node>>& nodes, bool expanded);
  void LeaveHidden();
  TreeViewObserver* ObserverOf(const Node* node) const;
  void Forget(const Node& node, std::vector<std::string>& expanded);

  TreeViewObserver* m_observer = nullptr;
  std::vector<std::unique_ptr<Node>> m_roots;
  std::unordered_map<std::string_view, Node*> m_nodes;  // by the key inside the node
  std::vector<Node*> m_bold;
  Node* m_selected = nullptr;
  const Node* m_rebuilding = nullptr;
};

}  // namespace sandrel
