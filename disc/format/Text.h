#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Texts of the BBC and of its tools: bytes, one a character, without regard to the host's locale.
namespace sectorbox {

// Upper-case hexadecimal of exactly digits digits: the rightmost ones, zero-padded on the left. A
// wider value loses its top digits.
[[nodiscard]] std::string Hex(std::uint64_t value, int digits);
// The number at the start of a text of hexadecimal digits; 0 when there is none. Wraps at 32 bits.
[[nodiscard]] std::uint32_t ParseHex(std::string_view text);
// A to Z for a to z, every other byte as it is.
[[nodiscard]] std::string UpperCase(std::string_view text);
// A number as the status line prints it: decimal with a leading blank for the sign.
[[nodiscard]] std::string SignedDecimal(std::int64_t value);
// The text without the blanks at both ends.
[[nodiscard]] std::string TrimBlanks(std::string_view text);
// The text up to, and without, the first end; all of it when there is none.
[[nodiscard]] std::string CutAt(std::string_view text, char end);

}  // namespace sectorbox
