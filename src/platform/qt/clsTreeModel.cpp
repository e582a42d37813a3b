#include "platform/qt/clsTreeModel.h"

#include <QFont>

#include "platform/qt/Icons.h"
#include "platform/qt/modCellText.h"

namespace sandrel {

Node* clsTreeModel::NodeOf(const QModelIndex& index) {
  return static_cast<Node*>(index.internalPointer());
}

QModelIndex clsTreeModel::IndexOf(const Node* node) const {
  return node == nullptr ? QModelIndex() : createIndex(static_cast<int>(node->Index()), 0, node);
}

void clsTreeModel::NodeGoing(const Node* parent) {
  const int row = rowCount(IndexOf(parent));
  beginInsertRows(IndexOf(parent), row, row);
}

void clsTreeModel::ChildrenGoing(const Node& node) {
  beginRemoveRows(IndexOf(&node), 0, static_cast<int>(node.Children().size()) - 1);
}

void clsTreeModel::ChildrenComing(const Node& node, std::size_t count) {
  beginInsertRows(IndexOf(&node), 0, static_cast<int>(count) - 1);
}

void clsTreeModel::LooksChanged() {
  const int roots = rowCount({});
  if (roots > 0) Q_EMIT dataChanged(index(0, 0, {}), index(roots - 1, 0, {}));
}

QModelIndex clsTreeModel::index(int row, int column, const QModelIndex& parent) const {
  if (row < 0 || column != 0 || row >= rowCount(parent)) return {};
  const auto& nodes = parent.isValid() ? NodeOf(parent)->Children() : m_tree.Roots();
  return createIndex(row, column, nodes[static_cast<std::size_t>(row)].get());
}

QModelIndex clsTreeModel::parent(const QModelIndex& child) const {
  return child.isValid() ? IndexOf(NodeOf(child)->Parent()) : QModelIndex();
}

int clsTreeModel::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return static_cast<int>(m_tree.Roots().size());
  const Node& node = *NodeOf(parent);
  return m_tree.IsRebuilding(node) ? 0 : static_cast<int>(node.Children().size());
}

QVariant clsTreeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Node& node = *NodeOf(index);
  switch (role) {
    case Qt::DisplayRole:
      return qt::ShownText(node.Text());
    case Qt::DecorationRole:
      return icons::Image(node.Image());
    case Qt::FontRole:
      if (node.Bold()) {
        QFont font;
        font.setBold(true);
        return font;
      }
      return {};
    default:
      return {};
  }
}

}  // namespace sandrel
