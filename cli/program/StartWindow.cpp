#include "cli/program/StartWindow.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "cli/program/ProgramFolder.h"
#include "disc/host/HostError.h"

namespace sectorbox::cli {
namespace {

std::string WindowProgram() {
  return ProgramFolder() + "/sectorbox";
}

// The grandchild: a process that outlives sbx and its terminal's line of jobs. It tells over the
// pipe why it couldn't become the program; when it does become it, the pipe just closes.
[[noreturn]] void BecomeWindow(const std::string& program, const std::string& argument, int pipe) {
  ::setsid();
  const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  if (null >= 0) {
    ::dup2(null, STDIN_FILENO);
    ::dup2(null, STDOUT_FILENO);
  }
  ::execl(program.c_str(), program.c_str(), argument.c_str(), static_cast<char*>(nullptr));
  const int reason = errno;
  (void)!::write(pipe, &reason, sizeof reason);
  ::_exit(127);
}

}  // namespace

void StartWindow(const std::string& image) {
  const std::string program = WindowProgram();
  // The program takes the first and the last character of its argument for quotes and drops them.
  std::error_code error;
  const std::string path = std::filesystem::absolute(image, error).string();
  if (error) ThrowHostError(image, error.value());
  const std::string argument = "\"" + path + "\"";
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) ThrowHostError(program, errno);
  const pid_t child = ::fork();
  if (child == 0) {
    if (::fork() == 0) BecomeWindow(program, argument, ends[1]);
    ::_exit(0);
  }
  const int forkError = errno;
  ::close(ends[1]);
  int reason = child < 0 ? forkError : 0;
  if (child > 0) {
    ::waitpid(child, nullptr, 0);
    if (::read(ends[0], &reason, sizeof reason) != sizeof reason) reason = 0;
  }
  ::close(ends[0]);
  if (reason != 0) ThrowHostError(program, reason);
}

}  // namespace sectorbox::cli
