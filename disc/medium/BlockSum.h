#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The sums by which a journal knows bytes of a disc again. bytes are always whole numbers of 8
// bytes.
namespace sectorbox {

inline constexpr std::uint64_t kEmptySum = 0xcbf29ce484222325;

// The little-endian number in the first 8 of bytes.
inline std::uint64_t NumberIn(std::span<const std::uint8_t> bytes) {
  // Compilers make one load of this.
  return std::uint64_t{bytes[0]} | std::uint64_t{bytes[1]} << 8 | std::uint64_t{bytes[2]} << 16 |
         std::uint64_t{bytes[3]} << 24 | std::uint64_t{bytes[4]} << 32 |
         std::uint64_t{bytes[5]} << 40 | std::uint64_t{bytes[6]} << 48 |
         std::uint64_t{bytes[7]} << 56;
}

// As in FNV-1a each step mixes one number into the sum; the shift brings its upper half to where
// the next step spreads it again.
[[nodiscard]] inline std::uint64_t AddToSum(std::uint64_t sum,
                                            std::span<const std::uint8_t> bytes) {
  constexpr std::size_t kNumber = 8;
  for (std::size_t at = 0; at + kNumber <= bytes.size(); at += kNumber) {
    sum = (sum ^ NumberIn(bytes.subspan(at, kNumber))) * 0x100000001b3;
    sum ^= sum >> 32;
  }
  return sum;
}

}  // namespace sectorbox
