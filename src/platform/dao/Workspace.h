// The database engine: workspaces, which are transaction scopes, and the databases opened in them.
//
// Everything here belongs to one thread. A workspace lives as long as somebody holds it; a database
// connection lives as long as one of its Database or Recordset objects, and at least until an open
// transaction of its workspace ends. A transaction that is open when its workspace goes is undone.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/clsError.h"
#include "platform/dao/Recordset.h"
#include "platform/dao/TableDef.h"

namespace sandrel::dao {

class Connection;
class Statement;

/// Kinds of recordset, by the engine's numbers.
enum class RecordsetType : std::uint8_t { Table = 1, Dynaset = 2 };

class Database {
 public:
  Database(std::shared_ptr<Connection> connection);

  /// A table by its name (RecordsetType::Table), or the rows of a SELECT statement. Raises 3078
  /// when there is no such table or the file is no database, 3075 for a statement outside the
  /// dialect, 3061 for a name that no table of the statement has.
  std::unique_ptr<Recordset> OpenRecordset(std::string_view source, RecordsetType type) const;

  /// Carries out a DELETE statement; `RecordsAffected` then tells the number of rows it deleted.
  /// One that differs from the last in its texts alone is prepared already.
  void Execute(std::string_view sql);
  std::int64_t RecordsAffected() const { return m_recordsAffected; }

  /// Raises 3049 unless the file holds together: every page is what the one that names it says.
  void Check() const;

  dao::TableDefs TableDefs() const { return dao::TableDefs(m_connection); }

 private:
  std::shared_ptr<Connection> m_connection;
  std::shared_ptr<Statement> m_statement;  // the last one executed
  std::string m_statementSql;
  std::int64_t m_recordsAffected = 0;
};

/// Whether a commit waits until the disk has everything. One that doesn't wait outlives the
/// process, but not a failure of power: for a database that is worth nothing until it is finished.
enum class Durability : std::uint8_t { Full, UntilPowerFails };

/// Where a transaction keeps changes that outgrow its cache: in the file, which no other connection
/// can read from then on; or in more memory, as much as the pages that it changes.
enum class Overflow : std::uint8_t { ToFile, ToMemory };

class Workspace {
 public:
  explicit Workspace(std::string name, Durability durability = Durability::Full,
                     Overflow overflow = Overflow::ToFile)
      : m_name(std::move(name)), m_durability(durability), m_overflow(overflow) {}
  ~Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

  const std::string& Name() const { return m_name; }

  /// Makes an empty database file. Raises 3204 when something stands at `path`, 3044 when its
  /// folder doesn't exist, 3051 when it can't be written.
  void CreateDatabase(const std::string& path);

  /// Opens an existing database, shared. Raises 3024 when there is no file, 3051 when it can't be
  /// opened. A file that is no database opens; what is asked of it then fails with 3078.
  std::unique_ptr<Database> OpenDatabase(const std::string& path);

  /// One transaction over all databases of this workspace, also those opened while it runs.
  void BeginTrans();
  /// Raises 3034 when no transaction is open, or when the engine undid it after an error; the
  /// transaction stays open when the disk refuses (3026, 3043) or another program has the file
  /// (3218).
  void CommitTrans();
  void Rollback();
  bool InTransaction() const { return m_inTransaction; }

 private:
  using FileKey = std::pair<std::uint64_t, std::uint64_t>;  // device and inode
  std::vector<std::shared_ptr<Connection>> Open() const;

  std::string m_name;
  Durability m_durability;
  Overflow m_overflow;
  std::map<FileKey, std::weak_ptr<Connection>> m_connections;
  std::vector<std::shared_ptr<Connection>> m_inTransactionConnections;
  bool m_inTransaction = false;
};

/// Runs `body` in a transaction: all of it or, when it raises, nothing, so that it can be run
/// again. Inside an open transaction it is a part of that one.
template <class Body>
void InTransaction(Workspace& workspace, Body&& body) {
  if (workspace.InTransaction()) {
    body();
    return;
  }
  workspace.BeginTrans();
  try {
    body();
    workspace.CommitTrans();
  } catch (const clsError&) {
    if (workspace.InTransaction()) workspace.Rollback();
    throw;
  }
}

class DBEngine {
 public:
  /// The engine's name and version, "SQLite 3.40.1".
  static std::string Version();
  /// The first workspace, which always exists.
  static Workspace& FirstWorkspace();
  static std::shared_ptr<Workspace> CreateWorkspace(std::string name,
                                                    Durability durability = Durability::Full,
                                                    Overflow overflow = Overflow::ToFile);

  /// True while this process has the database file open, in any workspace. Such a file must not be
  /// opened past the engine: closing it again would drop the engine's locks.
  static bool IsOpen(std::uint64_t device, std::uint64_t inode);
  /// True when another program is about to write the file.
  static bool IsLocked(const std::string& path);
};

}  // namespace sandrel::dao
