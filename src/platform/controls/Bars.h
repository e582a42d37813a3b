// The toolbar, the status bar and the tray icon as plain models.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sandrel {

struct ToolbarButton {
  std::string Key;  ///< also of its picture; empty for a separator
  std::string Tip;
  std::string Item;  ///< name of the menu item whose command it runs
  bool Enabled = true;
};

class Toolbar {
 public:
  std::vector<ToolbarButton> Buttons;  ///< set before a view shows them

  /// Raises 35601 when there is none.
  ToolbarButton& Button(std::string_view key);
  void Enable(std::string_view key, bool enabled);
  bool Visible() const { return m_visible; }
  void SetVisible(bool visible);

  std::function<void(const std::string& key)> ButtonClick;
  /// Told when a button or the visibility changes. At most one.
  std::function<void()> Changed;

 private:
  bool m_visible = true;
};

/// Gives a part of a control another value and tells its view, unless it has that value already.
template <class Part>
void SetAndTell(Part& part, Part value, const std::function<void()>& changed) {
  if (part == value) return;
  part = std::move(value);
  if (changed) changed();
}

class StatusBar {
 public:
  static constexpr int Height = 345;  ///< twips

  const std::string& Progress() const { return m_progress; }
  const std::string& Status() const { return m_status; }
  bool Visible() const { return m_visible; }
  void SetProgress(std::string text) { SetAndTell(m_progress, std::move(text), Changed); }
  void SetStatus(std::string text) { SetAndTell(m_status, std::move(text), Changed); }
  void SetVisible(bool visible) { SetAndTell(m_visible, visible, Changed); }

  std::function<void()> Changed;

 private:
  std::string m_progress, m_status;
  bool m_visible = true;
};

class SysTray {
 public:
  /// False where the desktop has no tray: the icon then never shows.
  bool Available = false;
  /// Tells whether the desktop has a tray now: panels come and go.
  std::function<bool()> LookForTray;
  /// Brings `Available` up to date; an icon that has no tray any more is out of it.
  void Look() {
    if (LookForTray) Available = LookForTray();
    if (!Available) SetInTray(false);
  }

  bool InTray() const { return m_inTray; }
  void SetInTray(bool inTray) { SetAndTell(m_inTray, inTray && Available, Changed); }
  const std::string& Tip() const { return m_tip; }
  void SetTip(std::string tip) { SetAndTell(m_tip, std::move(tip), Changed); }

  /// 1 left, 2 right button.
  std::function<void(int button)> MouseDown;
  std::function<void()> DblClick;
  std::function<void()> Changed;

 private:
  bool m_inTray = false;
  std::string m_tip;
};

}  // namespace sandrel
