#include "tests/support/RunSbx.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>

#include "tests/support/TempFolder.h"

namespace sectorbox::testing {
namespace {

void Redirect(const char* path, int flags, int descriptor) {
  const int file = ::open(path, flags, 0600);
  if (file < 0 || ::dup2(file, descriptor) < 0) ::_exit(126);
  ::close(file);
}

}  // namespace

SbxResult RunSbx(const std::vector<std::string>& arguments, const std::string& folder,
                 const std::string& program) {
  const TempFolder streams;
  const std::string out = streams / "out";
  const std::string err = streams / "err";
  std::vector<char*> words = {const_cast<char*>(program.c_str())};
  for (const auto& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);

  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no process for sbx");
  if (child == 0) {
    if (!folder.empty() && ::chdir(folder.c_str()) != 0) ::_exit(126);
    Redirect("/dev/null", O_RDONLY, STDIN_FILENO);
    Redirect(out.c_str(), O_WRONLY | O_CREAT, STDOUT_FILENO);
    Redirect(err.c_str(), O_WRONLY | O_CREAT, STDERR_FILENO);
    ::execv(program.c_str(), words.data());
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), ReadText(out),
          ReadText(err)};
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace sectorbox::testing
