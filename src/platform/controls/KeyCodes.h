// Codes of the keys that commands look at, by the platform's numbers.
#pragma once

namespace sandrel::key {

inline constexpr int Back = 8;
inline constexpr int Return = 13;
inline constexpr int Shift = 16;
inline constexpr int Left = 37;
inline constexpr int Up = 38;
inline constexpr int Right = 39;
inline constexpr int Down = 40;

}  // namespace sandrel::key
