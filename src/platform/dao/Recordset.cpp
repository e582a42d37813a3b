#include "platform/dao/Recordset.h"

#include <fmt/format.h>

#include <utility>

#include "common/clsError.h"
#include "common/text.h"

namespace sandrel::dao {
namespace {

[[noreturn]] void RaiseReadOnly() {
  throw clsError(errnum::ReadOnly, "Can't update. Database or object is read-only.");
}

[[noreturn]] void RaiseInvalidOperation() {
  throw clsError(errnum::InvalidOperation, "Invalid operation.");
}

}  // namespace

std::size_t Recordset::FieldNumber(std::string_view name) const {
  for (std::size_t i = 0; i < m_fields.size(); ++i) {
    if (text::EqualNoCase(m_fields[i].Name, name)) return i;
  }
  throw clsError(errnum::NoSuchItem,
                 fmt::format("Item not found in this collection: the field '{}'.", name));
}

const Value& Recordset::Get(std::size_t field) {
  if (m_mode != Pending::None) return m_pending[field];
  NeedRecord();
  return m_record[field];
}

Value& Recordset::Target(std::size_t field) {
  if (m_mode == Pending::None) {
    throw clsError(errnum::NoAddOrEdit, "Update or CancelUpdate without AddNew or Edit.");
  }
  return m_pending[field];
}

void Recordset::CheckLength(std::size_t field, std::string_view text) const {
  const Field& definition = m_fields[field];
  const auto limit = static_cast<std::size_t>(definition.Size);
  // A text has never more units than bytes, so most texts need no counting.
  if (limit == 0 || text.size() <= limit || text::Length(text) <= limit) return;
  throw clsError(
      errnum::FieldTooLong,
      fmt::format("The field '{}' is too small to accept the amount of data you attempted "
                  "to add. It takes {} characters.",
                  definition.Name, limit));
}

void Recordset::SetText(std::size_t field, std::string_view text) {
  Value& target = Target(field);
  CheckLength(field, text);
  target.SetText(text);
}

void Recordset::SetInteger(std::size_t field, std::int64_t number) {
  Target(field).SetInteger(number);
}

void Recordset::Exchange(std::size_t field, Value& value) {
  Value& target = Target(field);
  CheckLength(field, value.Text());
  std::swap(target, value);
}

void Recordset::Set(std::size_t field, const Value& value) {
  switch (value.Type()) {
    case Value::Kind::Text:
      SetText(field, value.Text());
      break;
    case Value::Kind::Integer:
      SetInteger(field, value.Integer());
      break;
    case Value::Kind::Real:
      Target(field).SetReal(value.Real());
      break;
    case Value::Kind::Null:
      Target(field).SetNull();
      break;
  }
}

void Recordset::SetIndex(std::string_view /*name*/) {
  RaiseInvalidOperation();
}
void Recordset::Seek(std::string_view /*comparison*/, std::initializer_list<Value> /*keys*/) {
  RaiseInvalidOperation();
}
void Recordset::AddNew() {
  RaiseReadOnly();
}
void Recordset::Edit() {
  RaiseReadOnly();
}
void Recordset::Update() {
  RaiseReadOnly();
}
void Recordset::CancelUpdate() {
  RaiseReadOnly();
}
void Recordset::Delete() {
  RaiseReadOnly();
}

}  // namespace sandrel::dao
