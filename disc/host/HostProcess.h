#pragma once

#include <string>
#include <vector>

// The process that runs this program, and other programs that it starts.
namespace sectorbox {

// The path of this program's own file, from the root on. HostError if the host won't tell.
[[nodiscard]] std::string OwnProgramFile();

// True if what goes to standard output or to standard error is seen on a terminal.
[[nodiscard]] bool OutputGoesToTerminal();
[[nodiscard]] bool ErrorsGoToTerminal();

// Starts another program and doesn't wait for it. It outlives this process and isn't stopped by
// what the user types at this program's terminal; it has no standard input and output, and keeps
// our standard error. arguments stand behind the program's own name. HostError with the program's
// path if it can't be started.
void LaunchProgram(const std::string& program, const std::vector<std::string>& arguments);

}  // namespace sectorbox
