#include "print/clsFields.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "print/PrintErrors.h"

namespace sandrel {
namespace {

/// Reads the number that the key begins with and takes it off; 0 where there is none.
int TakeNumber(std::string_view& key) {
  int number = 0;
  const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), number);
  key.remove_prefix(static_cast<std::size_t>(end - key.data()));
  return error == std::errc() ? number : 0;
}

}  // namespace

void clsFields::Add(int row, int column, std::string value) {
  if (row < 1 || column < 1) {
    throw clsError(errnum::InvalidArgument, "Invalid procedure call or argument", "clsFields.Add");
  }
  if (Find(row, column) != nullptr) {
    throw clsError(errnum::KeyInUse,
                   "This key is already associated with an element of this collection",
                   "clsFields.Add");
  }
  if (Rows() < row) m_places.resize(static_cast<std::size_t>(row));
  std::vector<std::uint32_t>& places = m_places[static_cast<std::size_t>(row) - 1];
  if (places.size() < static_cast<std::size_t>(column)) {
    places.resize(static_cast<std::size_t>(std::max(column, m_columns)));
  }
  m_columns = std::max(m_columns, column);
  m_fields.push_back({row, column, std::move(value)});
  places[static_cast<std::size_t>(column) - 1] = static_cast<std::uint32_t>(m_fields.size());
}

const clsField* clsFields::Find(int row, int column) const {
  if (row < 1 || row > Rows() || column < 1) return nullptr;
  const std::vector<std::uint32_t>& places = m_places[static_cast<std::size_t>(row) - 1];
  const std::size_t index = static_cast<std::size_t>(column) - 1;
  if (index >= places.size() || places[index] == 0) return nullptr;
  return &m_fields[places[index] - 1];
}

const clsField& clsFields::Item(std::string_view key) const {
  std::string_view rest = key;
  const int row = TakeNumber(rest);
  const bool joined = rest.starts_with('-');
  if (joined) rest.remove_prefix(1);
  const int column = TakeNumber(rest);
  const clsField* field = joined && rest.empty() ? Find(row, column) : nullptr;
  if (field == nullptr) {
    throw clsError(errnum::InvalidArgument, "Invalid procedure call or argument", "clsFields.Item");
  }
  return *field;
}

}  // namespace sandrel
