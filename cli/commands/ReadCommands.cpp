// The commands that show what is on a disc: its figures, its directories, its files and its faults.

#include <algorithm>
#include <array>
#include <cstdio>

#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "cli/program/StartWindow.h"
#include "cli/program/TerminalText.h"
#include "disc/catalogue/Adfs.h"
#include "disc/exchange/HostExchange.h"
#include "disc/format/Text.h"
#include "disc/health/Check.h"
#include "disc/host/HostFile.h"
#include "disc/store/OpenDisc.h"

namespace sectorbox::cli {
namespace {

// Prints a line. Names and titles in it may hold any byte.
void PrintLine(const std::string& line) {
  PrintBytes(ShownOnOutput(line) + "\n");
}

void PrintValue(const char* name, const std::string& value) {
  PrintLine(std::string(name) + ": " + value);
}

void PrintValue(const char* name, std::int64_t value) {
  PrintValue(name, std::to_string(value));
}

void PrintGeometry(Disc& disc) {
  PrintValue("kind", disc.TheDisc.Kind().Name);
  PrintValue("disctype", disc.TheDisc.disctype());
  PrintValue("tracks", disc.TheDisc.mTracks);
  PrintValue("heads", disc.TheDisc.Heads());
  PrintValue("sectors", disc.TheDisc.Sectors());
}

int RunInfo(const CommandLine& line) {
  line.Expect(1, 1);
  ImageSession session(line);
  Disc& disc = session.Open;
  OpenForReading(session, line.Arguments[0]);
  const std::int64_t free = FreeSectors(disc);
  const std::int64_t size = MapDiscSize(disc);
  PrintGeometry(disc);
  PrintValue("size", size);
  PrintValue("free", free * format::kSectorSize);
  PrintValue("used", (size - free) * format::kSectorSize);
  PrintValue("runs", disc.FreeCount);
  PrintValue("boot", ReadMap(disc).BootOption());
  PrintValue("title", GetDirTitle(disc, format::kRootSector));
  return StatusOf(session);
}

// The root is always "$" here, whatever its name field says, so that each path can be an argument
// of other commands.
std::string PathOf(const std::vector<TreeNode>& tree, const TreeNode& node) {
  if (node.Parent < 0) return "$";
  std::string path = PathOf(tree, tree[static_cast<std::size_t>(node.Parent)]);
  path += '.';
  path += node.Text;
  return path;
}

int RunTree(const CommandLine& line) {
  line.Expect(1, 1);
  ImageSession session(line);
  OpenForReading(session, line.Arguments[0]);
  const std::vector<TreeNode> tree = WalkTree(session.Open);
  std::int32_t parent = -1;
  std::string front;  // the path of that parent, with a dot behind it
  for (const TreeNode& node : tree) {
    if (node.Parent != parent) {
      parent = node.Parent;
      front = PathOf(tree, tree[static_cast<std::size_t>(parent)]) + ".";
    }
    const std::string path = node.Parent < 0 ? "$" : front + node.Text;
    PrintBytes(ShownOnOutput(path) + "\t" + Hex(static_cast<std::uint32_t>(node.Tag), 6) + "\n");
  }
  return session.Host.LeftOut ? kRefused : StatusOf(session);
}

int RunLs(const CommandLine& line) {
  line.Expect(1, 2);
  ImageSession session(line);
  OpenForReading(session, line.Arguments[0]);
  const std::string path = line.Arguments.size() > 1 ? line.Arguments[1] : "$";
  const PathTarget target = RequireDirectory(session.Open, path);
  for (const ListRow& row : ReadRows(session.Open, target.Sector)) {
    std::string text = ShownOnOutput(row.Columns[0]);
    for (std::size_t column = 1; column < kColumns; ++column) text += "\t" + row.Columns[column];
    PrintBytes(text + "\n");
  }
  return StatusOf(session);
}

void PrintContents(Disc& disc, std::int32_t sector, std::uint32_t length) {
  const auto print = [](std::span<const std::uint8_t> bytes) {
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  };
  static constexpr std::array<std::uint8_t, 65536> kZeros{};
  for (std::size_t rest = ReadContents(disc, sector, length, print); rest > 0;) {
    const auto part = std::min(rest, kZeros.size());
    print(std::span(kZeros).first(part));
    rest -= part;
  }
}

int RunGet(const CommandLine& line) {
  line.Expect(2, 2);
  ImageSession session(line);
  OpenForReading(session, line.Arguments[0]);
  const PathTarget file = RequireFile(session.Open, line.Arguments[1]);
  const std::uint32_t length = ReadRow(session.Open, file.DirSector, file.Slot).Length();
  if (!line.Has("o")) {
    PrintContents(session.Open, file.Sector, length);
    return StatusOf(session);
  }
  const std::string out = line.Option("o", "");
  RefuseOpenDisc(session.Open, out);
  OutputFile output = CreateOutputFile(out);
  WriteContents(session.Open, output, file.Sector, length);
  output.Close();
  return StatusOf(session);
}

int RunCheck(const CommandLine& line) {
  line.Expect(1, 1);
  ImageSession session(line);
  OpenForReading(session, line.Arguments[0]);
  int status = kDone;
  CheckDisc(session.Open, [&](const Fault& fault) {
    PrintLine((fault.IsError ? "error: " : "warning: ") + fault.Place + ": " + fault.Text);
    if (fault.IsError) status = kRefused;
  });
  return status == kDone ? StatusOf(session) : status;
}

int RunOpen(const CommandLine& line) {
  line.Expect(1, 1);
  const std::string& image = line.Arguments[0];
  if (!HostFileExists(image)) throw Failure("File Not Found : " + image);
  StartWindow(image);
  return kDone;
}

}  // namespace

std::vector<Command> ReadCommands() {
  return {
      {"info", "IMAGE", "the disc's figures, as name: value lines", {}, RunInfo},
      {"tree", "IMAGE", "every directory, with its start sector", {}, RunTree},
      {"ls", "IMAGE [DIR]", "the entries of a directory, columns with TABs between", {}, RunLs},
      {"get", "IMAGE PATH [-o FILE]", "a file's bytes", {"o"}, RunGet},
      {"check",
       "IMAGE",
       "look the disc over for faults; status 1 if there is an error",
       {},
       RunCheck},
      {"open", "IMAGE", "open the image in the window program", {}, RunOpen},
  };
}

}  // namespace sectorbox::cli
