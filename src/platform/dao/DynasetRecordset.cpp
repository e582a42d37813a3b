// The rows of a statement, read only. They come straight from the running statement; going back
// runs it again.

#include "common/clsError.h"
#include "platform/dao/Connection.h"
#include "platform/dao/Recordset.h"

namespace sandrel::dao {
namespace {

class DynasetRecordset final : public Recordset {
 public:
  DynasetRecordset(std::shared_ptr<Connection> connection, const std::string& sql);

  bool Bof() override { return m_visited == 0; }
  bool Eof() override { return !m_onRow; }
  void MoveFirst() override;
  void MoveLast() override;
  void MoveNext() override;
  std::int64_t RecordCount() override { return m_visited; }

 protected:
  void NeedRecord() override;

 private:
  void Next();

  std::shared_ptr<Connection> m_connection;
  Statement m_rows;
  std::int64_t m_position = 0;  // number of the current row, from 1
  std::int64_t m_visited = 0;
  bool m_onRow = false;
  bool m_atLast = false;  // MoveLast fetched the row; m_rows stands before the first
  bool m_loaded = false;  // m_record holds the current row
};

DynasetRecordset::DynasetRecordset(std::shared_ptr<Connection> connection, const std::string& sql)
    : m_connection(std::move(connection)), m_rows(m_connection, sql) {
  const int columns = m_rows.ColumnCount();
  for (int i = 0; i < columns; ++i) {
    Field field;
    field.Name = sqlite3_column_name(m_rows.Handle(), i);
    m_fields.push_back(std::move(field));
  }
  m_record.resize(m_fields.size());
  Next();
}

void DynasetRecordset::Next() {
  m_loaded = false;
  m_onRow = m_rows.Step();
  if (!m_onRow) {
    // Reset here: a statement at its end would begin anew with the next step, and until then it
    // would hold its read lock.
    m_rows.Reset();
    return;
  }
  ++m_position;
  if (m_position > m_visited) m_visited = m_position;
}

void DynasetRecordset::MoveFirst() {
  if (m_visited == 0) throw clsError(errnum::NoCurrentRecord, "No current record.");
  if (m_onRow && m_position == 1 && !m_atLast) return;
  m_rows.Reset();
  m_position = 0;
  m_atLast = false;
  Next();
}

void DynasetRecordset::MoveNext() {
  if (!m_onRow) throw clsError(errnum::NoCurrentRecord, "No current record.");
  if (m_atLast) {
    m_onRow = false;
    return;
  }
  Next();
}

void DynasetRecordset::MoveLast() {
  if (!m_onRow) MoveFirst();
  std::vector<Value> last;
  while (m_onRow && !m_atLast) {
    NeedRecord();
    last = m_record;
    Next();
  }
  if (!m_atLast) m_record = std::move(last);
  m_onRow = m_atLast = m_loaded = true;
}

void DynasetRecordset::NeedRecord() {
  if (!m_onRow) throw clsError(errnum::NoCurrentRecord, "No current record.");
  if (m_loaded) return;
  for (std::size_t i = 0; i < m_record.size(); ++i) {
    m_rows.Column(static_cast<int>(i), m_record[i]);
  }
  m_loaded = true;
}

}  // namespace

std::unique_ptr<Recordset> OpenDynaset(std::shared_ptr<Connection> connection,
                                       const std::string& sql) {
  return std::make_unique<DynasetRecordset>(std::move(connection), sql);
}

}  // namespace sandrel::dao
