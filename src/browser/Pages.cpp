#include "browser/Pages.h"

#include <array>
#include <utility>

#include "common/text.h"

namespace sandrel {
namespace {

constexpr std::array<const char*, page::Count> Names = {
    "ShowNewRegistry",     "ShowNewIniFiles",  "ShowNewFiles",        "ShowChangedRegistry",
    "ShowChangedIniFiles", "ShowChangedFiles", "ShowDeletedRegistry", "ShowDeletedIniFiles",
    "ShowDeletedFiles",    "ShowStats",        "ShowAllRegistry",     "ShowAllIniFiles",
    "ShowAllFiles",        "ShowSharedPage",   "ShowFilteredPage"};

// Statements of the pages of one table that don't depend on what was recorded.
const char* SingleStatement(int index) {
  switch (index) {
    case page::NewRegistry:
      return "SELECT tblHives.Name AS Hive, tblNewRegistryEnteries.Branch, "
             "tblNewRegistryEnteries.ValueName AS [Value Name], "
             "tblNewRegistryEnteries.Value, tblValueTypes.Name AS [Value Type] FROM "
             "(tblNewRegistryEnteries INNER JOIN tblHives ON tblNewRegistryEnteries.Hive "
             "= tblHives.Hive) INNER JOIN tblValueTypes ON "
             "tblNewRegistryEnteries.ValueType = tblValueTypes.ValueType;";
    case page::NewIniFiles:
      return "SELECT tblNewIniEnteries.PathName AS [Path Name], "
             "tblNewIniEnteries.FileName AS [File Name], tblNewIniEnteries.Section, "
             "tblNewIniEnteries.Parameter, tblNewIniEnteries.Value FROM "
             "tblNewIniEnteries;";
    case page::ChangedRegistry:
      return "SELECT tblHives.Name AS Hive, tblChangedRegistryEnteries.Branch, "
             "tblChangedRegistryEnteries.ValueName AS [Value Name], "
             "tblChangedRegistryEnteries.NewValue AS [New Value], "
             "tblChangedRegistryEnteries.OldValue AS [Old Value], tblValueTypes.Name AS "
             "[Value Type] FROM (tblHives INNER JOIN tblChangedRegistryEnteries ON "
             "tblHives.Hive = tblChangedRegistryEnteries.Hive) INNER JOIN tblValueTypes "
             "ON tblChangedRegistryEnteries.NewValueType = tblValueTypes.ValueType;";
    case page::ChangedIniFiles:
      return "SELECT tblChangedIniEnteries.PathName AS [Path Name], "
             "tblChangedIniEnteries.FileName AS [File Name], "
             "tblChangedIniEnteries.Section, tblChangedIniEnteries.Parameter, "
             "tblChangedIniEnteries.NewValue AS [New Value], "
             "tblChangedIniEnteries.OldValue AS [Old Value] FROM tblChangedIniEnteries;";
    case page::DeletedRegistry:
      return "SELECT tblHives.Name AS Hive, tblDeletedRegistryEnteries.Branch, "
             "tblDeletedRegistryEnteries.ValueName AS [Value Name], "
             "tblDeletedRegistryEnteries.Value, tblValueTypes.Name AS [Value Type] FROM "
             "(tblDeletedRegistryEnteries INNER JOIN tblHives ON "
             "tblDeletedRegistryEnteries.Hive = tblHives.Hive) INNER JOIN tblValueTypes "
             "ON tblDeletedRegistryEnteries.ValueType = tblValueTypes.ValueType;";
    case page::DeletedIniFiles:
      return "SELECT tblDeletedIniEnteries.PathName AS [Path Name], "
             "tblDeletedIniEnteries.FileName AS [File Name], "
             "tblDeletedIniEnteries.Section, tblDeletedIniEnteries.Parameter, "
             "tblDeletedIniEnteries.Value FROM tblDeletedIniEnteries;";
    case page::Stats:
      return "SELECT tblStats.Description, tblStats.Value FROM tblStats;";
    default:
      return "";
  }
}

// With one value column, so that the three statements of an "All" page have the same columns.
constexpr const char* AllChangedRegistry =
    "SELECT tblHives.Name AS Hive, tblChangedRegistryEnteries.Branch, "
    "tblChangedRegistryEnteries.ValueName AS [Value Name], "
    "tblChangedRegistryEnteries.NewValue AS [Value], tblValueTypes.Name AS [Value Type] "
    "FROM (tblChangedRegistryEnteries INNER JOIN tblHives ON "
    "tblChangedRegistryEnteries.Hive = tblHives.Hive) INNER JOIN tblValueTypes ON "
    "tblChangedRegistryEnteries.NewValueType = tblValueTypes.ValueType;";
constexpr const char* AllChangedIni =
    "SELECT tblChangedIniEnteries.PathName AS [Path Name], "
    "tblChangedIniEnteries.FileName AS [File Name], tblChangedIniEnteries.Section, "
    "tblChangedIniEnteries.Parameter, tblChangedIniEnteries.NewValue AS [Value] FROM "
    "tblChangedIniEnteries;";

// A statement over a table of files, in pieces.
struct FilePieces {
  const char *Head, *Version, *Size, *Attributes, *Tail;
};

constexpr FilePieces NewFilePieces = {
    "SELECT tblNewFiles.PathName AS [Path Name], tblNewFiles.FileName AS [File Name], "
    "tblNewFiles.Date",
    ", tblNewFiles.Version", ", tblNewFiles.Size", ", tblNewFiles.Attributes",
    " FROM tblNewFiles;"};
constexpr FilePieces ChangedFilePieces = {
    "SELECT tblChangedFiles.PathName AS [Path Name], tblChangedFiles.FileName AS [File "
    "Name], tblChangedFiles.NewDate AS [New Date], tblChangedFiles.OldDate AS [Old Date]",
    ", tblChangedFiles.NewVersion AS [New Version], tblChangedFiles.OldVersion AS [Old "
    "Version]",
    ", tblChangedFiles.NewSize AS [New Size], tblChangedFiles.OldSize AS [Old Size]",
    ", tblChangedFiles.NewAttributes AS [New Attributes], tblChangedFiles.OldAttributes "
    "AS [Old Attributes]",
    " FROM tblChangedFiles;"};
constexpr FilePieces DeletedFilePieces = {
    "SELECT tblDeletedFiles.PathName AS [Path Name], tblDeletedFiles.FileName AS [File "
    "Name], tblDeletedFiles.Date",
    ", tblDeletedFiles.Version", ", tblDeletedFiles.Size", ", tblDeletedFiles.Attributes",
    " FROM tblDeletedFiles;"};
constexpr FilePieces AllChangedFilePieces = {
    "SELECT tblChangedFiles.PathName AS [Path Name], tblChangedFiles.FileName AS [File Name], "
    "tblChangedFiles.NewDate AS [Date]",
    ", tblChangedFiles.NewVersion AS [Version]", ", tblChangedFiles.NewSize AS [Size]",
    ", tblChangedFiles.NewAttributes AS [Attributes]", " FROM tblChangedFiles;"};

const char* IconOf(int index) {
  static constexpr std::array<const char*, 10> Icons = {
      "newelement",  "newini",         "newfile",    "changedelement", "changedini",
      "changedfile", "deletedelement", "deletedini", "deletedfile",    "sandr"};
  return Icons[static_cast<std::size_t>(index)];
}

std::string Joined(const FilePieces& pieces, const StatReader& getStat) {
  const auto included = [&](const char* description) {
    return text::Lower(getStat(description)) == "yes";
  };
  std::string sql = pieces.Head;
  if (included("    Version Info Included")) sql += pieces.Version;
  if (included("    Size Info Included")) sql += pieces.Size;
  if (included("    Attribute Info Included")) sql += pieces.Attributes;
  return sql + pieces.Tail;
}

PageStatement Single(int index) {
  return {SingleStatement(index), IconOf(index), index};
}

PageStatement FileStatement(int index, const FilePieces& pieces, const StatReader& getStat) {
  return {Joined(pieces, getStat), IconOf(index), index};
}

}  // namespace

int PageIndex(std::string_view name) {
  for (std::size_t i = 0; i < Names.size(); ++i) {
    if (name == Names[i]) return static_cast<int>(i);
  }
  return 0;
}

std::string PageName(int index) {
  if (index == page::FilteredPage) return "ShowFilteredpage";
  return index >= 0 && index < page::Count ? Names[static_cast<std::size_t>(index)] : "";
}

std::vector<PageStatement> PageStatements(int index, const StatReader& getStat) {
  switch (index) {
    case page::NewFiles:
      return {FileStatement(index, NewFilePieces, getStat)};
    case page::ChangedFiles:
      return {FileStatement(index, ChangedFilePieces, getStat)};
    case page::DeletedFiles:
      return {FileStatement(index, DeletedFilePieces, getStat)};
    case page::AllRegistry:
      return {Single(page::NewRegistry),
              {AllChangedRegistry, IconOf(page::ChangedRegistry), page::ChangedRegistry},
              Single(page::DeletedRegistry)};
    case page::AllIniFiles:
      return {Single(page::NewIniFiles),
              {AllChangedIni, IconOf(page::ChangedIniFiles), page::ChangedIniFiles},
              Single(page::DeletedIniFiles)};
    case page::AllFiles:
      return {FileStatement(page::NewFiles, NewFilePieces, getStat),
              FileStatement(page::ChangedFiles, AllChangedFilePieces, getStat),
              FileStatement(page::DeletedFiles, DeletedFilePieces, getStat)};
    default:
      if (index < 0 || index > page::Stats) return {};
      return {Single(index)};
  }
}

int CountedPage(std::string_view description) {
  static constexpr std::pair<const char*, int> Rows[] = {
      {"registry - new", page::NewRegistry},
      {"registry - changed", page::ChangedRegistry},
      {"registry - deleted", page::DeletedRegistry},
      {"files - new", page::NewFiles},
      {"files - changed", page::ChangedFiles},
      {"files - deleted", page::DeletedFiles},
      {"ini entries - new", page::NewIniFiles},
      {"ini entries - changed", page::ChangedIniFiles},
      {"ini entries - deleted", page::DeletedIniFiles}};
  const std::string lower = text::Lower(description);
  for (const auto& [name, index] : Rows) {
    if (lower == name) return index;
  }
  return -1;
}

}  // namespace sandrel
