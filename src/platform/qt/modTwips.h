// The models measure in twips, 1440 to the inch; the window in pixels of 96 to the inch.
#pragma once

namespace sandrel::qt {

inline constexpr int TwipsPerPixel = 15;

/// Rounds down, so that columns that share a width never take more than it.
constexpr int ToPixels(int twips) {
  return twips / TwipsPerPixel;
}

constexpr int ToTwips(int pixels) {
  return pixels * TwipsPerPixel;
}

}  // namespace sandrel::qt
