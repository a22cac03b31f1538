#include <cstdio>
#include <string>

#include "cli/program/CliLinkHost.h"
#include "cli/program/Dispatch.h"
#include "cli/program/TerminalText.h"
#include "link/transfer/Bootstrap.h"
#include "link/transfer/ReceiveImage.h"
#include "link/transfer/SendImage.h"
#include "link/transfer/StarCommand.h"
#include "link/wire/Commands.h"

namespace sectorbox::cli {
namespace {

std::int32_t DriveOf(const std::string& word) {
  if (word == "0" || word == "1" || word == "4" || word == "5") return word[0] - '0';
  throw UsageError("DRIVE is 0, 1, 4 or 5");
}

// Gives the exit status of a command. An aborted command has shown no message, so this prints one.
// A transfer that gave sectors up isn't done; the host has told how many they are.
int EndOf(const CliLink& connection, bool done, const char* aborted = "Transfer Aborted") {
  if (!done && !connection.Host.MessageShown) PrintErrorLine(aborted);
  const CliLinkHost& host = connection.Host;
  return done && !host.MessageShown && host.Counters.GivenUp == 0 ? kDone : kRefused;
}

int RunReceive(const CommandLine& line) {
  line.Expect(2, 2);
  const std::int32_t drive = DriveOf(line.Arguments[0]);
  CliLink connection(line);
  connection.Host.FileAnswer = line.Arguments[1];
  std::string fileName;
  return EndOf(connection,
               ReceiveImage(connection.TheLink, drive, line.Has("data-only"), fileName));
}

int RunSend(const CommandLine& line) {
  line.Expect(2, 2);
  const std::int32_t drive = DriveOf(line.Arguments[0]);
  CliLink connection(line);
  connection.Host.FileAnswer = line.Arguments[1];
  SendImage(connection.TheLink, drive, line.Has("data-only"));
  return EndOf(connection, connection.Host.Finished);
}

// The BBC ends a line with LF and CR, and the console makes CR LF of the CR; here the
// three make one line end, and a lone CR makes one too.
class PlainLines {
 public:
  void Print(const std::string& text) {
    for (const char c : text) {
      if (c == '\r') {
        endedByLF_ = previous_ == '\n';
      } else if (c != '\n' || previous_ != '\r' || !endedByLF_) {
        PrintBytes(c == '\n' ? "\n" : ShownOnOutput(std::string(1, c)));
      }
      previous_ = c == '\n' && previous_ == '\r' ? '\0' : c;
    }
    std::fflush(stdout);
  }

 private:
  char previous_ = '\0';
  bool endedByLF_ = false;
};

int RunStar(const CommandLine& line) {
  line.Expect(1, 1);
  CliLink connection(line);
  PlainLines output;
  const bool done = Reconnect(connection.TheLink) &&
                    RunStarCommand(connection.TheLink, line.Arguments[0],
                                   [&](const std::string& text) { output.Print(text); });
  return EndOf(connection, done && !connection.Host.WasInterrupted, "Command Aborted");
}

int RunBootstrap(const CommandLine& line) {
  line.Expect(1, 1);
  const std::string& which = line.Arguments[0];
  if (which != "basic" && which != "format") throw UsageError("bootstrap takes basic or format");
  CliLink connection(line);
  const auto progress = [&](double percent) {
    connection.Host.ShowProgressLine("Sending (" + std::to_string(static_cast<int>(percent)) +
                                     "%)");
  };
  const auto send = which == "basic" ? SendBasicProgram : SendFormatProgram;
  send(connection.TheLink, progress);
  connection.Host.ShowProgressLine("");
  return EndOf(connection, !connection.Host.WasInterrupted);
}

}  // namespace

std::vector<Command> LinkCommands() {
  return {
      {"receive",
       "DRIVE FILE [--data-only] [--check]",
       "copy a drive of the BBC into an image; also --port --speed --trace",
       {"data-only", "check", "port", "speed", "trace"},
       RunReceive},
      {"send",
       "DRIVE FILE [--data-only] [--check]",
       "write an image onto a drive of the BBC; also --port --speed --trace",
       {"data-only", "check", "port", "speed", "trace"},
       RunSend},
      {"star",
       "COMMAND",
       "run a star command on the BBC; also --port --speed --trace",
       {"port", "speed", "trace"},
       RunStar},
      {"bootstrap",
       "basic|format",
       "send the first program to a bare BBC; also --port --speed --trace",
       {"port", "speed", "trace"},
       RunBootstrap},
  };
}

}  // namespace sectorbox::cli
