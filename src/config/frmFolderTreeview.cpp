#include "config/frmFolderTreeview.h"

#include <QAbstractItemModel>
#include <QBoxLayout>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTreeView>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "platform/qt/Icons.h"
#include "platform/qt/clsCellDelegate.h"
#include "platform/qt/modCellText.h"
#include "platform/qt/modGuard.h"
#include "platform/qt/modInput.h"

namespace sandrel {

// The source's folders as far as the tree has been opened.
class clsFolderModel final : public QAbstractItemModel {
 public:
  clsFolderModel(clsFolderSource& source, QObject* parent)
      : QAbstractItemModel(parent), m_source(source) {
    const std::vector<clsFolderSource::Root> roots = source.Roots();
    for (const clsFolderSource::Root& root : roots) Add(m_top, root.Name, root.Path);
    m_top.Read = true;
  }

  const std::string& PathOf(const QModelIndex& index) const { return Of(index).Path; }

  /// The folder with this path or, when it isn't there, the last one on the way to it; `whole`
  /// tells which. Invalid when no root leads there.
  QModelIndex Find(const std::string& path, bool& whole);

  QModelIndex index(int row, int column, const QModelIndex& parent) const override {
    if (!hasIndex(row, column, parent)) return {};
    return createIndex(row, column, Of(parent).Children[static_cast<std::size_t>(row)].get());
  }
  QModelIndex parent(const QModelIndex& child) const override { return IndexOf(Of(child).Parent); }
  int rowCount(const QModelIndex& parent) const override {
    return static_cast<int>(Of(parent).Children.size());
  }
  int columnCount(const QModelIndex&) const override { return 1; }
  QVariant data(const QModelIndex& index, int role) const override {
    if (role == Qt::DisplayRole) return qt::ShownText(Of(index).Name);
    if (role == Qt::DecorationRole) return icons::Image("closedfolder");
    return {};
  }
  bool hasChildren(const QModelIndex& parent) const override {
    const Node& node = Of(parent);
    if (node.Read) return !node.Children.empty();
    if (!node.HasChildren) node.HasChildren = m_source.HasChildren(node.Path);
    return *node.HasChildren;
  }
  bool canFetchMore(const QModelIndex& parent) const override { return !Of(parent).Read; }
  void fetchMore(const QModelIndex& parent) override;

 private:
  struct Node {
    Node* Parent = nullptr;
    int Row = 0;
    std::string Name;
    std::string Path;
    bool Read = false;  // Children are known
    mutable std::optional<bool> HasChildren;
    std::vector<std::unique_ptr<Node>> Children;
  };

  static void Add(Node& parent, std::string name, std::string path) {
    auto node = std::make_unique<Node>();
    node->Parent = &parent;
    node->Row = static_cast<int>(parent.Children.size());
    node->Name = std::move(name);
    node->Path = std::move(path);
    parent.Children.push_back(std::move(node));
  }
  const Node& Of(const QModelIndex& index) const {
    const auto* const node = static_cast<const Node*>(index.constInternalPointer());
    return node == nullptr ? m_top : *node;
  }
  QModelIndex IndexOf(const Node* node) const {
    return node == &m_top ? QModelIndex() : createIndex(node->Row, 0, node);
  }
  const Node* ChildOf(const Node& node, const std::string& name);

  clsFolderSource& m_source;
  Node m_top;  // above the roots
};

void clsFolderModel::fetchMore(const QModelIndex& parent) {
  Node& node = const_cast<Node&>(Of(parent));
  if (node.Read) return;
  const std::vector<std::string> names = m_source.Children(node.Path);
  node.Read = true;
  if (names.empty()) return;
  beginInsertRows(parent, 0, static_cast<int>(names.size()) - 1);
  for (const std::string& name : names) Add(node, name, m_source.Join(node.Path, name));
  endInsertRows();
}

const clsFolderModel::Node* clsFolderModel::ChildOf(const Node& node, const std::string& name) {
  fetchMore(IndexOf(&node));
  const auto found = std::find_if(
      node.Children.begin(), node.Children.end(),
      [&](const std::unique_ptr<Node>& child) { return m_source.SameName(child->Name, name); });
  return found == node.Children.end() ? nullptr : found->get();
}

QModelIndex clsFolderModel::Find(const std::string& path, bool& whole) {
  // The root that is nearest has the shortest way.
  const Node* at = nullptr;
  std::vector<std::string> way;
  for (const std::unique_ptr<Node>& root : m_top.Children) {
    std::optional<std::vector<std::string>> parts = m_source.PartsBelow(root->Path, path);
    if (!parts || (at != nullptr && parts->size() >= way.size())) continue;
    at = root.get();
    way = std::move(*parts);
  }
  whole = at != nullptr;
  if (!whole) return {};
  for (const std::string& name : way) {
    const Node* const next = ChildOf(*at, name);
    if (next == nullptr) {
      whole = false;
      break;
    }
    at = next;
  }
  return IndexOf(at);
}

namespace {

// Shows its selection over the whole width, in grey while the path is typed.
class clsFolderTree final : public QTreeView {
 public:
  using QTreeView::QTreeView;

 protected:
  void initViewItemOption(QStyleOptionViewItem* option) const override {
    QTreeView::initViewItemOption(option);
    if (!hasFocus()) ShowUnfocused(*option);
  }
  bool viewportEvent(QEvent* event) override {
    return qt::Guard(this, [&] {
      if (event->type() != QEvent::ToolTip) return QTreeView::viewportEvent(event);
      qt::ShowCutTip(*this, *static_cast<QHelpEvent*>(event));
      return true;
    });
  }
  void resizeEvent(QResizeEvent* event) override {
    qt::Guard(this, [&] {
      QTreeView::resizeEvent(event);
      header()->setMinimumSectionSize(viewport()->width());
    });
  }
  void focusInEvent(QFocusEvent* event) override {
    qt::Guard(this, [&] {
      QTreeView::focusInEvent(event);
      viewport()->update();
    });
  }
  void focusOutEvent(QFocusEvent* event) override {
    qt::Guard(this, [&] {
      QTreeView::focusOutEvent(event);
      viewport()->update();
    });
  }
};

}  // namespace

frmFolderTreeview::frmFolderTreeview(std::unique_ptr<clsFolderSource> source, QWidget* parent)
    : QDialog(parent),
      m_source(std::move(source)),
      m_model(new clsFolderModel(*m_source, this)),
      lblMsg(new QLabel(this)),
      txtFolder(new QLineEdit(this)),
      ftvTreeview(new clsFolderTree(this)),
      picContainer(new QWidget(this)),
      cmdOK(new QPushButton("&OK", picContainer)),
      cmdClose(new QPushButton("&Cancel", picContainer)) {
  setObjectName("frmFolderTreeview");
  setWindowTitle("Browse");
  Arrange();
  SetLabel("Select or &Enter a folder to include in this Disk Scan");

  qt::Connect(cmdOK, &QPushButton::clicked, this, &frmFolderTreeview::accept);
  qt::Connect(cmdClose, &QPushButton::clicked, this, &frmFolderTreeview::reject);
  qt::Connect(txtFolder, &QLineEdit::textEdited, this, &frmFolderTreeview::FollowText);
  qt::Connect(ftvTreeview->selectionModel(), &QItemSelectionModel::currentChanged, this,
              &frmFolderTreeview::SelectNode);
  // The current folder can be clicked too, when the text has gone on from it.
  qt::Connect(ftvTreeview, &QTreeView::clicked, this, &frmFolderTreeview::SelectNode);

  const QModelIndex first = m_model->index(0, 0, {});
  ftvTreeview->setCurrentIndex(first);
  ftvTreeview->expand(first);
  ShowChoice();
  txtFolder->selectAll();
}

frmFolderTreeview::~frmFolderTreeview() {
  // The model's source goes before Qt lets go of the model.
  ftvTreeview->setModel(nullptr);
}

void frmFolderTreeview::Arrange() {
  lblMsg->setObjectName("lblMsg");
  lblMsg->setBuddy(txtFolder);
  lblMsg->setWordWrap(true);
  txtFolder->setObjectName("txtFolder");
  ftvTreeview->setObjectName("ftvTreeview");
  picContainer->setObjectName("picContainer");
  cmdOK->setObjectName("cmdOK");
  cmdClose->setObjectName("cmdClose");

  ftvTreeview->setItemDelegate(new clsCellDelegate(ftvTreeview));
  ftvTreeview->setModel(m_model);
  ftvTreeview->setAccessibleName("Folders");
  ftvTreeview->setHeaderHidden(true);
  ftvTreeview->setUniformRowHeights(true);
  ftvTreeview->setEditTriggers(QTreeView::NoEditTriggers);
  ftvTreeview->setHorizontalScrollMode(QTreeView::ScrollPerPixel);
  ftvTreeview->header()->setStretchLastSection(false);
  ftvTreeview->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  cmdOK->setDefault(true);

  auto* const buttons = new QHBoxLayout(picContainer);
  buttons->setContentsMargins(0, 0, 0, 0);
  buttons->addStretch();
  buttons->addWidget(cmdOK);
  buttons->addWidget(cmdClose);

  auto* const column = new QVBoxLayout(this);
  column->addWidget(lblMsg);
  column->addWidget(txtFolder);
  column->addWidget(ftvTreeview, 1);
  column->addWidget(picContainer);
  resize(420, 480);
  qt::MoveThrough(*txtFolder, *ftvTreeview);
  txtFolder->setFocus();
}

void frmFolderTreeview::SetLabel(const std::string& text) {
  lblMsg->setText(QString::fromStdString(text));
}

void frmFolderTreeview::SetFolder(const std::string& folder) {
  txtFolder->setText(QString::fromStdString(folder));
  FollowText();
  txtFolder->selectAll();
}

void frmFolderTreeview::SelectNode(const QModelIndex& index) {
  if (m_following || !index.isValid()) return;
  m_typed = false;
  txtFolder->setText(QString::fromStdString(m_model->PathOf(index)));
  ShowChoice();
}

// Moves the tree to the typed path. A folder that is only on the way there is opened, as it holds
// what the user may be looking for.
void frmFolderTreeview::FollowText() {
  bool whole = false;
  const QModelIndex index =
      m_model->Find(m_source->Normalise(txtFolder->text().toStdString()), whole);
  m_typed = !whole;
  if (index.isValid()) {
    const QScopedValueRollback following(m_following, true);
    const bool moves = index != ftvTreeview->currentIndex();
    ftvTreeview->setCurrentIndex(index);
    if (!whole) ftvTreeview->expand(index);
    if (moves) ftvTreeview->scrollTo(index, QTreeView::PositionAtTop);
  }
  ShowChoice();
}

void frmFolderTreeview::ShowChoice() {
  cmdOK->setEnabled(!Choice().empty());
}

// A path from the tree is taken as it stands: a text box can't show each byte of a host's name.
std::string frmFolderTreeview::Choice() const {
  const QModelIndex current = ftvTreeview->currentIndex();
  if (!m_typed && current.isValid()) return m_model->PathOf(current);
  return m_source->Normalise(txtFolder->text().toStdString());
}

void frmFolderTreeview::accept() {
  qt::Guard(this, [&] {
    std::string folder = Choice();
    if (folder.empty() || (Validate && !Validate(folder))) return;
    m_folder = std::move(folder);
    QDialog::accept();
  });
}

}  // namespace sandrel
