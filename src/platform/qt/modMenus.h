// Menus of the window: Qt's actions that follow the plain menu items.
#pragma once

class QMenu;
class QMenuBar;

namespace sandrel {

class MenuItem;
class Menus;

namespace qt {

/// Fills an empty bar. Its actions and menus carry the names of their items and follow them from
/// then on, so the items' Changed is taken. Opening a menu first runs the Click of its item.
/// `menus` outlives what the user can reach of the bar, and its items are all there already.
void ShowMenus(const Menus& menus, QMenuBar& bar);

/// Fills an empty popup menu with the items below `item`. They are brought up to date each time it
/// opens, after the Click of `item`; Changed stays with the bar.
void ShowPopup(MenuItem& item, QMenu& menu);

}  // namespace qt
}  // namespace sandrel
