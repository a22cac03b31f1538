#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace sectorbox {

// The most wire bytes that dataBytes can take, end marker included: 27 alternating with another
// byte grows by half, a lone or double or triple 27 to twice its size.
constexpr std::size_t LongestStream(std::size_t dataBytes) {
  return 2 * dataBytes + 2;
}

// The data stream of some bytes, without its end marker. Runs of 4 to 255 equal bytes become
// ESC, 0, count, value, with count and value raw even where they are 27; shorter ones go out byte
// by byte, a 27 as ESC, 1. A longer run is cut at 255 and the rest looked at afresh.
std::vector<std::uint8_t> CompressBytes(std::span<const std::uint8_t> data);

}  // namespace sectorbox
