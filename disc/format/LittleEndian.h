#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// Numbers as a disc holds them: the low byte first.
namespace sectorbox {

// The number in all of bytes, which are at most four.
[[nodiscard]] constexpr std::uint32_t ReadLittleEndian(std::span<const std::uint8_t> bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) value = value << 8 | bytes[i];
  return value;
}

// Fills all of bytes. A wider value loses its top bytes.
constexpr void WriteLittleEndian(std::span<std::uint8_t> bytes, std::uint32_t value) {
  for (std::uint8_t& byte : bytes) {
    byte = static_cast<std::uint8_t>(value);
    value >>= 8;
  }
}

// A sector number or a count of sectors: three bytes.
inline constexpr std::size_t kSectorNumberSize = 3;

}  // namespace sectorbox
