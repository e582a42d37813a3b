// How wide the columns of a page are, in which order they stand and how they are sorted: kept in
// the settings, one section a page, and one for each hive's view.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "browser/clsMainControls.h"
#include "common/clsShell.h"
#include "config/clsSettings.h"
#include "snapshot/clsStatements.h"

namespace sandrel {

class clsColumnLayout {
 public:
  /// All must outlive the object.
  clsColumnLayout(clsShell& shell, clsSettings& settings, clsMainControls& controls);

  /// Saves widths and order of the page that is being left. Settings that can't be written cost the
  /// layout, not the page: the status text tells it.
  void SaveColumnPositions();
  /// Gives the columns of the page on show their stored order and widths. A stored number that no
  /// column can have is reported through `run`.
  void GetColumnPositions(clsStatements& run);
  /// Columns can be reset while a page is on show.
  void EnableResets(bool enabled);

  /// Remembers a sort; only the view of a hive does.
  void SaveSortOrder(std::size_t sortKey);
  /// Sorts the page on show: the view of a hive as stored, others on their first column.
  void GetSortOrder();

  /// Forgets "sort", "order" or "width" (in any case) of the views of all hives.
  void ResetSharedPage(std::string_view what);

  // The view of a hive, before it is filled with another one.
  void SaveSharedColumnWidths();
  void SaveSharedColumnPositions();
  void SaveSharedSelection();
  // ... and after.
  void GetSharedColumns(clsStatements& run);
  void NoteFirstSelected();
  void RestoreSharedSelection();
  /// What was selected means nothing in another analysis.
  std::map<std::string, int> m_evenWidths;  // that the columns of a page were given, by section
  void ForgetSharedSelections() { m_sharedSelections.clear(); }

  void mnuSettingsColumnsResetWidthsCurrent_Click();
  void mnuSettingsColumnsResetOrderCurrent_Click();
  /// These two ask first. True when the columns were reset: the page is then to be shown anew.
  bool mnuSettingsColumnsResetWidthsAll_Click();
  bool mnuSettingsColumnsResetOrderAll_Click();

  /// Twips of one of `columns` even columns: what the list has without its scroll bar, divided.
  static int EvenWidth(const ListView& list, std::size_t columns);

 private:
  void Keep(const std::function<void()>& save);
  void SaveWidths(const ListView& list, const std::string& section);
  void SaveColumnOrders(const ListView& list, const std::string& section);
  void GetColumnOrders(clsStatements& run, ListView& list, const std::string& section);
  void GetWidths(clsStatements& run, ListView& list, const std::string& section);
  void GetColumns(clsStatements& run, ListView& list, const std::string& section);
  void DropSection(const std::string& section);

  using Saver = void (clsColumnLayout::*)(const ListView& list, const std::string& section);
  bool ResetAll(const char* question, void (*reset)(ListView& list), Saver save,
                std::string_view what);

  clsShell& m_shell;
  clsSettings& m_settings;
  clsMainControls& m_controls;
  std::map<std::string, std::vector<RowKey>> m_sharedSelections;  // by the view's section
};

}  // namespace sandrel
