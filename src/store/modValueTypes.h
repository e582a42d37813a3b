// The names of registry value types, which every page of registry values is joined with: a type
// without a name would keep its values off all of them.
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "platform/dao/Workspace.h"

namespace sandrel {

/// The name of a type by its number: "DWORD", "QWORD"; "TYPE 0x00012345" of one that has none.
std::string ValueTypeName(std::int64_t type);

/// Adds the types without a row to an analysis' table of types, those with a name and the given
/// ones.
void AddValueTypes(dao::Database& analysis, const std::set<std::int64_t>& types);

}  // namespace sandrel
