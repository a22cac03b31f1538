// Lists cards, and works on whole partitions. Here DEVICE,P is written without "cf:".

#include <algorithm>
#include <array>

#include "cfcard/cards/FormatCF.h"
#include "cfcard/cards/ScanCFCards.h"
#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "cli/program/TerminalText.h"
#include "disc/format/Text.h"
#include "disc/host/HostFile.h"
#include "disc/host/HostSignals.h"
#include "disc/image/NoAdfsDisc.h"
#include "disc/image/SaveImage.h"

namespace sectorbox::cli {
namespace {

constexpr std::size_t kFirstWord = 1;  // the argument behind "scan" or another such word

// Shows a format as a progress line.
class FormatLine : public FormatView {
 public:
  explicit FormatLine(CliHost& host) : host_(host) {}
  void FormatStarted() override {}
  void ShowFormat(const std::string& line, double percent) override {
    host_.ShowProgress(line, percent);
  }

 private:
  CliHost& host_;
};

// Opens a partition for work on all of it. From then on Ctrl-C ends the command.
void OpenWhole(Disc& disc, const std::string& name) {
  CatchInterrupt();
  OpenCard(disc, name);
  if (disc.TheDisc.DiscSize() <= 0) throw Failure(name + ": the card has no such partition");
}

// Checks a capacity: "64MB", as the window's dialog lists it, or "64".
std::string RequireCapacity(const std::string& word) {
  const auto digits = std::min(word.find_first_not_of("0123456789"), word.size());
  const std::string unit = UpperCase(word.substr(digits));
  const bool isZero = word.find_first_not_of('0') == digits;
  if (digits == 0 || isZero || !(unit.empty() || unit == "MB")) {
    throw UsageError("a capacity is a number of megabytes above 0, such as 64MB");
  }
  return word;
}

// Tells the user if what is to be copied is no disc. Failure then, unless the call has --force.
void AllowNoDisc(const CommandLine& line, CliHost& host, bool isDisc, const std::string& path) {
  if (isDisc) return;
  if (!line.Has("force")) throw Failure(NoAdfsDiscText(path));
  host.Note(NoAdfsDiscText(path));
}

CardSource SourceOf(const std::string& path) {
  return {path, path, path};
}

int RunScan(const CommandLine& line) {
  ImageSession session(line);
  std::vector<CardSource> sources;
  for (std::size_t i = kFirstWord; i < line.Arguments.size(); ++i) {
    sources.push_back(SourceOf(line.Arguments[i]));
  }
  if (sources.empty()) {
    for (const BlockDevice& device : MakeHostBlockDevices()->List()) {
      if (device.Type == kRemovableDrive) sources.push_back(SourceOf(device.Path));
    }
  }
  const CardScan scan = ScanCards(session.Open, sources, line.Has("non-adfs"));
  for (const std::string& row : scan.Rows) PrintBytes(ShownOnOutput(row) + "\n");
  if (scan.Rows.empty()) session.Host.Note(kNoCardText);
  // If the user has named a device that can't be opened, that is a failure. If the command has
  // found the device itself on this machine, it isn't.
  return scan.AllOpened || line.Arguments.size() == kFirstWord ? kDone : kRefused;
}

int RunFormat(const CommandLine& line) {
  line.Expect(3, 3);
  const std::string capacity = RequireCapacity(line.Arguments[2]);
  ImageSession session(line);
  Disc& disc = session.Open;
  OpenWhole(disc, line.Arguments[1]);
  FormatLine view(session.Host);
  disc.ProgressRunning = true;
  FormatCFDisc(disc, view, capacity, line.Has("quick"));
  session.Host.CloseProgress();
  return disc.ProgressRunning ? StatusOf(session) : kRefused;
}

int RunBackup(const CommandLine& line) {
  line.Expect(3, 3);
  ImageSession session(line);
  OpenWhole(session.Open, line.Arguments[1]);
  // How much of it is used can be told of a disc only.
  if (!line.Has("full"))
    AllowNoDisc(line, session.Host, IsAdfsDisc(session.Open), line.Arguments[1]);
  SaveDatImage(session.Open, line.Arguments[2], line.Has("full"));
  return StatusOf(session);
}

int RunRestore(const CommandLine& line) {
  line.Expect(3, 3);
  const std::string& file = line.Arguments[2];
  if (!HostFileExists(file)) throw Failure("File Not Found : " + file);
  // A pipe has no length, so nothing would be restored from it.
  if (!HostFileIsPlain(file)) throw Failure(file + ": not a plain file");
  ImageSession session(line);
  Disc& disc = session.Open;
  OpenWhole(disc, line.Arguments[1]);
  // RestoreImage itself refuses the card.
  const bool isDisc = disc.TheDisc.IsOpenMedium(file) || FileHoldsAdfsDisc(file);
  AllowNoDisc(line, session.Host, isDisc, file);
  const std::int64_t room = std::int64_t{disc.TheDisc.DiscSize()} * format::kSectorSize;
  const bool fits = HostFileLength(file) <= static_cast<std::uint64_t>(room);
  const RestoreEnd end = RestoreImage(disc, file);
  disc.TheDisc.CloseFile();
  return fits && end == RestoreEnd::kDone ? StatusOf(session) : kRefused;
}

struct CardCommand {
  const char* Name;
  std::array<const char*, 2> Options;  // those that it takes; empty for none
  int (*Run)(const CommandLine& line);
};
constexpr std::array<CardCommand, 4> kCardCommands = {{
    {"scan", {"non-adfs", ""}, RunScan},
    {"format", {"quick", ""}, RunFormat},
    {"backup", {"full", "force"}, RunBackup},
    {"restore", {"force", ""}, RunRestore},
}};

int RunCF(const CommandLine& line) {
  const std::string what = line.Arguments.empty() ? "" : line.Arguments[0];
  for (const CardCommand& command : kCardCommands) {
    if (what != command.Name) continue;
    line.ExpectOptions({command.Options.begin(), command.Options.end()}, "cf " + what);
    return command.Run(line);
  }
  throw UsageError("cf is followed by scan, format, backup or restore");
}

}  // namespace

std::vector<Command> CardCommands() {
  return {
      {"cf",
       "scan [--non-adfs] [DEVICE...] | format DEVICE,P CAPACITY [--quick] | "
       "backup DEVICE,P FILE [--full] [--force] | restore DEVICE,P FILE [--force]",
       "cards: list their partitions, format, back up, restore",
       {"non-adfs", "quick", "full", "force"},
       RunCF},
  };
}

}  // namespace sectorbox::cli
