#pragma once

namespace sectorbox {

// Ends the program. The program's own class ends the process. The class of the tests only notes the
// call.
class ProgramEnd {
 public:
  virtual ~ProgramEnd() = default;

  // Ends the program with that status at once. Other windows get no more events.
  virtual void EndProgram(int status) = 0;
};

}  // namespace sectorbox
