// A recordset: a table with a cursor, or the rows of a statement.
//
// A table recordset (OpenTableRecordset) is read and written; with an `Index` set it moves in that
// index's order and can `Seek`, otherwise in the order of its row ids or of its clustered key. A
// dynaset (OpenDynaset) is read only. Statements are prepared once and reset after every move of a
// table recordset, so that it holds no lock between operations.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dao/Field.h"

namespace sandrel::dao {

class Connection;

class Recordset {
 public:
  virtual ~Recordset() = default;
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  const std::vector<Field>& Fields() const { return m_fields; }
  /// The number of a field, compared without regard to case; raises 3265 when there is none.
  std::size_t FieldNumber(std::string_view name) const;

  /// Between `AddNew` or `Edit` and `Update` the value being written, otherwise the current
  /// record's; then raises 3021 when there is none. Valid until the next move or change.
  const Value& Get(std::size_t field);
  const Value& Get(std::string_view field) { return Get(FieldNumber(field)); }

  /// Sets a field between `AddNew` or `Edit` and `Update` (3020 elsewhere). Raises 3163 for a text
  /// that is longer than its field.
  void Set(std::size_t field, const Value& value);
  void Set(std::string_view field, const Value& value) { Set(FieldNumber(field), value); }
  /// The same by exchange: `value` is left with what the field held, so that its buffer is used
  /// again.
  void Exchange(std::size_t field, Value& value);
  /// The same without a Value made by the caller, for row loops.
  void SetText(std::size_t field, std::string_view text);
  void SetInteger(std::size_t field, std::int64_t number);

  /// Both are true when there are no records at all.
  virtual bool Bof() = 0;
  virtual bool Eof() = 0;
  virtual void MoveFirst() = 0;
  virtual void MoveLast() = 0;
  /// Raises 3021 behind the last record.
  virtual void MoveNext() = 0;
  /// Rows of a table; of a dynaset the rows visited so far, all of them after `MoveLast`.
  virtual std::int64_t RecordCount() = 0;

  // What follows raises 3027 (read only) or 3219 (invalid operation) on a dynaset.

  /// The index that orders the records; raises 3265 when the table has none of that name.
  virtual void SetIndex(std::string_view name);
  /// "=": the first record whose key is equal; ">=": the first one whose key is not less. Fewer
  /// keys than the index has fields compare the first fields alone. `NoMatch` tells the result.
  virtual void Seek(std::string_view comparison, std::initializer_list<Value> keys);
  bool NoMatch() const { return m_noMatch; }

  /// Begins a new record with all fields Null; an auto-increment field has its number at once.
  virtual void AddNew();
  /// Begins the change of the current record.
  virtual void Edit();
  /// Writes the record. Raises 3022 for a key that is there already, 3314 for a missing value, 3315
  /// for an empty text; the record then still waits for `Update` or `CancelUpdate`. A move or a
  /// search gives it up.
  virtual void Update();
  virtual void CancelUpdate();
  /// Deletes the current record; the next move goes on from its place.
  virtual void Delete();

 protected:
  Recordset() = default;

  enum class Pending : std::uint8_t { None, Add, Edit };

  /// Makes the current record's values ready in m_record, or raises 3021.
  virtual void NeedRecord() = 0;

  std::vector<Field> m_fields;
  std::vector<Value> m_record;   // the current record
  std::vector<Value> m_pending;  // the record being written
  Pending m_mode = Pending::None;
  bool m_noMatch = false;

 private:
  Value& Target(std::size_t field);
  void CheckLength(std::size_t field, std::string_view text) const;
};

/// Raises 3078 when there is no such table.
std::unique_ptr<Recordset> OpenTableRecordset(std::shared_ptr<Connection> connection,
                                              std::string_view table);
/// `sql` is a SELECT statement in SQLite's own dialect.
std::unique_ptr<Recordset> OpenDynaset(std::shared_ptr<Connection> connection,
                                       const std::string& sql);

}  // namespace sandrel::dao
