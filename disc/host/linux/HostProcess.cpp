#include "disc/host/HostProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>

#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

// The list that the system wants: the program's name, its arguments, and a null pointer at the end.
// It points into the strings, which outlive it.
std::vector<char*> ArgumentList(std::string& program, std::vector<std::string>& arguments) {
  std::vector<char*> list = {program.data()};
  for (std::string& argument : arguments) list.push_back(argument.data());
  list.push_back(nullptr);
  return list;
}

// The grandchild process becomes the program. It has a session of its own, so that it outlives this
// process and its terminal. If it can't become the program, it writes the reason into the pipe; if
// it can, the pipe just closes.
[[noreturn]] void BecomeProgram(char* const* list, int pipe) {
  ::setsid();
  const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  if (null >= 0) {
    ::dup2(null, STDIN_FILENO);
    ::dup2(null, STDOUT_FILENO);
  }
  ::execv(list[0], list);
  const int reason = errno;
  (void)!::write(pipe, &reason, sizeof reason);
  ::_exit(127);
}

}  // namespace

std::string OwnProgramFile() {
  constexpr char kSelf[] = "/proc/self/exe";
  std::error_code error;
  const auto self = std::filesystem::read_symlink(kSelf, error);
  if (error) ThrowHostError(kSelf, error);
  return self.string();
}

bool OutputGoesToTerminal() {
  return ::isatty(STDOUT_FILENO) == 1;
}

bool ErrorsGoToTerminal() {
  return ::isatty(STDERR_FILENO) == 1;
}

void LaunchProgram(const std::string& program, const std::vector<std::string>& arguments) {
  std::string name = program;
  std::vector<std::string> words = arguments;
  const std::vector<char*> list = ArgumentList(name, words);
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) ThrowHostError(program, errno);
  const pid_t child = ::fork();
  if (child == 0) {
    if (::fork() == 0) BecomeProgram(list.data(), ends[1]);
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

}  // namespace sectorbox
