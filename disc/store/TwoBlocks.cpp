#include "disc/store/TwoBlocks.h"

#include <algorithm>

namespace sectorbox {
namespace {

// Only a run of at least this many bytes goes past the two blocks.
constexpr std::size_t kSmallestRun = std::size_t{2} * Medium::kBlockSize;

std::size_t InBlock(std::int64_t offset) {
  return static_cast<std::size_t>(offset % Medium::kBlockSize);
}

std::int64_t OffsetOfBlock(std::int32_t block) {
  return std::int64_t{block} * Medium::kBlockSize;
}

}  // namespace

void TwoBlocks::Use(Medium& medium) {
  medium_ = &medium;
  layout_ = medium.BlockLayout();
  Empty();
  // A card has longer blocks than a file. A store that once had a card keeps the long blocks, and
  // then also reads and writes that many bytes for each block of a file.
  for (Slot& slot : slots_) slot.Data.resize(std::max(slot.Data.size(), layout_.BlockBytes));
}

void TwoBlocks::Empty() {
  for (Slot& slot : slots_) {
    slot.Block = -1;
    slot.Dirty = false;
    slot.Recent = false;
  }
}

void TwoBlocks::ForgetUnread() {
  for (Slot& slot : slots_) {
    if (slot.ReadFailed && !slot.Dirty) slot.Block = -1;
  }
}

void TwoBlocks::WriteBack() {
  for (Slot& slot : slots_) {
    if (!slot.Dirty) continue;
    WriteSlot(slot);
    slot.Dirty = false;
  }
}

void TwoBlocks::WriteSlot(Slot& slot) {
  const std::size_t blockBytes = layout_.BlockBytes;
  // All of Data is written. If it is longer than a block, its rest goes to the place of the next
  // block, so the rest has to be what that block holds now.
  if (slot.Data.size() > blockBytes) RefreshOverhang(slot);
  const std::span<const std::uint8_t> data(slot.Data);
  for (std::size_t at = 0; at < data.size(); at += blockBytes) {
    const auto part = data.subspan(at, blockBytes);
    const auto block = slot.Block + static_cast<std::int32_t>(at / blockBytes);
    held_.WriteBlock(*medium_, block, {{part.begin(), part.end()}, slot.ReadFailed, slot.Stored});
  }
}

void TwoBlocks::RefreshOverhang(Slot& slot) {
  const auto overhang = std::span(slot.Data).subspan(layout_.BlockBytes);
  const Slot& other = slots_[&slot == &slots_[0] ? 1 : 0];
  if (other.Block == slot.Block + 1) {
    std::copy_n(other.Data.begin(), overhang.size(), overhang.begin());
  } else {
    // The user hears of a block that can't be read; its bytes are then what the medium gave.
    Medium::StoredBytes stored;
    (void)held_.ReadBlock(*medium_, slot.Block + 1, overhang, stored);
  }
}

// First in, first out: only reading a block sets Recent, and a later hit doesn't.
TwoBlocks::Slot& TwoBlocks::ChooseVictim() {
  if (slots_[0].Block == -1) return slots_[0];
  if (slots_[1].Block == -1) return slots_[1];
  return slots_[slots_[0].Recent ? 1 : 0];
}

TwoBlocks::Slot& TwoBlocks::LocateBlock(std::int64_t offset) {
  const auto block = static_cast<std::int32_t>(offset / Medium::kBlockSize);
  for (Slot& slot : slots_) {
    if (slot.Block == block) return slot;
  }
  Slot& slot = ChooseVictim();
  if (slot.Block != -1 && slot.Dirty) WriteSlot(slot);
  slot.Block = -1;
  slot.Dirty = false;
  slot.Stored.reset();
  slot.ReadFailed = !held_.ReadBlock(*medium_, block, slot.Data, slot.Stored);
  slot.Block = block;
  for (Slot& one : slots_) one.Recent = &one == &slot;
  return slot;
}

void TwoBlocks::Fetch(std::int64_t offset, std::span<std::uint8_t> bytes) {
  const Slot& slot = LocateBlock(offset);
  const std::uint8_t* from = slot.Data.data() + InBlock(offset) * layout_.Stride;
  if (layout_.Stride == 1) {
    std::copy_n(from, bytes.size(), bytes.begin());
    return;
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = from[i * layout_.Stride];
}

void TwoBlocks::Store(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  Slot& slot = LocateBlock(offset);
  const std::size_t in = InBlock(offset);
  std::uint8_t* to = slot.Data.data() + in * layout_.Stride;
  if (layout_.Stride == 1) {
    std::copy(bytes.begin(), bytes.end(), to);
  } else {
    for (std::size_t i = 0; i < bytes.size(); ++i) to[i * layout_.Stride] = bytes[i];
  }
  slot.Dirty = true;
  if (!slot.ReadFailed) return;
  for (std::size_t i = in; i < in + bytes.size(); ++i) slot.Stored.set(i);
}

std::size_t TwoBlocks::FetchRun(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (offset < 0 || bytes.size() < kSmallestRun) return 0;
  // The run ends in front of a held block that couldn't be read, so that nobody tries it again.
  for (const Slot& slot : slots_) {
    const std::int64_t at = OffsetOfBlock(slot.Block);
    const bool isBad = slot.Block != -1 && slot.ReadFailed && at + Medium::kBlockSize > offset;
    const std::int64_t room = std::max<std::int64_t>(at - offset, 0);
    if (isBad) bytes = bytes.first(std::min(bytes.size(), static_cast<std::size_t>(room)));
  }
  const std::size_t run = held_.ReadRun(*medium_, offset, bytes);
  const std::int64_t end = offset + static_cast<std::int64_t>(run);
  for (const Slot& slot : slots_) {
    if (slot.Block == -1) continue;
    const std::int64_t from = std::max(OffsetOfBlock(slot.Block), offset);
    const std::int64_t to = std::min(OffsetOfBlock(slot.Block) + Medium::kBlockSize, end);
    if (from >= to) continue;
    Fetch(from, bytes.subspan(static_cast<std::size_t>(from - offset),
                              static_cast<std::size_t>(to - from)));
  }
  return run;
}

std::size_t TwoBlocks::StoreRun(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  // A slot that is longer than a block also writes to the next block, so all bytes go through the
  // slots then.
  const bool fits = slots_[0].Data.size() == layout_.BlockBytes;
  if (bytes.size() < kSmallestRun || !fits) return 0;
  const std::size_t run = held_.WriteRun(*medium_, offset, bytes);
  const std::int64_t end = offset + static_cast<std::int64_t>(run);
  for (Slot& slot : slots_) {
    const std::int64_t at = OffsetOfBlock(slot.Block);
    if (slot.Block == -1 || at < offset || at >= end) continue;
    Store(at, bytes.subspan(static_cast<std::size_t>(at - offset), Medium::kBlockSize));
    slot.Dirty = false;
  }
  return run;
}

std::int64_t TwoBlocks::EndOfChanges() const {
  std::int64_t end = 0;
  for (const Slot& slot : slots_) {
    if (slot.Dirty) end = std::max(end, OffsetOfBlock(slot.Block) + Medium::kBlockSize);
  }
  return end;
}

}  // namespace sectorbox
