#include "disc/undo/History.h"

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

#include "disc/catalogue/Adfs.h"
#include "disc/change/Change.h"
#include "disc/host/HostError.h"
#include "disc/host/HostPath.h"
#include "disc/medium/BlockSum.h"

namespace sectorbox {
namespace {

constexpr auto kBlock = static_cast<std::int64_t>(KeptBlocks::kBlockSize);
constexpr std::int32_t kMostAtOnce = 256;  // blocks
constexpr const char* kEarlierSteps = "What was done before";

std::size_t BytesOf(std::int32_t blocks) {
  return static_cast<std::size_t>(blocks) * KeptBlocks::kBlockSize;
}

}  // namespace

History::History(Disc& disc, UndoRoom room) : disc_(disc), room_(room) {
  disc_.TheDisc.Watch(this);
}

History::~History() {
  disc_.TheDisc.Watch(nullptr);
}

std::string History::UndoName() const {
  return CanUndo() ? steps_[position_ - 1].Name : "";
}

std::string History::RedoName() const {
  return CanRedo() ? steps_[position_].Name : "";
}

std::int64_t History::LastStep() const {
  return CanUndo() ? steps_[position_ - 1].Number : 0;
}

void History::Clear() {
  running_.reset();
  steps_.clear();
  position_ = 0;
  firstVersion_ = ++lastNumber_;
  savedVersion_.reset();
}

// --- A step --------------------------------------------------------------------------------------

void History::Begin(std::string name, Mark mark, Place place) {
  if (depth_ == 0) {
    NoteSaved();
    Record record(room_);
    record.Marks = mark;
    record.Length = disc_.TheDisc.EndOfData();
    name_ = std::move(name);
    place_ = place;
    isPending_ = isMade_ = false;
    running_ = std::move(record);
  }
  ++depth_;
}

void History::End() noexcept {
  if (--depth_ > 0) return;
  std::optional<Record> record = std::exchange(running_, std::nullopt);
  if (!record || record->Old.IsEmpty()) return;
  try {
    // What was stored outside of any change is on the disc as well.
    if (isMade_ || isPending_) {
      Finish(std::move(*record));
    } else {
      GiveToTheLast(record->Old);
    }
  } catch (const std::exception&) {
    Clear();
  }
}

void History::Finish(Record record) {
  record.Name = name_;
  record.Number = ++lastNumber_;
  if (place_ == Place::kWithTheLast && CanUndo()) {
    Record& last = steps_[position_ - 1];
    if (!last.Old.Join(record.Old)) return Lose(name_);
    last.Name = record.Name;
    last.Number = record.Number;
    if (record.Marks == Mark::kSets) {
      last.Marks = Mark::kSets;
      last.Version = record.Number;
    }
    last.LengthHere = disc_.TheDisc.EndOfData();
    last.Sum = SumNow(last);
    return;
  }
  record.Version = record.Marks == Mark::kSets ? record.Number : VersionAt(position_);
  record.LengthHere = disc_.TheDisc.EndOfData();
  record.Sum = SumNow(record);
  steps_.push_back(std::move(record));
  ++position_;
  if (steps_.size() > kMostSteps) DropOldest();
}

void History::BytesWillChange(std::int64_t offset, std::size_t size) {
  isPending_ = true;
  if (isSwapping_) return;
  if (depth_ == 0 && !steps_.empty()) Clear();
  if (!running_) return;
  // What was undone can't be done again after another change.
  steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(position_), steps_.end());
  try {
    if (!Keep(running_->Old, offset, size, WhenFull::kDropOldest)) Lose(name_);
  } catch (const HostError&) {
    // The host has no room for the old bytes. The command has, perhaps.
    Lose(name_);
  }
}

void History::BytesWillVanish(std::int64_t offset, std::size_t size) {
  ForgetRedoSums();
  if (!CanUndo()) return;
  Record& last = steps_[position_ - 1];
  last.Sum.reset();
  try {
    if (!Keep(last.Old, offset, size, WhenFull::kDropOldest)) Lose(kEarlierSteps);
  } catch (const HostError&) {
    Lose(kEarlierSteps);
  }
}

void History::ChangeEnded(bool isMade) noexcept {
  if (isMade && isPending_) isMade_ = true;
  isPending_ = false;
}

bool History::Keep(KeptBlocks& kept, std::int64_t offset, std::size_t size, WhenFull whenFull) {
  if (size == 0 || offset < 0) return true;
  const auto end =
      static_cast<std::int32_t>((offset + static_cast<std::int64_t>(size) - 1) / kBlock) + 1;
  std::vector<std::uint8_t> bytes;
  for (auto block = static_cast<std::int32_t>(offset / kBlock); block < end;) {
    if (kept.Has(block)) {
      ++block;
      continue;
    }
    std::int32_t count = 1;
    while (count < kMostAtOnce && block + count < end && !kept.Has(block + count)) ++count;
    bytes.resize(BytesOf(count));
    if (!disc_.TheDisc.FetchToKeep(block * kBlock, bytes)) return false;
    for (std::int32_t i = 0; i < count; ++i, ++block) {
      const auto one = std::span(bytes).subspan(BytesOf(i), BytesOf(1));
      if (!KeepOne(kept, block, one, whenFull)) return false;
    }
  }
  return true;
}

bool History::KeepOne(KeptBlocks& kept, std::int32_t block, std::span<const std::uint8_t> bytes,
                      WhenFull whenFull) {
  while (!kept.Keep(block, bytes)) {
    if (whenFull == WhenFull::kGiveUp || !CanUndo() || &kept == &steps_.front().Old) return false;
    DropOldest();
  }
  return true;
}

void History::DropOldest() {
  firstVersion_ = steps_.front().Version;
  steps_.pop_front();
  --position_;
}

void History::Lose(const std::string& what) {
  Clear();
  disc_.Host.Note(what + " can't be undone");
}

void History::ForgetRedoSums() {
  for (std::size_t step = position_; step < steps_.size(); ++step) steps_[step].Sum.reset();
}

void History::Expect(std::int64_t bytes) {
  const std::size_t room = room_.MostInMemory + room_.MostInFiles;
  if (running_ && bytes > 0 && static_cast<std::uint64_t>(bytes) > room) Lose(name_);
}

void History::GiveToTheLast(const KeptBlocks& kept) {
  ForgetRedoSums();
  if (!CanUndo()) return;
  Record& last = steps_[position_ - 1];
  bool fits = true;
  kept.ForEachRun([&](std::int32_t first, std::span<const std::uint8_t> bytes) {
    std::vector<std::uint8_t> now(bytes.size());
    if (!disc_.TheDisc.FetchToKeep(first * kBlock, now)) fits = false;
    for (std::size_t at = 0; at < bytes.size() && fits; at += KeptBlocks::kBlockSize) {
      const auto block = first + static_cast<std::int32_t>(at / KeptBlocks::kBlockSize);
      const auto old = bytes.subspan(at, KeptBlocks::kBlockSize);
      const bool isSame = std::ranges::equal(old, std::span(now).subspan(at, old.size()));
      if (!isSame && !last.Old.Has(block))
        fits = KeepOne(last.Old, block, old, WhenFull::kDropOldest);
    }
  });
  if (!fits) return Lose(kEarlierSteps);
  last.Sum = SumNow(last);
}

// --- Undo ----------------------------------------------------------------------------------------

Outcome History::Undo() {
  return CanUndo() ? Swap(position_ - 1, position_ - 1) : Outcome::kRefused;
}

Outcome History::Redo() {
  return CanRedo() ? Swap(position_, position_ + 1) : Outcome::kRefused;
}

Outcome History::Swap(std::size_t step, std::size_t position) {
  if (depth_ > 0 || isSwapping_ || !MayChange(disc_)) return Outcome::kRefused;
  NoteSaved();
  Record& record = steps_[step];
  if (!IsAsLeft(record)) return Outcome::kRefused;
  Record opposite(room_);
  const bool isKept = KeepOpposite(record, opposite);
  isPending_ = isMade_ = false;
  isSwapping_ = true;
  const std::exception_ptr failure = PutBack(record);
  isSwapping_ = false;
  if (failure && !isMade_) {
    GiveBack(opposite.Old, isKept);
    std::rethrow_exception(failure);
  }
  const Mark marks = record.Marks;
  // The image may still be longer, if the host has failed to cut it.
  opposite.LengthHere = record.Length;
  record = std::move(opposite);
  position_ = position;
  if (marks == Mark::kSets) disc_.ImageChanged = savedVersion_ != VersionAt(position_);
  if (!isKept) {
    ForgetOpposite(step);
  } else {
    record.Sum = SumNow(record);
  }
  if (failure) std::rethrow_exception(failure);
  return Outcome::kDone;
}

bool History::KeepOpposite(const Record& record, Record& opposite) {
  opposite.Name = record.Name;
  opposite.Marks = record.Marks;
  opposite.Number = record.Number;
  opposite.Version = record.Version;
  opposite.Length = disc_.TheDisc.EndOfData();
  bool isKept = true;
  try {
    record.Old.ForEachRun([&](std::int32_t first, std::span<const std::uint8_t> bytes) {
      isKept = isKept && Keep(opposite.Old, first * kBlock, bytes.size(), WhenFull::kGiveUp);
    });
  } catch (const HostError&) {
    // The host has no room for the newer bytes. The step can be taken back all the same.
    return false;
  }
  return isKept;
}

// After an undo or redo that failed. If not all bytes were kept, nobody knows what it has written
// over.
void History::GiveBack(const KeptBlocks& kept, bool isWhole) {
  try {
    isWhole ? GiveToTheLast(kept) : Lose(kEarlierSteps);
  } catch (const std::exception&) {
    Lose(kEarlierSteps);
  }
}

// Without the opposite of an undo the steps that follow can't be done again; without that of a redo
// nothing before it can be undone.
void History::ForgetOpposite(std::size_t step) {
  if (position_ > step) return Clear();
  steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(step), steps_.end());
}

bool History::IsAsLeft(const Record& record) {
  if (!record.Sum) return true;
  const auto sum = SumNow(record);
  const std::string name = HostBaseName(disc_.TheDisc.FileName());
  if (!sum) throw HostError(name, "the card can't be read, so nothing was undone");
  if (*sum == *record.Sum) return true;
  Clear();
  disc_.Host.ShowMessage(name + " was changed by another program, so nothing can be undone");
  return false;
}

std::exception_ptr History::PutBack(const Record& record) {
  try {
    {
      Change change(disc_, Change::Parts::kNone);
      record.Old.ForEachRun([&](std::int32_t first, std::span<const std::uint8_t> bytes) {
        const std::int64_t offset = first * kBlock;
        // What the step has put behind the end of the image is cut off again.
        const std::int64_t there = std::max<std::int64_t>(record.Length - offset, 0);
        const auto size = std::min<std::int64_t>(there, static_cast<std::int64_t>(bytes.size()));
        disc_.TheDisc.StoreBytes(offset, bytes.first(static_cast<std::size_t>(size)));
      });
      // The map as the change has it. If the change is dropped, the former list comes back.
      ReadFreeMap(disc_);
      ++disc_.Compactions;
      change.Commit();
    }
    isMade_ = true;
    disc_.TheDisc.Cut(record.Length);
  } catch (const std::exception&) {
    return std::current_exception();
  }
  return nullptr;
}

std::optional<std::uint64_t> History::SumNow(const Record& record) {
  std::uint64_t sum = kEmptySum;
  bool isRead = true;
  std::vector<std::uint8_t> now;
  record.Old.ForEachRun([&](std::int32_t first, std::span<const std::uint8_t> bytes) {
    const std::int64_t there = std::max<std::int64_t>(record.LengthHere - first * kBlock, 0);
    // A sum is made of whole numbers of 8 bytes.
    now.resize(std::min(bytes.size(), static_cast<std::size_t>(there / 8 * 8)));
    isRead = isRead && disc_.TheDisc.FetchToKeep(first * kBlock, now);
    sum = AddToSum(sum, now);
  });
  return isRead ? std::optional(sum) : std::nullopt;
}

std::int64_t History::VersionAt(std::size_t position) const {
  return position == 0 ? firstVersion_ : steps_[position - 1].Version;
}

void History::NoteSaved() {
  if (!disc_.ImageChanged) savedVersion_ = VersionAt(position_);
}

}  // namespace sectorbox
