#include "platform/dao/Connection.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <utility>

namespace sandrel::dao {
namespace {

constexpr int BusyMilliseconds = 2000;

constexpr const char* Settings =
    "PRAGMA cache_size = -32768;"  // KiB
    "PRAGMA temp_store = FILE;"
    "PRAGMA synchronous = NORMAL;"
    "PRAGMA foreign_keys = OFF;";

// The engine's count of its memory costs a lock at every allocation, and nobody reads it. To be
// said before the engine's first use.
void Configure() {
  static const int configured = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
  static_cast<void>(configured);
}

std::string Doubled(std::string_view text, char quote) {
  std::string result(1, quote);
  for (const char c : text) {
    result.push_back(c);
    if (c == quote) result.push_back(c);
  }
  result.push_back(quote);
  return result;
}

}  // namespace

std::string QuoteName(std::string_view name) {
  return Doubled(name, '"');
}
std::string QuoteText(std::string_view text) {
  return Doubled(text, '\'');
}

Connection::Connection(const std::string& path, bool durable) : m_path(path) {
  Configure();
  // A relative name that begins with "file:" must not be taken for a URI with options.
  const std::string name = path.starts_with("file:") ? "./" + path : path;
  const int code = sqlite3_open_v2(name.c_str(), &m_handle,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  if (code != SQLITE_OK) {
    const std::string reason = m_handle != nullptr ? sqlite3_errmsg(m_handle) : "out of memory";
    sqlite3_close(m_handle);
    throw clsError(errnum::CannotOpen,
                   fmt::format("Couldn't open the database {}: {}.", path, reason));
  }
  sqlite3_extended_result_codes(m_handle, 1);
  sqlite3_busy_timeout(m_handle, BusyMilliseconds);
  // A double-quoted name that no column has is an error, never silently a text.
  sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  // These touch no page of the file, so that a file that is no database still opens.
  sqlite3_exec(m_handle, Settings, nullptr, nullptr, nullptr);
  if (!durable) sqlite3_exec(m_handle, "PRAGMA synchronous = OFF;", nullptr, nullptr, nullptr);
  struct stat status {};
  if (stat(path.c_str(), &status) == 0) m_file = {status.st_dev, status.st_ino};
  ++OpenFiles()[m_file];
}

Connection::~Connection() {
  sqlite3_close_v2(m_handle);
  const auto open = OpenFiles().find(m_file);
  if (--open->second == 0) OpenFiles().erase(open);
}

std::map<Connection::FileKey, int>& Connection::OpenFiles() {
  static std::map<FileKey, int> files;  // by device and inode, with the number of connections
  return files;
}

bool Connection::IsOpen(std::uint64_t device, std::uint64_t inode) {
  return OpenFiles().contains({device, inode});
}

void Connection::Run(const std::string& sql) {
  const int code = sqlite3_exec(m_handle, sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) throw ErrorOf(code);
}

clsError Connection::ErrorOf(int code, std::string_view about) {
  const std::string reason = sqlite3_errmsg(m_handle);
  const auto make = [&]() -> clsError {
    switch (code & 0xFF) {
      case SQLITE_CONSTRAINT:
        if (code == SQLITE_CONSTRAINT_NOTNULL) {
          return {errnum::FieldRequired, "A required field holds no value: " + reason + "."};
        }
        if (code == SQLITE_CONSTRAINT_CHECK) {
          return {errnum::ZeroLength, "A field can't be an empty text: " + reason + "."};
        }
        return {errnum::DuplicateKey,
                "The changes would make duplicate values in an index: " + reason + "."};
      case SQLITE_BUSY:
      case SQLITE_LOCKED:
        return {
            errnum::RecordLocked,
            fmt::format("Couldn't update {}; it is locked by another program. Close that program "
                        "or wait for it, and try again.",
                        m_path)};
      case SQLITE_FULL:
        return {errnum::OutOfDiskSpace,
                fmt::format("Not enough space on the disk for {}. Free some space and try again.",
                            m_path)};
      case SQLITE_READONLY:
        return {errnum::ReadOnly,
                fmt::format("Can't update {}: the file or its folder is read-only.", m_path)};
      case SQLITE_CANTOPEN:
        return {errnum::CannotOpen, fmt::format("Couldn't open {}: {}.", m_path, reason)};
      case SQLITE_NOTADB:
        return {errnum::NoSuchTable,
                fmt::format("{} is no database{}.", m_path,
                            about.empty() ? "" : fmt::format(", so it has no table '{}'", about))};
      case SQLITE_CORRUPT:
        return {errnum::CorruptDatabase,
                fmt::format("The database {} is damaged: {}. Put a good copy in its place, or make "
                            "it anew.",
                            m_path, reason)};
      case SQLITE_NOMEM:
        return {errnum::OutOfMemory, "Out of memory"};
      case SQLITE_ERROR:
        if (reason.starts_with("no such table")) {
          return {errnum::NoSuchTable,
                  fmt::format("The database {} has no such table or query: {}.", m_path, reason)};
        }
        if (reason.starts_with("no such column") || reason.starts_with("ambiguous column")) {
          return {errnum::TooFewParameters, "Too few parameters. Expected 1: " + reason + "."};
        }
        if (reason.ends_with("already exists")) return {errnum::TableExists, reason + "."};
        return {errnum::SyntaxError, "Syntax error in query expression: " + reason + "."};
      default:
        return {errnum::DiskError,
                fmt::format("Disk or network error with {}: {}.", m_path, reason)};
    }
  };
  clsError error = make();
  // A full disk or an I/O error makes SQLite roll back by itself. What the running command had
  // written is gone then; it must not go on as if it were there.
  if (m_inTransaction && sqlite3_get_autocommit(m_handle) != 0) error.SetRolledBack();
  return error;
}

void Connection::KeepChangesInMemory() {
  sqlite3_exec(m_handle, "PRAGMA cache_spill = OFF;", nullptr, nullptr, nullptr);
}

void Connection::Begin() {
  // Takes the write lock at once, with patience: a lock that grows in the middle of a transaction
  // can't wait for another program.
  Run(sqlite3_db_readonly(m_handle, "main") == 1 ? "BEGIN" : "BEGIN IMMEDIATE");
  m_inTransaction = true;
}

void Connection::Commit() {
  if (sqlite3_get_autocommit(m_handle) != 0) {
    m_inTransaction = false;
    clsError lost(errnum::NoTransaction,
                  fmt::format("What was written to {} was undone after an error.", m_path));
    lost.SetRolledBack();
    throw lost;
  }
  Run("COMMIT");
  m_inTransaction = false;
}

void Connection::Rollback() {
  if (sqlite3_get_autocommit(m_handle) == 0) Run("ROLLBACK");
  m_inTransaction = false;
}

Statement::Statement(std::shared_ptr<Connection> connection, const std::string& sql,
                     std::string about)
    : m_connection(std::move(connection)), m_about(std::move(about)) {
  const int code =
      sqlite3_prepare_v3(m_connection->Handle(), sql.c_str(), static_cast<int>(sql.size() + 1),
                         SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr);
  if (code != SQLITE_OK) throw m_connection->ErrorOf(code, m_about);
}

Statement::~Statement() {
  sqlite3_finalize(m_statement);
}

Statement::Statement(Statement&& other) noexcept
    : m_connection(std::move(other.m_connection)),
      m_statement(std::exchange(other.m_statement, nullptr)),
      m_about(std::move(other.m_about)) {}

Statement& Statement::operator=(Statement&& other) noexcept {
  if (this != &other) {
    sqlite3_finalize(m_statement);
    m_statement = std::exchange(other.m_statement, nullptr);
    m_connection = std::move(other.m_connection);
    m_about = std::move(other.m_about);
  }
  return *this;
}

void Statement::Bind(int index, const Value& value) {
  switch (value.Type()) {
    case Value::Kind::Null:
      sqlite3_bind_null(m_statement, index);
      break;
    case Value::Kind::Integer:
      sqlite3_bind_int64(m_statement, index, value.Integer());
      break;
    case Value::Kind::Real:
      sqlite3_bind_double(m_statement, index, value.Real());
      break;
    case Value::Kind::Text: {
      const std::string_view text = value.Text();
      const int code = sqlite3_bind_text64(m_statement, index, text.data() ? text.data() : "",
                                           text.size(), SQLITE_STATIC, SQLITE_UTF8);
      if (code != SQLITE_OK) {
        throw clsError(errnum::FieldTooLong, "The text is too large for the database.");
      }
      break;
    }
  }
}

bool Statement::Step() {
  const int code = sqlite3_step(m_statement);
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  const clsError error = m_connection->ErrorOf(code, m_about);
  sqlite3_reset(m_statement);
  throw error;
}

void Statement::Reset() {
  sqlite3_reset(m_statement);
}

void Statement::Execute() {
  Step();
  Reset();
}

void Statement::Column(int index, Value& value) const {
  switch (sqlite3_column_type(m_statement, index)) {
    case SQLITE_INTEGER:
      value.SetInteger(sqlite3_column_int64(m_statement, index));
      break;
    case SQLITE_FLOAT:
      value.SetReal(sqlite3_column_double(m_statement, index));
      break;
    case SQLITE_NULL:
      value.SetNull();
      break;
    default: {
      const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, index));
      const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_statement, index));
      value.SetText(bytes != nullptr ? std::string_view(bytes, size) : std::string_view());
    }
  }
}

std::string Statement::ColumnText(int index) const {
  Value value;
  Column(index, value);
  return value.ToText();
}

}  // namespace sandrel::dao
