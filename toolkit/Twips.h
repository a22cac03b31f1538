#pragma once

#include <cmath>

// Window sizes and positions are kept in twips, 1/1440 inch, so that they mean the same on every
// screen. A pixel here is Qt's device-independent one: 96 to the inch, 15 twips each.
namespace sectorbox {

inline constexpr double kTwipsPerPixel = 15.0;

// The nearest pixel. A value far outside every screen becomes 100000 pixels, with its sign.
inline int PixelsFromTwips(double twips) {
  constexpr double kFarAway = 100000.0;
  const double pixels = std::round(twips / kTwipsPerPixel);
  if (!(pixels > -kFarAway)) return static_cast<int>(-kFarAway);
  return static_cast<int>(pixels < kFarAway ? pixels : kFarAway);
}

inline double TwipsFromPixels(int pixels) {
  return pixels * kTwipsPerPixel;
}

}  // namespace sectorbox
