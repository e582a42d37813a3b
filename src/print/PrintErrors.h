// Error numbers of printing.
#pragma once

#include <cstdint>

#include "common/clsError.h"

namespace sandrel::errnum {

/// A row or column beyond the grid's limits, or one that isn't there.
inline constexpr std::int32_t SubscriptOutOfRange = 9;
/// A cell that is there already.
inline constexpr std::int32_t KeyInUse = 457;
/// The device can't tell the height of a line.
inline constexpr std::int32_t PrintMetrics = UserBase + 14012;
/// The paper, or what its margins leave of it, has no room for a column.
inline constexpr std::int32_t PageTooSmall = UserBase + 14013;

}  // namespace sandrel::errnum
