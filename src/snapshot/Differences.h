// The nine comparisons of two snapshots: statement, table, statistics row and progress of each.
//
// The statements decide what a difference is. Repeated INI parameters are told apart in changes
// alone; a comparison with Null gives no row; text compares without regard to case.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "store/clsTableMaint.h"

namespace sandrel {

enum class DifferenceOf : std::uint8_t { Registry, Files, IniEntries };
enum class DifferenceKind : std::uint8_t { New, Changed, Deleted };

struct Difference {
  const char* Sql;
  const char* Table;
  std::function<void(clsTableMaint&, const std::string& database, const std::string& table)> Create;
  const char* Description;
  int Progress;  // per cent
  DifferenceOf Of;
  DifferenceKind Kind;
};

extern const std::array<Difference, 9> Differences;

}  // namespace sandrel
