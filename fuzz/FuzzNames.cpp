// Any bytes are names, with line feeds between them: those of one directory that is exported, those
// of host files, those on a disc, and at last a path on that disc.

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/catalogue/Directories.h"
#include "disc/exchange/HostExchange.h"
#include "disc/format/Names.h"
#include "disc/format/Text.h"
#include "fuzz/Require.h"
#include "tests/support/QuietHost.h"

namespace {

using namespace sectorbox;
using fuzz::Require;
using Names = std::vector<std::string>;

constexpr std::int32_t kTracks = 20;
constexpr std::int32_t kSub = 7;
constexpr std::int32_t kContents = 12;

// The name without what the mapping may change: underscores, and characters that have two forms.
std::string Plain(const std::string& name) {
  std::string plain;
  for (char c : name.substr(0, name.find('\0'))) {
    if (c == '_') continue;
    if (c == '.') c = '/';
    if (c == '#') c = '?';
    if (c == '$') c = '<';
    if (c == '^') c = '>';
    plain += c;
  }
  return plain;
}

// A name that a host can't hold, or that means something else there.
bool IsSafe(const std::string& host) {
  const std::string upper = UpperCase(host);
  return host != "." && host != ".." && !upper.ends_with(".INF") &&
         host.find_first_of(std::string("/\0", 2)) == std::string::npos;
}

void MapNames(const Names& names) {
  HostNamesOfFolder folder;
  std::set<std::string> taken;
  for (const std::string& name : names) {
    const std::string host = AdfsToHostName(name);
    Require(IsSafe(host), "a name for the host");
    Require(Plain(HostToAdfsName(host)) == Plain(name), "the way back");
    const std::string unique = folder.Take(name);
    Require(IsSafe(unique) && unique.starts_with(host), "a name of its own");
    Require(taken.insert(unique).second, "each name once");
    Require(HostToAdfsName(name).size() == name.size(), "the same length");
  }
}

// A disc with these names in two directories. Odd ones are directories; the last of them is Sub.
class NamedDisc {
 public:
  explicit NamedDisc(const Names& names) {
    disc_.TheDisc.OpenFile("/nonexistent", kAdf, kTracks, 1, 16);
    Write(2, names, 0);
    Write(kSub, names, names.size() / 2);
  }
  // What is found is there, and has the name that the path ends with.
  void Find(const std::string& path) {
    const PathTarget target = FindPath(disc_, path);
    if (!target.Found || target.Slot < 0) return;
    Require(target.DirSector == 2 || target.DirSector == kSub, "a directory of the disc");
    const Entry entry = DirectoryAt(disc_, target.DirSector).At(target.Slot);
    Require(entry.Name() == target.Name && entry.Start() == target.Sector, "the entry");
    Require(entry.IsDirectory() == target.IsDirectory, "its sort");
    Require(path.size() >= target.Name.size() &&
                FoldName(path.substr(path.size() - target.Name.size())) == FoldName(target.Name),
            "the path's last name");
  }
  void FindEach() {
    for (const ListRow& row : ReadRows(disc_, 2)) {
      const PathTarget target = FindPath(disc_, "$." + row.Name());
      Require(target.Found, "a name of the root");
      Find(row.Name());
      for (const ListRow& below : ReadRows(disc_, kSub)) Find(row.Name() + "." + below.Name());
    }
    Require(WalkTree(disc_).size() < 2000, "a walk with an end");
  }

 private:
  // Byte by byte, so that any name can stand there.
  void Write(std::int32_t dir, const Names& names, std::size_t first) {
    std::vector<std::uint8_t> bytes(1280);
    std::copy_n("Hugo", 4, bytes.begin() + 1);
    std::copy_n("Hugo", 4, bytes.begin() + 1275);
    std::size_t slot = 0;
    for (std::size_t i = first; i < names.size() && slot < 47; ++i) {
      if (names[i].empty()) continue;
      std::uint8_t* entry = bytes.data() + 5 + 26 * slot++;
      std::fill_n(entry, 10, std::uint8_t{'\r'});
      std::copy_n(names[i].begin(), std::min<std::size_t>(names[i].size(), 10), entry);
      if (i % 2 == 1) entry[3] |= 0x80;
      entry[22] = i % 2 == 1 ? kSub : kContents;
    }
    disc_.TheDisc.StoreBytes(SectorOffset(dir), bytes);
  }

  testing::QuietHost host_;
  Disc disc_{host_};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Names names = {""};
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] == '\n') {
      names.emplace_back();
    } else {
      names.back() += static_cast<char>(data[i]);
    }
  }
  MapNames(names);
  NamedDisc disc(names);
  disc.FindEach();
  for (const std::string& name : names) disc.Find(name);
  return 0;
}
