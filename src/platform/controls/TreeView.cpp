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

// The observer, but for nodes that a rebuild hasn't shown yet.
TreeViewObserver* TreeView::ObserverOf(const Node* node) const {
  const bool hidden = node != nullptr && m_rebuilding != nullptr && node->IsBelow(*m_rebuilding);
  return hidden ? nullptr : m_observer;
}

Node& TreeView::Add(Node* parent, std::string key, std::string text, const char* image) {
  if (Find(key) != nullptr) {
    throw clsError(errnum::KeyNotUnique, "Key is not unique in collection", "TreeView.Nodes");
  }
  const bool rebuilding = parent != nullptr && parent == m_rebuilding;
  TreeViewObserver* const observer = rebuilding ? nullptr : ObserverOf(parent);
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
  if (m_observer != nullptr) m_observer->Clearing();
  m_selected = nullptr;
  m_bold.clear();
  m_nodes.clear();
  m_roots.clear();
  if (m_observer != nullptr) m_observer->Cleared();
}

void TreeView::Forget(const Node& node, std::vector<std::string>& expanded) {
  for (const auto& child : node.m_children) {
    Forget(*child, expanded);
    if (child->m_expanded) expanded.push_back(child->m_key);
    if (child->m_bold) std::erase(m_bold, child.get());
    m_nodes.erase(child->m_key);
  }
}

void TreeView::Rebuild(Node& node, const std::function<void()>& build) {
  if (m_selected != nullptr && m_selected->IsBelow(node)) SetSelectedItem(&node);
  std::vector<std::string> expanded;
  if (!node.m_children.empty()) {
    if (m_observer != nullptr) m_observer->ChildrenGoing(node);
    Forget(node, expanded);
    node.m_children.clear();
    if (m_observer != nullptr) m_observer->ChildrenRemoved(node);
  }
  m_rebuilding = &node;
  const auto show = [&] {
    for (const std::string& key : expanded) {
      if (Node* const again = Find(key)) again->m_expanded = true;
    }
    const std::size_t count = node.m_children.size();
    const bool told = m_observer != nullptr && count > 0;
    if (told) m_observer->ChildrenComing(node, count);
    m_rebuilding = nullptr;
    if (told) m_observer->ChildrenAdded(node);
    if (m_observer != nullptr && m_selected != nullptr && m_selected->IsBelow(node)) {
      m_observer->SelectionChanged();
    }
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
  if (TreeViewObserver* const observer = ObserverOf(node)) observer->SelectionChanged();
}

void TreeView::EnsureVisible(Node& node) {
  for (Node* above = node.m_parent; above != nullptr; above = above->m_parent) {
    SetExpanded(*above, true);
  }
  if (TreeViewObserver* const observer = ObserverOf(&node)) observer->Shown(node);
}

void TreeView::SetBold(Node& node, bool bold) {
  if (node.m_bold == bold) return;
  node.m_bold = bold;
  if (bold) {
    m_bold.push_back(&node);
  } else {
    std::erase(m_bold, &node);
  }
  if (TreeViewObserver* const observer = ObserverOf(&node)) observer->Changed(node);
}

void TreeView::ClearBold() {
  for (Node* const node : std::exchange(m_bold, {})) {
    node->m_bold = false;
    if (TreeViewObserver* const observer = ObserverOf(node)) observer->Changed(*node);
  }
}

void TreeView::SetExpanded(Node& node, bool expanded) {
  if (node.m_expanded == expanded) return;
  node.m_expanded = expanded;
  if (TreeViewObserver* const observer = ObserverOf(&node)) {
    observer->ExpansionChanged(&node, false);
  }
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
  if (TreeViewObserver* const observer = ObserverOf(&node)) {
    observer->ExpansionChanged(&node, true);
  }
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
