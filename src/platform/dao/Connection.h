// One SQLite connection and its prepared statements. Internal to platform/dao: nothing outside the
// folder includes it.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "common/clsError.h"
#include "platform/dao/Value.h"

namespace sandrel::dao {

class Connection {
 public:
  /// Opens the existing file at `path` for reading and writing, or for reading alone where it can't
  /// be written. Raises 3051 when that fails. A file that is no database opens; its first statement
  /// fails.
  /// Unless it is `durable`, a commit doesn't wait for the disk: it outlives the process, but not a
  /// failure of power.
  explicit Connection(const std::string& path, bool durable = true);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  sqlite3* Handle() const { return m_handle; }
  const std::string& Path() const { return m_path; }

  /// Runs statements that give no rows.
  void Run(const std::string& sql);

  /// The engine's error for a result code; the description names `about` where there is one.
  clsError ErrorOf(int code, std::string_view about = {});

  /// Nothing of a transaction is written to the file before its commit, however large it grows.
  void KeepChangesInMemory();

  void Begin();
  void Commit();
  void Rollback();
  bool InTransaction() const { return m_inTransaction; }

  static bool IsOpen(std::uint64_t device, std::uint64_t inode);

 private:
  using FileKey = std::pair<std::uint64_t, std::uint64_t>;  // device and inode
  static std::map<FileKey, int>& OpenFiles();

  FileKey m_file;
  std::string m_path;
  sqlite3* m_handle = nullptr;
  bool m_inTransaction = false;
};

/// A prepared statement. Binding indexes count from 1, columns from 0.
class Statement {
 public:
  Statement() = default;
  Statement(std::shared_ptr<Connection> connection, const std::string& sql, std::string about = {});
  ~Statement();
  Statement(Statement&& other) noexcept;
  Statement& operator=(Statement&& other) noexcept;

  explicit operator bool() const { return m_statement != nullptr; }
  sqlite3_stmt* Handle() const { return m_statement; }

  /// The value must stay unchanged until the statement is reset.
  void Bind(int index, const Value& value);
  void Bind(int index, std::int64_t number) { sqlite3_bind_int64(m_statement, index, number); }

  /// True when a row stands ready; false at the end. Raises the engine's error.
  bool Step();
  void Reset();
  /// One step and a reset, for statements that give no rows.
  void Execute();

  void Column(int index, Value& value) const;
  std::int64_t ColumnInteger(int index) const { return sqlite3_column_int64(m_statement, index); }
  std::string ColumnText(int index) const;
  int ColumnCount() const { return sqlite3_column_count(m_statement); }

 private:
  std::shared_ptr<Connection> m_connection;
  sqlite3_stmt* m_statement = nullptr;
  std::string m_about;
};

/// An identifier or a text in SQL, quoted.
std::string QuoteName(std::string_view name);
std::string QuoteText(std::string_view text);

}  // namespace sandrel::dao
