#include "platform/qt/modMenus.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <functional>

#include "platform/controls/Menu.h"
#include "platform/qt/modGuard.h"

namespace sandrel::qt {

namespace {

/// Called with each pair once it is made.
using Joined = std::function<void(MenuItem& item, QAction& action)>;

// Qt takes what follows a tab for the shortcut; a path may hold one.
QString CaptionOf(const MenuItem& item) {
  return QString::fromStdString(item.Caption()).replace('\t', ' ');
}

void Follow(const MenuItem& item, QAction& action) {
  action.setVisible(item.Visible());
  if (item.IsSeparator()) return;
  action.setText(CaptionOf(item));
  action.setEnabled(item.IsUsable());
  if (action.isCheckable()) action.setChecked(item.Checked());
}

void AddCommand(QMenu& menu, MenuItem& item, const Joined& joined) {
  QAction* const action = menu.addAction(QString());
  action->setCheckable(item.CanCheck);
  if (!item.Shortcut.empty()) {
    action->setShortcut(
        QKeySequence(QString::fromStdString(item.Shortcut), QKeySequence::PortableText));
  }
  qt::Connect(action, &QAction::triggered, action, [&item, action] {
    Follow(item, *action);  // Qt has turned the tick, which is the command's business
    if (item.IsUsable() && item.Click) item.Click();
  });
  joined(item, *action);
}

// Connected first, the Click of the item has brought its items up to date when others follow them.
void Fill(QMenu& menu, MenuItem& item, const Joined& joined) {
  menu.setObjectName(QString::fromStdString(item.Name()));
  qt::Connect(&menu, &QMenu::aboutToShow, &menu, [&item] {
    if (item.Click) item.Click();
  });
  for (const auto& below : item.Items()) {
    if (below->IsSeparator()) {
      joined(*below, *menu.addSeparator());
    } else if (below->Items().empty()) {
      AddCommand(menu, *below, joined);
    } else {
      QMenu* const submenu = menu.addMenu(QString());
      Fill(*submenu, *below, joined);
      joined(*below, *submenu->menuAction());
    }
  }
}

void Dress(const MenuItem& item, QAction& action) {
  action.setObjectName(QString::fromStdString(item.Name()));
  Follow(item, action);
}

}  // namespace

void ShowMenus(const Menus& menus, QMenuBar& bar) {
  const Joined joined = [](MenuItem& item, QAction& action) {
    Dress(item, action);
    // The items may outlive the window.
    item.Changed = [&item, held = QPointer<QAction>(&action)] {
      if (held) Follow(item, *held);
    };
  };
  for (const auto& item : menus.Bar()) {
    QMenu* const menu = bar.addMenu(QString());
    Fill(*menu, *item, joined);
    joined(*item, *menu->menuAction());
  }
}

void ShowPopup(MenuItem& item, QMenu& menu) {
  Fill(menu, item, [&menu](MenuItem& below, QAction& action) {
    Dress(below, action);
    qt::Connect(&menu, &QMenu::aboutToShow, &action, [&below, &action] { Follow(below, action); });
  });
}

}  // namespace sandrel::qt
