#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Names and titles as a directory holds them: BBC bytes, up to ten for a name and 19 for a title.
namespace sectorbox {

// A name that ends the list of entries: it is empty, or its first character has code 0.
[[nodiscard]] bool EntryIsEmpty(std::string_view name);

// The form in which names are compared and ordered: two names are the same name if their folded
// forms are equal, and a directory holds its entries in rising order of the folded names.
[[nodiscard]] std::string FoldName(std::string_view name);

// The text, a carriage return and NULs, cut to the width of the field.
[[nodiscard]] std::string PadName(std::string_view text);
[[nodiscard]] std::string PadTitle(std::string_view text);

// True if a character is outside 32 to 127 or in the set.
[[nodiscard]] bool HoldsIllegalCharacters(std::string_view text, std::string_view set);
// True for a name that would hide its entry and all entries behind it, or whose letters would turn
// into attributes: it has no first character, or a byte above 127.
[[nodiscard]] bool NameCannotBeStored(std::string_view name);
// "File NAME Contains Illegal Characters".
[[nodiscard]] std::string IllegalNameMessage(const std::string& name);

}  // namespace sectorbox
