#pragma once

#include <array>

#include "viewers/picture/Picture.h"

namespace sectorbox {

inline constexpr Colour kBlack = 0x000000;
inline constexpr Colour kRed = 0xFF0000;
inline constexpr Colour kGreen = 0x00FF00;
inline constexpr Colour kYellow = 0xFFFF00;
inline constexpr Colour kBlue = 0x0000FF;
inline constexpr Colour kMagenta = 0xFF00FF;
inline constexpr Colour kCyan = 0x00FFFF;
inline constexpr Colour kWhite = 0xFFFFFF;

// The BBC's eight physical colours by their numbers. Bit 0 of a number is red, bit 1 green, bit 2
// blue.
inline constexpr std::array<Colour, 8> kPhysicalColours = {kBlack, kRed,     kGreen, kYellow,
                                                           kBlue,  kMagenta, kCyan,  kWhite};

// The names of the same colours, as a user writes them.
inline constexpr std::array<const char*, 8> kColourNames = {"black", "red",     "green", "yellow",
                                                            "blue",  "magenta", "cyan",  "white"};

}  // namespace sectorbox
