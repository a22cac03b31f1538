#include "cli/program/Dispatch.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>

#include "cli/program/TerminalText.h"
#include "disc/host/HostError.h"

namespace sectorbox::cli {
namespace {

void PrintHelp(const std::vector<Command>& commands) {
  std::puts("sbx: ADFS discs of the BBC Micro at the command line");
  std::puts("Usage: sbx [OPTIONS] COMMAND ARGUMENTS...\n");
  for (const Command& command : commands) {
    std::printf("  %-10s %-36s %s\n", command.Name.c_str(), command.Arguments.c_str(),
                command.Help.c_str());
  }
  std::puts(
      "\nOptions: --pad on|off, --interleave on|off, --delete-locked on|off,\n"
      "  --overwrite-locked on|off, --delete-non-empty on|off; views take -o FILE.\n"
      "--json gives one JSON value, for programs to read.\n"
      "IMAGE is an image file, or cf:DEVICE,P for partition P (0 or 1) of a card.\n"
      "`sbx COMMAND --help` tells about one command; `sbx --version` the version.");
}

int Complain(int status, const char* what) {
  PrintErrorLine(what);
  return status;
}

int Run(const std::vector<std::string>& words) {
  const CommandLine line = ParseCommandLine(words);
  const std::vector<Command> commands = AllCommands();
  if (line.Has("version")) {
    std::puts("sbx " SECTORBOX_VERSION);
    return kDone;
  }
  if (line.Command.empty()) {
    if (!line.Has("help")) throw UsageError("a command is missing; try sbx --help");
    PrintHelp(commands);
    return kDone;
  }
  const auto command = std::find_if(commands.begin(), commands.end(),
                                    [&](const Command& c) { return line.Command == c.Name; });
  if (command == commands.end()) throw UsageError("unknown command: " + line.Command);
  if (line.Has("help")) {
    std::printf("Usage: sbx %s %s\n%s\n", command->Name.c_str(), command->Arguments.c_str(),
                command->Help.c_str());
    return kDone;
  }
  line.ExpectOptions(command->Options, line.Command);
  return command->Run(line);
}

}  // namespace

std::vector<Command> AllCommands() {
  std::vector<Command> all;
  for (const auto& group : {ReadCommands(), HealthCommands(), ViewCommands(), PictureCommands(),
                            ImageCommands(), WriteCommands(), LinkCommands(), CardCommands()})
    all.insert(all.end(), group.begin(), group.end());
  return all;
}

int RunSbx(const std::vector<std::string>& words) {
  int status = kDone;
  try {
    status = Run(words);
  } catch (const UsageError& error) {
    status = Complain(kBadUsage, error.what());
  } catch (const Failure& error) {
    status = Complain(kRefused, error.what());
  } catch (const HostError& error) {
    status = Complain(kRefused, error.what());
  } catch (const std::bad_alloc&) {
    status = Complain(kRefused, "out of memory");
  } catch (const std::exception& error) {
    // A library has thrown an exception. The program still ends with a line and a status.
    status = Complain(kRefused, error.what());
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
    status = Complain(kRefused, "standard output: write error");
  return status;
}

}  // namespace sectorbox::cli
