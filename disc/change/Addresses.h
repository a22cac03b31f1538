#pragma once

#include <string>

// What a user types for load and exec addresses.
namespace sectorbox {

// Tests both texts and makes eight upper-case hex digits of each, in place. Gives an empty text if
// both are good, else the message of the first test that fails. The tests come in this order: the
// length (1 to 8) of loadText, the length of execText, the characters of loadText, the characters
// of execText. After a failure both texts may be half changed, and the caller must not use them.
[[nodiscard]] std::string CheckAddresses(std::string& loadText, std::string& execText);

}  // namespace sectorbox
