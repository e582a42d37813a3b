// Table definitions: how tables and indexes are made, found, renamed and deleted.
//
// In the file a field is a column declared with its type, NOCASE for text, and its rules; an index
// is a SQLite index whose name carries the table's name in front ("tblFiles.PrimaryKey"). An
// auto-increment field is the row id itself, and so is an index on it alone.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dao/Field.h"

namespace sandrel::dao {

class Connection;

struct Index {
  std::string Name;
  std::vector<std::string> Fields;
  bool Primary = false;
  bool Unique = false;
  bool Clustered = false;  ///< rows are stored in this order; of a primary key without Null values
};

class TableDef {
 public:
  explicit TableDef(std::string name) : m_name(std::move(name)) {}

  const std::string& Name() const { return m_name; }
  const std::vector<Field>& Fields() const { return m_fields; }
  const std::vector<Index>& Indexes() const { return m_indexes; }
  /// The primary key that the rows are stored by; null where they are stored by their row id.
  const Index* ClusteredKey() const;

  /// Fields are appended before the definition goes into the database's TableDefs.
  void AppendField(Field field) { m_fields.push_back(std::move(field)); }

 private:
  friend class TableDefs;
  std::string m_name;
  std::vector<Field> m_fields;
  std::vector<Index> m_indexes;
};

/// The tables of one database. Names compare without regard to case.
class TableDefs {
 public:
  explicit TableDefs(std::shared_ptr<Connection> connection);

  /// Names of all tables, in the order of their making.
  std::vector<std::string> Names() const;
  bool Contains(std::string_view name) const;
  /// The table's definition, read from the file. Raises 3265 when there is no such table.
  TableDef Item(std::string_view name) const;

  /// Makes the table. Raises 3010 when there is one of that name.
  void Append(const TableDef& table);
  /// Makes an index on a table that exists. Raises 3078 without the table, 3022 when unique keys
  /// repeat.
  void AppendIndex(std::string_view table, const Index& index);
  /// Deletes the table with all its rows. Raises 3265 when there is no such table.
  void Delete(std::string_view name);
  /// Gives the table another name; its indexes go along. Raises 3265 and 3010.
  void Rename(std::string_view name, std::string_view newName);

 private:
  void Cluster(const TableDef& table, const Index& key);

  std::shared_ptr<Connection> m_connection;
};

}  // namespace sandrel::dao
