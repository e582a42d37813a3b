// The order of texts as lists are sorted: without regard to case.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/controls/TextPool.h"

namespace sandrel {

/// Sets `ranks[id]` of each text of `distinct` to its number in their order, from 0; texts that are
/// equal but for case have the same one. `ranks` has a place for every text of the pool; those of
/// other texts stay as they are.
void RankTexts(const TextPool& texts, const std::vector<TextPool::Id>& distinct,
               std::vector<std::uint32_t>& ranks);

}  // namespace sandrel
