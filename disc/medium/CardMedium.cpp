#include "disc/medium/CardMedium.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "disc/format/Format.h"

namespace sectorbox {
namespace {

// The largest card that the probe sees: 0x400000 device sectors, 2 GiB.
constexpr std::int32_t kProbeLimit = 0x400000;
constexpr std::int32_t kPartitionSectors = 0x200000;
constexpr std::int32_t kLargestPartition = 0x1FFFFF;
constexpr std::int32_t kBlockSectors = Medium::kBlockSize / format::kSectorSize;

// Device bytes that a long run fetches at once: as many as one call of the platform takes.
constexpr std::size_t kRunBytes = 65536;

// After a failed read the first 512 bytes of a card's block become zero, and no others.
constexpr std::ptrdiff_t kZeroedOnFailure = 512;

// "/dev/sdb,0" gives /dev/sdb: the comma and the digit name the partition. A path may hold other
// commas, so only a comma and one digit at its end are taken for a partition.
std::string DeviceOf(const std::string& name) {
  constexpr std::size_t kPartition = 2;
  if (name.size() <= kPartition || name[name.size() - kPartition] != ',') return name;
  if (name.back() < '0' || name.back() > '9') return name;
  return name.substr(0, name.size() - kPartition);
}

std::string SectorRange(std::int64_t first, std::int64_t count) {
  const std::string start = std::to_string(first);
  if (count == 1) return "sector " + start;
  return "sectors " + start + " to " + std::to_string(first + count - 1);
}

std::string BlockRange(std::int32_t block) {
  return SectorRange(std::int64_t{block} * kBlockSectors, kBlockSectors);
}

std::uint64_t PlaceOf(std::int64_t deviceSector) {
  return static_cast<std::uint64_t>(deviceSector) * CardMedium::kDeviceSector;
}

std::uint64_t PlaceOfBlock(std::int64_t block) {
  return PlaceOf(block * kBlockSectors);
}

}  // namespace

CardMedium::CardMedium(const std::string& name, std::int32_t partition, RawDevice& device,
                       StatusLine& status)
    : name_(name), partition_(0), device_(device), status_(status) {
  (void)device_.Open(DeviceOf(name));  // the store asks DeviceIsOpen
  // The probe counts from the start of the card, whatever the partition.
  Probe();
  partition_ = partition;
  journal_ = StateJournal(KindOfJournal());
}

void CardMedium::CountFault(const std::string& what) {
  // A card that was pulled out fails thousands of times. The user hears of the first fault at once,
  // and of the number of faults at the end.
  if (faults_++ > 0) return;
  const int error = device_.LastError();
  const std::string trouble = error == 0 ? "" : ": " + std::generic_category().message(error);
  firstFault_ = what + trouble;
  status_.Note(name_ + ": " + firstFault_);
}

void CardMedium::CountWriteFault(const std::string& what) {
  ++writeFaults_;
  CountFault(what);
}

std::int64_t CardMedium::WritableBytes() const {
  if (partition_ != 0 && partition_ != 1) return 0;
  return std::int64_t{std::max(*UsableSectors(), 0)} * format::kSectorSize;
}

std::span<const std::uint8_t> CardMedium::Storable(std::int64_t offset,
                                                   std::span<const std::uint8_t> bytes) {
  const std::int64_t room = std::max<std::int64_t>(WritableBytes() - offset, 0);
  const auto there = static_cast<std::size_t>(
      std::min<std::int64_t>(room, static_cast<std::int64_t>(bytes.size())));
  if (there < bytes.size()) {
    const std::int64_t sector = std::max(offset, WritableBytes()) / format::kSectorSize;
    CountWriteFault("sector " + std::to_string(sector) +
                    " lies outside the partition and isn't written");
  }
  if (there > 0 && !device_.IsOpen()) CountWriteFault("not open, so that nothing is written");
  return bytes.first(there);
}

std::size_t CardMedium::DeviceRead(std::uint64_t offset, std::span<std::uint8_t> bytes) {
  if (!device_.IsOpen()) return bytes.size();
  const auto partition = static_cast<std::uint64_t>(partition_) * kPartitionSpacing;
  return device_.Read(offset + partition, bytes);
}

std::size_t CardMedium::DeviceWrite(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  if (!device_.IsOpen()) return bytes.size();
  const std::uint64_t end = static_cast<std::uint64_t>(WritableBytes()) * 2;
  const auto inside = static_cast<std::size_t>(
      std::min<std::uint64_t>(bytes.size(), end - std::min<std::uint64_t>(end, offset)));
  if (inside == 0) return bytes.size();
  const auto partition = static_cast<std::uint64_t>(partition_) * kPartitionSpacing;
  const std::size_t done = device_.Write(offset + partition, bytes.first(inside));
  return done < inside ? done : bytes.size();
}

bool CardMedium::ProbeRead(std::int32_t sector) {
  std::array<std::uint8_t, kDeviceSector> bytes{};
  return DeviceRead(PlaceOf(sector), bytes) == bytes.size();
}

void CardMedium::Probe() {
  deviceSectors_ = 0;
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
  // The search may end one sector too low or too high, so the last three sectors are tried.
  const std::int32_t top = std::min(low, kProbeLimit - 1);
  for (std::int32_t sector = std::max(top - 2, 0); sector <= top; ++sector) {
    if (ProbeRead(sector)) deviceSectors_ = sector + 1;
  }
}

std::optional<std::int32_t> CardMedium::UsableSectors() const {
  const std::int32_t behind = partition_ == 1 ? kPartitionSectors : 0;
  return std::min(deviceSectors_ - behind, kLargestPartition);
}

std::int64_t CardMedium::LongestFile() const {
  return std::int64_t{std::max(*UsableSectors(), 0)} * format::kSectorSize;
}

bool CardMedium::ReadBlock(std::int32_t block, std::span<std::uint8_t> data) {
  const auto bytes = data.first(kCardBlockSize);
  if (DeviceRead(PlaceOfBlock(block), bytes) == bytes.size()) return true;
  std::fill(bytes.begin(), bytes.begin() + kZeroedOnFailure, std::uint8_t{0});
  CountFault(BlockRange(block) + " can't be read in full");
  // A card may have only a part of its last block.
  if ((std::int64_t{block} + 1) * kBlockSize <= WritableBytes()) ++readFaults_;
  return false;
}

std::size_t CardMedium::ReadRun(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (offset < 0 || offset % kBlockSize != 0 || !device_.IsOpen()) return 0;
  const std::int64_t first = offset / kBlockSize;
  const std::int64_t end = std::min(
      {WritableBytes() / kBlockSize, first + static_cast<std::int64_t>(bytes.size() / kBlockSize),
       first + static_cast<std::int64_t>(kRunBytes / kCardBlockSize)});
  if (end - first < 2) return 0;
  std::array<std::uint8_t, kRunBytes> device;
  const auto wanted =
      std::span(device).first(static_cast<std::size_t>(end - first) * kCardBlockSize);
  // After a fault the caller reads block by block, and ReadBlock deals with the fault.
  if (DeviceRead(PlaceOfBlock(first), wanted) != wanted.size()) return 0;
  for (std::size_t i = 0; i < wanted.size() / 2; ++i) bytes[i] = wanted[2 * i];
  return wanted.size() / 2;
}

void CardMedium::WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) {
  const auto bytes = data.first(kCardBlockSize);
  if (DeviceWrite(PlaceOfBlock(block), bytes) == bytes.size()) return;
  CountWriteFault(BlockRange(block) + " can't be written in full");
}

void CardMedium::WriteStored(std::int32_t block, std::span<const std::uint8_t> data,
                             const StoredBytes& stored) {
  for (std::int32_t i = 0; i < kBlockSectors; ++i) WriteStoredSector(block, i, data, stored);
}

void CardMedium::WriteStoredSector(std::int32_t block, std::int32_t sector,
                                   std::span<const std::uint8_t> data, const StoredBytes& stored) {
  const auto first = static_cast<std::size_t>(sector) * format::kSectorSize;
  bool wanted = false;
  for (std::size_t i = first; i < first + format::kSectorSize; ++i) wanted |= stored[i];
  if (!wanted) return;
  const std::int64_t number = std::int64_t{block} * kBlockSectors + sector;
  // The sector is read once more, by itself: its odd bytes, and the even ones that nobody stored,
  // are written back as they are.
  std::array<std::uint8_t, kDeviceSector> device{};
  (void)DeviceRead(PlaceOf(number), device);
  for (std::size_t i = 0; i < format::kSectorSize; ++i) {
    if (stored[first + i]) device[2 * i] = data[2 * (first + i)];
  }
  if (DeviceWrite(PlaceOf(number), device) == device.size()) return;
  CountWriteFault(SectorRange(number, 1) + " can't be written");
}

void CardMedium::WriteDeviceSectors(std::int32_t sector, std::span<const std::uint8_t> bytes) {
  if (DeviceWrite(PlaceOf(sector), bytes) == bytes.size()) return;
  const auto count = static_cast<std::int64_t>(bytes.size() / kDeviceSector);
  CountWriteFault(SectorRange(sector, count) + " can't be written in full");
}

std::string CardMedium::HostPath() const {
  return DeviceOf(name_);
}

void CardMedium::Sync() {
  if (device_.IsOpen() && !device_.Sync()) CountWriteFault("what was written may be lost");
}

std::string CardMedium::KindOfJournal() const {
  return "card-" + std::to_string(deviceSectors_) + "-" + std::to_string(partition_);
}

std::vector<std::unique_ptr<JournalPlace>> CardMedium::OldJournals() {
  std::vector<std::unique_ptr<JournalPlace>> all;
  if (!device_.IsOpen()) return all;
  for (const std::string& path : StateJournal::FilesOf(KindOfJournal())) {
    all.push_back(std::make_unique<JournalFile>(path));
  }
  return all;
}

void CardMedium::Close() {
  if (!device_.IsOpen()) return;
  device_.Close();
  if (device_.LastError() != 0) CountFault("what was written may be lost");
  if (faults_ > 1) {
    status_.Note(name_ + ": " + std::to_string(faults_) +
                 " faults in all, the first: " + firstFault_);
  }
}

}  // namespace sectorbox
