// A card behind the store: one of the two partitions of a raw device. Each 512-byte device sector
// holds one disc sector in its even bytes; the odd bytes go back as they were read. Partition 1
// begins a gibibyte into the card.

#include <algorithm>
#include <system_error>

#include "disc/format/Format.h"
#include "disc/store/Disc.h"
#include "disc/store/DiscImg.h"

namespace sectorbox {
namespace {

// The largest card that the probe sees: 0x400000 device sectors, 2 GiB.
constexpr std::int32_t kProbeLimit = 0x400000;
constexpr std::int32_t kPartitionSectors = 0x200000;
constexpr std::int32_t kLargestPartition = 0x1FFFFF;
constexpr std::int32_t kTransferSectors = DiscImg::kTransferSize / DiscImg::kDeviceSector;
constexpr std::int32_t kBlockSectors = DiscImg::kCFBlockSize / DiscImg::kDeviceSector;

// Device bytes that a long run fetches at once: as many as the platform's calls take in one go.
constexpr std::int64_t kRunBytes = 65536;

// A failed read leaves the first 512 bytes of a card's block zero, and those only.
constexpr std::ptrdiff_t kZeroedOnFailure = 512;

std::string SectorRange(std::int64_t first, std::int64_t count) {
  const std::string start = std::to_string(first);
  if (count == 1) return "sector " + start;
  return "sectors " + start + " to " + std::to_string(first + count - 1);
}

}  // namespace

void DiscImg::CountFault(const std::string& what) {
  // A card that was pulled fails thousands of times: the first is told at once, their number at the
  // end.
  if (cardFaults_++ > 0) return;
  const int error = DeviceError();
  const std::string trouble = error == 0 ? "" : ": " + std::generic_category().message(error);
  firstFault_ = what + trouble;
  disc_.Host.Note(fileName_ + ": " + firstFault_);
}

std::int64_t DiscImg::WritableBytes() const {
  if (mTracks != 0 && mTracks != 1) return 0;
  return std::int64_t{std::max(DiscSize(), 0)} * format::kSectorSize;
}

std::span<const std::uint8_t> DiscImg::InsidePartition(std::int64_t offset,
                                                       std::span<const std::uint8_t> bytes) {
  if (!ReadyForBlocks()) return {};
  const std::int64_t room = std::max<std::int64_t>(WritableBytes() - offset, 0);
  if (static_cast<std::int64_t>(bytes.size()) <= room) return bytes;
  const std::int64_t sector = std::max(offset, WritableBytes()) / format::kSectorSize;
  CountFault("sector " + std::to_string(sector) + " lies outside the partition and isn't written");
  return bytes.first(static_cast<std::size_t>(room));
}

void DiscImg::DeviceRead(std::uint64_t offset, std::size_t& bytes, std::uint8_t* buffer) {
  if (!device_->IsOpen()) return;
  const auto partition = static_cast<std::uint64_t>(mTracks) * kPartitionSpacing;
  bytes = device_->Read(offset + partition, std::span(buffer, bytes));
}

void DiscImg::DeviceWrite(std::uint64_t offset, std::size_t& bytes, const std::uint8_t* buffer) {
  if (!device_->IsOpen()) return;
  const std::uint64_t end = static_cast<std::uint64_t>(WritableBytes()) * 2;
  const auto inside = static_cast<std::size_t>(
      std::min<std::uint64_t>(bytes, end - std::min<std::uint64_t>(end, offset)));
  if (inside == 0) return;
  const auto partition = static_cast<std::uint64_t>(mTracks) * kPartitionSpacing;
  const std::size_t done = device_->Write(offset + partition, std::span(buffer, inside));
  if (done < inside) bytes = done;
}

bool DiscImg::ProbeRead(std::int32_t sector) {
  std::size_t bytes = kDeviceSector;
  DeviceRead(static_cast<std::uint64_t>(sector) * kDeviceSector, bytes, slots_[0].Data.data());
  return bytes == kDeviceSector;
}

void DiscImg::ProbeCard() {
  mNumSecs = 0;
  if (!ProbeRead(0)) return;
  std::int32_t low = 0;
  std::int32_t high = kProbeLimit;
  while (low < high) {
    const std::int32_t mid = low + (high - low) / 2;
    if (ProbeRead(mid)) {
      low = mid + 1;
    } else {
      high = mid - 1;
    }
  }
  low = std::min(low, high);
  // The search can end a sector off either way; the last three decide.
  const std::int32_t top = std::min(low, kProbeLimit - 1);
  for (std::int32_t sector = std::max(top - 2, 0); sector <= top; ++sector) {
    if (ProbeRead(sector)) mNumSecs = sector + 1;
  }
}

std::int32_t DiscImg::DiscSize() const {
  const std::int32_t behind = mTracks == 1 ? kPartitionSectors : 0;
  return std::min(mNumSecs - behind, kLargestPartition);
}

void DiscImg::LoadCardSlot(Slot& slot) {
  std::size_t bytes = kCFBlockSize;
  DeviceRead(static_cast<std::uint64_t>(slot.Block) * kCFBlockSize, bytes, slot.Data.data());
  slot.ReadFailed = bytes != kCFBlockSize;
  if (!slot.ReadFailed) return;
  std::fill(slot.Data.begin(), slot.Data.begin() + kZeroedOnFailure, std::uint8_t{0});
  slot.Stored.reset();
  CountFault(SectorRange(std::int64_t{slot.Block} * kBlockSectors, kBlockSectors) +
             " can't be read in full");
}

std::size_t DiscImg::FetchCardRun(std::int64_t offset, std::span<std::uint8_t> bytes) {
  // A run is worth a transfer of its own from two blocks on; most requests are shorter.
  if (disctype_ != kCF || bytes.size() < std::size_t{2} * kBlockSize || offset < 0) return 0;
  if (offset % kBlockSize != 0 || !ReadyForBlocks() || !device_->IsOpen()) return 0;
  const auto first = static_cast<std::int32_t>(offset / kBlockSize);
  std::int64_t end = std::min(WritableBytes() / kBlockSize,
                              first + static_cast<std::int64_t>(bytes.size() / kBlockSize));
  end = std::min<std::int64_t>(end, first + kRunBytes / kCFBlockSize);
  // What stands in a slot may not have reached the card yet.
  for (const Slot& slot : slots_) {
    if (slot.Block >= first) end = std::min<std::int64_t>(end, slot.Block);
  }
  if (end - first < 2) return 0;
  std::array<std::uint8_t, kRunBytes> device;
  const std::size_t wanted = static_cast<std::size_t>(end - first) * kCFBlockSize;
  std::size_t done = wanted;
  DeviceRead(static_cast<std::uint64_t>(first) * kCFBlockSize, done, device.data());
  // A fault shows block by block, where it is dealt with.
  if (done != wanted) return 0;
  for (std::size_t i = 0; i < wanted / 2; ++i) bytes[i] = device[2 * i];
  return wanted / 2;
}

void DiscImg::MarkStored(Slot& slot, std::size_t in, std::size_t bytes) {
  slot.Dirty = true;
  if (!device_->IsOpen()) CountFault("not open, so that nothing is written");
  if (!slot.ReadFailed) return;
  for (std::size_t i = in; i < in + bytes; ++i) slot.Stored.set(i);
}

void DiscImg::WriteCardSlot(Slot& slot) {
  if (!slot.ReadFailed) {
    std::size_t bytes = kCFBlockSize;
    DeviceWrite(static_cast<std::uint64_t>(slot.Block) * kCFBlockSize, bytes, slot.Data.data());
    if (bytes == kCFBlockSize) return;
    CountFault(SectorRange(std::int64_t{slot.Block} * kBlockSectors, kBlockSectors) +
               " can't be written in full");
    return;
  }
  for (std::int32_t i = 0; i < kBlockSectors; ++i) WriteCardSector(slot, i);
}

void DiscImg::WriteCardSector(const Slot& slot, std::int32_t sector) {
  const auto first = static_cast<std::size_t>(sector) * format::kSectorSize;
  const std::int64_t number = std::int64_t{slot.Block} * kBlockSectors + sector;
  const auto place = static_cast<std::uint64_t>(number) * kDeviceSector;
  std::array<std::uint8_t, kDeviceSector> data{};
  bool wanted = false;
  for (std::size_t i = first; i < first + format::kSectorSize; ++i) wanted |= slot.Stored[i];
  if (!wanted) return;
  std::size_t bytes = data.size();
  DeviceRead(place, bytes, data.data());
  for (std::size_t i = 0; i < format::kSectorSize; ++i) {
    if (slot.Stored[first + i]) data[2 * i] = slot.Data[2 * (first + i)];
  }
  bytes = data.size();
  DeviceWrite(place, bytes, data.data());
  if (bytes != data.size()) CountFault(SectorRange(number, 1) + " can't be written");
}

void DiscImg::ClearCFSector() {
  transfer_.fill(0);
}

void DiscImg::WriteCFSector(std::int32_t sector, std::int32_t secs) {
  const std::int32_t count = std::clamp(secs, 0, kTransferSectors);
  const auto wanted = static_cast<std::size_t>(count) * kDeviceSector;
  std::size_t bytes = wanted;
  DeviceWrite(static_cast<std::uint64_t>(sector) * kDeviceSector, bytes, transfer_.data());
  if (bytes != wanted) CountFault(SectorRange(sector, count) + " can't be written in full");
}

void DiscImg::CloseCard() {
  WriteBack();
  EmptySlots();
  device_->Close();
  suspended_ = true;
  if (device_->LastError() != 0) CountFault("what was written may be lost");
  if (cardFaults_ > 1) {
    disc_.Host.Note(fileName_ + ": " + std::to_string(cardFaults_) +
                    " faults in all, the first: " + firstFault_);
  }
}

}  // namespace sectorbox
