#include "shell/frmHelp.h"

#include <fmt/format.h>

#include <QApplication>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QLineEdit>
#include <QShortcut>
#include <QSplitter>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeWidget>
#include <algorithm>
#include <utility>

#include "common/clsError.h"
#include "common/text.h"
#include "config/frmPlacement.h"
#include "config/modKeep.h"
#include "platform/qt/Icons.h"
#include "platform/qt/clsMarkdownPage.h"
#include "platform/qt/modGuard.h"
#include "platform/qt/modInput.h"
#include "platform/qt/modText.h"

namespace sandrel {
namespace {

constexpr const char* Section = "Help Form";
constexpr const char* MachinePage = "machine";
constexpr const char* TroublePage = "trouble";
constexpr int Link = Qt::UserRole;  // of an item: where it leads

// Every sign of Markdown's as itself.
std::string Literal(std::string_view text) {
  std::string literal;
  for (const char c : text) {
    if (std::string_view(R"(\`*_{}[]()<>#+-.!|~&$:)").find(c) != std::string_view::npos) {
      literal += '\\';
    }
    literal += c == '\n' ? ' ' : c;
  }
  return literal;
}

std::string MachineMarkdown(const std::vector<MachineFact>& facts) {
  std::string text =
      "# The machine looked at\n\nSnapshots are taken of this machine. **Machine...** in the "
      "**Settings** menu chooses another one.\n\n";
  for (const MachineFact& fact : facts) {
    text += fmt::format("| {} | {} |\n", Literal(fact.Name), Literal(fact.Text));
    if (&fact == &facts.front()) text += "|---|---|\n";
  }
  return text;
}

std::string TroubleMarkdown(const std::string& why) {
  return fmt::format(
      "# The help can't be shown\n\n{}\n\nThe manual comes with Sandrel, in a file beside the "
      "program or in the folder share/sandrel of the installation. Install Sandrel again to get it "
      "back; everything else works without it.\n",
      Literal(why));
}

}  // namespace

frmHelp::frmHelp(clsShell& shell, clsSettings& settings,
                 std::function<std::vector<MachineFact>()> machine)
    : m_shell(shell),
      m_settings(settings),
      m_machine(std::move(machine)),
      tlbarHelp(new QToolBar(this)),
      tabStrip(new QTabWidget(this)),
      txtIndex(new QLineEdit(this)),
      txtSearch(new QLineEdit(this)),
      page(new clsMarkdownPage(this)) {
  setObjectName("frmHelp");
  setWindowTitle("Sandrel Help");
  setWindowIcon(icons::Tool("Help"));
  setAttribute(Qt::WA_QuitOnClose, false);
  MakePage();
  MakeToolbar();
  MakeTabs();
  MakeKeys();

  auto* const panes = new QSplitter(this);
  panes->addWidget(tabStrip);
  panes->addWidget(page);
  panes->setStretchFactor(1, 1);
  panes->setSizes({280, 720});
  panes->setChildrenCollapsible(false);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(tlbarHelp);
  column->addWidget(panes, 1);
}

frmHelp::~frmHelp() {
  txtIndex->disconnect(this);
  txtSearch->disconnect(this);
  page->Shown = nullptr;
}

void frmHelp::MakePage() {
  page->setObjectName("page");
  page->setAccessibleName("Chapter of the manual");
  page->TextOf = [this](const QString& name) { return TextOf(name); };
  page->PictureOf = [this](const QString& name) { return m_content.Pictures().value(name); };
  page->Shown = [this](const QString& link) { FollowPage(link); };
  page->Left = [this](const QUrl& url) { OpenOutside(url); };
}

void frmHelp::MakeToolbar() {
  tlbarHelp->setIconSize(QSize(16, 16));
  const auto add = [this](const char* key, const char* tip, const QList<QKeySequence>& shortcuts,
                          const std::function<void()>& click) {
    QAction* const action = tlbarHelp->addAction(icons::Tool(key), tip);
    action->setObjectName(QString("tlbarHelp.") + key);
    action->setShortcuts(shortcuts);
    action->setToolTip(
        shortcuts.isEmpty()
            ? QString(tip)
            : QString("%1 (%2)").arg(tip, shortcuts.front().toString(QKeySequence::NativeText)));
    qt::Connect(action, &QAction::triggered, this, click);
    return action;
  };
  QAction* const back = add("MovePrevious", "Back", {QKeySequence(Qt::ALT | Qt::Key_Left)},
                            [this] { page->backward(); });
  QAction* const forward = add("MoveNext", "Forward", {QKeySequence(Qt::ALT | Qt::Key_Right)},
                               [this] { page->forward(); });
  for (QAction* const action : {back, forward}) action->setEnabled(false);
  qt::Connect(page, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
  qt::Connect(page, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
  tlbarHelp->addSeparator();
  QAction* const copy = add("Copy", "Copy", {}, [this] { page->copy(); });
  copy->setEnabled(false);
  qt::Connect(page, &QTextEdit::copyAvailable, copy, &QAction::setEnabled);
  add("Print", "Print", {QKeySequence::Print}, [this] { page->Print(); });
}

void frmHelp::MakeTabs() {
  tabStrip->setObjectName("tabStrip");
  tabStrip->setDocumentMode(true);
  const auto add = [this](const char* caption, const char* name, QLineEdit* box) {
    auto* const tab = new QWidget(tabStrip);
    QTreeWidget* const list = AddList(*tab, name, box);
    tabStrip->addTab(tab, caption);
    return list;
  };
  treeContents = add("&Contents", "treeContents", nullptr);
  treeIndex = add("&Index", "treeIndex", txtIndex);
  treeSearch = add("&Search", "treeSearch", txtSearch);
  txtIndex->setObjectName("txtIndex");
  txtIndex->setPlaceholderText("Type the first letters");
  txtIndex->setAccessibleName("Entry of the index");
  txtSearch->setObjectName("txtSearch");
  txtSearch->setPlaceholderText("Words to look for");
  txtSearch->setAccessibleName("Words to look for");
  treeContents->setAccessibleName("Contents");
  treeIndex->setAccessibleName("Index");
  treeSearch->setAccessibleName("Found");
  qt::Connect(txtIndex, &QLineEdit::textChanged, this, [this] { FillIndex(); });
  qt::Connect(txtSearch, &QLineEdit::textChanged, this, [this] { FillSearch(); });
}

// A list of places, under a box that narrows it where there is one.
QTreeWidget* frmHelp::AddList(QWidget& tab, const char* name, QLineEdit* box) {
  auto* const list = new QTreeWidget(&tab);
  list->setObjectName(name);
  list->setHeaderHidden(true);
  list->setFrameShape(QFrame::NoFrame);
  auto* const column = new QVBoxLayout(&tab);
  column->setContentsMargins(0, 4, 0, 0);
  column->setSpacing(4);
  if (box != nullptr) {
    box->setClearButtonEnabled(true);
    qt::MoveThrough(*box, *list);
    column->addWidget(box);
    qt::Connect(box, &QLineEdit::returnPressed, list,
                [this, list] { ShowPlace(list->currentItem()); });
  }
  column->addWidget(list);
  qt::Connect(list, &QTreeWidget::itemClicked, this,
              [this](QTreeWidgetItem* item) { ShowPlace(item); });
  qt::Connect(list, &QTreeWidget::itemActivated, this,
              [this](QTreeWidgetItem* item) { ShowPlace(item); });
  return list;
}

void frmHelp::MakeKeys() {
  const auto on = [this](const QKeySequence& keys, const std::function<void()>& act) {
    qt::Connect(new QShortcut(keys, this), &QShortcut::activated, this, act);
  };
  on(Qt::Key_Escape, [this] { close(); });
  on(QKeySequence::Find, [this] {
    tabStrip->setCurrentIndex(tabStrip->indexOf(txtSearch->parentWidget()));
    txtSearch->setFocus();
    txtSearch->selectAll();
  });
  for (const auto keys : {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal}) {
    on(keys, [this] { page->SetZoom(page->Zoom() + clsMarkdownPage::ZoomStep); });
  }
  on(Qt::CTRL | Qt::Key_Minus, [this] { page->SetZoom(page->Zoom() - clsMarkdownPage::ZoomStep); });
  on(Qt::CTRL | Qt::Key_0, [this] { page->SetZoom(clsMarkdownPage::DefaultZoom); });
}

bool frmHelp::WinHelpA(WindowHandle /*window*/, const std::string& file, int command,
                       std::string_view key) {
  if (command != helpcommand::Tab && command != helpcommand::PartialKey) return false;
  const bool loaded = Load(file);
  if (!m_placed) {
    m_placed = true;
    placement::Load(*this, m_settings, Section);
    const std::string zoom = m_settings.GetSetting(Section, "Zoom");
    if (!zoom.empty()) page->SetZoom(static_cast<int>(text::Val(zoom)));
  }
  isMinimized() ? showNormal() : show();
  raise();
  activateWindow();
  QLineEdit* const box = command == helpcommand::Tab ? nullptr : txtIndex;
  tabStrip->setCurrentIndex(box == nullptr ? 0 : tabStrip->indexOf(box->parentWidget()));
  if (box == nullptr) {
    treeContents->setFocus();
  } else {
    box->setText(qt::FromText(key));
    box->setFocus();
    box->selectAll();
  }
  return loaded;
}

// A file that couldn't be shown may be there now.
bool frmHelp::Load(const std::string& file) {
  if (file == m_file && m_trouble.empty()) return true;
  m_file = file;
  m_trouble.clear();
  m_content = {};
  m_book = {};
  try {
    m_content = clsHelpFile::Read(file);
    const QMap<QString, QByteArray>& chapters = m_content.Chapters();
    for (auto chapter = chapters.begin(); chapter != chapters.end(); ++chapter) {
      m_book.Add(chapter.key().toStdString(), chapter.value().toStdString());
    }
    if (m_book.Chapters().empty()) {
      m_trouble = fmt::format("The file {} holds no chapter.", file);
    }
  } catch (const clsError& error) {
    m_trouble = error.Description();
  }
  FillContents();
  FillIndex();
  FillSearch();
  page->clearHistory();
  page->Show(m_trouble.empty() ? qt::FromText(m_book.Chapters().front().Name)
                               : QString(TroublePage));
  return m_trouble.empty();
}

void frmHelp::FillContents() {
  treeContents->clear();
  const std::vector<HelpChapter>& chapters = m_book.Chapters();
  for (std::size_t chapter = 0; chapter < chapters.size(); ++chapter) {
    // The items that headings of each level hang on.
    QTreeWidgetItem* above[4] = {treeContents->invisibleRootItem(), nullptr, nullptr, nullptr};
    const std::vector<HelpSection>& sections = chapters[chapter].Sections;
    for (std::size_t i = 0; i < sections.size(); ++i) {
      const int level = sections[i].Level;
      if (level > 3 || (i > 0 && level == 1)) continue;
      QTreeWidgetItem* parent = nullptr;
      for (int higher = level - 1; parent == nullptr; --higher) parent = above[higher];
      auto* const item = new QTreeWidgetItem(parent, {qt::FromText(sections[i].Title)});
      item->setData(0, Link, qt::FromText(m_book.LinkTo({chapter, i})));
      above[level] = item;
      std::fill(above + level + 1, above + 4, nullptr);
    }
  }
  auto* const machine = new QTreeWidgetItem(treeContents, {"The machine looked at"});
  machine->setData(0, Link, MachinePage);
}

// The entries that hold what was typed; the first that begins with it is the current one.
void frmHelp::FillIndex() {
  treeIndex->clear();
  const std::string typed = text::Fold(text::Trim(txtIndex->text().toStdString()));
  QTreeWidgetItem* current = nullptr;
  for (const HelpTerm& term : m_book.Terms()) {
    const std::size_t found = text::Fold(term.Text).find(typed);
    if (found == std::string::npos) continue;
    auto* const item = new QTreeWidgetItem(treeIndex, {qt::FromText(term.Text)});
    item->setData(0, Link, qt::FromText(m_book.LinkTo(term.Places.front())));
    for (const HelpPlace& place : term.Places) {
      if (term.Places.size() < 2) break;
      auto* const below = new QTreeWidgetItem(item, {qt::FromText(m_book.Section(place).Title)});
      below->setData(0, Link, qt::FromText(m_book.LinkTo(place)));
    }
    item->setExpanded(true);
    if (found == 0 && current == nullptr) current = item;
  }
  if (current == nullptr && treeIndex->topLevelItemCount() > 0)
    current = treeIndex->topLevelItem(0);
  treeIndex->setCurrentItem(current);
}

void frmHelp::FillSearch() {
  treeSearch->clear();
  for (const HelpHit& hit : m_book.Search(txtSearch->text().toStdString())) {
    auto* const item =
        new QTreeWidgetItem(treeSearch, {qt::FromText(m_book.Section(hit.Place).Title)});
    QFont bold = item->font(0);
    bold.setBold(true);
    item->setFont(0, bold);
    item->setToolTip(0, qt::FromText(m_book.Chapters()[hit.Place.Chapter].Title()));
    item->setData(0, Link, qt::FromText(m_book.LinkTo(hit.Place)));
    auto* const below = new QTreeWidgetItem(item, {qt::FromText(hit.Excerpt)});
    below->setData(0, Link, item->data(0, Link));
    below->setToolTip(0, below->text(0));
    item->setExpanded(true);
  }
  if (treeSearch->topLevelItemCount() > 0) {
    treeSearch->setCurrentItem(treeSearch->topLevelItem(0));
  } else if (!clsHelpBook::Words(txtSearch->text().toStdString()).empty()) {
    new QTreeWidgetItem(treeSearch, {"Nothing was found."});
  }
}

void frmHelp::ShowPlace(const QTreeWidgetItem* item) {
  if (item == nullptr) return;
  const QString link = item->data(0, Link).toString();
  if (link.isEmpty()) return;
  QStringList marked;
  if (item->treeWidget() == treeSearch) {
    for (const std::string& word : clsHelpBook::Words(txtSearch->text().toStdString())) {
      marked += qt::FromText(word);
    }
  }
  page->Show(link, marked);
}

// The contents show where the page is.
void frmHelp::FollowPage(const QString& link) {
  QTreeWidgetItem* nearest = nullptr;
  for (QTreeWidgetItemIterator it(treeContents); *it != nullptr; ++it) {
    const QString place = (*it)->data(0, Link).toString();
    if (place == link) nearest = *it;
    if (nearest == nullptr && place == link.section('#', 0, 0)) nearest = *it;
  }
  treeContents->setCurrentItem(nearest);
}

MarkdownText frmHelp::TextOf(const QString& name) const {
  if (name == MachinePage) return {qt::FromText(MachineMarkdown(m_machine())), {}};
  if (name == TroublePage) return {qt::FromText(TroubleMarkdown(m_trouble)), {}};
  for (const HelpChapter& chapter : m_book.Chapters()) {
    if (qt::FromText(chapter.Name) != name) continue;
    MarkdownText text{qt::FromText(chapter.Markdown), {}};
    for (const HelpSection& section : chapter.Sections)
      text.Anchors += qt::FromText(section.Anchor);
    return text;
  }
  return {"# There is no such page\n\nThe manual has no chapter " +
              qt::FromText(Literal(name.toStdString())) + ".",
          {}};
}

void frmHelp::OpenOutside(const QUrl& url) {
  if (QDesktopServices::openUrl(url)) return;
  m_shell.Ask(
      {"There is no program here that opens " + url.toString().toStdString(), "Sandrel Help"});
}

void frmHelp::closeEvent(QCloseEvent* event) {
  qt::Guard(this, [&] {
    QWidget::closeEvent(event);
    if (!m_placed) return;
    Keep(m_shell, m_settings, "The help's place", [&] {
      placement::Save(*this, m_settings, Section);
      m_settings.SaveSetting(Section, "Zoom", fmt::to_string(page->Zoom()));
    });
  });
}

}  // namespace sandrel
