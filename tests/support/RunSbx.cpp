#include "tests/support/RunSbx.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <sstream>
#include <stdexcept>

namespace sectorbox::testing {
namespace {

void Redirect(const char* path, int flags, int descriptor) {
  const int file = ::open(path, flags, 0600);
  if (file < 0 || ::dup2(file, descriptor) < 0) ::_exit(126);
  ::close(file);
}

}  // namespace

SbxProcess::SbxProcess(const std::vector<std::string>& arguments, const std::string& folder,
                       const std::string& program, const std::string& terminal,
                       const std::string& output)
    : hasErr_(terminal.empty()), hasOut_(output.empty()) {
  const std::string out = output.empty() ? streams_ / "out" : output;
  const std::string err = terminal.empty() ? streams_ / "err" : terminal;
  std::vector<char*> words = {const_cast<char*>(program.c_str())};
  for (const auto& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);

  child_ = ::fork();
  if (child_ < 0) throw std::runtime_error("no process for sbx");
  if (child_ != 0) return;
  if (!folder.empty() && ::chdir(folder.c_str()) != 0) ::_exit(126);
  Redirect("/dev/null", O_RDONLY, STDIN_FILENO);
  Redirect(out.c_str(), O_WRONLY | O_CREAT, STDOUT_FILENO);
  Redirect(err.c_str(), O_WRONLY | O_CREAT, STDERR_FILENO);
  ::execv(program.c_str(), words.data());
  ::_exit(127);
}

SbxProcess::~SbxProcess() {
  if (child_ < 0) return;
  ::kill(child_, SIGKILL);
  ::waitpid(child_, nullptr, 0);
}

void SbxProcess::Interrupt() {
  Signal(SIGINT);
}

void SbxProcess::Signal(int number) {
  ::kill(child_, number);
}

SbxResult SbxProcess::Wait() {
  int status = 0;
  ::waitpid(child_, &status, 0);
  child_ = -1;
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
          hasOut_ ? ReadText(streams_ / "out") : std::string(),
          hasErr_ ? ReadText(streams_ / "err") : std::string()};
}

SbxResult RunSbx(const std::vector<std::string>& arguments, const std::string& folder,
                 const std::string& program) {
  return SbxProcess(arguments, folder, program).Wait();
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace sectorbox::testing
