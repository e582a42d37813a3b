// Menus as a plain model: items with captions, enabled, checked and shown or not, known by name.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sandrel {

class MenuItem {
 public:
  const std::string& Name() const { return m_name; }
  /// With "&" before the access key; "-" is a separator.
  const std::string& Caption() const { return m_caption; }
  bool IsSeparator() const { return m_caption == "-"; }
  const std::vector<std::unique_ptr<MenuItem>>& Items() const { return m_items; }

  /// Portable text, as "Ctrl+O"; set while the menus are made.
  std::string Shortcut;
  bool CanCheck = false;

  /// The command; of an item with items of its own what is done each time they are shown. An item
  /// without either stays disabled: its command isn't there yet.
  std::function<void()> Click;
  /// Told when anything below changes. At most one.
  std::function<void()> Changed;

  /// False while it is disabled itself, or one of the menus that hold it, or has no command.
  bool IsUsable() const;
  bool Enabled() const { return m_enabled; }
  bool Checked() const { return m_checked; }
  bool Visible() const { return m_visible; }
  void SetEnabled(bool enabled) { Set(m_enabled, enabled); }
  void SetChecked(bool checked) { Set(m_checked, checked); }
  void SetVisible(bool visible) { Set(m_visible, visible); }
  void SetCaption(std::string caption) { Set(m_caption, std::move(caption)); }

 private:
  friend class Menus;
  template <class Part>
  void Set(Part& part, Part value) {
    if (part == value) return;
    part = std::move(value);
    Tell();
  }
  void Tell();

  std::string m_name, m_caption;
  MenuItem* m_parent = nullptr;
  std::vector<std::unique_ptr<MenuItem>> m_items;
  bool m_enabled = true;
  bool m_checked = false;
  bool m_visible = true;
};

class Menus {
 public:
  Menus() = default;
  Menus(const Menus&) = delete;
  Menus& operator=(const Menus&) = delete;

  /// Adds an item below another, or to the bar when `parent` is empty. Names are unique; those of
  /// an array carry their index, "mnuFileRecent(1)".
  MenuItem& Add(std::string_view parent, std::string name, std::string caption);
  /// Raises 35601 when there is none.
  MenuItem& operator[](std::string_view name) const;
  const std::vector<std::unique_ptr<MenuItem>>& Bar() const { return m_bar; }
  /// Runs the command of an item that is enabled; does nothing otherwise.
  void Run(std::string_view name) const;

 private:
  std::vector<std::unique_ptr<MenuItem>> m_bar;
  std::unordered_map<std::string_view, MenuItem*> m_items;  // by the name inside the item
};

}  // namespace sandrel
