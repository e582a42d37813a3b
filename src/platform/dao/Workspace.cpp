#include "platform/dao/Workspace.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "platform/dao/Connection.h"
#include "platform/dao/Dialect.h"

namespace sandrel::dao {
namespace {

// Marks the files as Sandrel's for tools that look at a database header ("SNDR").
constexpr std::uint32_t ApplicationId = 0x534E4452;

// Bytes. Long registry values fit a page of this size, and the trees are flat.
constexpr int PageSize = 16384;

constexpr const char* JournalSuffix = "-journal";

}  // namespace

Database::Database(std::shared_ptr<Connection> connection) : m_connection(std::move(connection)) {}

std::unique_ptr<Recordset> Database::OpenRecordset(std::string_view source,
                                                   RecordsetType type) const {
  if (type == RecordsetType::Table) return OpenTableRecordset(m_connection, source);
  return OpenDynaset(m_connection, TranslateSelect(source));
}

void Database::Execute(std::string_view sql) {
  m_recordsAffected = 0;
  const Deletion deletion = TranslateDelete(sql);
  if (m_statement == nullptr || m_statementSql != deletion.Sql) {
    m_statement = std::make_shared<Statement>(m_connection, deletion.Sql);
    m_statementSql = deletion.Sql;
  }
  const std::vector<Value> texts(deletion.Texts.begin(), deletion.Texts.end());
  int parameter = 0;
  for (const Value& text : texts) m_statement->Bind(++parameter, text);
  m_statement->Execute();
  m_recordsAffected = sqlite3_changes64(m_connection->Handle());
}

void Database::Check() const {
  Statement check(m_connection, "PRAGMA quick_check(1)");
  Value finding;
  if (check.Step()) check.Column(0, finding);
  if (finding.ToText() == "ok") return;
  throw clsError(errnum::CorruptDatabase,
                 fmt::format("The database is damaged: {}.", finding.ToText()));
}

Workspace::~Workspace() {
  for (const auto& connection : m_inTransactionConnections) {
    try {
      connection->Rollback();
    } catch (const clsError&) {  // NOLINT(bugprone-empty-catch)
      // The connection closes next, which undoes the transaction as well.
    }
  }
}

void Workspace::CreateDatabase(const std::string& path) {
  struct stat status {};
  const bool isEmpty = stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
                       status.st_size == 0;  // one that somebody has made room for
  const int file = isEmpty ? open(path.c_str(), O_RDWR | O_CLOEXEC)
                           : open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (file < 0) {
    const std::string reason = std::generic_category().message(errno);
    if (errno == EEXIST) {
      throw clsError(errnum::DatabaseExists, fmt::format("Database '{}' already exists.", path));
    }
    if (errno == ENOENT || errno == ENOTDIR) {
      throw clsError(errnum::InvalidPath,
                     fmt::format("'{}' isn't a valid path: {}. Make sure that the folder exists.",
                                 path, reason));
    }
    throw clsError(errnum::CannotOpen,
                   fmt::format("Couldn't make the database {}: {}.", path, reason));
  }
  close(file);
  // A journal that a killed run left behind belongs to a file that is gone.
  clsFileWorks::DeleteFile(path + JournalSuffix);
  Connection connection(path);
  connection.Run(
      fmt::format("PRAGMA page_size = {}; PRAGMA application_id = {};", PageSize, ApplicationId));
}

std::unique_ptr<Database> Workspace::OpenDatabase(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    const bool isLink = lstat(path.c_str(), &status) == 0;
    throw clsError(errnum::DatabaseNotFound,
                   fmt::format("Couldn't find file '{}'.{}", path,
                               isLink ? " A link of that name leads to a file that isn't there: "
                                        "bring that file back, or delete the link."
                                      : ""));
  }
  if (S_ISDIR(status.st_mode)) {
    throw clsError(errnum::CannotOpen,
                   fmt::format("Couldn't open '{}': it is a folder. Choose a file.", path));
  }
  if (!S_ISREG(status.st_mode)) {
    throw clsError(errnum::CannotOpen,
                   fmt::format("Couldn't open '{}': it is no regular file.", path));
  }
  const FileKey key{status.st_dev, status.st_ino};
  std::shared_ptr<Connection> connection = m_connections[key].lock();
  if (connection == nullptr) {
    connection = std::make_shared<Connection>(path, m_durability == Durability::Full);
    if (m_overflow == Overflow::ToMemory) connection->KeepChangesInMemory();
    if (m_inTransaction) {
      connection->Begin();
      m_inTransactionConnections.push_back(connection);
    }
    m_connections[key] = connection;
  }
  return std::make_unique<Database>(std::move(connection));
}

std::vector<std::shared_ptr<Connection>> Workspace::Open() const {
  std::vector<std::shared_ptr<Connection>> open;
  for (const auto& [key, weak] : m_connections) {
    if (auto connection = weak.lock()) open.push_back(std::move(connection));
  }
  return open;
}

void Workspace::BeginTrans() {
  if (m_inTransaction) {
    throw clsError(errnum::InvalidOperation, "A transaction is open already in this workspace.");
  }
  auto connections = Open();
  for (const auto& connection : connections) connection->Begin();
  m_inTransactionConnections = std::move(connections);
  m_inTransaction = true;
}

void Workspace::CommitTrans() {
  if (!m_inTransaction) {
    throw clsError(errnum::NoTransaction, "You tried to commit or undo a transaction without one.");
  }
  while (!m_inTransactionConnections.empty()) {
    try {
      m_inTransactionConnections.back()->Commit();
    } catch (const clsError& error) {
      if (error.RolledBack()) Rollback();
      throw;
    }
    m_inTransactionConnections.pop_back();
  }
  m_inTransaction = false;
}

void Workspace::Rollback() {
  if (!m_inTransaction) {
    throw clsError(errnum::NoTransaction, "You tried to commit or undo a transaction without one.");
  }
  const auto connections = std::move(m_inTransactionConnections);
  m_inTransactionConnections.clear();
  m_inTransaction = false;
  for (const auto& connection : connections) connection->Rollback();
}

std::string DBEngine::Version() {
  return std::string("SQLite ") + sqlite3_libversion();
}

bool DBEngine::IsOpen(std::uint64_t device, std::uint64_t inode) {
  return Connection::IsOpen(device, inode);
}

bool DBEngine::IsLocked(const std::string& path) {
  try {
    Workspace own("Lock");
    const auto database = own.OpenDatabase(path);
    own.BeginTrans();
    own.Rollback();
    return false;
  } catch (const clsError& error) {
    return error.Number() == errnum::RecordLocked;
  }
}

Workspace& DBEngine::FirstWorkspace() {
  static Workspace first("#Default Workspace#");
  return first;
}

std::shared_ptr<Workspace> DBEngine::CreateWorkspace(std::string name, Durability durability,
                                                     Overflow overflow) {
  return std::make_shared<Workspace>(std::move(name), durability, overflow);
}

}  // namespace sandrel::dao
