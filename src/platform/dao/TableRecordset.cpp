// A table with a cursor. The cursor is the current record's key, not an open statement: every move
// is one prepared statement that finds the neighbour of that key and is reset at once. So rows can
// be added and deleted while the cursor stands, and the recordset holds no lock between operations.

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>

#include "common/clsError.h"
#include "common/text.h"
#include "platform/dao/Connection.h"
#include "platform/dao/Recordset.h"
#include "platform/dao/TableDef.h"

namespace sandrel::dao {
namespace {

constexpr const char* RowId = "_rowid_";

class TableRecordset final : public Recordset {
 public:
  TableRecordset(std::shared_ptr<Connection> connection, std::string_view table);

  bool Bof() override { return AtEdge(Position::End) && IsEmpty(); }
  bool Eof() override { return AtEdge(Position::End); }
  void MoveFirst() override { Move(m_first, "SELECT {0} FROM {1} ORDER BY {2} LIMIT 1"); }
  void MoveLast() override { Move(m_last, "SELECT {0} FROM {1} ORDER BY {3} LIMIT 1"); }
  void MoveNext() override;
  std::int64_t RecordCount() override;

  void SetIndex(std::string_view name) override;
  void Seek(std::string_view comparison, std::initializer_list<Value> keys) override;
  void AddNew() override;
  void Edit() override;
  void Update() override;
  void CancelUpdate() override;
  void Delete() override;

 protected:
  void NeedRecord() override;

 private:
  enum class Position : std::uint8_t {
    Start,    // just opened: the first record, once somebody asks
    Record,   // m_record holds the current record
    Deleted,  // m_record holds the record that was deleted: moves go on from its key
    Nowhere,  // after a search without a match
    End       // behind the last record
  };

  void Move(Statement& statement, const char* form);
  void Take(Statement& statement);
  bool AtEdge(Position edge);
  bool IsEmpty();
  void CheckFields() const;
  void BindPending(Statement& statement) const;
  std::vector<std::size_t> OrderFields() const;
  bool OrdersByRowId() const;
  std::string Ordered(bool descending) const;
  std::string IdentityCondition() const;
  void BindIdentity(Statement& statement, int index) const;
  Statement Prepare(const std::string& sql) const { return {m_connection, sql, m_def.Name()}; }

  std::shared_ptr<Connection> m_connection;
  TableDef m_def;
  std::string m_table;                  // quoted
  std::string m_columns;                // quoted, joined
  std::string m_selected;               // the same, the row id first where rows have one
  std::vector<std::size_t> m_identity;  // fields of the clustered key; empty: rows have a row id
  int m_autoField = -1;
  std::optional<std::int64_t> m_nextId;

  std::vector<std::size_t> m_keys;  // fields of the index; empty: order of the row id
  bool m_uniqueKeys = true;

  Position m_position = Position::Start;
  std::int64_t m_rowId = 0;

  Statement m_first, m_last, m_next, m_insert, m_update, m_delete, m_any, m_count;
  std::map<std::pair<std::string, std::size_t>, Statement> m_seek;  // by comparison, number of keys
};

TableRecordset::TableRecordset(std::shared_ptr<Connection> connection, std::string_view table)
    : m_connection(std::move(connection)), m_def("") {
  if (!TableDefs(m_connection).Contains(table)) {
    throw clsError(errnum::NoSuchTable,
                   fmt::format("The database {} has no table '{}'.", m_connection->Path(), table));
  }
  m_def = TableDefs(m_connection).Item(table);
  m_table = QuoteName(m_def.Name());
  m_fields = m_def.Fields();
  m_record.resize(m_fields.size());
  m_pending.resize(m_fields.size());
  for (std::size_t i = 0; i < m_fields.size(); ++i) {
    m_columns += (i == 0 ? "" : ", ") + QuoteName(m_fields[i].Name);
    if (m_fields[i].IsAutoIncrement()) m_autoField = static_cast<int>(i);
  }
  if (const Index* key = m_def.ClusteredKey()) {
    for (const std::string& field : key->Fields) m_identity.push_back(FieldNumber(field));
  }
  m_selected = m_identity.empty() ? fmt::format("{}, {}", RowId, m_columns) : m_columns;
}

void TableRecordset::SetIndex(std::string_view name) {
  const auto& indexes = m_def.Indexes();
  const auto found = std::find_if(indexes.begin(), indexes.end(), [&](const Index& index) {
    return text::EqualNoCase(index.Name, name);
  });
  m_keys.clear();
  m_uniqueKeys = true;
  if (found != indexes.end()) {
    for (const std::string& field : found->Fields) m_keys.push_back(FieldNumber(field));
    m_uniqueKeys = found->Unique;
  } else if (m_autoField >= 0 &&
             (text::EqualNoCase(name, "PrimaryKey") ||
              text::EqualNoCase(name, m_fields[static_cast<std::size_t>(m_autoField)].Name))) {
    // An index on the auto-increment field alone is the row id itself.
    m_keys.push_back(static_cast<std::size_t>(m_autoField));
  } else {
    throw clsError(errnum::NoSuchItem,
                   fmt::format("'{}' isn't an index in the table '{}'.", name, m_def.Name()));
  }
  for (Statement* moved : {&m_first, &m_last, &m_next}) *moved = Statement();
  m_seek.clear();
  m_position = Position::Start;
}

// The fields by which the cursor moves: those of the index, then what tells its equals apart. The
// row id, which is no field, comes last where it is needed.
std::vector<std::size_t> TableRecordset::OrderFields() const {
  std::vector<std::size_t> fields = m_keys;
  if (m_keys.empty() || !m_uniqueKeys) {
    fields.insert(fields.end(), m_identity.begin(), m_identity.end());
  }
  return fields;
}

bool TableRecordset::OrdersByRowId() const {
  return m_identity.empty() && (m_keys.empty() || !m_uniqueKeys);
}

std::string TableRecordset::Ordered(bool descending) const {
  std::string order;
  const auto add = [&](const std::string& name) {
    order += (order.empty() ? "" : ", ") + name + (descending ? " DESC" : "");
  };
  for (const std::size_t field : OrderFields()) add(QuoteName(m_fields[field].Name));
  if (OrdersByRowId()) add(RowId);
  return order;
}

void TableRecordset::Move(Statement& statement, const char* form) {
  if (!statement) {
    statement = Prepare(
        fmt::format(fmt::runtime(form), m_selected, m_table, Ordered(false), Ordered(true)));
  }
  Take(statement);
  if (m_position != Position::Record) m_position = Position::End;
}

void TableRecordset::Take(Statement& statement) {
  m_mode = Pending::None;  // a record that waits for its Update is given up
  if (statement.Step()) {
    const int first = m_identity.empty() ? 1 : 0;
    if (first == 1) m_rowId = statement.ColumnInteger(0);
    for (std::size_t i = 0; i < m_record.size(); ++i) {
      statement.Column(static_cast<int>(i) + first, m_record[i]);
    }
    m_position = Position::Record;
  } else {
    m_position = Position::Nowhere;
  }
  statement.Reset();
}

void TableRecordset::MoveNext() {
  if (m_position == Position::Start) MoveFirst();
  if (m_position != Position::Record && m_position != Position::Deleted) {
    throw clsError(errnum::NoCurrentRecord, "No current record.");
  }
  const std::vector<std::size_t> fields = OrderFields();
  if (!m_next) {
    std::string names;
    std::string marks;
    const auto add = [&](const std::string& name) {
      names += names.empty() ? name : ", " + name;
      marks += marks.empty() ? "?" : ", ?";
    };
    for (const std::size_t field : fields) add(QuoteName(m_fields[field].Name));
    if (OrdersByRowId()) add(RowId);
    m_next = Prepare(fmt::format("SELECT {} FROM {} WHERE ({}) > ({}) ORDER BY {} LIMIT 1",
                                 m_selected, m_table, names, marks, Ordered(false)));
  }
  int bind = 0;
  for (const std::size_t field : fields) m_next.Bind(++bind, m_record[field]);
  if (OrdersByRowId()) m_next.Bind(++bind, m_rowId);
  Take(m_next);
  if (m_position != Position::Record) m_position = Position::End;
}

void TableRecordset::Seek(std::string_view comparison, std::initializer_list<Value> keys) {
  if (m_keys.empty())
    throw clsError(errnum::NoCurrentIndex, "Operation invalid without a current index.");
  if ((comparison != "=" && comparison != ">=") || keys.size() == 0 ||
      keys.size() > m_keys.size()) {
    throw clsError(errnum::InvalidArgument, "Invalid procedure call or argument");
  }
  Statement& seek = m_seek[{std::string(comparison), keys.size()}];
  if (!seek) {
    std::string condition;
    std::string names;
    std::string marks;
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const std::string name = QuoteName(m_fields[m_keys[i]].Name);
      condition += (i == 0 ? "" : " AND ") + name + " = ?";
      names += (i == 0 ? "" : ", ") + name;
      marks += i == 0 ? "?" : ", ?";
    }
    if (comparison == ">=") condition = fmt::format("({}) >= ({})", names, marks);
    seek = Prepare(fmt::format("SELECT {} FROM {} WHERE {} ORDER BY {} LIMIT 1", m_selected,
                               m_table, condition, Ordered(false)));
  }
  int bind = 0;
  for (const Value& key : keys) seek.Bind(++bind, key);
  Take(seek);
  m_noMatch = m_position != Position::Record;
}

bool TableRecordset::IsEmpty() {
  if (!m_any) m_any = Prepare(fmt::format("SELECT 1 FROM {} LIMIT 1", m_table));
  const bool empty = !m_any.Step();
  m_any.Reset();
  return empty;
}

bool TableRecordset::AtEdge(Position edge) {
  if (m_position == Position::Start) MoveFirst();
  if (m_position == Position::Record) return false;
  return m_position == edge || IsEmpty();
}

std::int64_t TableRecordset::RecordCount() {
  if (!m_count) m_count = Prepare(fmt::format("SELECT count(*) FROM {}", m_table));
  m_count.Step();
  const std::int64_t count = m_count.ColumnInteger(0);
  m_count.Reset();
  return count;
}

void TableRecordset::NeedRecord() {
  if (m_position == Position::Start) MoveFirst();
  if (m_position != Position::Record) throw clsError(errnum::NoCurrentRecord, "No current record.");
}

void TableRecordset::AddNew() {
  for (Value& value : m_pending) value.SetNull();
  m_mode = Pending::Add;
  if (m_autoField < 0) return;
  if (!m_nextId) {
    Statement last = Prepare(fmt::format("SELECT max({}) FROM {}", RowId, m_table));
    last.Step();
    m_nextId = last.ColumnInteger(0) + 1;
  }
  m_pending[static_cast<std::size_t>(m_autoField)].SetInteger((*m_nextId)++);
}

void TableRecordset::Edit() {
  NeedRecord();
  m_pending = m_record;
  m_mode = Pending::Edit;
}

void TableRecordset::CheckFields() const {
  for (std::size_t i = 0; i < m_fields.size(); ++i) {
    const Field& field = m_fields[i];
    if (m_pending[i].IsNull()) {
      if (field.Required) {
        throw clsError(
            errnum::FieldRequired,
            fmt::format("The field '{}.{}' can't contain a Null value because the Required "
                        "property for this field is set to True. Enter a value in this field.",
                        m_def.Name(), field.Name));
      }
    } else if (!field.AllowZeroLength && field.IsText() && m_pending[i].Text().empty()) {
      throw clsError(errnum::ZeroLength, fmt::format("Field '{}.{}' can't be a zero-length string.",
                                                     m_def.Name(), field.Name));
    }
  }
}

void TableRecordset::BindPending(Statement& statement) const {
  for (std::size_t i = 0; i < m_pending.size(); ++i) {
    statement.Bind(static_cast<int>(i) + 1, m_pending[i]);
  }
}

std::string TableRecordset::IdentityCondition() const {
  if (m_identity.empty()) return fmt::format("{} = ?", RowId);
  std::string condition;
  for (const std::size_t field : m_identity) {
    condition += (condition.empty() ? "" : " AND ") + QuoteName(m_fields[field].Name) + " = ?";
  }
  return condition;
}

void TableRecordset::BindIdentity(Statement& statement, int index) const {
  if (m_identity.empty()) {
    statement.Bind(index, m_rowId);
  } else {
    for (const std::size_t field : m_identity) statement.Bind(index++, m_record[field]);
  }
}

void TableRecordset::Update() {
  if (m_mode == Pending::None) {
    throw clsError(errnum::NoAddOrEdit, "Update or CancelUpdate without AddNew or Edit.");
  }
  CheckFields();
  if (m_mode == Pending::Add) {
    if (!m_insert) {
      std::string marks = "?";
      for (std::size_t i = 1; i < m_fields.size(); ++i) marks += ", ?";
      m_insert = Prepare(fmt::format("INSERT INTO {} ({}) VALUES ({})", m_table, m_columns, marks));
    }
    BindPending(m_insert);
    m_insert.Execute();
    if (m_autoField >= 0) {
      const std::int64_t used = m_pending[static_cast<std::size_t>(m_autoField)].Integer();
      m_nextId = std::max(*m_nextId, used + 1);
    }
  } else {
    if (!m_update) {
      std::string assignments;
      for (const Field& field : m_fields) {
        assignments += (assignments.empty() ? "" : ", ") + QuoteName(field.Name) + " = ?";
      }
      m_update = Prepare(
          fmt::format("UPDATE {} SET {} WHERE {}", m_table, assignments, IdentityCondition()));
    }
    BindPending(m_update);
    BindIdentity(m_update, static_cast<int>(m_pending.size()) + 1);
    m_update.Execute();
    std::swap(m_record, m_pending);
    if (m_autoField >= 0) m_rowId = m_record[static_cast<std::size_t>(m_autoField)].Integer();
  }
  m_mode = Pending::None;
}

void TableRecordset::CancelUpdate() {
  if (m_mode == Pending::None) {
    throw clsError(errnum::NoAddOrEdit, "Update or CancelUpdate without AddNew or Edit.");
  }
  m_mode = Pending::None;
}

void TableRecordset::Delete() {
  NeedRecord();
  if (!m_delete) {
    m_delete = Prepare(fmt::format("DELETE FROM {} WHERE {}", m_table, IdentityCondition()));
  }
  BindIdentity(m_delete, 1);
  m_delete.Execute();
  m_position = Position::Deleted;
}

}  // namespace

std::unique_ptr<Recordset> OpenTableRecordset(std::shared_ptr<Connection> connection,
                                              std::string_view table) {
  return std::make_unique<TableRecordset>(std::move(connection), table);
}

}  // namespace sandrel::dao
