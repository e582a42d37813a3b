// The main window's controls and its state, as the commands work on them. The window shows and
// drives them; without a window they work the same.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "browser/Pages.h"
#include "browser/clsPendingDeletes.h"
#include "platform/controls/Bars.h"
#include "platform/controls/ListView.h"
#include "platform/controls/Menu.h"
#include "platform/controls/TextPool.h"
#include "platform/controls/TreeView.h"

namespace sandrel {

class clsMainControls {
 public:
  /// Makes menus and toolbar without their commands.
  clsMainControls();
  clsMainControls(const clsMainControls&) = delete;
  clsMainControls& operator=(const clsMainControls&) = delete;

  TextPool Texts;  // of all lists
  TreeView treeView;
  std::array<ListView, page::Count> listView;
  Toolbar tlbarMain;
  StatusBar stbrStatus;
  sandrel::SysTray SysTray;
  sandrel::Menus Menus;

  /// The name of the page on show.
  std::string& PageTag() { return listView[0].Tag; }
  ListView& List(int index) { return listView[static_cast<std::size_t>(index)]; }
  /// The list of the page whose name a list's tag is; list 0 for any other tag.
  ListView& ListOfTag(const std::string& tag) { return List(PageIndex(tag)); }

  /// The window's title.
  const std::string& Caption() const { return m_caption; }
  void SetCaption(std::string caption);
  std::function<void()> CaptionChanged;

  /// Enables a button of the toolbar, if its command is there.
  void EnableButton(std::string_view key, bool enabled);
  /// Hides all lists.
  void HideLists();

  bool FormReady = false;          ///< menus may be refreshed, pages may show themselves
  bool SuppressTreeClick = false;  ///< while nodes are collapsed by a command

  /// What the keys of the Edit menu act on.
  enum class Pane : std::uint8_t { Tree, List };
  Pane CurrentPane = Pane::Tree;

  clsPendingDeletes Deletes;  ///< holds the open analysis

  /// "mnuFileRecent(3)": an item's name in a control array.
  static std::string Element(std::string_view name, int index);

 private:
  template <std::size_t... Index>
  explicit clsMainControls(std::index_sequence<Index...>);

  std::string m_caption;
};

}  // namespace sandrel
