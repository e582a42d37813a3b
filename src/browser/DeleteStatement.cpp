#include "browser/DeleteStatement.h"

#include <array>
#include <string_view>

#include "browser/Pages.h"

namespace sandrel {
namespace {

// By page. The row's cells stand between the pieces, in their order.
constexpr std::array<std::array<std::string_view, 6>, page::Stats + 1> Pieces = {{
    // NewRegistry
    {"DELETE tblNewRegistryEnteries.*, tblHives.Name, tblNewRegistryEnteries.Branch, "
     "tblNewRegistryEnteries.ValueName FROM tblNewRegistryEnteries INNER JOIN tblHives "
     "ON tblNewRegistryEnteries.Hive = tblHives.Hive WHERE (((tblHives.Name)=",
     ") AND ((tblNewRegistryEnteries.Branch)=", ") AND ((tblNewRegistryEnteries.ValueName)=",
     "));"},
    // NewIniFiles
    {"DELETE tblNewIniEnteries.*, tblNewIniEnteries.PathName, "
     "tblNewIniEnteries.FileName, tblNewIniEnteries.Section, "
     "tblNewIniEnteries.Parameter, tblNewIniEnteries.Value From tblNewIniEnteries WHERE "
     "(((tblNewIniEnteries.PathName)=",
     ") AND ((tblNewIniEnteries.FileName)=", ") AND ((tblNewIniEnteries.Section)=",
     ") AND ((tblNewIniEnteries.Parameter)=", ") AND ((tblNewIniEnteries.Value)=", "));"},
    // NewFiles
    {"DELETE tblNewFiles.*, tblNewFiles.PathName, tblNewFiles.FileName From tblNewFiles "
     "WHERE (((tblNewFiles.PathName)=",
     ") AND ((tblNewFiles.FileName)=", "));"},
    // ChangedRegistry
    {"DELETE tblChangedRegistryEnteries.*, tblHives.Name, "
     "tblChangedRegistryEnteries.Branch, tblChangedRegistryEnteries.ValueName FROM "
     "tblChangedRegistryEnteries INNER JOIN tblHives ON tblChangedRegistryEnteries.Hive "
     "= tblHives.Hive WHERE (((tblHives.Name)=",
     ") AND ((tblChangedRegistryEnteries.Branch)=",
     ") AND ((tblChangedRegistryEnteries.ValueName)=", "));"},
    // ChangedIniFiles
    {"DELETE tblChangedIniEnteries.*, tblChangedIniEnteries.PathName, "
     "tblChangedIniEnteries.FileName, tblChangedIniEnteries.Section, "
     "tblChangedIniEnteries.Parameter, tblChangedIniEnteries.Value From "
     "tblChangedIniEnteries WHERE (((tblChangedIniEnteries.PathName)=",
     ") AND ((tblChangedIniEnteries.FileName)=", ") AND ((tblChangedIniEnteries.Section)=",
     ") AND ((tblChangedIniEnteries.Parameter)=", ") AND ((tblChangedIniEnteries.NewValue)=",
     "));"},
    // ChangedFiles
    {"DELETE tblChangedFiles.*, tblChangedFiles.PathName, tblChangedFiles.FileName From "
     "tblChangedFiles WHERE (((tblChangedFiles.PathName)=",
     ") AND ((tblChangedFiles.FileName)=", "));"},
    // DeletedRegistry
    {"DELETE tblDeletedRegistryEnteries.*, tblHives.Name, "
     "tblDeletedRegistryEnteries.Branch, tblDeletedRegistryEnteries.ValueName FROM "
     "tblDeletedRegistryEnteries INNER JOIN tblHives ON tblDeletedRegistryEnteries.Hive "
     "= tblHives.Hive WHERE (((tblHives.Name)=",
     ") AND ((tblDeletedRegistryEnteries.Branch)=",
     ") AND ((tblDeletedRegistryEnteries.ValueName)=", "));"},
    // DeletedIniFiles
    {"DELETE tblDeletedIniEnteries.*, tblDeletedIniEnteries.PathName, "
     "tblDeletedIniEnteries.FileName, tblDeletedIniEnteries.Section, "
     "tblDeletedIniEnteries.Parameter, tblDeletedIniEnteries.Value From "
     "tblDeletedIniEnteries WHERE (((tblDeletedIniEnteries.PathName)=",
     ") AND ((tblDeletedIniEnteries.FileName)=", ") AND ((tblDeletedIniEnteries.Section)=",
     ") AND ((tblDeletedIniEnteries.Parameter)=", ") AND ((tblDeletedIniEnteries.Value)=", "));"},
    // DeletedFiles
    {"DELETE tblDeletedFiles.*, tblDeletedFiles.PathName, tblDeletedFiles.FileName From "
     "tblDeletedFiles WHERE (((tblDeletedFiles.PathName)=",
     ") AND ((tblDeletedFiles.FileName)=", "));"},
    // Stats
    {"DELETE tblStats.*, tblStats.Description From tblStats WHERE "
     "(((tblStats.Description)=",
     "));"},
}};

constexpr char Quote = '"';

void AppendCell(std::string& sql, std::string_view cell) {
  for (const char c : cell) {
    sql += c;
    if (c == Quote) sql += c;
  }
}

}  // namespace

std::string DeleteStatement(const ListView& list, std::size_t row) {
  std::string sql;
  std::size_t cell = 0;
  for (const std::string_view piece : Pieces[static_cast<std::size_t>(list.RowTag(row))]) {
    if (piece.empty()) break;
    if (!sql.empty()) {
      sql += Quote;
      AppendCell(sql, list.Cell(row, cell));
      sql += Quote;
      ++cell;
    }
    sql += piece;
  }
  return sql;
}

}  // namespace sandrel
