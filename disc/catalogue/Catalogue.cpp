#include "disc/catalogue/Catalogue.h"

#include <string_view>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/format/Text.h"

namespace sectorbox {
namespace {

using namespace format;

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

// One step down from a directory. Nothing is found if from isn't a directory or has no such entry.
PathTarget StepDown(Disc& disc, const PathTarget& from, std::string_view name) {
  PathTarget target;
  if (!from.IsDirectory) return target;
  const auto directory = ReadDirectory(disc, from.Sector);
  const std::int32_t slot = directory ? directory->Find(name) : -1;
  if (slot < 0) return target;
  const Entry entry = directory->At(slot);
  target.Found = true;
  target.IsDirectory = entry.IsDirectory();
  target.DirSector = from.Sector;
  target.Slot = slot;
  target.Sector = entry.Start();
  target.Name = entry.Name();
  return target;
}

// Adds a node for each entry that is a subdirectory. On a damaged disc a directory may be listed
// more than once: it then gets a node wherever it is listed, but only the first of them gets its
// children.
class TreeBuilder : public DirectoryVisitor {
 public:
  TreeBuilder(Disc& disc, std::vector<TreeNode>& tree, std::int32_t top, WalkCounts& counts)
      : disc_(disc), tree_(tree), counts_(counts), nodes_{top} {}

  Walk Enter(const WalkStep& at, const Directory& directory) override {
    if (directory.HasMark()) CountEntries(directory);
    // The node of this directory was added last, by Meet.
    if (at.Listed != nullptr) nodes_.push_back(static_cast<std::int32_t>(tree_.size()) - 1);
    return Walk::kOn;
  }

  Walk Meet(const WalkStep&, std::int32_t, const Entry& entry) override {
    if (!entry.IsDirectory()) return Walk::kOn;
    tree_.push_back({entry.Name(), entry.Start(), nodes_.back(), false});
    tree_[static_cast<std::size_t>(nodes_.back())].Open = true;
    return Walk::kOn;
  }

  Walk OutOfBounds(const WalkStep&) override {
    exhausted_ = true;
    return Walk::kOn;
  }

  Walk Return(const WalkStep& at, std::int32_t) override {
    if (at.Sector == kRootSector) disc_.Host.PumpEvents();
    return exhausted_ ? Walk::kStop : Walk::kOn;
  }

  void Leave(const WalkStep& at) override {
    if (at.Listed != nullptr) nodes_.pop_back();
  }

 private:
  void CountEntries(const Directory& directory) {
    for (const Entry& entry : directory.Entries()) {
      ++(entry.IsDirectory() ? counts_.DirCount : counts_.FileCount);
    }
  }

  Disc& disc_;
  std::vector<TreeNode>& tree_;
  WalkCounts& counts_;
  std::vector<std::int32_t> nodes_;  // of the directories that the walk is in, the top one first
  bool exhausted_ = false;
};

}  // namespace

void FindFiles(Disc& disc, std::vector<TreeNode>& tree, std::int32_t index, std::int32_t sector,
               WalkCounts& counts) {
  TreeBuilder builder(disc, tree, index, counts);
  // If the walk ends at its bounds, the tree holds what the walk has met before.
  (void)WalkDirectories(disc, sector, builder);
}

std::vector<TreeNode> WalkTree(Disc& disc) {
  std::vector<TreeNode> tree = {{GetDirName(disc, kRootSector), kRootSector, -1, false}};
  WalkCounts counts;
  FindFiles(disc, tree, 0, kRootSector, counts);
  return tree;
}

ListRow MakeRow(const Entry& entry) {
  const std::string start = Hex(static_cast<std::uint32_t>(entry.Start()), 6);
  ListRow row{entry, {}};
  row.Columns[kColName] = entry.Name();
  row.Columns[kColAttr] = entry.Letters();
  row.Columns[kColSeq] = "(" + Hex(entry.Sequence(), 2) + ")";
  if (row.IsDirectory()) {
    // The commands that work on a selected directory take its sector from this column.
    row.Columns[kColLoad] = start;
    return row;
  }
  row.Columns[kColLoad] = Hex(entry.Load(), 8);
  row.Columns[kColExec] = Hex(entry.Exec(), 8);
  row.Columns[kColSize] = Hex(entry.Length(), 8);
  row.Columns[kColSector] = start;
  return row;
}

ListRow ReadRow(Disc& disc, std::int32_t dirSector, std::int32_t slot) {
  return MakeRow(DirectoryAt(disc, dirSector).At(slot));
}

std::vector<ListRow> ReadRows(Disc& disc, std::int32_t dirSector) {
  std::vector<ListRow> rows;
  const auto directory = ReadDirectory(disc, dirSector);
  if (!directory) return rows;
  for (const Entry& entry : directory->Entries()) rows.push_back(MakeRow(entry));
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
