#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace sectorbox {

// The most wire bytes that dataBytes can take, end marker included. One, two or three bytes 27 in a
// row take twice their size; nothing takes more.
constexpr std::size_t LongestStream(std::size_t dataBytes) {
  return 2 * dataBytes + 2;
}

// The data stream of some bytes, without its end marker. A run of 4 to 255 equal bytes becomes
// ESC, 0, count, value. Count and value stand there raw, also if they are 27. A shorter run goes
// out byte by byte, with ESC, 1 for each 27. A longer run is cut after 255 bytes, and its rest is a
// run of its own.
[[nodiscard]] std::vector<std::uint8_t> CompressBytes(std::span<const std::uint8_t> data);

}  // namespace sectorbox
