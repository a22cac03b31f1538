#pragma once

#include <cstdint>
#include <string>

namespace sectorbox {

// Appends exactly digits upper-case hexadecimal digits: the rightmost ones of value, zero-padded.
inline void AppendHex(std::string& text, std::uint64_t value, int digits) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) text += kDigits[value >> shift & 15];
}

}  // namespace sectorbox
