#pragma once

#include <string>

// What a user types for load and exec addresses.
namespace sectorbox {

// Tests both texts and makes eight upper-case hex digits of each, in place. Gives the message of
// the first test that fails, or an empty text when both are good. Both lengths (1 to 8) are tested
// before any character, Load before Exec each time. After a failure the texts are as far as the
// tests came, for nobody to use.
std::string CheckAddresses(std::string& LoadText, std::string& ExecText);

}  // namespace sectorbox
