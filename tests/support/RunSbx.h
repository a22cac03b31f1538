#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

namespace sectorbox::testing {

// What a run of the real sbx left behind.
struct SbxResult {
  int Status = -1;  // exit status; 128 and the signal's number when a signal ended it
  std::string Out;
  std::string Err;
};

// A running sbx, with an empty standard input and no terminal at either end. One that nobody waited
// for is killed. folder, where given, is where it runs; program a copy of sbx to run instead;
// terminal the device that is its standard error, which the result then doesn't have.
class SbxProcess {
 public:
  explicit SbxProcess(const std::vector<std::string>& arguments, const std::string& folder = "",
                      const std::string& program = SBX_PATH, const std::string& terminal = "");
  ~SbxProcess();
  SbxProcess(const SbxProcess&) = delete;
  SbxProcess& operator=(const SbxProcess&) = delete;

  // Ctrl-C.
  void Interrupt();
  // Until it ends by itself. Only once.
  SbxResult Wait();

 private:
  TempFolder streams_;
  const bool hasErr_;
  pid_t child_ = -1;
};

// The same from start to end.
SbxResult RunSbx(const std::vector<std::string>& arguments, const std::string& folder = "",
                 const std::string& program = SBX_PATH);

// The lines of a text, without their line ends.
std::vector<std::string> Lines(const std::string& text);

}  // namespace sectorbox::testing
