#include "disc/format/Text.h"

namespace sectorbox {
namespace {

// The value of a hexadecimal digit; -1 for any other character.
int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

std::string Hex(std::uint64_t value, int digits) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text(static_cast<std::size_t>(digits), '0');
  for (auto at = text.rbegin(); at != text.rend(); ++at, value >>= 4) *at = kDigits[value & 15];
  return text;
}

std::uint32_t ParseHex(std::string_view text) {
  std::uint32_t value = 0;
  for (const char c : text) {
    const int digit = DigitValue(c);
    if (digit < 0) break;
    value = value << 4 | static_cast<std::uint32_t>(digit);
  }
  return value;
}

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::string SignedDecimal(std::int64_t value) {
  return (value < 0 ? "" : " ") + std::to_string(value);
}

std::string TrimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return "";
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string CutAt(std::string_view text, char end) {
  return std::string(text.substr(0, text.find(end)));
}

}  // namespace sectorbox
