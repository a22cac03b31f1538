#include "disc/store/DiscImg.h"

#include <algorithm>
#include <limits>

#include "disc/host/HostError.h"
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
  const bool isOther = medium_ == nullptr || request_.Name != fileName;
  OpenMedium(KindOf(type), isPartition ? MediumRequest{fileName, {}, tracks}
                                       : MediumRequest{fileName, {tracks, heads, sectors}, 0});
  if (isOther && !lock_.IsOn(medium_->HostPath())) lock_.Release();
  stamp_ = StampOfPath(medium_->HostPath());
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
  ++openings_;
  EmptySlots();
  // A card has longer blocks than a file. A store that once had a card keeps the long blocks, and
  // then also reads and writes that many bytes for each block of a file.
  for (Slot& slot : slots_) slot.Data.resize(std::max(slot.Data.size(), layout_.BlockBytes));
  Recover();
}

void DiscImg::CloseFile() {
  if (medium_ == nullptr) return;
  if (InMemory()) {
    if (WasReplacedOnHost()) {
      throw HostError(request_.Name, "another program has changed it, so it isn't replaced");
    }
    medium_->Close();
    NoteSaved();
    return;
  }
  if (!medium_->IsOpen()) return;
  if (held_.IsSealed()) {
    PlaceHeld();
  } else if (held_.IsActive()) {
    CommitChange();
  }
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

// --- Other programs ------------------------------------------------------------------------------

DiscImg::LockResult DiscImg::LockForChanges() {
  if (medium_ == nullptr) return LockResult::kTaken;
  const std::string path = medium_->HostPath();
  if (path.empty() || lock_.IsOn(path)) return LockResult::kTaken;
  if (!lock_.Take(path, rules_.LockPatience())) return LockResult::kInUse;
  // What was read from a disc that is written in place may be out of date now. A disc in memory is
  // compared with its file when it is saved.
  const bool isFile = !InMemory() && !kind_->IsPartition;
  if (!isFile || !stamp_ || stamp_ == StampOfPath(path)) return LockResult::kTaken;
  lock_.Release();
  return LockResult::kChanged;
}

bool DiscImg::WasReplacedOnHost() const {
  const auto now = StampOfPath(request_.Name);
  return now && now != stamp_;
}

void DiscImg::NoteSaved() {
  stamp_ = StampOfPath(request_.Name);
}

// --- Changes -------------------------------------------------------------------------------------

void DiscImg::BeginChange(std::vector<FreeRun> free) {
  if (held_.IsSealed()) PlaceHeld();
  // What was stored before belongs to no change.
  if (!InMemory()) WriteBack();
  held_.Begin(std::move(free));
  formerFaults_ = WriteFaults();
}

void DiscImg::CommitChange() {
  if (!held_.IsActive() || held_.IsSealed()) return;
  if (!InMemory()) {
    WriteBack();
    if (held_.WroteFree()) medium_->Sync();
    if (WriteFaults() != formerFaults_) {
      throw HostError(request_.Name, "the card has failed, so nothing was changed");
    }
  }
  if (held_.All().empty()) {
    held_.End();
    return;
  }
  RequireMedium();
  if (JournalPlace* journal = medium_->Journal()) WriteJournal(*journal, *medium_, held_.All());
  held_.Seal();
  PlaceHeld();
}

void DiscImg::RequireMedium() {
  std::vector<std::uint8_t> map(layout_.BlockBytes);
  if (!medium_->ReadBlock(0, map)) {
    throw HostError(request_.Name, "the card has failed, so nothing was changed");
  }
}

void DiscImg::PlaceHeld() {
  const std::int32_t former = WriteFaults();
  PutInPlace(*medium_, held_.All());
  JournalPlace* journal = medium_->Journal();
  if (journal != nullptr && WriteFaults() != former) {
    throw HostError(request_.Name,
                    "the card has failed; the change will be finished when it is opened again");
  }
  if (journal != nullptr) journal->Remove();
  held_.End();
}

std::int32_t DiscImg::WriteFaults() const {
  return medium_ == nullptr ? 0 : medium_->WriteFaults();
}

void DiscImg::DropChange() noexcept {
  if (!held_.IsActive() || held_.IsSealed()) return;
  if (InMemory()) {
    held_.Restore(memory_);
  } else {
    EmptySlots();
  }
  held_.End();
}

void DiscImg::Recover() {
  if (InMemory()) return;
  const auto journals = medium_->OldJournals();
  if (journals.empty()) return;
  // A journal of a program that is still at work is none of ours.
  const std::string path = medium_->HostPath();
  FileLock lock;
  if (!lock_.IsOn(path) && !lock.Take(path, rules_.LockPatience())) return;
  for (const auto& journal : journals) {
    switch (FinishJournal(*journal, *medium_)) {
      case JournalEnd::kFinished:
        status_.Note(request_.Name + ": a change that was interrupted has been finished");
        break;
      case JournalEnd::kDropped:
        status_.Note(request_.Name + ": a change that was interrupted has been dropped");
        break;
      case JournalEnd::kForeign:
        // A card's journals may be for other cards.
        if (!kind_->IsPartition) {
          status_.Note(request_.Name + ": the journal beside it belongs to another disc");
        }
        break;
      case JournalEnd::kNone:
        break;
    }
  }
}

void DiscImg::CopyHeld(std::int64_t offset, std::span<std::uint8_t> bytes) const {
  const std::int64_t end = offset + static_cast<std::int64_t>(bytes.size());
  const auto& all = held_.All();
  auto at = all.lower_bound(static_cast<std::int32_t>(offset / kBlockSize));
  for (; at != all.end() && OffsetOfBlock(at->first) < end; ++at) {
    const std::int64_t first = std::max(OffsetOfBlock(at->first), offset);
    const std::int64_t last = std::min(OffsetOfBlock(at->first) + kBlockSize, end);
    for (std::int64_t i = first; i < last; ++i) {
      bytes[static_cast<std::size_t>(i - offset)] = at->second.Data[InBlock(i) * layout_.Stride];
    }
  }
}

std::size_t DiscImg::AlikeAt(std::int32_t block, std::size_t size) const {
  const std::size_t blocks = size / kBlockSize;
  std::size_t count = 0;
  const bool isFree = held_.WasFree(block);
  while (count < blocks && held_.WasFree(block + static_cast<std::int32_t>(count)) == isFree) {
    ++count;
  }
  return count * kBlockSize;
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
  const std::size_t blockBytes = layout_.BlockBytes;
  // All of Data is written. If it is longer than a block, its rest goes to the place of the next
  // block, so the rest has to be what that block holds now.
  if (slot.Data.size() > blockBytes) RefreshOverhang(slot);
  const std::span<const std::uint8_t> data(slot.Data);
  for (std::size_t at = 0; at < data.size(); at += blockBytes) {
    const auto part = data.subspan(at, blockBytes);
    const auto block = slot.Block + static_cast<std::int32_t>(at / blockBytes);
    PutBlock(block, {{part.begin(), part.end()}, slot.ReadFailed, slot.Stored});
  }
}

void DiscImg::PutBlock(std::int32_t block, NewBlock bytes) {
  if (held_.IsActive() && !held_.WasFree(block)) {
    held_.Hold(block, std::move(bytes));
    return;
  }
  if (bytes.IsPartial) {
    medium_->WriteStored(block, bytes.Data, bytes.Stored);
  } else {
    medium_->WriteBlock(block, bytes.Data);
  }
  held_.NoteWrite();
  // Our own writes change the stamp.
  stamp_.reset();
}

void DiscImg::RefreshOverhang(Slot& slot) {
  const auto overhang = std::span(slot.Data).subspan(layout_.BlockBytes);
  const Slot& other = slots_[&slot == &slots_[0] ? 1 : 0];
  if (other.Block == slot.Block + 1) {
    std::copy_n(other.Data.begin(), overhang.size(), overhang.begin());
  } else if (const NewBlock* held = held_.Find(slot.Block + 1)) {
    std::copy_n(held->Data.begin(), overhang.size(), overhang.begin());
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
  slot.Stored.reset();
  slot.ReadFailed = !ReadBlock(slot, block);
  slot.Block = block;
  for (Slot& one : slots_) one.Recent = &one == &slot;
  return slot;
}

bool DiscImg::ReadBlock(Slot& slot, std::int32_t block) {
  const NewBlock* held = held_.Find(block);
  if (held == nullptr) return medium_->ReadBlock(block, slot.Data);
  std::copy(held->Data.begin(), held->Data.end(), slot.Data.begin());
  slot.Stored = held->Stored;
  return !held->IsPartial;
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
  CopyHeld(offset, bytes.first(run));
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
  const std::size_t run = WriteRun(offset, bytes);
  const std::int64_t end = offset + static_cast<std::int64_t>(run);
  for (Slot& slot : slots_) {
    const std::int64_t at = OffsetOfBlock(slot.Block);
    if (slot.Block == -1 || at < offset || at >= end) continue;
    StoreToSlot(at, bytes.subspan(static_cast<std::size_t>(at - offset), kBlockSize));
    slot.Dirty = false;
  }
  return run;
}

std::size_t DiscImg::WriteRun(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  stamp_.reset();
  if (!held_.IsActive()) return medium_->WriteRun(offset, bytes);
  if (offset < 0 || InBlock(offset) != 0 || layout_.Stride != 1) return 0;
  const auto first = static_cast<std::int32_t>(offset / kBlockSize);
  const auto part = bytes.first(AlikeAt(first, bytes.size()));
  if (held_.WasFree(first)) {
    held_.NoteWrite();
    return medium_->WriteRun(offset, part);
  }
  for (std::size_t at = 0; at < part.size(); at += kBlockSize) {
    const auto block = part.subspan(at, kBlockSize);
    const auto number = first + static_cast<std::int32_t>(at / kBlockSize);
    held_.Hold(number, {{block.begin(), block.end()}, false, {}});
  }
  return part.size();
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
        if (held_.IsActive()) held_.KeepOld(memory_, static_cast<std::size_t>(offset), size);
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
  if (!held_.All().empty()) {
    end = std::max(end, OffsetOfBlock(held_.All().rbegin()->first) + kBlockSize);
  }
  return end;
}

std::int64_t DiscImg::LongestFile() {
  if (InMemory()) return static_cast<std::int64_t>(memory_.size());
  return medium_->IsReady() || ReadyForBlocks() ? medium_->LongestFile() : 0;
}

}  // namespace sectorbox
