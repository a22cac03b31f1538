#include "disc/catalogue/Catalogue.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include "disc/catalogue/Adfs.h"
#include "disc/catalogue/Directories.h"
#include "disc/format/Text.h"

namespace sectorbox {
namespace {

using namespace format;

PathTarget RootTarget() {
  PathTarget root;
  root.Found = true;
  root.IsDirectory = true;
  root.Sector = kRootSector;
  root.Name = "$";
  return root;
}

// One step down from a directory. Nothing is found if it has no such entry.
PathTarget StepDown(const Directory& directory, std::int32_t dirSector, std::string_view name) {
  PathTarget target;
  const std::int32_t slot = directory.Find(name);
  if (slot < 0) return target;
  const Entry entry = directory.At(slot);
  target.Found = true;
  target.IsDirectory = entry.IsDirectory();
  target.DirSector = dirSector;
  target.Slot = slot;
  target.Sector = entry.Start();
  target.Name = entry.Name();
  return target;
}

// Finds a path below the root. A name may hold dots itself, so more than one reading of the path is
// tried: at each step first the name up to the next dot, then longer ones.
class PathSearch {
 public:
  PathSearch(Disc& disc, std::string_view path) : disc_(disc), path_(path) {}

  PathTarget Run() {
    waiting_.push_back({RootTarget(), 0});
    while (!waiting_.empty()) {
      const Reading reading = std::move(waiting_.back());
      waiting_.pop_back();
      if (reading.Next > path_.size()) return reading.Target;
      // On a damaged disc many readings may lead to the same place, which has been tried before.
      if (reading.Target.IsDirectory &&
          tried_.insert({reading.Target.Sector, reading.Next}).second) {
        Follow(reading);
      }
    }
    return {};
  }

 private:
  // A front part of the path has been read as names; the next name begins at Next. Behind the whole
  // path Next is greater than its length.
  struct Reading {
    PathTarget Target;
    std::size_t Next;
  };

  // Puts every reading of the next name on the stack, the shortest one last, so that it is tried
  // first.
  void Follow(const Reading& from) {
    const auto directory = ReadDirectory(disc_, from.Target.Sector);
    if (!directory) return;
    std::vector<Reading> longer;
    for (std::size_t end = from.Next; end - from.Next <= kNameLength; ++end) {
      end = std::min(path_.find('.', end), path_.size());
      const auto name = path_.substr(from.Next, end - from.Next);
      PathTarget target = StepDown(*directory, from.Target.Sector, name);
      if (target.Found) longer.push_back({std::move(target), end + 1});
      if (end == path_.size()) break;
    }
    std::move(longer.rbegin(), longer.rend(), std::back_inserter(waiting_));
  }

  Disc& disc_;
  std::string_view path_;
  std::vector<Reading> waiting_;
  std::set<std::pair<std::int32_t, std::size_t>> tried_;
};

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
    if (tree_.size() >= static_cast<std::size_t>(kMaxWalkDirectories)) {
      exhausted_ = true;
      return Walk::kStop;
    }
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

  // True if the walk has come to one of its bounds.
  [[nodiscard]] bool Exhausted() const { return exhausted_; }

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
  if (builder.Exhausted()) {
    disc.Host.NoteLeftOut(
        "The tree of this disc isn't whole: it has more directories, or deeper "
        "ones, than a disc has room for");
  }
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
  if (path.empty() || path == "$") return RootTarget();
  std::string_view rest = path;
  if (rest.substr(0, 2) == "$.") rest.remove_prefix(2);
  return PathSearch(disc, rest).Run();
}

}  // namespace sectorbox
