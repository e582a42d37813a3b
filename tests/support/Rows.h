// Rows of a database as text, for comparisons in tests; read by the engine itself, past the
// program.
#pragma once

#include <sqlite3.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace sandrel::test {

using Lines = std::vector<std::string>;

/// One text a row, cells joined by "|", Null as "NULL". Fails on any error.
inline Lines Rows(const std::string& path, const std::string& sql) {
  sqlite3* database = nullptr;
  sqlite3_stmt* statement = nullptr;
  Lines rows;
  std::string failure;
  if (sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK ||
      sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    failure = sqlite3_errmsg(database);
  }
  while (failure.empty() && sqlite3_step(statement) == SQLITE_ROW) {
    std::string row;
    for (int i = 0; i < sqlite3_column_count(statement); ++i) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
      row += (i > 0 ? "|" : "") + std::string(text != nullptr ? text : "NULL");
    }
    rows.push_back(row);
  }
  sqlite3_finalize(statement);
  sqlite3_close(database);
  if (!failure.empty()) throw std::runtime_error(path + ": " + failure);
  return rows;
}

inline std::string Cell(const std::string& path, const std::string& sql) {
  const auto rows = Rows(path, sql);
  return rows.empty() ? "no row" : rows.front();
}

/// True when another program could write the file now.
inline bool IsFree(const std::string& path) {
  sqlite3* database = nullptr;
  const bool free =
      sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK &&
      sqlite3_exec(database, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) == SQLITE_OK;
  sqlite3_close(database);
  return free;
}

inline bool IsWhole(const std::string& path) {
  return Cell(path, "PRAGMA integrity_check") == "ok";
}

}  // namespace sandrel::test
