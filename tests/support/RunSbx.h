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

// A running sbx, with an empty standard input and without a terminal. The destructor kills it if
// nobody has waited for it. If they are given: folder is the folder that it runs in, program a copy
// of sbx that runs instead, terminal the device of its standard error, and output that of its
// standard output, whose text the result then doesn't have.
class SbxProcess {
 public:
  explicit SbxProcess(const std::vector<std::string>& arguments, const std::string& folder = "",
                      const std::string& program = SBX_PATH, const std::string& terminal = "",
                      const std::string& output = "");
  ~SbxProcess();
  SbxProcess(const SbxProcess&) = delete;
  SbxProcess& operator=(const SbxProcess&) = delete;

  // Presses Ctrl-C.
  void Interrupt();
  // Sends it a signal.
  void Signal(int number);
  [[nodiscard]] pid_t Id() const { return child_; }
  // Waits until it ends by itself. A test may call this once.
  SbxResult Wait();

 private:
  TempFolder streams_;
  const bool hasErr_;
  const bool hasOut_;
  pid_t child_ = -1;
};

// Runs sbx from start to end.
SbxResult RunSbx(const std::vector<std::string>& arguments, const std::string& folder = "",
                 const std::string& program = SBX_PATH);

// The lines of a text, without their line ends.
std::vector<std::string> Lines(const std::string& text);

}  // namespace sectorbox::testing
