#include <csignal>
#include <string>
#include <vector>

#include "cli/program/Dispatch.h"

int main(int argc, char** argv) {
  // A file that grows over the user's limit is a failed write with a message, and no sudden death.
  std::signal(SIGXFSZ, SIG_IGN);
  return sectorbox::cli::RunSbx(std::vector<std::string>(argv + 1, argv + argc));
}
