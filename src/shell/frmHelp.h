// The help viewer: contents, index and search of the manual beside the chapter on show.
#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "common/clsShell.h"
#include "config/clsSettings.h"
#include "platform/help/clsWinHelp.h"
#include "platform/machine/modMachineReport.h"
#include "platform/qt/clsHelpFile.h"
#include "shell/clsHelpBook.h"

class QLineEdit;
class QTabWidget;
class QToolBar;
class QTreeWidget;
class QTreeWidgetItem;

namespace sandrel {

class clsMarkdownPage;
struct MarkdownText;

/// A window of its own beside all others. It is made once and hides when it is closed.
class frmHelp final : public QWidget, public clsWinHelp {
 public:
  /// `shell` and `settings` outlive it; `machine` gives what is told of the machine, each time its
  /// page is shown.
  frmHelp(clsShell& shell, clsSettings& settings,
          std::function<std::vector<MachineFact>()> machine);
  ~frmHelp() override;

  /// A file that can't be shown has its page in the viewer, which says why.
  bool WinHelpA(WindowHandle window, const std::string& file, int command,
                std::string_view key) override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeToolbar();
  void MakePage();
  QTreeWidget* AddList(QWidget& tab, const char* name, QLineEdit* box);
  void MakeTabs();
  void MakeKeys();
  bool Load(const std::string& file);
  void FillContents();
  void FillIndex();
  void FillSearch();
  void ShowPlace(const QTreeWidgetItem* item);
  void FollowPage(const QString& link);
  MarkdownText TextOf(const QString& name) const;
  void OpenOutside(const QUrl& url);

  clsShell& m_shell;
  clsSettings& m_settings;
  std::function<std::vector<MachineFact>()> m_machine;
  std::string m_file;     // that was asked for last
  std::string m_trouble;  // why it can't be shown; empty when it can
  clsHelpFile m_content;
  clsHelpBook m_book;
  bool m_placed = false;

  QToolBar* tlbarHelp;
  QTabWidget* tabStrip;
  QTreeWidget *treeContents, *treeIndex, *treeSearch;
  QLineEdit *txtIndex, *txtSearch;
  clsMarkdownPage* page;
};

}  // namespace sandrel
