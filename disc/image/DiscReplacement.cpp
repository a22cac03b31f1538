#include "disc/image/DiscReplacement.h"

#include <algorithm>

#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

using namespace format;

std::vector<std::uint8_t> ReadFront(Disc& disc) {
  const std::int32_t sectors =
      std::clamp(disc.TheDisc.DiscSize(), 0, DiscReplacement::kFrontSectors);
  std::vector<std::uint8_t> front(static_cast<std::size_t>(SectorOffset(sectors)));
  disc.TheDisc.FetchBytes(0, front);
  return front;
}

}  // namespace

DiscReplacement::DiscReplacement(Disc& disc) : disc_(disc), faults_(0), former_(ReadFront(disc)) {
  faults_ = disc.TheDisc.CardFaults();
}

DiscReplacement::~DiscReplacement() {
  disc_.TheDisc.DropChange();
  switch (state_) {
    case State::kUntouched:
    case State::kDone:
      break;
    case State::kNoFront:
      Tell("its first sectors can't be written, so nothing more was");
      break;
    case State::kNoDisc:
      Tell("there is no disc on it now. Format it again, or restore a backup");
      break;
    case State::kUncertain:
      Tell("the last write failed, so nobody can tell whether the disc on it is whole");
      break;
  }
}

void DiscReplacement::Tell(const char* what) {
  disc_.Host.Note(disc_.TheDisc.FileName() + ": " + what);
}

bool DiscReplacement::Begin(Front front) {
  state_ = State::kNoFront;
  if (front == Front::kToBeCleared) {
    // Behind the first block the front may stay: the mark and the map are in the first one.
    const std::size_t bytes = std::min<std::size_t>(former_.size(), DiscImg::kBlockSize);
    if (!Put(std::vector<std::uint8_t>(bytes))) return false;
  } else {
    disc_.TheDisc.CloseFile();
    if (disc_.TheDisc.CardFaults() != faults_) return false;
  }
  state_ = State::kNoDisc;
  (void)disc_.TheDisc.Fetch(0);  // opens the card again
  // What lies behind the front counts as free, so it is written at once. CommitChange tells whether
  // every write went well.
  constexpr std::int32_t kAll = 1 << 24;
  try {
    disc_.TheDisc.BeginChange({{kFrontSectors, kAll}});
  } catch (const HostError&) {
    return false;
  }
  return true;
}

bool DiscReplacement::Finish(std::span<const std::uint8_t> front) {
  try {
    disc_.TheDisc.CommitChange();
  } catch (const HostError&) {
    return false;
  }
  std::vector<std::uint8_t> unmarked(front.begin(), front.end());
  const auto mark = std::min<std::size_t>(kMapSize + kDirMark, unmarked.size());
  const auto end = std::min<std::size_t>(mark + kHugoLength, unmarked.size());
  std::fill(unmarked.begin() + static_cast<std::ptrdiff_t>(mark),
            unmarked.begin() + static_cast<std::ptrdiff_t>(end), std::uint8_t{0});
  if (!Put(unmarked)) return false;
  state_ = State::kUncertain;
  const auto first = std::min<std::size_t>(front.size(), DiscImg::kBlockSize);
  if (!Put(front.first(first))) return false;
  state_ = State::kDone;
  return true;
}

bool DiscReplacement::Put(std::span<const std::uint8_t> front) {
  // Both blocks are read first. What can't be read is told then, and is no failure to write.
  for (std::size_t at = 0; at < front.size(); at += DiscImg::kBlockSize) {
    (void)disc_.TheDisc.Fetch(static_cast<std::int64_t>(at));
  }
  const std::int32_t faults = disc_.TheDisc.CardFaults();
  disc_.TheDisc.StoreBytes(0, front);
  disc_.TheDisc.CloseFile();
  return disc_.TheDisc.CardFaults() == faults;
}

}  // namespace sectorbox
