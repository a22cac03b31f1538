#include "disc/store/HeldBlocks.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

constexpr std::int64_t kSectorsOfBlock = Medium::kBlockSize / format::kSectorSize;

std::int64_t OffsetOfBlock(std::int32_t block) {
  return std::int64_t{block} * Medium::kBlockSize;
}

// Copies the bytes of a held block over those of the run that lie in it.
void CopyOver(std::int32_t block, const NewBlock& held, std::size_t stride, std::int64_t offset,
              std::span<std::uint8_t> run) {
  const std::int64_t start = OffsetOfBlock(block);
  const std::int64_t from = std::max(start, offset);
  const std::int64_t to =
      std::min(start + Medium::kBlockSize, offset + static_cast<std::int64_t>(run.size()));
  for (std::int64_t i = from; i < to; ++i) {
    run[static_cast<std::size_t>(i - offset)] =
        held.Data[static_cast<std::size_t>(i - start) * stride];
  }
}

}  // namespace

// --- The change ----------------------------------------------------------------------------------

void HeldBlocks::Begin(Medium& medium, std::vector<FreeRun> free) {
  End();
  place_ = medium.Journal();
  if (place_ != nullptr) place_->RequireRoom();
  free_ = std::move(free);
  std::ranges::sort(free_, {}, &FreeRun::Start);
  formerFaults_ = medium.WriteFaults() + medium.ReadFaults();
  active_ = true;
}

void HeldBlocks::Commit(Medium& medium, const std::string& name) {
  if (!active_ || sealed_) return;
  if (!written_.IsEmpty()) medium.Sync();
  RequireNoFaults(medium, name);
  if (Bytes() == 0) {
    End();
    return;
  }
  if (place_ != nullptr) {
    if (!journal_) journal_.emplace(*place_, medium);
    journal_->Add(inMemory_);
    // It has read what stands on the medium.
    RequireNoFaults(medium, name);
    journal_->Finish(written_);
  }
  sealed_ = true;
  Place(medium, name);
}

// Where a card couldn't be read, the change was made of bytes that aren't the disc's.
void HeldBlocks::RequireNoFaults(const Medium& medium, const std::string& name) const {
  if (medium.WriteFaults() + medium.ReadFaults() == formerFaults_) return;
  throw HostError(name, "the card has failed, so nothing was changed");
}

void HeldBlocks::Place(Medium& medium, const std::string& name) {
  const std::int32_t former = medium.WriteFaults();
  if (place_ != nullptr) medium.NoteJournal(true);
  PutInPlace(medium, Blocks(), [this](std::int32_t block) { return *Find(block); });
  if (place_ != nullptr && medium.WriteFaults() != former) {
    throw HostError(name,
                    "the card has failed; the change will be finished when it is opened again");
  }
  if (place_ != nullptr) {
    place_->Remove();
    medium.NoteJournal(false);
  }
  End();
}

void HeldBlocks::Drop() noexcept {
  if (!active_ || sealed_) return;
  JournalPlace* torn = journal_ ? place_ : nullptr;
  End();
  try {
    if (torn != nullptr) torn->Remove();
  } catch (const std::exception&) {
    return;  // The host has failed, or there is no memory. Whoever opens the disc drops it.
  }
}

void HeldBlocks::End() {
  active_ = false;
  sealed_ = false;
  written_.Clear();
  free_.clear();
  inMemory_.clear();
  journal_.reset();
}

std::size_t HeldBlocks::Bytes() const {
  const std::size_t blocks = inMemory_.size() + (journal_ ? journal_->Blocks().size() : 0);
  return blocks * Medium::kBlockSize;
}

std::int32_t HeldBlocks::LastBlock() const {
  const std::int32_t last = inMemory_.empty() ? -1 : inMemory_.rbegin()->first;
  const bool isEmpty = !journal_ || journal_->Blocks().empty();
  return isEmpty ? last : std::max(last, journal_->Blocks().rbegin()->first);
}

std::vector<std::int32_t> HeldBlocks::Blocks() const {
  std::vector<std::int32_t> blocks;
  for (const auto& [block, bytes] : inMemory_) blocks.push_back(block);
  if (!journal_) return blocks;
  const auto middle = static_cast<std::ptrdiff_t>(blocks.size());
  for (const auto& [block, at] : journal_->Blocks()) blocks.push_back(block);
  std::inplace_merge(blocks.begin(), blocks.begin() + middle, blocks.end());
  blocks.erase(std::unique(blocks.begin(), blocks.end()), blocks.end());
  return blocks;
}

void HeldBlocks::Hold(Medium& medium, std::int32_t block, NewBlock bytes) {
  const bool isFull = (inMemory_.size() + 1) * bytes.Data.size() > mostInMemory_;
  if (isFull && !inMemory_.contains(block) && place_ != nullptr) {
    if (!journal_) journal_.emplace(*place_, medium);
    MoveToJournal();
  }
  inMemory_[block] = std::move(bytes);
}

void HeldBlocks::MoveToJournal() {
  journal_->Add(inMemory_);
  inMemory_.clear();
}

std::optional<NewBlock> HeldBlocks::Find(std::int32_t block) {
  const auto found = inMemory_.find(block);
  if (found != inMemory_.end()) return found->second;
  return journal_ ? journal_->Find(block) : std::nullopt;
}

bool HeldBlocks::WasFree(std::int32_t block) const {
  const std::int64_t first = block * kSectorsOfBlock;
  // The map and the root are never free, even if a damaged map says so.
  if (first < format::kFirstFreeSector) return false;
  auto run = std::ranges::upper_bound(free_, first, {},
                                      [](const FreeRun& one) { return std::int64_t{one.Start}; });
  if (run == free_.begin()) return false;
  --run;
  return first + kSectorsOfBlock <= std::int64_t{run->Start} + run->Length;
}

std::size_t HeldBlocks::AlikeAt(std::int32_t block, std::size_t size) const {
  const std::size_t blocks = size / Medium::kBlockSize;
  std::size_t count = 0;
  const bool isFree = WasFree(block);
  while (count < blocks && WasFree(block + static_cast<std::int32_t>(count)) == isFree) ++count;
  return count * Medium::kBlockSize;
}

// --- The medium, as the change sees it -----------------------------------------------------------

bool HeldBlocks::ReadBlock(Medium& medium, std::int32_t block, std::span<std::uint8_t> data,
                           Medium::StoredBytes& stored) {
  const auto held = Find(block);
  if (!held) return medium.ReadBlock(block, data);
  std::copy_n(held->Data.begin(), std::min(held->Data.size(), data.size()), data.begin());
  stored = held->Stored;
  return !held->IsPartial;
}

void HeldBlocks::WriteBlock(Medium& medium, std::int32_t block, NewBlock bytes) {
  if (active_ && !WasFree(block)) {
    Hold(medium, block, std::move(bytes));
    return;
  }
  if (bytes.IsPartial) {
    medium.WriteStored(block, bytes.Data, bytes.Stored);
    if (active_) written_.NotePart(block);
  } else {
    medium.WriteBlock(block, bytes.Data);
    if (active_) written_.Note(block, bytes.Data, bytes.Data.size());
  }
}

std::size_t HeldBlocks::ReadRun(Medium& medium, std::int64_t offset,
                                std::span<std::uint8_t> bytes) {
  const std::size_t run = medium.ReadRun(offset, bytes);
  if (!active_ || run == 0) return run;
  const auto part = bytes.first(run);
  const std::size_t stride = medium.BlockLayout().Stride;
  const auto first = static_cast<std::int32_t>(offset / Medium::kBlockSize);
  const std::int64_t end = offset + static_cast<std::int64_t>(run);
  // Those in memory are newer.
  if (journal_) {
    auto at = journal_->Blocks().lower_bound(first);
    for (; at != journal_->Blocks().end() && OffsetOfBlock(at->first) < end; ++at) {
      CopyOver(at->first, *journal_->Find(at->first), stride, offset, part);
    }
  }
  auto at = inMemory_.lower_bound(first);
  for (; at != inMemory_.end() && OffsetOfBlock(at->first) < end; ++at) {
    CopyOver(at->first, at->second, stride, offset, part);
  }
  return run;
}

std::size_t HeldBlocks::WriteRun(Medium& medium, std::int64_t offset,
                                 std::span<const std::uint8_t> bytes) {
  if (!active_) return medium.WriteRun(offset, bytes);
  if (offset < 0 || offset % Medium::kBlockSize != 0) return 0;
  if (medium.BlockLayout().Stride != 1) return 0;
  const auto first = static_cast<std::int32_t>(offset / Medium::kBlockSize);
  const auto part = bytes.first(AlikeAt(first, bytes.size()));
  if (WasFree(first)) {
    const std::size_t run = medium.WriteRun(offset, part);
    written_.Note(first, part.first(run), Medium::kBlockSize);
    return run;
  }
  for (std::size_t at = 0; at < part.size(); at += Medium::kBlockSize) {
    const auto block = part.subspan(at, Medium::kBlockSize);
    const auto number = first + static_cast<std::int32_t>(at / Medium::kBlockSize);
    Hold(medium, number, {{block.begin(), block.end()}, false, {}});
  }
  return part.size();
}

}  // namespace sectorbox
