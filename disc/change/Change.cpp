#include "disc/change/Change.h"

#include <algorithm>

#include "disc/catalogue/Agreement.h"

namespace sectorbox {
namespace {

// Tells the panes of directories that have moved. A dropped change moved nothing, so they hear of
// it only now.
void TellMoves(Disc& disc) {
  const auto all = std::exchange(disc.UntoldMoves, {});
  for (const auto& moves : all) disc.Host.DirectoriesMoved(moves);
}

}  // namespace

Change::Change(Disc& disc, Parts parts)
    : disc_(disc), parts_(parts), joined_(disc.TheDisc.IsChanging()) {
  if (!joined_) Begin();
  if (parts_ == Parts::kNone) ++disc_.WholeChanges;
}

void Change::Begin() {
  disc_.TheDisc.BeginChange(FreeRuns(disc_));
  disc_.RunningChange = this;
  freeStart_ = disc_.FreeStart;
  freeLen_ = disc_.FreeLen;
  freeCount_ = disc_.FreeCount;
  imageChanged_ = disc_.ImageChanged;
  tracked_.clear();
  for (std::int32_t* sector : disc_.TrackedSectors) tracked_.emplace_back(sector, *sector);
}

Change::~Change() {
  if (parts_ == Parts::kNone) --disc_.WholeChanges;
  if (joined_) return;
  disc_.RunningChange = nullptr;
  // A change that is made stays, even if its blocks aren't in place yet. There is also none to drop
  // if another disc was opened meanwhile.
  if (!open_ || disc_.TheDisc.ChangeIsMade() || !disc_.TheDisc.IsChanging()) return;
  disc_.TheDisc.DropChange();
  Restore();
}

void Change::Restore() {
  disc_.FreeStart = freeStart_;
  disc_.FreeLen = freeLen_;
  disc_.FreeCount = freeCount_;
  disc_.ImageChanged = imageChanged_;
  const auto& all = disc_.TrackedSectors;
  for (const auto& [sector, value] : tracked_) {
    if (std::ranges::find(all, sector) != all.end()) *sector = value;
  }
  disc_.UntoldMoves.clear();
  ++disc_.Compactions;
}

void Change::Commit() {
  if (joined_) return;
  disc_.TheDisc.CommitChange();
  open_ = false;
  TellMoves(disc_);
}

bool Change::MayStep(const Disc& disc) {
  return disc.RunningChange != nullptr && disc.WholeChanges == 0 && !disc.TheDisc.InMemory();
}

bool Change::StepIsDue(const Disc& disc) {
  return MayStep(disc) && disc.TheDisc.HeldBytes() >= disc.StepBytes;
}

void Change::Step(Disc& disc) {
  if (StepIsDue(disc)) StepNow(disc);
}

void Change::StepNow(Disc& disc) {
  if (!MayStep(disc)) return;
  disc.TheDisc.CommitChange();
  TellMoves(disc);
  disc.RunningChange->Begin();
}

bool MayChange(Disc& disc) {
  if (disc.TheDisc.IsChanging()) return true;
  const std::string name = HostBaseName(disc.TheDisc.FileName());
  switch (disc.TheDisc.Lock().Take(disc.Host.LockPatience())) {
    case ImageLock::Result::kTaken:
      break;
    case ImageLock::Result::kInUse:
      disc.Host.ShowMessage(name + " is in use by another program");
      return false;
    case ImageLock::Result::kChanged:
      disc.Host.ShowMessage(name + " was changed by another program. Open it again");
      return false;
  }
  const std::string& contradiction = FindContradiction(disc);
  if (contradiction.empty()) return true;
  disc.Host.ShowMessage(kDamagedDiscMessage + contradiction);
  return false;
}

}  // namespace sectorbox
