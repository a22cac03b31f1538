#pragma once

#include <cstdint>
#include <string>

namespace sectorbox {

// Writes exactly digits upper-case hexadecimal digits to where to points: the rightmost ones of
// value, zero-padded.
inline void PutHex(char* to, std::uint64_t value, int digits) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  for (int i = digits; i-- > 0; value >>= 4) to[i] = kDigits[value & 15];
}

// The same at the end of a text; 8 digits at most.
inline void AppendHex(std::string& text, std::uint64_t value, int digits) {
  char buffer[8];
  PutHex(buffer, value, digits);
  text.append(buffer, static_cast<std::size_t>(digits));
}

}  // namespace sectorbox
