#pragma once

#include <cstdint>

// What the BBC can do with a disc of a size.
namespace sectorbox::format {

// The BBC writes to sectors up to this number only.
inline constexpr std::int32_t kLastWritableSector = 0x1FFFFF;
inline constexpr const char* kTooLargeForTheBbc = "the BBC can't write to a disc of this size";

// True if the BBC can write to all of a disc of that many sectors.
[[nodiscard]] constexpr bool BbcCanWriteTo(std::int32_t sectors) {
  return sectors - 1 <= kLastWritableSector;
}

}  // namespace sectorbox::format
