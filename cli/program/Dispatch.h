#pragma once

#include <string>
#include <vector>

#include "cli/program/CommandLine.h"

namespace sectorbox::cli {

inline constexpr int kDone = 0;
inline constexpr int kRefused = 1;
inline constexpr int kBadUsage = 2;

// One command of sbx. Run gives the exit status; HostError and Failure end it with status 1,
// UsageError with status 2, each with its line on standard error.
struct Command {
  std::string Name;
  std::string Arguments;  // as in the help, such as "IMAGE [DIR]"
  std::string Help;       // one line
  // The names of the options that it takes, without their dashes, apart from those that every
  // command takes (CommandLine::ExpectOptions). Any other one is refused.
  std::vector<std::string> Options;
  int (*Run)(const CommandLine& line);
};

// Every command, in the order of the help. Each group has a file of its own.
std::vector<Command> AllCommands();
std::vector<Command> ReadCommands();
std::vector<Command> HealthCommands();
std::vector<Command> ViewCommands();
std::vector<Command> PictureCommands();
std::vector<Command> ImageCommands();
std::vector<Command> WriteCommands();
std::vector<Command> LinkCommands();
std::vector<Command> CardCommands();

// Runs the whole program and gives its exit status. words are the arguments without the program's
// name.
int RunSbx(const std::vector<std::string>& words);

}  // namespace sectorbox::cli
