// Changing a disc. Each command runs the operation that the window's command runs.

#include <array>
#include <optional>

#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/change/Addresses.h"
#include "disc/change/Compaction.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "disc/format/Text.h"
#include "disc/host/HostPath.h"
#include "disc/image/Resize.h"

namespace sectorbox::cli {
namespace {

constexpr std::size_t kAnyNumber = SIZE_MAX;
constexpr std::int32_t kHeads = 4;
constexpr std::int32_t kSectors = 33;

// The entry that PATH names. Failure for the root, which has none.
PathTarget RequireEntry(Disc& disc, const std::string& path) {
  PathTarget target = RequirePath(disc, path);
  if (target.Slot < 0) throw Failure("Not an entry of a directory: " + path);
  return target;
}

// The start sector of a directory that is to be changed. Failure if it lacks its mark, as in a file
// that is no disc: the bytes there belong to something else.
std::int32_t RequireMarkedDirectory(Disc& disc, const std::string& path) {
  const std::int32_t sector = RequireDirectory(disc, path).Sector;
  if (!IsDirectory(disc, sector)) throw Failure("Not a directory: " + path);
  return sector;
}

int RunAdd(const CommandLine& line) {
  line.Expect(3, kAnyNumber);
  return RunWriting(line, line.Arguments[0], [&](Disc& disc, CliHost&) {
    const std::int32_t dir = RequireMarkedDirectory(disc, line.Arguments[1]);
    // After a refusal the image of a floppy isn't stored.
    const bool drops = disc.TheDisc.InMemory();
    return AddFiles(disc, dir, {line.Arguments.begin() + 2, line.Arguments.end()},
                    drops ? AfterRefusal::kDropsAll : AfterRefusal::kStays) == Outcome::kDone;
  });
}

void ExportOne(Disc& disc, const PathTarget& target, const std::string& folder) {
  const Entry entry = DirectoryAt(disc, target.DirSector).At(target.Slot);
  ExportEntry(disc, JoinHostPath(folder, AdfsToHostName(entry.Name())), entry);
}

int RunExport(const CommandLine& line) {
  line.Expect(3, 3);
  ImageSession session(line);
  OpenForReading(session, line.Arguments[0]);
  const PathTarget target = RequirePath(session.Open, line.Arguments[1]);
  if (target.IsDirectory) {
    ExportDisc(session.Open, line.Arguments[2], target.Sector);
  } else {
    ExportOne(session.Open, target, line.Arguments[2]);
  }
  const bool whole = !session.Host.MessageShown && !session.Host.LeftOut;
  return whole ? StatusOf(session) : kRefused;
}

bool DeletePath(Disc& disc, const CliHost& host, const std::string& path) {
  const PathTarget target = RequirePath(disc, path);
  const Outcome outcome = target.IsDirectory
                              ? DeleteTree(disc, target.DirSector, target.Sector, target.Name,
                                           host.DeleteLocked(), host.DeleteNonEmpty())
                              : DeleteEntry(disc, target.DirSector, target.Name, false,
                                            host.DeleteLocked(), target.Sector);
  return outcome == Outcome::kDone;
}

int RunDelete(const CommandLine& line) {
  line.Expect(2, kAnyNumber);
  return RunWriting(line, line.Arguments[0], [&](Disc& disc, CliHost& host) {
    for (std::size_t i = 1; i < line.Arguments.size(); ++i) {
      if (!DeletePath(disc, host, line.Arguments[i])) return false;
    }
    return true;
  });
}

int RunRename(const CommandLine& line) {
  line.Expect(3, 3);
  return RunWriting(line, line.Arguments[0], [&](Disc& disc, CliHost& host) {
    const PathTarget target = RequireEntry(disc, line.Arguments[1]);
    return RenameEntry(disc, line.Arguments[2], target.Name, target.DirSector, host.DeleteLocked(),
                       target.Sector) == Outcome::kDone;
  });
}

int RunMkdir(const CommandLine& line) {
  line.Expect(3, 3);
  return RunWriting(line, line.Arguments[0], [&](Disc& disc, CliHost&) {
    const std::int32_t dir = RequireMarkedDirectory(disc, line.Arguments[1]);
    return NewDirectory(disc, dir, line.Arguments[2]).has_value();
  });
}

int RunAccess(const CommandLine& line) {
  line.Expect(3, 3);
  const std::string letters = UpperCase(line.Arguments[2]);
  const bool known =
      letters == "-" || (!letters.empty() && letters.find_first_not_of("RWL") == std::string::npos);
  if (!known) throw UsageError("access: LETTERS are any of R W L, or - for none");
  const auto has = [&](char letter) { return letters.find(letter) != std::string::npos; };
  return RunWriting(line, line.Arguments[0], [&](Disc& disc, CliHost&) {
    const PathTarget target = RequireEntry(disc, line.Arguments[1]);
    return SetEntryAttributes(disc, target.DirSector, target.Name, has('R'), has('W'), has('L'),
                              target.Sector) == Outcome::kDone;
  });
}

int RunAddress(const CommandLine& line) {
  line.Expect(4, 4);
  return RunWriting(line, line.Arguments[0], [&](Disc& disc, CliHost& host) {
    const PathTarget target = RequireFile(disc, line.Arguments[1]);
    std::string load = line.Arguments[2];
    std::string exec = line.Arguments[3];
    const std::string message = CheckAddresses(load, exec);
    if (!message.empty()) {
      host.ShowMessage(message);
      return false;
    }
    return SetEntryAddresses(disc, target.DirSector, target.Name, load, exec, target.Sector) ==
           Outcome::kDone;
  });
}

int RunTitle(const CommandLine& line) {
  line.Expect(3, 3);
  return RunWriting(line, line.Arguments[0], [&](Disc& disc, CliHost&) {
    const std::int32_t sector = RequireMarkedDirectory(disc, line.Arguments[1]);
    return SetDirTitle(disc, sector, line.Arguments[2]) == Outcome::kDone;
  });
}

std::uint8_t BootOptionOf(const std::string& word) {
  constexpr std::array<const char*, 4> kWords = {"off", "load", "run", "exec"};
  for (std::size_t i = 0; i < kWords.size(); ++i) {
    if (word == kWords[i]) return static_cast<std::uint8_t>(i);
  }
  throw UsageError("boot: the option is off, load, run or exec");
}

int RunBoot(const CommandLine& line) {
  line.Expect(2, 2);
  const std::uint8_t option = BootOptionOf(line.Arguments[1]);
  return RunWriting(line, line.Arguments[0], [&](Disc& disc, CliHost&) {
    // Unlike in the window, nothing else will write the map afterwards, and with a stale checksum
    // the BBC would refuse the disc.
    return SetBootOption(disc, option, MapSums::kUpdate) == Outcome::kDone;
  });
}

int RunCompact(const CommandLine& line) {
  line.Expect(1, 1);
  return RunWriting(line, line.Arguments[0],
                    [&](Disc& disc, CliHost&) { return CompactDisc(disc) == Outcome::kDone; });
}

int RunResize(const CommandLine& line) {
  line.Expect(2, 2);
  const std::optional<std::int32_t> tracks = TracksOfMegabytes(line.Arguments[1]);
  if (!tracks) throw Failure("Not a number: " + line.Arguments[1]);
  ImageSession session(line);
  ResizeImageFile(session.Open, line.Arguments[0], *tracks, kHeads, kSectors);
  return session.Host.MessageShown ? kRefused : kDone;
}

}  // namespace

std::vector<Command> WriteCommands() {
  return {
      {"add",
       "IMAGE DIR HOSTPATH...",
       "add files and folders of the host, with their sidecars",
       {},
       RunAdd},
      {"export",
       "IMAGE PATH FOLDER",
       "write a file, or what is in a directory, to a folder of the host, with sidecars",
       {},
       RunExport},
      {"delete", "IMAGE PATH...", "delete files and directories", {}, RunDelete},
      {"rename", "IMAGE PATH NEWNAME", "give a file or directory another name", {}, RunRename},
      {"mkdir", "IMAGE DIR NAME", "make a directory", {}, RunMkdir},
      {"access",
       "IMAGE PATH LETTERS",
       "set the attributes: any of R W L, or - for none",
       {},
       RunAccess},
      {"address", "IMAGE PATH LOAD EXEC", "set a file's load and exec addresses", {}, RunAddress},
      {"title", "IMAGE DIR TITLE", "set a directory's title", {}, RunTitle},
      {"boot", "IMAGE off|load|run|exec", "set what Shift-Break does", {}, RunBoot},
      {"compact", "IMAGE", "close up the holes on the disc", {}, RunCompact},
      {"resize", "IMAGE MEGABYTES", "change the recorded size of a hard disc image", {}, RunResize},
  };
}

}  // namespace sectorbox::cli
