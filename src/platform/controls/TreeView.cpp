#include "platform/controls/TreeView.h"

#include <utility>

#include "common/clsError.h"

namespace sandrel {

std::string Node::FullPath() const {
  if (m_parent == nullptr) return m_text;
  std::string path = m_parent->FullPath();
  path += '\\';
  path += m_text;
  return path;
}

bool Node::IsBelow(const Node& other) const {
  for (const Node* above = m_parent; above != nullptr; above = above->m_parent) {
    if (above == &other) return true;
  }
  return false;
}

Node& TreeView::Add(Node* parent, std::string key, std::string text, const char* image) {
  if (Find(key) != nullptr) {
    throw clsError(errnum::KeyNotUnique, "Key is not unique in collection", "TreeView.Nodes");
  }
  bool hidden = false;
  for (const Node* above = parent; above != nullptr && m_rebuilding != nullptr && !hidden;
       above = above->m_parent) {
    hidden = above == m_rebuilding;
  }
  TreeViewObserver* const observer = hidden ? nullptr : m_observer;
  if (observer != nullptr) observer->NodeGoing(parent);
  auto& siblings = parent == nullptr ? m_roots : parent->m_children;
  auto made = std::make_unique<Node>();
  Node& node = *made;
  node.m_key = std::move(key);
  node.m_text = std::move(text);
  node.m_image = image;
  node.m_parent = parent;
  node.m_index = siblings.size();
  siblings.push_back(std::move(made));
  m_nodes.emplace(node.m_key, &node);
  if (observer != nullptr) observer->NodeAdded(node);
  return node;
}

Node* TreeView::Find(std::string_view key) const {
  const auto found = m_nodes.find(key);
  return found == m_nodes.end() ? nullptr : found->second;
}

Node& TreeView::Item(std::string_view key) const {
  Node* const node = Find(key);
  if (node == nullptr) {
    throw clsError(errnum::ElementNotFound, "Element not found: " + std::string(key),
                   "TreeView.Nodes");
  }
  return *node;
}

void TreeView::Clear() {
  m_selected = nullptr;
  m_bold.clear();
  m_nodes.clear();
  m_roots.clear();
  if (m_observer != nullptr) m_observer->Cleared();
}

void TreeView::Forget(const Node& node) {
  for (const auto& child : node.m_children) {
    Forget(*child);
    if (child->m_bold) std::erase(m_bold, child.get());
    m_nodes.erase(child->m_key);
  }
}

void TreeView::Rebuild(Node& node, const std::function<void()>& build) {
  if (m_selected != nullptr && m_selected->IsBelow(node)) SetSelectedItem(&node);
  if (!node.m_children.empty()) {
    if (m_observer != nullptr) m_observer->ChildrenGoing(node);
    Forget(node);
    node.m_children.clear();
    if (m_observer != nullptr) m_observer->ChildrenRemoved(node);
  }
  const Node* const outer = std::exchange(m_rebuilding, &node);
  const auto show = [&] {
    m_rebuilding = outer;
    const std::size_t count = node.m_children.size();
    if (count == 0 || m_observer == nullptr) return;
    auto built = std::exchange(node.m_children, {});
    m_observer->ChildrenComing(node, count);
    node.m_children = std::move(built);
    m_observer->ChildrenAdded(node);
  };
  try {
    build();
  } catch (...) {
    show();
    throw;
  }
  show();
}

void TreeView::SetSelectedItem(Node* node) {
  if (m_selected == node) return;
  m_selected = node;
  if (m_observer != nullptr) m_observer->SelectionChanged();
}

void TreeView::EnsureVisible(Node& node) {
  for (Node* above = node.m_parent; above != nullptr; above = above->m_parent) {
    SetExpanded(*above, true);
  }
  if (m_observer != nullptr) m_observer->Shown(node);
}

void TreeView::SetBold(Node& node, bool bold) {
  if (node.m_bold == bold) return;
  node.m_bold = bold;
  if (bold) {
    m_bold.push_back(&node);
  } else {
    std::erase(m_bold, &node);
  }
  if (m_observer != nullptr) m_observer->Changed(node);
}

void TreeView::ClearBold() {
  for (Node* const node : std::exchange(m_bold, {})) {
    node->m_bold = false;
    if (m_observer != nullptr) m_observer->Changed(*node);
  }
}

void TreeView::SetExpanded(Node& node, bool expanded) {
  if (node.m_expanded == expanded) return;
  node.m_expanded = expanded;
  if (m_observer != nullptr) m_observer->ExpansionChanged(&node, false);
  if (expanded) return;
  LeaveHidden();
  if (Collapse) Collapse(node);
}

void TreeView::SetDeep(const std::vector<std::unique_ptr<Node>>& nodes, bool expanded) {
  for (const auto& node : nodes) {
    node->m_expanded = expanded;
    SetDeep(node->m_children, expanded);
  }
}

void TreeView::SetExpandedDeep(Node& node, bool expanded) {
  SetDeep(node.m_children, expanded);
  if (m_observer != nullptr) m_observer->ExpansionChanged(&node, true);
  if (!expanded) LeaveHidden();
}

void TreeView::SetExpandedAll(bool expanded) {
  SetDeep(m_roots, expanded);
  if (m_observer != nullptr) m_observer->ExpansionChanged(nullptr, true);
  if (!expanded) LeaveHidden();
}

// A selected node that a collapsed one hides gives the selection to the topmost such node.
void TreeView::LeaveHidden() {
  if (m_selected == nullptr) return;
  Node* shown = m_selected;
  for (Node* above = m_selected->m_parent; above != nullptr; above = above->m_parent) {
    if (!above->m_expanded) shown = above;
  }
  SetSelectedItem(shown);
}

}  // namespace sandrel
