#include "disc/change/Addresses.h"

#include "disc/format/Text.h"

namespace sectorbox {
namespace {

constexpr std::size_t kDigits = 8;

bool IsWrongLength(const std::string& text) {
  return text.empty() || text.size() > kDigits;
}

void PadLeft(std::string& text) {
  text.insert(0, kDigits - text.size(), '0');
}

// Upper-cases the text; true if every character is a hex digit.
bool MakeHex(std::string& text) {
  text = UpperCase(text);
  return text.find_first_not_of("0123456789ABCDEF") == std::string::npos;
}

}  // namespace

std::string CheckAddresses(std::string& loadText, std::string& execText) {
  if (IsWrongLength(loadText)) return "Load Address Is Wrong Length";
  if (IsWrongLength(execText)) return "Exec Address Is Wrong Length";
  PadLeft(loadText);
  PadLeft(execText);
  if (!MakeHex(loadText)) return "Load Address Contains Illegal Characters";
  if (!MakeHex(execText)) return "Exec Address Contains Illegal Characters";
  return "";
}

}  // namespace sectorbox
