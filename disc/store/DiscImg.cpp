#include "disc/store/DiscImg.h"

#include <algorithm>
#include <limits>

#include "disc/host/HostError.h"
#include "disc/medium/CardMedium.h"

namespace sectorbox {
namespace {

constexpr std::int32_t kTransferSectors = DiscImg::kTransferSize / CardMedium::kDeviceSector;

std::size_t InBlock(std::int64_t offset) {
  return static_cast<std::size_t>(offset % DiscImg::kBlockSize);
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
  lock_.NoteOpening(medium_->HostPath(), !InMemory() && !isPartition);
  if (watcher_ != nullptr) watcher_->DiscOpened();
}

void DiscImg::OpenMedium(const MediumKind& kind, const MediumRequest& request) {
  // The open disc stays until the new one is there.
  auto medium = maker_->Make(kind.Type, request, {*device_, status_, rules_});
  medium_ = std::move(medium);
  kind_ = &kind;
  request_ = request;
  inMemory_ = medium_->InMemory();
  memory_ = medium_->Memory();
  suspended_ = false;
  mTracks = request_.Shape.Tracks;
  mNumSecs = medium_->DeviceSectors();
  ++openings_;
  // The change to a disc in memory that is dropped ends with it.
  old_.End();
  blocks_.Use(*medium_);
  Recover();
}

void DiscImg::CloseFile() {
  if (medium_ == nullptr) return;
  if (InMemory()) {
    if (lock_.WasReplaced()) {
      throw HostError(request_.Name, "another program has changed it, so it isn't replaced");
    }
    medium_->Close();
    lock_.NoteSave();
    return;
  }
  if (!medium_->IsOpen()) return;
  if (held_.IsSealed()) {
    PlaceOrLeave();
  } else if (held_.IsActive()) {
    CommitChange();
  }
  WriteBack();
  blocks_.Empty();
  suspended_ = true;
  medium_->Close();
}

// The user has heard of it when the change was made. A card that doesn't come back must not keep
// the program from opening another disc.
void DiscImg::PlaceOrLeave() {
  try {
    held_.Place(*medium_, request_.Name);
  } catch (const HostError&) {
    held_.LeaveJournal();
    status_.Note(request_.Name + ": a change will be finished when it is opened again");
  }
}

void DiscImg::Abandon() {
  if (!InMemory()) CloseFile();
  suspended_ = false;
}

void DiscImg::WriteBack() {
  blocks_.WriteBack();
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

// --- Changes -------------------------------------------------------------------------------------

void DiscImg::BeginChange(std::vector<FreeRun> free) {
  if (InMemory()) {
    old_.Begin();
    return;
  }
  if (held_.IsSealed()) held_.Place(*medium_, request_.Name);
  // What was stored before belongs to no change. The change holds on to the medium's journal, so
  // the medium must be the one that it will work on.
  blocks_.WriteBack();
  (void)ReadyForBlocks();
  held_.Begin(*medium_, std::move(free));
}

void DiscImg::CommitChange() {
  old_.End();
  if (!held_.IsActive() || held_.IsSealed()) {
    TellEnd(true);
    return;
  }
  try {
    blocks_.WriteBack();
    held_.Commit(*medium_, request_.Name);
  } catch (const HostError&) {
    if (held_.IsSealed()) TellEnd(true);
    throw;
  }
  TellEnd(true);
}

void DiscImg::TellEnd(bool isMade) noexcept {
  if (watcher_ != nullptr) watcher_->ChangeEnded(isMade);
}

void DiscImg::DropChange() noexcept {
  if (old_.IsActive()) old_.Restore(memory_);
  old_.End();
  if (held_.IsSealed()) return;
  if (held_.IsActive()) {
    blocks_.Empty();
    held_.Drop();
  }
  TellEnd(false);
}

void DiscImg::Recover() {
  if (InMemory()) return;
  const auto journals = medium_->OldJournals();
  const std::string noted = medium_->NotedJournal();
  if (journals.empty() && noted.empty()) return;
  // A journal of a program that is still at work is none of ours.
  const std::string path = medium_->HostPath();
  FileLock lock;
  if (!lock_.IsOn(path) && !lock.Take(path, rules_.LockPatience())) return;
  bool isUnplaced = false;
  for (const auto& journal : journals) {
    const JournalEnd end = FinishJournal(*journal, *medium_);
    TellJournalEnd(end);
    isUnplaced = isUnplaced || end == JournalEnd::kUnplaced;
  }
  if (noted.empty() || isUnplaced) return;
  if (journals.empty() && !HostFileExists(noted)) {
    status_.Note(request_.Name + ": a change was interrupted, and its journal " + noted +
                 " is missing. Check the disc");
  }
  medium_->NoteJournal(false);
}

void DiscImg::TellJournalEnd(JournalEnd end) {
  switch (end) {
    case JournalEnd::kFinished:
      status_.Note(request_.Name + ": a change that was interrupted has been finished");
      break;
    case JournalEnd::kDropped:
      status_.Note(request_.Name + ": a change that was interrupted has been dropped");
      break;
    case JournalEnd::kForeign:
      // A card's journals may be for other cards.
      if (!kind_->IsPartition) {
        status_.Note(request_.Name +
                     ": the journal beside it belongs to another disc, so it can't be changed");
      }
      break;
    case JournalEnd::kUnplaced:
      status_.Note(request_.Name + ": a change that was interrupted can't be finished yet");
      break;
    case JournalEnd::kNone:
      break;
  }
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
    const bool holds = Holds(offset);
    std::size_t size = holds && !InMemory() ? blocks_.FetchRun(offset, bytes) : 0;
    if (size == 0) {
      size = TogetherAt(offset, bytes.size());
      const auto part = bytes.first(size);
      if (!holds) {
        std::fill(part.begin(), part.end(), std::uint8_t{0});
      } else if (InMemory()) {
        std::copy_n(memory_.begin() + offset, size, part.begin());
      } else {
        blocks_.Fetch(offset, part);
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
    lock_.NoteWrite();
  }
  if (watcher_ != nullptr) watcher_->BytesWillChange(offset, bytes.size());
  while (!bytes.empty()) {
    const bool holds = Holds(offset);
    std::size_t size = holds && !InMemory() ? blocks_.StoreRun(offset, bytes) : 0;
    if (size == 0) {
      size = TogetherAt(offset, bytes.size());
      const auto part = bytes.first(size);
      if (holds && InMemory()) {
        old_.Keep(memory_, static_cast<std::size_t>(offset), size);
        std::copy(part.begin(), part.end(), memory_.begin() + offset);
      } else if (holds) {
        blocks_.Store(offset, part);
      }
    }
    offset += static_cast<std::int64_t>(size);
    bytes = bytes.subspan(size);
  }
}

bool DiscImg::FetchToKeep(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (!InMemory() && !ReadyForBlocks()) return false;
  const std::int32_t formerFaults = medium_->Faults();
  const std::int32_t formerReads = medium_->ReadFaults();
  FetchBytes(offset, bytes);
  if (medium_->Faults() == formerFaults) return true;
  held_.ForgiveReads(medium_->ReadFaults() - formerReads);
  // The change reads the block once more if it needs it, and then hears that it can't be read.
  blocks_.ForgetUnread();
  return false;
}

void DiscImg::Cut(std::int64_t length) {
  if (InMemory() || IsChanging() || !ReadyForBlocks()) return;
  blocks_.WriteBack();
  blocks_.Empty();
  medium_->Cut(length);
  lock_.NoteWrite();
}

void DiscImg::TellCut(std::int64_t length) {
  const std::int64_t end = EndOfData();
  if (watcher_ == nullptr || InMemory() || end <= length) return;
  watcher_->BytesWillVanish(length, static_cast<std::size_t>(end - length));
}

void DiscImg::ClearCFSector() {
  transfer_.fill(0);
}

void DiscImg::WriteCFSector(std::int32_t sector, std::int32_t secs) {
  const std::int32_t count = std::clamp(secs, 0, kTransferSectors);
  if (medium_ == nullptr) return;
  if (watcher_ != nullptr) watcher_->DeviceWritten();
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
  const std::int64_t held = std::int64_t{held_.LastBlock() + 1} * kBlockSize;
  return std::max({medium_->EndOfData(), blocks_.EndOfChanges(), held});
}

std::int64_t DiscImg::LongestFile() {
  if (InMemory()) return static_cast<std::int64_t>(memory_.size());
  return medium_->IsReady() || ReadyForBlocks() ? medium_->LongestFile() : 0;
}

}  // namespace sectorbox
