// The statement that deletes one row of a page from its table.
#pragma once

#include <string>

#include "platform/controls/ListView.h"

namespace sandrel {

/// `row` belongs to the table that its tag names. Raises 3075 for a double quote in a cell behind
/// the first.
std::string DeleteStatement(const ListView& list, std::size_t row);

}  // namespace sandrel
