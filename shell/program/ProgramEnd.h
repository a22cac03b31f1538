#pragma once

namespace sectorbox {

// How the program ends. The program's own ends the process; a test's notes the call.
class ProgramEnd {
 public:
  virtual ~ProgramEnd() = default;

  // Ends the program with that status at once, without a turn for other windows.
  virtual void EndProgram(int status) = 0;
};

}  // namespace sectorbox
