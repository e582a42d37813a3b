// Reads the rows of a page of an analysis one by one, without a list.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/dao/Field.h"
#include "platform/dao/Value.h"

namespace sandrel {

/// The number of a page by its name, without regard to case. Raises 5 for a name that no page with
/// rows of its own has; the description lists the names.
int PageByName(const std::string& name);

class clsPageReader {
 public:
  using Header = std::function<void(const std::vector<dao::Field>& fields)>;
  /// `source` is the page of the row's own table.
  using Row = std::function<void(const std::vector<dao::Field>& fields,
                                 const std::vector<dao::Value>& values, int source)>;

  /// `analysis` is a host path.
  explicit clsPageReader(std::string analysis) : m_analysis(std::move(analysis)) {}

  /// Calls `header` with the first statement's fields, then `row` with each record. On the
  /// statistics page the counts are those of the rows that the pages show now. Raises 3078 for a
  /// file that is no analysis.
  void Read(int page, const Header& header, const Row& row) const;

 private:
  std::string GetStat(std::string_view description) const;
  std::int64_t CountRows(int page) const;

  std::string m_analysis;
};

}  // namespace sandrel
