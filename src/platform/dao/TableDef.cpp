#include "platform/dao/TableDef.h"

#include <fmt/format.h>

#include <cctype>

#include "common/text.h"
#include "platform/dao/Connection.h"

namespace sandrel::dao {
namespace {

constexpr const char* PrimaryKey = "PrimaryKey";

std::string IndexName(std::string_view table, std::string_view index) {
  return fmt::format("{}.{}", table, index);
}

std::string EmptyCheck(std::string_view field) {
  return fmt::format("CHECK({} <> '')", QuoteName(field));
}

std::string TypeWord(const Field& field) {
  switch (field.Type) {
    case FieldType::Boolean:
      return "BOOLEAN";
    case FieldType::Integer:
      return "SMALLINT";
    case FieldType::Long:
      return "INTEGER";
    case FieldType::Double:
      return "DOUBLE";
    case FieldType::Date:
      return "DATETIME";
    case FieldType::Text:
      return fmt::format("TEXT({})", field.Size);
    case FieldType::Memo:
      break;
  }
  return "TEXT";
}

std::string ColumnSql(const Field& field) {
  std::string sql = QuoteName(field.Name) + " " + TypeWord(field);
  if (field.IsAutoIncrement()) return sql + " PRIMARY KEY NOT NULL";
  if (field.Required) sql += " NOT NULL";
  if (field.IsText()) {
    sql += " COLLATE NOCASE";
    if (!field.AllowZeroLength) sql += " " + EmptyCheck(field.Name);
  }
  return sql;
}

std::string ColumnsSql(const TableDef& table) {
  std::string columns;
  for (const Field& field : table.Fields()) {
    columns += (columns.empty() ? "" : ", ") + ColumnSql(field);
  }
  return columns;
}

std::string NamesSql(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + QuoteName(name);
  return list;
}

// The type of a column that this or a foreign program declared.
void ReadType(std::string_view declared, Field& field) {
  const std::string type = text::FoldAscii(declared);
  const auto has = [&](const char* word) { return type.find(word) != std::string::npos; };
  if (has("bool") || type == "bit" || type == "yesno") {
    field.Type = FieldType::Boolean;
  } else if (has("smallint") || type == "short") {
    field.Type = FieldType::Integer;
  } else if (has("int") || type == "long") {
    field.Type = FieldType::Long;
  } else if (has("date") || has("time")) {
    field.Type = FieldType::Date;
  } else if (has("real") || has("doub") || has("floa")) {
    field.Type = FieldType::Double;
  } else {
    const std::size_t open = type.find('(');
    field.Size = open == std::string::npos ? 0 : static_cast<int>(text::Val(type.substr(open + 1)));
    field.Type = field.Size > 0 ? FieldType::Text : FieldType::Memo;
  }
}

}  // namespace

TableDefs::TableDefs(std::shared_ptr<Connection> connection)
    : m_connection(std::move(connection)) {}

std::vector<std::string> TableDefs::Names() const {
  Statement list(
      m_connection,
      "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite@_%' "
      "ESCAPE '@' ORDER BY rowid");
  std::vector<std::string> names;
  while (list.Step()) names.push_back(list.ColumnText(0));
  return names;
}

bool TableDefs::Contains(std::string_view name) const {
  Statement find(m_connection,
                 "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ? COLLATE NOCASE",
                 std::string(name));
  const Value key(name);
  find.Bind(1, key);
  return find.Step();
}

TableDef TableDefs::Item(std::string_view name) const {
  const Value key(name);
  Statement find(m_connection,
                 "SELECT name, sql FROM sqlite_master WHERE type = 'table' AND name = ? COLLATE "
                 "NOCASE",
                 std::string(name));
  find.Bind(1, key);
  if (!find.Step()) {
    throw clsError(errnum::NoSuchItem,
                   fmt::format("Item not found in this collection: the table '{}'.", name));
  }
  TableDef table(find.ColumnText(0));
  const std::string sql = find.ColumnText(1);
  find.Reset();

  Statement withoutRowId(m_connection, "SELECT wr FROM pragma_table_list(?) WHERE schema = 'main'");
  withoutRowId.Bind(1, key);
  const bool clustered = withoutRowId.Step() && withoutRowId.ColumnInteger(0) != 0;
  withoutRowId.Reset();

  Statement columns(m_connection, "SELECT name, type, \"notnull\", pk FROM pragma_table_info(?)");
  columns.Bind(1, key);
  while (columns.Step()) {
    Field field;
    field.Name = columns.ColumnText(0);
    ReadType(columns.ColumnText(1), field);
    field.Required = columns.ColumnInteger(2) != 0;
    field.AllowZeroLength = sql.find(EmptyCheck(field.Name)) == std::string::npos;
    if (!clustered && columns.ColumnInteger(3) == 1 &&
        text::EqualNoCase(columns.ColumnText(1), "INTEGER")) {
      field.Attributes = AutoIncrement;
      field.Required = true;
    }
    table.m_fields.push_back(std::move(field));
  }

  Statement indexes(
      m_connection,
      "SELECT l.name, l.\"unique\", i.name, l.origin = 'pk' FROM pragma_index_list(?) l, "
      "pragma_index_info(l.name) i ORDER BY l.seq, i.seqno");
  indexes.Bind(1, key);
  const std::string prefix = IndexName(table.m_name, "");
  while (indexes.Step()) {
    std::string index = indexes.ColumnText(0);
    // A key that is part of the table's own definition has a name of the engine's making.
    const bool ofTable = indexes.ColumnInteger(3) != 0;
    if (ofTable) index = PrimaryKey;
    if (text::StartsWithNoCase(index, prefix)) index.erase(0, prefix.size());
    if (table.m_indexes.empty() || table.m_indexes.back().Name != index) {
      table.m_indexes.push_back({index,
                                 {},
                                 text::EqualNoCase(index, PrimaryKey),
                                 indexes.ColumnInteger(1) != 0,
                                 ofTable && clustered});
    }
    table.m_indexes.back().Fields.push_back(indexes.ColumnText(2));
  }
  return table;
}

const Index* TableDef::ClusteredKey() const {
  for (const Index& index : m_indexes) {
    if (index.Clustered) return &index;
  }
  return nullptr;
}

void TableDefs::Append(const TableDef& table) {
  if (Contains(table.Name())) {
    throw clsError(errnum::TableExists, fmt::format("Table '{}' already exists.", table.Name()));
  }
  m_connection->Run(
      fmt::format("CREATE TABLE {} ({})", QuoteName(table.Name()), ColumnsSql(table)));
}

void TableDefs::Cluster(const TableDef& table, const Index& key) {
  Statement any(m_connection, fmt::format("SELECT 1 FROM {} LIMIT 1", QuoteName(table.Name())));
  if (any.Step()) {
    throw clsError(
        errnum::InvalidOperation,
        fmt::format("The table '{}' has rows; it can't be stored by another key.", table.Name()));
  }
  any = Statement();
  m_connection->Run("DROP TABLE " + QuoteName(table.Name()));
  m_connection->Run(fmt::format("CREATE TABLE {} ({}, PRIMARY KEY ({})) WITHOUT ROWID",
                                QuoteName(table.Name()), ColumnsSql(table), NamesSql(key.Fields)));
}

void TableDefs::AppendIndex(std::string_view table, const Index& index) {
  if (!Contains(table)) {
    throw clsError(errnum::NoSuchTable, fmt::format("There is no table '{}' to index.", table));
  }
  const TableDef definition = Item(table);
  for (const Field& field : definition.Fields()) {
    if (!field.IsAutoIncrement()) continue;
    if (index.Fields.size() == 1 && text::EqualNoCase(field.Name, index.Fields.front())) return;
    if (index.Clustered) {
      throw clsError(
          errnum::InvalidOperation,
          fmt::format("The table '{}' is stored by its field '{}' already.", table, field.Name));
    }
  }
  if (index.Clustered) {
    Cluster(definition, index);
    return;
  }
  m_connection->Run(fmt::format(
      "CREATE {}INDEX {} ON {} ({})", index.Primary || index.Unique ? "UNIQUE " : "",
      QuoteName(IndexName(table, index.Name)), QuoteName(table), NamesSql(index.Fields)));
}

void TableDefs::Delete(std::string_view name) {
  const TableDef table = Item(name);
  m_connection->Run("DROP TABLE " + QuoteName(table.Name()));
}

void TableDefs::Rename(std::string_view name, std::string_view newName) {
  const TableDef table = Item(name);
  if (!text::EqualNoCase(name, newName) && Contains(newName)) {
    throw clsError(errnum::TableExists, fmt::format("Table '{}' already exists.", newName));
  }
  // A clustered key is part of the table and goes along by itself.
  for (const Index& index : table.Indexes()) {
    if (index.Clustered) continue;
    m_connection->Run("DROP INDEX " + QuoteName(IndexName(table.Name(), index.Name)));
  }
  m_connection->Run(
      fmt::format("ALTER TABLE {} RENAME TO {}", QuoteName(table.Name()), QuoteName(newName)));
  for (const Index& index : table.Indexes()) {
    if (!index.Clustered) AppendIndex(newName, index);
  }
}

}  // namespace sandrel::dao
