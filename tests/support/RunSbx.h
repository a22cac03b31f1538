#pragma once

#include <string>
#include <vector>

namespace sectorbox::testing {

// What a run of the real sbx left behind.
struct SbxResult {
  int Status = -1;  // exit status; 128 and the signal's number when a signal ended it
  std::string Out;
  std::string Err;
};

// Runs sbx with these arguments and an empty standard input, neither end being a terminal, and
// waits for it. folder, where given, is where it runs; program a copy of sbx to run instead.
SbxResult RunSbx(const std::vector<std::string>& arguments, const std::string& folder = "",
                 const std::string& program = SBX_PATH);

// The lines of a text, without their line ends.
std::vector<std::string> Lines(const std::string& text);

}  // namespace sectorbox::testing
