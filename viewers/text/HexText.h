#pragma once

#include <cstdint>
#include <string>

namespace sectorbox {

// Writes value as so many upper-case hexadecimal digits, the first one at to. Zeros fill a short
// value up, and a long one loses its first digits.
inline void PutHex(char* to, std::uint64_t value, int digits) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  for (int i = digits; i-- > 0; value >>= 4) to[i] = kDigits[value & 15];
}

// Appends the same to a text; 8 digits at most.
inline void AppendHex(std::string& text, std::uint64_t value, int digits) {
  char buffer[8];
  PutHex(buffer, value, digits);
  text.append(buffer, static_cast<std::size_t>(digits));
}

}  // namespace sectorbox
