#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Texts of the BBC and of its tools: one byte is one character, whatever the host's locale.
namespace sectorbox {

// A number in upper-case hexadecimal, with exactly that many digits: a small value gets zeros on
// the left, a large one loses its top digits.
[[nodiscard]] std::string Hex(std::uint64_t value, int digits);
// The number that the hexadecimal digits at the start of a text make; 0 if there are none. Of a
// longer number the lowest 32 bits count.
[[nodiscard]] std::uint32_t ParseHex(std::string_view text);
// The text with A to Z for a to z. Other bytes stay as they are.
[[nodiscard]] std::string UpperCase(std::string_view text);
// A number as the status line shows it: decimal, with a leading blank or minus sign.
[[nodiscard]] std::string SignedDecimal(std::int64_t value);
// The text without the blanks at both ends.
[[nodiscard]] std::string TrimBlanks(std::string_view text);
// The part of the text in front of the first end; all of the text if there is none.
[[nodiscard]] std::string CutAt(std::string_view text, char end);

}  // namespace sectorbox
