#include "platform/controls/Menu.h"

#include <utility>

#include "common/clsError.h"

namespace sandrel {

bool MenuItem::IsUsable() const {
  if (!Click && m_items.empty()) return false;
  for (const MenuItem* item = this; item != nullptr; item = item->m_parent) {
    if (!item->m_enabled) return false;
  }
  return true;
}

// A menu's state is also that of what it holds.
void MenuItem::Tell() {
  if (Changed) Changed();
  for (const auto& item : m_items) item->Tell();
}

MenuItem& Menus::Add(std::string_view parent, std::string name, std::string caption) {
  MenuItem* const above = parent.empty() ? nullptr : &(*this)[parent];
  auto& items = above == nullptr ? m_bar : above->m_items;
  items.push_back(std::make_unique<MenuItem>());
  MenuItem& item = *items.back();
  item.m_name = std::move(name);
  item.m_caption = std::move(caption);
  item.m_parent = above;
  m_items.emplace(item.m_name, &item);
  return item;
}

MenuItem& Menus::operator[](std::string_view name) const {
  const auto found = m_items.find(name);
  if (found == m_items.end()) {
    throw clsError(errnum::ElementNotFound, "Element not found: " + std::string(name), "Menus");
  }
  return *found->second;
}

void Menus::Run(std::string_view name) const {
  const MenuItem& item = (*this)[name];
  if (item.IsUsable() && item.Click) item.Click();
}

}  // namespace sandrel
