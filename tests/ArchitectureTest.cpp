// The rooms of the tree and the arrows between them, read from the includes of every source.

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// Each room with those it may include, itself apart.
const std::map<std::string, std::set<std::string>> kArrows = {
    {"disc", {}},
    {"viewers", {"disc"}},
    {"link", {"disc"}},
    {"cfcard", {"disc"}},
    {"toolkit", {"disc"}},
    {"cli", {"disc", "viewers", "link", "cfcard"}},
    {"shell", {"disc", "viewers", "link", "cfcard", "toolkit"}},
};
// Each inner room with the inner rooms of the same room that it may include, itself apart. The
// files of disc/host/linux and the like belong to the inner room that they lie in. A room without
// folders has no line.
const std::map<std::string, std::map<std::string, std::set<std::string>>> kInnerArrows = {
    {"disc",
     {
         {"ask", {}},
         {"host", {}},
         {"format", {}},
         {"medium", {"ask", "host", "format"}},
         {"store", {"ask", "host", "format", "medium"}},
         {"catalogue", {"ask", "format", "store"}},
         {"change", {"ask", "format", "store", "catalogue"}},
         {"exchange", {"ask", "host", "format", "store", "catalogue", "change"}},
         {"undo", {"host", "medium", "store", "catalogue", "change"}},
         {"image", {"ask", "host", "format", "medium", "store", "catalogue"}},
         {"health", {"ask", "host", "format", "medium", "store", "catalogue"}},
     }},
    {"viewers",
     {
         {"text", {}},
         {"picture", {}},
         {"wordwise", {"text"}},
         {"table", {"text", "wordwise"}},
         {"windows", {"text", "picture", "wordwise", "table"}},
     }},
    {"link",
     {
         {"wire", {}},
         {"transfer", {"wire"}},
         {"windows", {"wire", "transfer"}},
     }},
    {"cfcard",
     {
         {"cards", {}},
         {"windows", {"cards"}},
     }},
    {"cli",
     {
         {"program", {}},
         {"commands", {"program"}},
     }},
    {"shell",
     {
         {"icons", {}},
         {"window", {}},
         {"dialogs", {"icons"}},
         {"panes", {"icons", "window"}},
         {"commands", {"icons", "window", "dialogs", "panes"}},
         {"program", {"icons", "window", "dialogs", "panes", "commands"}},
     }},
};
// Rooms of plain logic, whose windows are the files named frm*.
const std::set<std::string> kLogic = {"disc", "viewers", "link", "cfcard", "cli"};

struct Include {
  std::string Room;
  fs::path File;
  std::string Name;
  bool Quoted = false;

  bool InWindow() const {
    return kLogic.count(Room) == 0 || File.filename().string().rfind("frm", 0) == 0;
  }
};

std::vector<Include> AllIncludes() {
  std::vector<Include> includes;
  for (const auto& [room, arrows] : kArrows) {
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(SOURCE_FOLDER) / room)) {
      const auto extension = entry.path().extension();
      if (extension != ".cpp" && extension != ".h") continue;
      std::ifstream file(entry.path());
      for (std::string line; std::getline(file, line);) {
        // The tree is formatted: every include is written this way.
        constexpr std::size_t kBegin = 10;
        if (line.rfind("#include ", 0) != 0 || line.size() < kBegin) continue;
        const auto end = line.find_first_of(">\"", kBegin);
        includes.push_back(
            {room, entry.path(), line.substr(kBegin, end - kBegin), line[kBegin - 1] == '"'});
      }
    }
  }
  return includes;
}

TEST(Architecture, ArrowsPointDownOnly) {
  const auto includes = AllIncludes();
  ASSERT_GT(includes.size(), 100U);
  for (const Include& include : includes) {
    const auto slash = include.Name.find('/');
    const std::string room = include.Name.substr(0, slash);
    if (!include.Quoted || slash == std::string::npos || room == include.Room) continue;
    if (kArrows.count(room) == 0) continue;
    const bool windowOverToolkit = include.InWindow() && room == "toolkit";
    EXPECT_TRUE(kArrows.at(include.Room).count(room) == 1 || windowOverToolkit)
        << include.File << " includes " << include.Name;
  }
}

// The inner room of a path below the tree's root, "" for a file that lies in the room itself.
std::string InnerRoom(const fs::path& path) {
  auto part = path.begin();
  if (part == path.end() || ++part == path.end()) return "";
  const std::string inner = part->string();
  return ++part == path.end() ? "" : inner;
}

TEST(Architecture, InnerArrowsPointDownOnly) {
  std::size_t checked = 0;
  for (const Include& include : AllIncludes()) {
    const fs::path name = include.Name;
    if (!include.Quoted || kInnerArrows.count(include.Room) == 0) continue;
    if (name.begin()->string() != include.Room) continue;
    const std::string from = InnerRoom(fs::relative(include.File, SOURCE_FOLDER));
    const std::string to = InnerRoom(name);
    if (from == to) continue;
    ++checked;
    const auto& arrows = kInnerArrows.at(include.Room);
    const auto allowed = arrows.find(from);
    EXPECT_TRUE(allowed != arrows.end() && allowed->second.count(to) == 1)
        << include.File << " includes " << include.Name;
  }
  EXPECT_GT(checked, 100U);
}

// A source includes by the path from the tree's root, which the tests of the arrows read.
TEST(Architecture, EveryIncludeNamesItsRoom) {
  for (const Include& include : AllIncludes()) {
    const bool generated = include.File.stem().string() + ".moc" == include.Name;
    EXPECT_TRUE(!include.Quoted || generated || fs::exists(fs::path(SOURCE_FOLDER) / include.Name))
        << include.File << " includes " << include.Name;
  }
}

TEST(Architecture, EveryInnerFolderHasArrows) {
  for (const auto& [room, arrows] : kArrows) {
    const auto inner = kInnerArrows.find(room);
    std::set<std::string> folders;
    for (const auto& entry : fs::directory_iterator(fs::path(SOURCE_FOLDER) / room)) {
      if (entry.is_directory()) folders.insert(entry.path().filename().string());
    }
    std::set<std::string> known;
    if (inner != kInnerArrows.end()) {
      for (const auto& [folder, targets] : inner->second) known.insert(folder);
    }
    EXPECT_EQ(folders, known) << "the folders of " << room;
  }
}

// Takes away every room whose arrows all lead to rooms that are gone, until none goes. What stays
// stands on a circle or above one.
std::set<std::string> RoomsOnACircle(std::map<std::string, std::set<std::string>> arrows) {
  for (bool goes = true; goes;) {
    goes = false;
    for (auto room = arrows.begin(); room != arrows.end();) {
      bool leadsOn = false;
      for (const std::string& target : room->second) leadsOn |= arrows.count(target) == 1;
      goes |= !leadsOn;
      room = leadsOn ? std::next(room) : arrows.erase(room);
    }
  }
  std::set<std::string> left;
  for (const auto& [room, targets] : arrows) left.insert(room);
  return left;
}

TEST(Architecture, NoArrowsMakeACircle) {
  const std::set<std::string> circle = {"a", "b"};
  ASSERT_EQ(RoomsOnACircle({{"a", {"b"}}, {"b", {"a"}}, {"c", {}}}), circle);
  EXPECT_TRUE(RoomsOnACircle(kArrows).empty());
  for (const auto& [room, arrows] : kInnerArrows) {
    EXPECT_EQ(RoomsOnACircle(arrows), std::set<std::string>{}) << room;
    for (const auto& [inner, targets] : arrows) {
      for (const std::string& target : targets) {
        EXPECT_EQ(arrows.count(target), 1U) << room << '/' << inner << " -> " << target;
      }
    }
  }
}

TEST(Architecture, OnlyWindowsIncludeQt) {
  for (const Include& include : AllIncludes()) {
    const bool isQt = !include.Quoted && include.Name.size() > 1 && include.Name[0] == 'Q' &&
                      std::isupper(static_cast<unsigned char>(include.Name[1])) != 0;
    EXPECT_FALSE(isQt && !include.InWindow()) << include.File << " includes " << include.Name;
  }
}

// True for a header of one operating system, which other systems don't have or fill differently.
bool IsSystemHeader(const std::string& name) {
  static const std::set<std::string> kHeaders = {
      "unistd.h", "fcntl.h", "termios.h", "signal.h",  "csignal", "dirent.h", "spawn.h",
      "poll.h",   "glob.h",  "pwd.h",     "pthread.h", "sched.h", "syslog.h", "windows.h"};
  const auto slash = name.find('/');
  const std::string folder = slash == std::string::npos ? "" : name.substr(0, slash);
  return kHeaders.count(name) == 1 || folder == "sys" || folder == "linux";
}

bool IsForOneSystem(const fs::path& file) {
  return file.parent_path().filename() == "linux";
}

TEST(Architecture, OnlyFilesInLinuxFoldersCallTheSystem) {
  for (const Include& include : AllIncludes()) {
    EXPECT_FALSE(IsSystemHeader(include.Name) && !IsForOneSystem(include.File))
        << include.File << " includes " << include.Name;
  }
}

// Files and their errors are reached through disc/host alone.
TEST(Architecture, OnlyTheRoomOfTheHostUsesTheHostsFiles) {
  for (const Include& include : AllIncludes()) {
    if (include.Name != "filesystem" && include.Name != "cerrno") continue;
    EXPECT_TRUE(IsForOneSystem(include.File) || include.File.parent_path().filename() == "host")
        << include.File << " includes " << include.Name;
  }
}

// What a linux folder declares is for its own room's system files: everybody else includes the
// header beside that folder.
TEST(Architecture, NobodyElseIncludesWhatIsForOneSystem) {
  for (const Include& include : AllIncludes()) {
    EXPECT_FALSE(include.Quoted && IsForOneSystem(include.Name) && !IsForOneSystem(include.File))
        << include.File << " includes " << include.Name;
  }
}

TEST(Architecture, LogicIncludesNoWindow) {
  for (const Include& include : AllIncludes()) {
    if (!include.Quoted || include.InWindow()) continue;
    EXPECT_EQ(fs::path(include.Name).filename().string().rfind("frm", 0), std::string::npos)
        << include.File << " includes " << include.Name;
  }
}

TEST(Architecture, NoSourceCallsOutForTheTests) {
  for (const Include& include : AllIncludes()) {
    EXPECT_NE(include.Name.rfind("tests/", 0), 0U) << include.File;
  }
}

}  // namespace
