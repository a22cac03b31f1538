// The rooms of the tree and the arrows between them, read from the includes of every source.

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
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
