#include "browser/clsColumnLayout.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

#include "common/clsError.h"
#include "common/text.h"
#include "config/modKeep.h"

namespace sandrel {
namespace {

constexpr int ScrollBarRoom = 350;  // twips

std::string OrderSection(const std::string& section) {
  return section + " Column Position";
}

// A number as the store holds it; what is no number is told, as a layout that can't be.
int ToNumber(const std::string& stored, int fallback) {
  if (stored.empty()) return fallback;
  double number = 0;
  const auto [end, failure] = std::from_chars(stored.data(), stored.data() + stored.size(), number);
  if (failure != std::errc() || end != stored.data() + stored.size() || number > 1e6 ||
      number < 0 || std::isnan(number)) {
    throw clsError(errnum::TypeMismatch, fmt::format("'{}' in the settings is no number.", stored));
  }
  return static_cast<int>(number);
}

void ResetWidths(ListView& list) {
  list.BeginUpdate();
  for (std::size_t i = 0; i < list.Columns().size(); ++i) {
    list.SetWidth(i, clsColumnLayout::EvenWidth(list, list.Columns().size()));
  }
  list.EndUpdate();
}

void ResetOrder(ListView& list) {
  list.BeginUpdate();
  for (std::size_t i = 0; i < list.Columns().size(); ++i) {
    list.SetPosition(i, static_cast<int>(i) + 1);
  }
  list.EndUpdate();
}

template <class Each>
void ForEachSharedSection(Each&& each) {
  for (const char* kind : {"New ", "Changed ", "Deleted "}) {
    for (const char* hive : {"HKEY_LOCAL_MACHINE", "HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER",
                             "HKEY_USERS", "HKEY_CURRENT_CONFIG"}) {
      each(std::string(kind) + hive);
    }
  }
}

}  // namespace

clsColumnLayout::clsColumnLayout(clsShell& shell, clsSettings& settings, clsMainControls& controls)
    : m_shell(shell), m_settings(settings), m_controls(controls) {
  EnableResets(false);
}

int clsColumnLayout::EvenWidth(const ListView& list, std::size_t columns) {
  return std::max(0, list.Width - ScrollBarRoom) / std::max(1, static_cast<int>(columns));
}

// A page is left with every click in the tree, so a failure raises no box.
void clsColumnLayout::Keep(const std::function<void()>& save) {
  sandrel::Keep(m_shell, m_settings, "The columns' layout", save);
}

// A column that has its even width follows the window: that is stored for none.
void clsColumnLayout::SaveWidths(const ListView& list, const std::string& section) {
  const auto even = m_evenWidths.find(section);
  for (const ListColumn& column : list.Columns()) {
    if (even == m_evenWidths.end() || column.Width != even->second) {
      m_settings.SaveSetting(section, column.Text, fmt::to_string(column.Width));
    } else if (!m_settings.GetSetting(section, column.Text).empty()) {
      m_settings.DeleteSetting(section, column.Text);
    }
  }
}

void clsColumnLayout::SaveColumnOrders(const ListView& list, const std::string& section) {
  std::size_t number = 0;
  for (const ListColumn& column : list.Columns()) {
    m_settings.SaveSetting(OrderSection(section), fmt::to_string(++number),
                           fmt::to_string(column.Position));
  }
}

// The page of one folder keeps nothing: its widths are worked out each time.
void clsColumnLayout::SaveColumnPositions() {
  const std::string& tag = m_controls.PageTag();
  if (tag.empty() || PageIndex(tag) == page::FilteredPage) return;
  const ListView& list = m_controls.ListOfTag(tag);
  Keep([&] {
    SaveWidths(list, tag);
    SaveColumnOrders(list, tag);
  });
}

// One whose stored number is useless doesn't cost the others theirs.
void clsColumnLayout::GetColumnOrders(clsStatements& run, ListView& list,
                                      const std::string& section) {
  std::vector<std::pair<int, std::size_t>> order;  // stored place and column
  for (std::size_t i = 0; i < list.Columns().size(); ++i) {
    int place = static_cast<int>(i) + 1;
    run([&] {
      place = ToNumber(m_settings.GetSetting(OrderSection(section), fmt::to_string(place)), place);
    });
    order.emplace_back(place, i);
  }
  // From the first place on: a column that is placed stays then, whatever comes behind it. Another
  // analysis may have more columns, so that places are missing here, or are beyond the last one.
  std::stable_sort(order.begin(), order.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (std::size_t i = 0; i < order.size(); ++i) {
    list.SetPosition(order[i].second, static_cast<int>(i) + 1);
  }
}

void clsColumnLayout::GetWidths(clsStatements& run, ListView& list, const std::string& section) {
  const std::vector<ListColumn>& columns = list.Columns();
  const int even = EvenWidth(list, columns.size());
  m_evenWidths[section] = even;
  for (int position = 1; static_cast<std::size_t>(position) <= columns.size(); ++position) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (columns[i].Position != position) continue;
      list.SetWidth(i, even);
      run([&] {
        list.SetWidth(i, ToNumber(m_settings.GetSetting(section, columns[i].Text), even));
      });
    }
  }
}

void clsColumnLayout::GetColumns(clsStatements& run, ListView& list, const std::string& section) {
  list.BeginUpdate();
  try {
    GetColumnOrders(run, list, section);
    GetWidths(run, list, section);
  } catch (...) {
    list.EndUpdate();
    throw;
  }
  list.EndUpdate();
}

void clsColumnLayout::GetColumnPositions(clsStatements& run) {
  const std::string& tag = m_controls.PageTag();
  GetColumns(run, m_controls.ListOfTag(tag), tag);
  EnableResets(true);
}

void clsColumnLayout::GetSharedColumns(clsStatements& run) {
  ListView& list = m_controls.List(page::SharedPage);
  GetColumns(run, list, list.Tag);
}

void clsColumnLayout::EnableResets(bool enabled) {
  m_controls.Menus["mnuSettingsColumnsResetWidths"].SetEnabled(enabled);
  m_controls.Menus["mnuSettingsColumnsResetOrder"].SetEnabled(enabled);
}

void clsColumnLayout::GetSortOrder() {
  const std::string& tag = m_controls.PageTag();
  if (tag.empty()) return;
  const int index = PageIndex(tag);
  if (index == page::SharedPage) {
    ListView& list = m_controls.List(index);
    const int key = ToNumber(m_settings.GetSetting(list.Tag, "Sorted Column"), 0);
    const int order = ToNumber(m_settings.GetSetting(list.Tag, "Sort Order"), 0);
    list.Sort(static_cast<std::size_t>(key), order != 0);
  } else if (index != page::Stats) {
    m_controls.List(index).Sort(0, false);
  }
}

void clsColumnLayout::SaveSortOrder(std::size_t sortKey) {
  const ListView& list = m_controls.List(page::SharedPage);
  if (list.Tag.empty() || text::Lower(m_controls.PageTag()) != "showsharedpage") return;
  Keep([&] {
    m_settings.SaveSetting(list.Tag, "Sorted Column", fmt::to_string(sortKey));
    m_settings.SaveSetting(list.Tag, "Sort Order", list.Descending() ? "1" : "0");
  });
}

void clsColumnLayout::SaveSharedColumnWidths() {
  const ListView& list = m_controls.List(page::SharedPage);
  if (!list.Tag.empty()) Keep([&] { SaveWidths(list, list.Tag); });
}

void clsColumnLayout::SaveSharedColumnPositions() {
  const ListView& list = m_controls.List(page::SharedPage);
  if (!list.Tag.empty()) Keep([&] { SaveColumnOrders(list, list.Tag); });
}

void clsColumnLayout::SaveSharedSelection() {
  const ListView& list = m_controls.List(page::SharedPage);
  if (!list.Tag.empty()) m_sharedSelections[list.Tag] = list.SelectedKeys();
}

// That the view has been seen.
void clsColumnLayout::NoteFirstSelected() {
  const ListView& list = m_controls.List(page::SharedPage);
  if (!m_settings.GetSetting(list.Tag, "First Selected").empty() || list.RowCount() == 0) return;
  Keep([&] { m_settings.SaveSetting(list.Tag, "First Selected", text::BooleanText(true)); });
}

void clsColumnLayout::RestoreSharedSelection() {
  ListView& list = m_controls.List(page::SharedPage);
  const auto saved = m_sharedSelections.find(list.Tag);
  if (saved == m_sharedSelections.end() || saved->second.empty() || list.RowCount() == 0) return;
  list.BeginUpdate();
  list.SelectAll(false);
  list.SelectKeys(saved->second);
  list.EndUpdate();
}

void clsColumnLayout::DropSection(const std::string& section) {
  m_settings.SaveSetting(section, "x", "x");  // so that there is one to delete
  m_settings.DeleteSetting(section);
}

void clsColumnLayout::ResetSharedPage(std::string_view what) {
  const std::string part = text::Lower(what);
  Keep([&] {
    ForEachSharedSection([&](const std::string& section) {
      if (part == "sort") {
        for (const char* key : {"Sorted Column", "Sort Order"}) {
          m_settings.SaveSetting(section, key, "x");
          m_settings.DeleteSetting(section, key);
        }
      } else if (part == "order") {
        DropSection(OrderSection(section));
      } else if (part == "width") {
        DropSection(section);
      }
    });
  });
}

void clsColumnLayout::mnuSettingsColumnsResetWidthsCurrent_Click() {
  const std::string& tag = m_controls.PageTag();
  ListView& list = m_controls.ListOfTag(tag);
  const bool shared = PageIndex(tag) == page::SharedPage;
  ResetWidths(list);
  m_evenWidths[shared ? list.Tag : tag] = EvenWidth(list, list.Columns().size());
  Keep([&] {
    if (shared) {
      DropSection(list.Tag);
    } else if (PageIndex(tag) != page::FilteredPage) {
      SaveWidths(list, tag);
    }
  });
}

void clsColumnLayout::mnuSettingsColumnsResetOrderCurrent_Click() {
  const std::string& tag = m_controls.PageTag();
  ListView& list = m_controls.ListOfTag(tag);
  if (PageIndex(tag) == page::SharedPage) Keep([&] { DropSection(OrderSection(list.Tag)); });
  ResetOrder(list);
}

// Asks, and then resets each list and what is kept of the views of hives. These have nothing under
// their page's own name.
bool clsColumnLayout::ResetAll(const char* question, void (*reset)(ListView& list), Saver save,
                               std::string_view what) {
  if (m_shell.Ask({question, "Sandrel Manager", Buttons::YesNo, BoxIcon::Question}) !=
      Answer::Yes) {
    return false;
  }
  Keep([&] {
    for (int index = 0; index < page::Count; ++index) {
      ListView& list = m_controls.List(index);
      reset(list);
      if (index >= page::SharedPage) continue;
      // Also what is kept of columns that this analysis lacks.
      DropSection(what == "order" ? OrderSection(PageName(index)) : PageName(index));
      m_evenWidths[PageName(index)] = EvenWidth(list, list.Columns().size());
      (this->*save)(list, PageName(index));
    }
  });
  ResetSharedPage(what);
  return true;
}

bool clsColumnLayout::mnuSettingsColumnsResetWidthsAll_Click() {
  return ResetAll("Reset all columns to their default widths", ResetWidths,
                  &clsColumnLayout::SaveWidths, "width");
}

bool clsColumnLayout::mnuSettingsColumnsResetOrderAll_Click() {
  return ResetAll("Reset all columns to their default order", ResetOrder,
                  &clsColumnLayout::SaveColumnOrders, "order");
}

}  // namespace sandrel
