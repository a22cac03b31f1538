#pragma once

#include <string>
#include <string_view>

// Names and titles as a directory holds them: BBC bytes, up to ten for a name and 19 for a title.
namespace sectorbox {

// True for a name that ends the list of entries: it is empty, or its first character has code 0.
[[nodiscard]] bool EntryIsEmpty(std::string_view name);

// The form in which names are compared, as the BBC's filing system compares them: bit 5 of each
// byte from &40 to &7F is set, so that not only "a" and "A" are one letter but also "[" and "{". It
// is never shown. Two names are the same name if their folded forms are equal; a directory holds
// its entries in rising order of the folded names.
[[nodiscard]] std::string FoldName(std::string_view name);

// The text, a carriage return and NULs, cut to the width of the field.
[[nodiscard]] std::string PadName(std::string_view text);
[[nodiscard]] std::string PadTitle(std::string_view text);

// True if a character of text has a code outside 32 to 127 or stands in set.
[[nodiscard]] bool HoldsIllegalCharacters(std::string_view text, std::string_view set);
// True for a name that can't be written into an entry. A name without a first character (it is
// empty, or begins with a NUL or a carriage return) would hide its entry and all entries behind it.
// The top bit of a byte above 127 would become an attribute.
[[nodiscard]] bool NameCannotBeStored(std::string_view name);
// The message "File NAME Contains Illegal Characters".
[[nodiscard]] std::string IllegalNameMessage(const std::string& name);

}  // namespace sectorbox
