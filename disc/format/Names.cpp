#include "disc/format/Names.h"

#include <algorithm>

#include "disc/format/Format.h"

namespace sectorbox {
namespace {

std::string Pad(std::string_view text, std::int32_t width) {
  const auto size = static_cast<std::size_t>(width);
  std::string padded(text);
  padded += '\r';
  padded.resize(size, '\0');
  return padded;
}

}  // namespace

bool EntryIsEmpty(std::string_view name) {
  return name.empty() || name[0] == '\0';
}

std::string FoldName(std::string_view name) {
  std::string folded(name);
  for (char& c : folded) {
    const auto code = static_cast<std::uint8_t>(c);
    if (code >= 0x40 && code <= 0x7F) c = static_cast<char>(code | 0x20);
  }
  return folded;
}

std::string PadName(std::string_view text) {
  return Pad(text, format::kNameLength);
}

std::string PadTitle(std::string_view text) {
  return Pad(text, format::kTitleLength);
}

bool HoldsIllegalCharacters(std::string_view text, std::string_view set) {
  return std::any_of(text.begin(), text.end(), [&](char c) {
    return c < 32 || static_cast<std::uint8_t>(c) > 127 || set.find(c) != std::string_view::npos;
  });
}

bool NameCannotBeStored(std::string_view name) {
  return EntryIsEmpty(name) || name[0] == '\r' || std::any_of(name.begin(), name.end(), [](char c) {
           return (static_cast<std::uint8_t>(c) & format::kTopBit) != 0;
         });
}

std::string IllegalNameMessage(const std::string& name) {
  return "File " + name + " Contains Illegal Characters";
}

}  // namespace sectorbox
