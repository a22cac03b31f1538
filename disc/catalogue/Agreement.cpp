#include "disc/catalogue/Agreement.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "disc/catalogue/Directories.h"

namespace sectorbox {
namespace {

using namespace format;

// Sectors in use: [Start, End).
struct Used {
  std::int32_t Start = 0;
  std::int32_t End = 0;
  // The directory that lists the object, and the slot of its entry; the slot kNoSlot is that of the
  // map and the root.
  std::uint32_t Directory : 24 = 0;
  std::uint32_t Slot : 8 = 0;
};
static_assert(sizeof(Used) == 12);
constexpr std::uint32_t kNoSlot = 0xFF;

class UsedSectors : public DirectoryVisitor {
 public:
  explicit UsedSectors(Disc& disc) {
    All.reserve(static_cast<std::size_t>(std::min(MapDiscSize(disc), kMaxObjects)));
    All.push_back({0, kFirstFreeSector, 0, kNoSlot});
    (void)WalkDirectories(disc, kRootSector, *this);
    std::ranges::sort(All, {}, &Used::Start);
  }

  std::vector<Used> All;
  bool TooMany = false;  // there is more in use than any disc has room for; not all of it is in All

  Walk Enter(const WalkStep&, const Directory&) override { return Walk::kOn; }
  Walk Meet(const WalkStep& at, std::int32_t slot, const Entry& entry) override {
    // The BBC gives an empty file no sector.
    if (entry.Size() == 0) return Walk::kOn;
    TooMany = All.size() >= static_cast<std::size_t>(kMaxObjects);
    if (TooMany) return Walk::kStop;
    All.push_back({entry.Start(), entry.Start() + entry.Sectors(),
                   static_cast<std::uint32_t>(at.Sector) & 0xFFFFFF,
                   static_cast<std::uint32_t>(slot) & 0xFF});
    return Walk::kOn;
  }
  Walk OutOfBounds(const WalkStep&) override { return Walk::kOn; }
};

// Looks for the path of one entry.
class PathSearch : public DirectoryVisitor {
 public:
  explicit PathSearch(const Used& wanted) : wanted_(wanted) {}

  std::string Path = "$";

  Walk Enter(const WalkStep&, const Directory&) override { return Walk::kOn; }
  Walk Meet(const WalkStep& at, std::int32_t slot, const Entry& entry) override {
    const bool wanted = at.Sector == static_cast<std::int32_t>(wanted_.Directory) &&
                        slot == static_cast<std::int32_t>(wanted_.Slot);
    if (!wanted) return Walk::kOn;
    Path = entry.Name();
    for (const WalkStep* step = &at; step->Listed != nullptr; step = step->Parent) {
      Path = step->Listed->Name() + "." + Path;
    }
    Path = "$." + Path;
    return Walk::kStop;
  }
  Walk OutOfBounds(const WalkStep&) override { return Walk::kOn; }

 private:
  const Used& wanted_;
};

std::string NameOf(Disc& disc, const Used& used) {
  if (used.Slot == kNoSlot) return "the free space map";
  PathSearch search(used);
  (void)WalkDirectories(disc, kRootSector, search);
  return search.Path;
}

std::string PastTheEnd(Disc& disc, const std::vector<Used>& used, std::int32_t size) {
  const auto past = std::ranges::find_if(used, [&](const Used& one) { return one.End > size; });
  if (past == used.end()) return "";
  return NameOf(disc, *past) + ": " + kPastTheEnd;
}

std::string UnderAFreeRun(Disc& disc, const std::vector<Used>& used) {
  const std::vector<FreeRun> runs = FreeRuns(disc);
  std::int32_t longest = 0;
  for (const Used& one : used) longest = std::max(longest, one.End - one.Start);
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (runs[i].Length <= 0) continue;
    const std::int64_t end = std::int64_t{runs[i].Start} + runs[i].Length;
    // Nothing that starts further in front of the run is long enough to reach it.
    auto at = std::ranges::lower_bound(used, runs[i].Start - longest, {}, &Used::Start);
    for (; at != used.end() && at->Start < end; ++at) {
      if (at->End <= runs[i].Start) continue;
      return NameOf(disc, *at) + ": overlaps free run " + std::to_string(i);
    }
  }
  return "";
}

std::string OverlappingRuns(const Disc& disc) {
  const std::vector<FreeRun> runs = FreeRuns(disc);
  std::vector<std::size_t> order(runs.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::ranges::stable_sort(order, {}, [&](std::size_t i) { return runs[i].Start; });
  std::int64_t reached = 0;
  for (const std::size_t i : order) {
    if (runs[i].Length <= 0) continue;
    if (runs[i].Start < reached) {
      return "run " + std::to_string(i) + ": overlaps another free run";
    }
    reached = std::int64_t{runs[i].Start} + runs[i].Length;
  }
  return "";
}

bool Overlap(const std::vector<Used>& used) {
  std::int32_t reached = 0;
  for (const Used& one : used) {
    if (one.Start < reached) return true;
    reached = std::max(reached, one.End);
  }
  return false;
}

std::string Compare(Disc& disc) {
  if (!ReadDirectory(disc, kRootSector)) return kNoRoot;
  const UsedSectors used(disc);
  if (used.TooMany) return kTooMuch;
  disc.ObjectsOverlap = Overlap(used.All);
  std::string found = PastTheEnd(disc, used.All, MapDiscSize(disc));
  if (found.empty()) found = UnderAFreeRun(disc, used.All);
  return found.empty() ? OverlappingRuns(disc) : found;
}

}  // namespace

const std::string& FindContradiction(Disc& disc) {
  if (disc.ComparedAt != disc.TheDisc.Openings()) {
    disc.Contradiction = Compare(disc);
    disc.ComparedAt = disc.TheDisc.Openings();
  }
  return disc.Contradiction;
}

}  // namespace sectorbox
