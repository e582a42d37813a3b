#include "platform/dao/TableDef.h"

#include <fmt/format.h>

#include <cctype>

#include "common/text.h"
#include "platform/dao/Connection.h"

namespace sandrel::dao {
namespace {

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

  Statement columns(m_connection, "SELECT name, type, \"notnull\", pk FROM pragma_table_info(?)");
  columns.Bind(1, key);
  while (columns.Step()) {
    Field field;
    field.Name = columns.ColumnText(0);
    ReadType(columns.ColumnText(1), field);
    field.Required = columns.ColumnInteger(2) != 0;
    field.AllowZeroLength = sql.find(EmptyCheck(field.Name)) == std::string::npos;
    if (columns.ColumnInteger(3) == 1 && text::EqualNoCase(columns.ColumnText(1), "INTEGER")) {
      field.Attributes = AutoIncrement;
      field.Required = true;
    }
    table.m_fields.push_back(std::move(field));
  }

  Statement indexes(m_connection,
                    "SELECT l.name, l.\"unique\", i.name FROM pragma_index_list(?) l, "
                    "pragma_index_info(l.name) i ORDER BY l.seq, i.seqno");
  indexes.Bind(1, key);
  const std::string prefix = IndexName(table.m_name, "");
  while (indexes.Step()) {
    std::string index = indexes.ColumnText(0);
    if (text::StartsWithNoCase(index, prefix)) index.erase(0, prefix.size());
    if (table.m_indexes.empty() || table.m_indexes.back().Name != index) {
      const bool primary = text::EqualNoCase(index, "PrimaryKey");
      table.m_indexes.push_back({index, {}, primary, indexes.ColumnInteger(1) != 0});
    }
    table.m_indexes.back().Fields.push_back(indexes.ColumnText(2));
  }
  return table;
}

void TableDefs::Append(const TableDef& table) {
  if (Contains(table.Name())) {
    throw clsError(errnum::TableExists, fmt::format("Table '{}' already exists.", table.Name()));
  }
  std::string columns;
  for (const Field& field : table.Fields()) {
    if (!columns.empty()) columns += ", ";
    columns += ColumnSql(field);
  }
  m_connection->Run(fmt::format("CREATE TABLE {} ({})", QuoteName(table.Name()), columns));
}

void TableDefs::AppendIndex(std::string_view table, const Index& index) {
  if (!Contains(table)) {
    throw clsError(errnum::NoSuchTable, fmt::format("There is no table '{}' to index.", table));
  }
  if (index.Fields.size() == 1) {
    const TableDef definition = Item(table);
    for (const Field& field : definition.Fields()) {
      if (field.IsAutoIncrement() && text::EqualNoCase(field.Name, index.Fields.front())) return;
    }
  }
  std::string columns;
  for (const std::string& field : index.Fields) {
    if (!columns.empty()) columns += ", ";
    columns += QuoteName(field);
  }
  m_connection->Run(
      fmt::format("CREATE {}INDEX {} ON {} ({})", index.Primary || index.Unique ? "UNIQUE " : "",
                  QuoteName(IndexName(table, index.Name)), QuoteName(table), columns));
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
  for (const Index& index : table.Indexes()) {
    m_connection->Run("DROP INDEX " + QuoteName(IndexName(table.Name(), index.Name)));
  }
  m_connection->Run(
      fmt::format("ALTER TABLE {} RENAME TO {}", QuoteName(table.Name()), QuoteName(newName)));
  for (const Index& index : table.Indexes()) AppendIndex(newName, index);
}

}  // namespace sandrel::dao
