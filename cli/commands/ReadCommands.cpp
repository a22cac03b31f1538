// The commands that show what is on a disc: its figures, its directories and its files.

#include <algorithm>
#include <array>
#include <cstdio>

#include "cli/program/Dispatch.h"
#include "cli/program/ImageSession.h"
#include "cli/program/Json.h"
#include "cli/program/StartWindow.h"
#include "cli/program/TerminalText.h"
#include "disc/catalogue/Adfs.h"
#include "disc/exchange/HostExchange.h"
#include "disc/format/Text.h"
#include "disc/host/HostFile.h"
#include "disc/store/OpenDisc.h"

namespace sectorbox::cli {
namespace {

// The disc's figures one after the other, as lines or as the fields of an object.
class Figures {
 public:
  explicit Figures(bool json) : json_(json) {}

  void Add(const char* name, const std::string& value) {
    if (json_) {
      object_.Bbc(name, value);
    } else {
      PrintLine(std::string(name) + ": " + value);
    }
  }
  void Add(const char* name, std::int64_t value) {
    if (json_) {
      object_.Number(name, value);
    } else {
      Add(name, std::to_string(value));
    }
  }
  void End() const {
    if (json_) PrintJson(object_);
  }

 private:
  bool json_;
  JsonObject object_;
};

void AddGeometry(Disc& disc, Figures& figures) {
  figures.Add("kind", disc.TheDisc.Kind().Name);
  figures.Add("disctype", disc.TheDisc.disctype());
  figures.Add("tracks", disc.TheDisc.mTracks);
  figures.Add("heads", disc.TheDisc.Heads());
  figures.Add("sectors", disc.TheDisc.Sectors());
}

int RunInfo(const CommandLine& line) {
  line.Expect(1, 1);
  ImageSession session(line);
  Disc& disc = session.Open;
  OpenForReading(session, line.Arguments[0]);
  const std::int64_t free = FreeSectors(disc);
  const std::int64_t size = MapDiscSize(disc);
  Figures figures(line.Has("json"));
  AddGeometry(disc, figures);
  figures.Add("size", size);
  figures.Add("free", free * format::kSectorSize);
  figures.Add("used", (size - free) * format::kSectorSize);
  figures.Add("runs", disc.FreeCount);
  figures.Add("boot", ReadMap(disc).BootOption());
  figures.Add("title", GetDirTitle(disc, format::kRootSector));
  figures.End();
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
  const bool json = line.Has("json");
  JsonList list;
  std::int32_t parent = -1;
  std::string front;  // the path of that parent, with a dot behind it
  for (const TreeNode& node : tree) {
    if (node.Parent != parent) {
      parent = node.Parent;
      front = PathOf(tree, tree[static_cast<std::size_t>(parent)]) + ".";
    }
    const std::string path = node.Parent < 0 ? "$" : front + node.Text;
    if (json) {
      list.Add(JsonObject().Bbc("path", path).Number("sector", node.Tag));
      continue;
    }
    PrintBytes(ShownOnOutput(path) + "\t" + Hex(static_cast<std::uint32_t>(node.Tag), 6) + "\n");
  }
  if (json) list.End();
  return session.Host.LeftOut ? kRefused : StatusOf(session);
}

// Two decimal digits in one byte, as a number.
std::int64_t NumberOfDigits(std::uint8_t digits) {
  return (digits >> 4) * 10 + (digits & 15);
}

// A directory has no addresses and no length; its start sector stands under the heading Sector.
JsonObject JsonOf(const ListRow& row) {
  const Entry& entry = row.Item;
  JsonObject object;
  object.Bbc("name", row.Name()).Bbc("attr", row.Attr());
  object.Number("seq", NumberOfDigits(entry.Sequence()));
  if (row.IsDirectory()) {
    object.Null("load").Null("exec").Null("size");
  } else {
    object.Number("load", entry.Load()).Number("exec", entry.Exec()).Number("size", row.Length());
  }
  return object.Number("sector", row.StartSector());
}

void PrintRow(const ListRow& row) {
  std::string text = ShownOnOutput(row.Columns[0]);
  for (std::size_t column = 1; column < kColumns; ++column) text += "\t" + row.Columns[column];
  PrintBytes(text + "\n");
}

int RunLs(const CommandLine& line) {
  line.Expect(1, 2);
  ImageSession session(line);
  OpenForReading(session, line.Arguments[0]);
  const std::string path = line.Arguments.size() > 1 ? line.Arguments[1] : "$";
  const PathTarget target = RequireDirectory(session.Open, path);
  const bool json = line.Has("json");
  JsonList list;
  for (const ListRow& row : ReadRows(session.Open, target.Sector)) {
    if (json) {
      list.Add(JsonOf(row));
    } else {
      PrintRow(row);
    }
  }
  if (json) list.End();
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
      {"info", "IMAGE [--json]", "the disc's figures, as name: value lines", {"json"}, RunInfo},
      {"tree", "IMAGE [--json]", "every directory, with its start sector", {"json"}, RunTree},
      {"ls",
       "IMAGE [DIR] [--json]",
       "the entries of a directory, columns with TABs between",
       {"json"},
       RunLs},
      {"get", "IMAGE PATH [-o FILE]", "a file's bytes", {"o"}, RunGet},
      {"open", "IMAGE", "open the image in the window program", {}, RunOpen},
  };
}

}  // namespace sectorbox::cli
