// Any bytes make a damaged disc, and then the operations of a user on it. The first byte says how
// many bytes of a sound disc are overwritten; three bytes of the input say where and with what. The
// rest of the input is operations of four bytes each.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Catalogue.h"
#include "disc/catalogue/Directories.h"
#include "disc/change/Compaction.h"
#include "disc/change/FreeMap.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "disc/format/Format.h"
#include "disc/format/Text.h"
#include "disc/health/Check.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/QuietHost.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace sectorbox;
using sectorbox::testing::ImageBuilder;
using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t kSectors = 320;

ImageBuilder SoundDisc() {
  ImageBuilder image(kSectors);
  const auto games = image.AddDirectory(2, "GAMES");
  image.AddFile(games, {"ELK", Bytes(700, 1)});
  image.AddHole(3);
  const auto deep = image.AddDirectory(games, "OLD", "LWR");
  image.AddFile(deep, {"EMPTY", {}});
  image.AddFile(deep, {"LOCKED", Bytes(256, 2), 0x1900, 0x8023, "LWR"});
  image.AddHole(1);
  image.AddFile(2, {"NOTES", Bytes(2000, 3)});
  const auto none = image.AddDirectory(2, "ZERO");
  image.AddFile(2, {"last", Bytes(1, 4)});
  image.Rehang(2, "last", deep);
  image.Rehang(2, "NOTES", none);
  return image;
}

// The things that a user sees of a disc: each object's path and bytes.
using Seen = std::vector<std::pair<std::string, Bytes>>;

// None if the tree holds a directory twice, or a directory whose own name or parent differs from
// its entry: a compaction that moves such a directory doesn't change its entry.
std::optional<Seen> LookAt(Disc& disc) {
  Seen seen;
  std::set<std::int32_t> entered;
  const std::vector<TreeNode> tree = WalkTree(disc);
  for (const TreeNode& node : tree) {
    if (!entered.insert(node.Tag).second || !IsDirectory(disc, node.Tag)) return std::nullopt;
    if (node.Parent >= 0) {
      const std::int32_t parent = tree[static_cast<std::size_t>(node.Parent)].Tag;
      if (FindEntry(disc, parent, GetDirName(disc, node.Tag)) < 0 ||
          UpperCase(GetDirName(disc, node.Tag)) != UpperCase(node.Text) ||
          DirectoryAt(disc, node.Tag).Parent() != parent) {
        return std::nullopt;
      }
    }
    std::set<std::string> names;
    for (const ListRow& row : ReadRows(disc, node.Tag)) {
      if (!names.insert(UpperCase(row.Name())).second) return std::nullopt;
      Bytes bytes;
      if (!row.IsDirectory()) {
        bytes.resize(std::min<std::size_t>(row.Length(), kSectors * 256));
        disc.TheDisc.FetchBytes(SectorOffset(row.StartSector()), bytes);
      }
      seen.emplace_back(node.Text + "." + row.Name(), std::move(bytes));
    }
  }
  return seen;
}

class Session {
 public:
  explicit Session(const Bytes& image) {
    testing::WriteAll(Folder() / "disc", image);
    disc_.TheDisc.OpenFile(Folder() / "disc", kAdf, kSectors / 16, 1, 16);
    ReadFreeMap(disc_);
    PickDirectories();
  }

  void Do(std::span<const std::uint8_t, 4> step) {
    const std::int32_t dir = directories_[step[1] % directories_.size()];
    const std::string name = NameOf(dir, step[2]);
    const bool flag = (step[3] & 1) != 0;
    switch (step[0] % 12) {
      case 0:
        Add(dir, step[2], step[3]);
        break;
      case 1:
        (void)DeleteEntry(disc_, dir, name, (step[3] & 2) != 0, flag);
        break;
      case 2:
        DeleteOne(dir, name, flag, (step[3] & 2) != 0);
        break;
      case 3:
        (void)RenameEntry(disc_, NewName(step[3]), name, dir, flag);
        break;
      case 4:
        (void)NewDirectory(disc_, dir, NewName(step[3]));
        break;
      case 5:
        (void)SetEntryAttributes(disc_, dir, name, flag, (step[3] & 2) != 0, (step[3] & 4) != 0);
        break;
      case 6:
        (void)SetEntryAddresses(disc_, dir, name, "FFFF1900", "xyz");
        break;
      case 7:
        (void)SetDirTitle(disc_, dir, name);
        break;
      default:
        DoToDisc(step[0] % 12, step[3]);
        break;
    }
    PickDirectories();
  }

 private:
  static const testing::TempFolder& Folder() {
    static const testing::TempFolder folder;
    return folder;
  }
  static std::string NewName(std::uint8_t number) {
    return std::string(1 + number % 11, static_cast<char>('0' + number / 4));
  }

  // Notes the root and the directories that the tree shows.
  void PickDirectories() {
    directories_ = {2};
    for (const TreeNode& node : WalkTree(disc_)) {
      if (directories_.size() < 32) directories_.push_back(node.Tag);
    }
  }
  std::string NameOf(std::int32_t dir, std::uint8_t number) {
    const auto rows = ReadRows(disc_, dir);
    if (rows.empty() || number % 16 == 15) return NewName(number);
    return rows[number % rows.size()].Name();
  }
  // The operations that are given no directory.
  void DoToDisc(int operation, std::uint8_t value) {
    switch (operation) {
      case 8:
        (void)SetBootOption(disc_, value, MapSums::kLeave);
        break;
      case 9:
        Compact();
        break;
      case 10:
        CompactAfterRelease(disc_);
        break;
      default:
        (void)CheckDisc(disc_);
        break;
    }
  }
  void Add(std::int32_t dir, std::uint8_t which, std::uint8_t length) {
    const std::string path = Folder() / NewName(which);
    testing::WriteAll(path, Bytes(length * 40U, which));
    (void)AddFile(disc_, dir, path);
  }
  void DeleteOne(std::int32_t dir, const std::string& name, bool ignoreLock, bool nonEmpty) {
    const Directory directory = DirectoryAt(disc_, dir);
    const std::int32_t slot = directory.Find(name);
    if (slot < 0 || !directory.At(slot).IsDirectory()) return;
    (void)DeleteTree(disc_, dir, directory.At(slot).Start(), name, ignoreLock, nonEmpty);
  }
  // Afterwards a user must see the same objects with the same bytes.
  void Compact() {
    const auto before = LookAt(disc_);
    (void)CompactDisc(disc_);
    if (before && LookAt(disc_) != before) std::abort();
  }

  testing::QuietHost host_;
  Disc disc_{host_};
  std::vector<std::int32_t> directories_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ImageBuilder sound = SoundDisc();
  if (size == 0) return 0;
  Bytes image = sound.Bytes();
  std::span<const std::uint8_t> rest(data + 1, size - 1);
  for (unsigned patch = data[0] % 32U; patch > 0 && rest.size() >= 3; --patch) {
    image[(rest[0] * 256U + rest[1]) % image.size()] = rest[2];
    rest = rest.subspan(3);
  }
  Session session(image);
  for (; rest.size() >= 4; rest = rest.subspan(4)) session.Do(rest.first<4>());
  return 0;
}
