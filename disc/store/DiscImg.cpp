#include "disc/store/DiscImg.h"

#include <algorithm>
#include <limits>

#include "disc/medium/CardMedium.h"

namespace sectorbox {
namespace {

// Only a run of at least this many bytes goes past the two blocks.
constexpr std::size_t kSmallestRun = std::size_t{2} * DiscImg::kBlockSize;
constexpr std::int32_t kTransferSectors = DiscImg::kTransferSize / CardMedium::kDeviceSector;

std::size_t InBlock(std::int64_t offset) {
  return static_cast<std::size_t>(offset % DiscImg::kBlockSize);
}

std::int64_t OffsetOfBlock(std::int32_t block) {
  return std::int64_t{block} * DiscImg::kBlockSize;
}

}  // namespace

DiscImg::DiscImg(StatusLine& status, ImageRules& rules, std::unique_ptr<RawDevice> device,
                 std::unique_ptr<MediumMaker> maker)
    : status_(status),
      rules_(rules),
      device_(std::move(device)),
      maker_(maker ? std::move(maker) : std::make_unique<MediumMaker>()),
      kind_(&KindOf(kAdf)) {}

DiscImg::~DiscImg() = default;

// --- Opening and closing -------------------------------------------------------------------------

void DiscImg::OpenFile(const std::string& fileName, DiscType type, std::int32_t tracks,
                       std::int32_t heads, std::int32_t sectors) {
  if (!InMemory()) CloseFile();
  const bool isPartition = KindOf(type).IsPartition;
  OpenMedium(KindOf(type), isPartition ? MediumRequest{fileName, {}, tracks}
                                       : MediumRequest{fileName, {tracks, heads, sectors}, 0});
}

void DiscImg::OpenMedium(const MediumKind& kind, const MediumRequest& request) {
  // The open disc stays until the new one is there.
  auto medium = maker_->Make(kind.Type, request, {*device_, status_, rules_});
  medium_ = std::move(medium);
  kind_ = &kind;
  request_ = request;
  inMemory_ = medium_->InMemory();
  memory_ = medium_->Memory();
  layout_ = medium_->BlockLayout();
  suspended_ = false;
  mTracks = request_.Shape.Tracks;
  mNumSecs = medium_->DeviceSectors();
  EmptySlots();
  // A card has longer blocks than a file. A store that once had a card keeps the long blocks, and
  // then also reads and writes that many bytes for each block of a file.
  for (Slot& slot : slots_) slot.Data.resize(std::max(slot.Data.size(), layout_.BlockBytes));
}

void DiscImg::CloseFile() {
  if (medium_ == nullptr) return;
  if (InMemory()) {
    medium_->Close();
    return;
  }
  if (!medium_->IsOpen()) return;
  WriteBack();
  EmptySlots();
  suspended_ = true;
  medium_->Close();
}

void DiscImg::Abandon() {
  if (!InMemory()) CloseFile();
  suspended_ = false;
}

void DiscImg::Flush() {
  CloseFile();
  Reopen();
}

void DiscImg::Reopen() {
  if (medium_ != nullptr) OpenMedium(*kind_, MediumRequest(request_));
}

bool DiscImg::ReadyForBlocks() {
  if (medium_ == nullptr) return false;
  if (suspended_) Reopen();
  return medium_->IsReady();
}

// --- The two blocks ------------------------------------------------------------------------------

void DiscImg::EmptySlots() {
  for (Slot& slot : slots_) {
    slot.Block = -1;
    slot.Dirty = false;
    slot.Recent = false;
  }
}

void DiscImg::WriteBack() {
  for (Slot& slot : slots_) {
    if (!slot.Dirty) continue;
    WriteSlot(slot);
    slot.Dirty = false;
  }
}

void DiscImg::WriteSlot(Slot& slot) {
  // All of Data is written. If it is longer than a block, its rest goes to the place of the next
  // block, so the rest has to be what that block holds now.
  if (slot.Data.size() > layout_.BlockBytes) RefreshOverhang(slot);
  if (slot.ReadFailed) {
    medium_->WriteStored(slot.Block, slot.Data, slot.Stored);
  } else {
    medium_->WriteBlock(slot.Block, slot.Data);
  }
}

void DiscImg::RefreshOverhang(Slot& slot) {
  const auto overhang = std::span(slot.Data).subspan(layout_.BlockBytes);
  const Slot& other = slots_[&slot == &slots_[0] ? 1 : 0];
  if (other.Block == slot.Block + 1) {
    std::copy_n(other.Data.begin(), overhang.size(), overhang.begin());
  } else {
    // The user hears of a block that can't be read; its bytes are then what the medium gave.
    (void)medium_->ReadBlock(slot.Block + 1, overhang);
  }
}

// First in, first out: only reading a block sets Recent, and a later hit doesn't.
DiscImg::Slot& DiscImg::ChooseVictim() {
  if (slots_[0].Block == -1) return slots_[0];
  if (slots_[1].Block == -1) return slots_[1];
  return slots_[slots_[0].Recent ? 1 : 0];
}

DiscImg::Slot& DiscImg::LocateBlock(std::int64_t offset) {
  const auto block = static_cast<std::int32_t>(offset / kBlockSize);
  for (Slot& slot : slots_) {
    if (slot.Block == block) return slot;
  }
  Slot& slot = ChooseVictim();
  if (slot.Block != -1 && slot.Dirty) WriteSlot(slot);
  slot.Block = -1;
  slot.Dirty = false;
  slot.ReadFailed = !medium_->ReadBlock(block, slot.Data);
  slot.Stored.reset();
  slot.Block = block;
  for (Slot& one : slots_) one.Recent = &one == &slot;
  return slot;
}

void DiscImg::FetchFromSlot(std::int64_t offset, std::span<std::uint8_t> bytes) {
  const Slot& slot = LocateBlock(offset);
  const std::uint8_t* from = slot.Data.data() + InBlock(offset) * layout_.Stride;
  if (layout_.Stride == 1) {
    std::copy_n(from, bytes.size(), bytes.begin());
    return;
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = from[i * layout_.Stride];
}

void DiscImg::StoreToSlot(std::int64_t offset, std::span<const std::uint8_t> bytes) {
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

std::size_t DiscImg::FetchRun(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (InMemory() || offset < 0 || bytes.size() < kSmallestRun || !ReadyForBlocks()) return 0;
  // The run ends in front of a held block that couldn't be read, so that nobody tries it again.
  for (const Slot& slot : slots_) {
    const std::int64_t at = OffsetOfBlock(slot.Block);
    const bool isBad = slot.Block != -1 && slot.ReadFailed && at + kBlockSize > offset;
    const std::int64_t room = std::max<std::int64_t>(at - offset, 0);
    if (isBad) bytes = bytes.first(std::min(bytes.size(), static_cast<std::size_t>(room)));
  }
  const std::size_t run = medium_->ReadRun(offset, bytes);
  const std::int64_t end = offset + static_cast<std::int64_t>(run);
  for (const Slot& slot : slots_) {
    if (slot.Block == -1) continue;
    const std::int64_t from = std::max(OffsetOfBlock(slot.Block), offset);
    const std::int64_t to = std::min(OffsetOfBlock(slot.Block) + kBlockSize, end);
    if (from >= to) continue;
    FetchFromSlot(from, bytes.subspan(static_cast<std::size_t>(from - offset),
                                      static_cast<std::size_t>(to - from)));
  }
  return run;
}

std::size_t DiscImg::StoreRun(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  // A slot that is longer than a block also writes to the next block, so all bytes go through the
  // slots then.
  const bool fits = slots_[0].Data.size() == layout_.BlockBytes;
  if (InMemory() || bytes.size() < kSmallestRun || !fits) return 0;
  const std::size_t run = medium_->WriteRun(offset, bytes);
  const std::int64_t end = offset + static_cast<std::int64_t>(run);
  for (Slot& slot : slots_) {
    const std::int64_t at = OffsetOfBlock(slot.Block);
    if (slot.Block == -1 || at < offset || at >= end) continue;
    StoreToSlot(at, bytes.subspan(static_cast<std::size_t>(at - offset), kBlockSize));
    slot.Dirty = false;
  }
  return run;
}

// --- Bytes ---------------------------------------------------------------------------------------

std::size_t DiscImg::TogetherAt(std::int64_t offset, std::size_t want) const {
  if (offset < 0) {
    return static_cast<std::size_t>(
        std::min<std::int64_t>(-offset, static_cast<std::int64_t>(want)));
  }
  if (!InMemory()) return std::min<std::size_t>(want, kBlockSize - InBlock(offset));
  const auto at = static_cast<std::size_t>(offset);
  return at < memory_.size() ? std::min(want, memory_.size() - at) : want;
}

bool DiscImg::Holds(std::int64_t offset) {
  if (offset < 0 || medium_ == nullptr) return false;
  return offset < medium_->Extent() && (InMemory() || ReadyForBlocks());
}

std::uint8_t DiscImg::Fetch(std::int64_t offset) {
  std::uint8_t value = 0;
  FetchBytes(offset, std::span(&value, 1));
  return value;
}

void DiscImg::Store(std::int64_t offset, std::uint8_t value) {
  if (offset >= 0) StoreBytes(offset, std::span(&value, 1));
}

void DiscImg::FetchBytes(std::int64_t offset, std::span<std::uint8_t> bytes) {
  while (!bytes.empty()) {
    std::size_t size = FetchRun(offset, bytes);
    if (size == 0) {
      size = TogetherAt(offset, bytes.size());
      const auto part = bytes.first(size);
      if (!Holds(offset)) {
        std::fill(part.begin(), part.end(), std::uint8_t{0});
      } else if (InMemory()) {
        std::copy_n(memory_.begin() + offset, size, part.begin());
      } else {
        FetchFromSlot(offset, part);
      }
    }
    offset += static_cast<std::int64_t>(size);
    bytes = bytes.subspan(size);
  }
}

void DiscImg::StoreBytes(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) return;
  if (!InMemory()) {
    if (!ReadyForBlocks()) return;
    bytes = medium_->Storable(offset, bytes);
  }
  while (!bytes.empty()) {
    std::size_t size = StoreRun(offset, bytes);
    if (size == 0) {
      size = TogetherAt(offset, bytes.size());
      const auto part = bytes.first(size);
      if (Holds(offset) && InMemory()) {
        std::copy(part.begin(), part.end(), memory_.begin() + offset);
      } else if (Holds(offset)) {
        StoreToSlot(offset, part);
      }
    }
    offset += static_cast<std::int64_t>(size);
    bytes = bytes.subspan(size);
  }
}

void DiscImg::ClearCFSector() {
  transfer_.fill(0);
}

void DiscImg::WriteCFSector(std::int32_t sector, std::int32_t secs) {
  const std::int32_t count = std::clamp(secs, 0, kTransferSectors);
  if (medium_ == nullptr) return;
  medium_->WriteDeviceSectors(sector, std::span(transfer_).first(static_cast<std::size_t>(count) *
                                                                 CardMedium::kDeviceSector));
}

// --- What the medium says ------------------------------------------------------------------------

std::int32_t DiscImg::DiscSize() const {
  return medium_ == nullptr ? 0 : medium_->UsableSectors().value_or(0);
}

bool DiscImg::HasFixedSize() const {
  return medium_ != nullptr && medium_->UsableSectors().has_value();
}

std::int32_t DiscImg::CardFaults() const {
  return medium_ == nullptr ? 0 : medium_->Faults();
}

std::size_t DiscImg::ImageBytes() const {
  return memory_.size();
}

std::vector<std::uint8_t> DiscImg::WholeFile() {
  return medium_ == nullptr ? std::vector<std::uint8_t>() : medium_->WholeFile();
}

bool DiscImg::IsOpenMedium(const std::string& path) const {
  return !InMemory() && (suspended_ || medium_->IsOpen()) && medium_->Is(path);
}

bool DiscImg::MayBeReplaced() const {
  return medium_ == nullptr || medium_->MayBeReplaced();
}

std::int64_t DiscImg::EndOfData() {
  if (InMemory()) return static_cast<std::int64_t>(memory_.size());
  // What a card says of itself doesn't need its device.
  if (!medium_->IsReady() && !ReadyForBlocks()) return std::numeric_limits<std::int64_t>::max();
  std::int64_t end = medium_->EndOfData();
  for (const Slot& slot : slots_) {
    if (slot.Dirty) end = std::max(end, OffsetOfBlock(slot.Block) + kBlockSize);
  }
  return end;
}

std::int64_t DiscImg::LongestFile() {
  if (InMemory()) return static_cast<std::int64_t>(memory_.size());
  return medium_->IsReady() || ReadyForBlocks() ? medium_->LongestFile() : 0;
}

}  // namespace sectorbox
