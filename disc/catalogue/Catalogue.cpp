#include "disc/catalogue/Catalogue.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/WalkBudget.h"

namespace sectorbox {
namespace {

using namespace format;

using DirectoryBytes = std::array<std::uint8_t, kDirSize>;

struct Subdirectory {
  std::string Name;
  std::int32_t Sector;
};

bool HasMark(const DirectoryBytes& bytes) {
  return std::equal(kHugo, kHugo + kHugoLength, bytes.begin() + kDirMark);
}

std::string NameAt(const std::uint8_t* entry) {
  std::string name;
  for (std::int32_t i = 0; i < kNameLength; ++i) {
    const auto c = static_cast<char>(entry[kEntryName + i] & kLowBits);
    if (c == '\r') break;
    name += c;
  }
  return name;
}

// The subdirectories in order of slots. A walk over a big disc visits every directory, so this one
// takes its five sectors in a single fetch instead of asking the store for each field.
std::vector<Subdirectory> ReadSubdirectories(Disc& disc, std::int32_t sector, WalkCounts& counts) {
  DirectoryBytes bytes;
  disc.TheDisc.FetchBytes(SectorOffset(sector), bytes);
  std::vector<Subdirectory> found;
  if (!HasMark(bytes)) return found;
  for (std::int32_t slot = 0; slot < kEntryCount; ++slot) {
    const std::uint8_t* entry = bytes.data() + kDirEntries + std::ptrdiff_t{slot} * kEntrySize;
    const int first = entry[kEntryName] & kLowBits;
    if (first == 0 || first == '\r') break;
    if ((entry[kEntryName + kAttrDirectory] & kTopBit) == 0) {
      ++counts.FileCount;
      continue;
    }
    const std::uint8_t* at = entry + kEntrySector;
    found.push_back({NameAt(entry), at[0] | at[1] << 8 | at[2] << 16});
    ++counts.DirCount;
  }
  return found;
}

std::vector<std::string_view> SplitPath(std::string_view path) {
  std::vector<std::string_view> parts;
  while (true) {
    const auto dot = path.find('.');
    parts.push_back(path.substr(0, dot));
    if (dot == std::string_view::npos) return parts;
    path.remove_prefix(dot + 1);
  }
}

PathTarget RootTarget() {
  PathTarget root;
  root.Found = true;
  root.IsDirectory = true;
  root.Sector = kRootSector;
  root.Name = "$";
  return root;
}

// One step down from a directory; not found where that isn't one, or has no such entry.
PathTarget StepDown(Disc& disc, const PathTarget& from, std::string_view name) {
  PathTarget target;
  if (!from.IsDirectory || !IsDirectory(disc, from.Sector)) return target;
  const std::int32_t slot = FindEntry(disc, from.Sector, name);
  if (slot < 0) return target;
  const std::int64_t entry = EntryOffset(from.Sector, slot);
  target.Found = true;
  target.IsDirectory = EntryHas(disc, entry, kAttrDirectory);
  target.DirSector = from.Sector;
  target.Slot = slot;
  target.Sector = Fetch24(disc, entry + kEntrySector);
  target.Name = GetEntryName(disc, from.Sector, slot);
  return target;
}

class TreeWalk {
 public:
  TreeWalk(Disc& disc, std::vector<TreeNode>& tree, WalkCounts& counts)
      : disc_(disc), tree_(tree), counts_(counts) {}

  void Visit(std::int32_t index, std::int32_t sector) {
    // On a damaged disc a directory may list itself, one above it, or one that others list too.
    // Going into each of them once keeps all that is on the disc in the tree, and gives it an end.
    if (!seen_.insert(sector).second || !budget_.Enter()) return;
    for (Subdirectory& child : ReadSubdirectories(disc_, sector, counts_)) {
      if (budget_.Exhausted()) break;
      const auto node = static_cast<std::int32_t>(tree_.size());
      tree_.push_back({std::move(child.Name), child.Sector, index, false});
      tree_[static_cast<std::size_t>(index)].Open = true;
      Visit(node, child.Sector);
      if (sector == kRootSector) disc_.Host.PumpEvents();
    }
    budget_.Leave();
  }

 private:
  Disc& disc_;
  std::vector<TreeNode>& tree_;
  WalkCounts& counts_;
  std::unordered_set<std::int32_t> seen_;
  WalkBudget budget_;
};

}  // namespace

void FindFiles(Disc& disc, std::vector<TreeNode>& tree, std::int32_t intIndex, std::int32_t sector,
               WalkCounts& counts) {
  TreeWalk(disc, tree, counts).Visit(intIndex, sector);
}

std::vector<TreeNode> WalkTree(Disc& disc) {
  std::vector<TreeNode> tree = {{GetDirName(disc, kRootSector), kRootSector, -1, false}};
  WalkCounts counts;
  FindFiles(disc, tree, 0, kRootSector, counts);
  return tree;
}

std::int32_t ListRow::StartSector() const {
  return static_cast<std::int32_t>(ParseHex(Columns[IsDirectory() ? kColLoad : kColSector]));
}

std::uint32_t ListRow::Length() const {
  return IsDirectory() ? std::uint32_t{kDirSize} : ParseHex(Columns[kColSize]);
}

ListRow ReadRow(Disc& disc, std::int32_t DirSector, std::int32_t Slot) {
  const std::int64_t entry = EntryOffset(DirSector, Slot);
  ListRow row;
  row.Columns[kColName] = GetEntryName(disc, DirSector, Slot);
  row.Columns[kColAttr] = GetEntryAttributes(disc, entry);
  row.Columns[kColSeq] = "(" + HexByte(disc, entry + kEntrySequence) + ")";
  if (row.IsDirectory()) {
    // The commands that work on a selected directory take its sector from this column.
    row.Columns[kColLoad] = HexSector(disc, entry + kEntrySector);
    return row;
  }
  row.Columns[kColLoad] = HexDword(disc, entry + kEntryLoad);
  row.Columns[kColExec] = HexDword(disc, entry + kEntryExec);
  row.Columns[kColSize] = HexDword(disc, entry + kEntryLength);
  row.Columns[kColSector] = HexSector(disc, entry + kEntrySector);
  return row;
}

std::vector<ListRow> ReadRows(Disc& disc, std::int32_t DirSector) {
  std::vector<ListRow> rows;
  if (!IsDirectory(disc, DirSector)) return rows;
  for (std::int32_t slot = 0; slot < kEntryCount; ++slot) {
    if (EntryIsEmpty(GetEntryName(disc, DirSector, slot))) break;
    rows.push_back(ReadRow(disc, DirSector, slot));
  }
  return rows;
}

PathTarget FindPath(Disc& disc, const std::string& path) {
  PathTarget target = RootTarget();
  if (path.empty() || path == "$") return target;
  std::string_view rest = path;
  if (rest.substr(0, 2) == "$.") rest.remove_prefix(2);
  for (const std::string_view name : SplitPath(rest)) {
    target = StepDown(disc, target, name);
    if (!target.Found) break;
  }
  return target;
}

}  // namespace sectorbox
