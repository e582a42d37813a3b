// The nine comparisons of two snapshots: statement, table, statistics row and progress of each.
//
// The statements decide what a difference is. Repeated INI parameters are told apart in changes
// alone; a comparison with Null gives no row; text compares without regard to case.
#pragma once

#include <array>
#include <functional>
#include <string>

#include "store/clsTableMaint.h"

namespace sandrel {

struct Difference {
  const char* Sql;
  const char* Table;
  std::function<void(clsTableMaint&, const std::string& database, const std::string& table)> Create;
  const char* Description;
  int Progress;  // per cent
};

extern const std::array<Difference, 9> Differences;

}  // namespace sandrel
