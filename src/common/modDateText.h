// Dates as people read them.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace sandrel {

/// A time in local time by the user's date format; where the user has none (the C locale), as
/// "2026-11-22 21:02:18".
std::string LocalDateText(std::time_t utcSeconds);

/// The same for a stored Date/Time text, UTC "YYYY-MM-DD HH:MM:SS"; any other text comes back as it
/// is.
std::string LocalDateText(std::string_view stored);

}  // namespace sandrel
