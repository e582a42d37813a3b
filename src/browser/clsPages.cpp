#include "browser/clsPages.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "browser/FormatCell.h"
#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "platform/controls/ImageKeys.h"
#include "snapshot/StatsReport.h"

namespace sandrel {
namespace {

const char* StatsIcon(std::string_view description) {
  static constexpr std::pair<const char*, const char*> Icons[] = {
      {"files - changed", "changedfolder"},       {"files - new", "newfolder"},
      {"files - deleted", "deletedfolder"},       {"registry - changed", "changedregistry"},
      {"registry - new", "newregistry"},          {"registry - deleted", "deletedregistry"},
      {"ini entries - changed", "changedini"},    {"ini entries - new", "newini"},
      {"ini entries - deleted", "deletedini"},    {"disk scan settings", "controlpanel"},
      {"registry scan settings", "controlpanel"}, {"file exclude settings", "controlpanel"}};
  const std::string lower = text::Lower(description);
  for (const auto& [name, icon] : Icons) {
    if (lower == name) return icon;
  }
  return "none";
}

static_assert(ImageIndex("none") >= 0 && ImageIndex("controlpanel") >= 0);

}  // namespace

struct clsPages::Reading {
  std::unique_ptr<dao::Recordset> Rows;
  std::size_t FirstRow = 0;  // of the statement in the list
  std::uint8_t Number = 1;   // of the statement
  int Icon = 0;
  int Source = 0;
  bool IsStats = false;
};

clsPages::clsPages(clsShell& shell, clsMainControls& controls, clsColumnLayout& layout)
    : m_shell(shell), m_controls(controls), m_layout(layout) {}

void clsPages::ShowPage(int index) {
  m_controls.PageTag() = PageName(index);
  FillList();
}

// The new list comes before the old one goes, and takes the focus over from it.
void clsPages::ShowOnly(int index) {
  m_controls.List(index).SetVisible(true);
  for (int i = 0; i < page::Count; ++i) {
    if (i != index) m_controls.List(i).SetVisible(false);
  }
}

void clsPages::FillList() {
  const std::string& path = m_shell.State.AnalysisPath;
  if (path.empty()) return;
  clsStatements run(m_shell, "frmSandrel.FillList");
  const clsPointerGuard pointer(m_shell, pointer::Hourglass);
  const int current = PageIndex(m_controls.PageTag());
  ListView& list = m_controls.List(current);
  if (m_controls.FormReady) ShowOnly(current);
  if (list.RowCount() == 0) {
    list.SetUnsorted();
    bool valid = true;
    std::vector<PageStatement> statements;
    run([&] { valid = GetStatements(current, statements); });
    list.BeginUpdate();
    try {
      int number = 0;
      bool whole = true;
      for (const PageStatement& statement : statements) {
        whole = whole && RunStatement(statement, ++number, list, run, valid);
      }
      // A page that wasn't read whole is read again at the next visit.
      if (whole) {
        m_unread.erase(current);
      } else {
        m_unread.insert(current);
        list.ClearRows();
      }
      if (valid) run([&] { m_layout.GetSortOrder(); });
    } catch (...) {
      list.EndUpdate();
      throw;
    }
    if (list.RowCount() > 0) list.SelectOnly(0);
    list.EndUpdate();
    if (!valid) {
      TellInvalidDatabase();
      return;
    }
  }
  m_layout.EnableResets(true);
  for (ListView& other : m_controls.listView) {
    m_controls.ListOfTag(other.Tag).SetHideColumnHeaders(false);
  }
  m_shell.RestorePointer();
  m_shell.UpdateCommandState();
  m_shell.DoEvents(false);
}

// False when the file has no such table: it is no analysis.
bool clsPages::GetStatements(int index, std::vector<PageStatement>& statements) {
  try {
    statements = PageStatements(index, [&](std::string_view description) {
      return ReadStat(m_controls.Deletes.Workspace(), m_shell.State.AnalysisPath, description);
    });
  } catch (const clsError& error) {
    if (error.Number() != errnum::NoSuchTable) throw;
    return false;
  }
  return true;
}

// False when the rows can't be read; `valid` is false then for a file that is no analysis.
bool clsPages::RunStatement(const PageStatement& statement, int number, ListView& list,
                            clsStatements& run, bool& valid) {
  Reading reading;
  reading.FirstRow = list.RowCount();
  reading.Number = static_cast<std::uint8_t>(number);
  reading.Icon = ImageIndex(statement.IconKey);
  reading.Source = statement.Source;
  reading.IsStats = statement.Source == page::Stats;
  std::unique_ptr<dao::Database> database;
  const bool opened = run(
      [&] { database = m_controls.Deletes.Workspace().OpenDatabase(m_shell.State.AnalysisPath); });
  const bool queried =
      opened && run([&] {
        try {
          reading.Rows = Need(database).OpenRecordset(statement.Sql, dao::RecordsetType::Dynaset);
        } catch (const clsError& error) {
          if (error.Number() != errnum::NoSuchTable) throw;
          valid = false;
        }
      });
  if (!queried || !valid) return false;
  if (list.Columns().empty()) {
    run([&] {
      for (const dao::Field& field : Need(reading.Rows).Fields()) list.AddColumn(field.Name, 0);
    });
    m_layout.GetColumnPositions(run);
  }
  return run([&] { CopyRows(reading, list); });
}

// Rows are many and their cells repeat: a cell like the one above it costs no search.
void clsPages::CopyRows(Reading& reading, ListView& list) {
  dao::Recordset& rows = Need(reading.Rows);
  list.RemoveRows([&](std::size_t row) { return row >= reading.FirstRow; });  // of a failed try
  if (rows.Bof() && rows.Eof()) return;
  struct Column {
    CellFormat Format;
    std::size_t Field;
    std::string Last;
    TextPool::Id LastId = TextPool::Empty;
  };
  std::vector<Column> columns;
  const std::vector<dao::Field>& fields = rows.Fields();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0 && fields[i].Name == fields[0].Name) continue;
    columns.push_back({CellFormat(fields[i].Name), i, {}});
  }
  std::vector<TextPool::Id> cells(columns.size());
  std::string cell;
  std::uint32_t number = 0;
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
    ++number;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      Column& column = columns[i];
      column.Format.Write(rows.Get(column.Field), cell);
      if (cell != column.Last) {
        column.LastId = list.Texts().Intern(cell);
        std::swap(column.Last, cell);
      }
      cells[i] = column.LastId;
    }
    const int icon =
        reading.IsStats ? ImageIndex(StatsIcon(list.Texts().Text(cells[0]))) : reading.Icon;
    list.AddRow({number, reading.Number}, cells, reading.Source, icon);
  }
}

void clsPages::TellInvalidDatabase() {
  const std::string path = m_shell.State.AnalysisPath;
  m_controls.SetCaption("Untitled - Sandrel");
  m_shell.Ask({path +
                   " is an invalid or corrupt Sandrel Database.\n\nTry the database repair utility "
                   "if you are certian this is valid Sandrel database. Otherwise, please select a "
                   "different database.",
               "Sandrel Error Message", Buttons::Ok, BoxIcon::Critical});
  if (OnInvalidDatabase) OnInvalidDatabase(path);
  m_shell.RestorePointer();
  m_shell.UpdateCommandState();
}

void clsPages::FillSharedPage(std::string_view hive, int source, const char* iconKey,
                              std::string_view kind) {
  ListView& list = m_controls.List(page::SharedPage);
  const ListView& from = m_controls.List(source);
  m_layout.SaveSharedColumnWidths();
  m_layout.SaveSharedColumnPositions();
  m_layout.SaveSharedSelection();
  list.Tag = std::string(kind) + " " + std::string(hive);
  clsStatements run(m_shell, "frmSandrel.FillSharedPage");
  list.BeginUpdate();
  try {
    list.ClearRows();
    list.ClearColumns();
    list.SetHideColumnHeaders(true);
    for (std::size_t i = 1; i < from.Columns().size(); ++i)
      list.AddColumn(from.Columns()[i].Text, 0);
    const TextPool::Id wanted = m_controls.Texts.Intern(hive);
    const int icon = ImageIndex(iconKey);
    std::size_t rows = 0;
    for (std::size_t row = 0; row < from.RowCount(); ++row)
      rows += from.TextId(row) == wanted ? 1 : 0;
    list.ReserveRows(rows, list.Columns().size());
    for (std::size_t row = 0; row < from.RowCount(); ++row) {
      if (from.TextId(row) != wanted) continue;
      list.AddRow(from.Key(row), from.Cells(row).subspan(1), from.RowTag(row), icon);
    }
    run([&] { m_layout.GetSortOrder(); });
    m_layout.GetSharedColumns(run);
    if (list.RowCount() > 0) list.SelectOnly(0);
    m_layout.NoteFirstSelected();
    m_layout.RestoreSharedSelection();
    list.SetHideColumnHeaders(false);
  } catch (...) {
    list.EndUpdate();
    throw;
  }
  list.EndUpdate();
  ShowOnly(page::SharedPage);
  m_layout.EnableResets(true);
  m_shell.UpdateCommandState();
}

std::string clsPages::FolderText(std::string_view path) {
  std::string folder;
  std::size_t component = 0;
  while (!path.empty()) {
    const std::size_t end = path.find('\\');
    const std::string_view part = path.substr(0, end);
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    if (component > 0) folder += '\\';
    std::size_t rest = 0;
    if (!part.empty()) text::Next(part, rest);
    folder += text::Upper(part.substr(0, rest));
    folder += component == 0 ? std::string(part.substr(rest)) : text::Lower(part.substr(rest));
    ++component;
  }
  return folder;
}

void clsPages::AddChildFolderRows(ListView& list, int source, const char* iconKey) {
  const Node* const selected = m_controls.treeView.SelectedItem();
  if (selected == nullptr) return;
  for (const auto& child : selected->Children()) {
    const TextPool::Id cells[] = {m_controls.Texts.Intern(child->Text())};
    list.AddRow(list.TextKey(child->Key()), cells, source, ImageIndex(iconKey));
  }
}

void clsPages::FillFilteredPage(std::string_view folder, std::string_view kind) {
  struct Kind {
    const char* Name;
    int Source;
    const char *FolderIcon, *FileIcon;
  };
  static constexpr Kind Kinds[] = {{"deleted", page::DeletedFiles, "deletedfolder", "deletedfile"},
                                   {"changed", page::ChangedFiles, "changedfolder", "changedfile"},
                                   {"new", page::NewFiles, "newfolder", "newfile"}};
  m_controls.PageTag() = "ShowFilteredPage";
  ListView& list = m_controls.List(page::FilteredPage);
  list.BeginUpdate();
  list.SetUnsorted();
  list.ClearColumns();
  list.ClearRows();
  const std::string lower = text::Lower(kind);
  for (const Kind& known : Kinds) {
    if (lower != known.Name) continue;
    list.Tag = std::string(kind) + " " + std::string(folder);
    list.SetHideColumnHeaders(false);
    const ListView& from = m_controls.List(known.Source);
    const std::size_t columns = from.Columns().size();
    for (std::size_t i = 1; i < columns; ++i) {
      list.AddColumn(from.Columns()[i].Text, clsColumnLayout::EvenWidth(list, columns - 1));
    }
    AddChildFolderRows(list, known.Source, known.FolderIcon);
    const std::string wanted = FolderText(folder);
    const int icon = ImageIndex(known.FileIcon);
    enum class Place : std::uint8_t { Unknown, Here, Elsewhere };
    std::vector<Place> places(m_controls.Texts.Count());
    for (std::size_t row = 0; row < from.RowCount(); ++row) {
      Place& place = places[from.TextId(row)];
      if (place == Place::Unknown) {
        place = FolderText(from.Text(row)) == wanted ? Place::Here : Place::Elsewhere;
      }
      if (place == Place::Elsewhere || from.Cell(row, 1).empty()) continue;
      list.AddRow(from.Key(row), from.Cells(row).subspan(1), from.RowTag(row), icon);
    }
  }
  if (list.RowCount() > 0) list.SelectOnly(0);
  list.EndUpdate();
  ShowOnly(page::FilteredPage);
  m_shell.UpdateCommandState();
}

void clsPages::UpdateStatCounts() {
  constexpr std::size_t CountRows = 9;
  ListView& list = m_controls.List(page::Stats);
  list.BeginUpdate();
  for (std::size_t row = 0; row < std::min(CountRows, list.RowCount()); ++row) {
    const int counted = std::max(0, CountedPage(list.Text(row)));
    if (m_unread.count(counted) != 0) continue;  // the stored count says more
    list.SetCell(row, 1, std::to_string(m_controls.List(counted).RowCount()));
  }
  list.EndUpdate();
}

int clsPages::CountSelected(bool includeFolders) const {
  const int index = CurrentListIndex();
  const ListView& list = m_controls.listView[static_cast<std::size_t>(index)];
  if (includeFolders || index != page::FilteredPage) {
    return static_cast<int>(std::min<std::size_t>(2, list.SelectedCount()));
  }
  int count = 0;
  for (std::size_t row = 0; row < list.RowCount() && count < 2; ++row) {
    if (list.Selected(row) && !list.Cell(row, 1).empty()) ++count;
  }
  return count;
}

void clsPages::listView_ColumnClick(int index, std::size_t column) {
  ListView& list = m_controls.List(index);
  m_shell.SetMousePointer(pointer::Hourglass);
  if (index == page::Stats) {
    list.SetSortKeys(column, !list.Descending());
  } else {
    list.Sort(column, !list.Descending());
  }
  m_layout.SaveSortOrder(column);
  m_shell.RestorePointer();
}

}  // namespace sandrel
