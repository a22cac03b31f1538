#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "disc/ask/StatusLine.h"
#include "disc/host/RawDevice.h"
#include "disc/medium/JournalPlace.h"
#include "disc/medium/Medium.h"

namespace sectorbox {

// One of the two partitions of a card. Each 512-byte device sector holds one sector of the disc in
// its even bytes; the odd bytes are written back as they were read. Partition 1 begins one gibibyte
// behind the start of the card.
//
// A card that fails is no error to the caller. The user gets a line at the first fault. If there
// were more, the user gets another line when the card is closed, with the number of all faults and
// the first of them. Nothing is ever written outside the partition.
class CardMedium final : public Medium {
 public:
  static constexpr int kDeviceSector = 512;
  static constexpr std::uint64_t kPartitionSpacing = std::uint64_t{1} << 30;  // device bytes
  static constexpr std::int64_t kPartitionBytes = std::int64_t{1} << 29;      // disc bytes there

  // name is the device, a comma and the partition digit ("/dev/sdb,0"). Only a comma and one digit
  // at the very end are taken off: other commas belong to the device's path. The constructor opens
  // the device and probes its size. If the device can't be opened, reads leave the caller's buffer
  // as it is, and the card seems to have the largest size. device and status outlive the medium.
  CardMedium(const std::string& name, std::int32_t partition, RawDevice& device,
             StatusLine& status);

  [[nodiscard]] Layout BlockLayout() const override { return {kCardBlockSize, 2}; }
  [[nodiscard]] bool ReadBlock(std::int32_t block, std::span<std::uint8_t> data) override;
  void WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) override;
  void WriteStored(std::int32_t block, std::span<const std::uint8_t> data,
                   const StoredBytes& stored) override;
  [[nodiscard]] std::size_t ReadRun(std::int64_t offset, std::span<std::uint8_t> bytes) override;
  void Sync() override;
  // In the user's state folder, with the size of the card and the partition in its name.
  [[nodiscard]] JournalPlace* Journal() override { return &journal_; }
  [[nodiscard]] std::vector<std::unique_ptr<JournalPlace>> OldJournals() override;
  [[nodiscard]] std::int32_t WriteFaults() const override { return writeFaults_; }
  [[nodiscard]] std::int32_t ReadFaults() const override { return readFaults_; }
  [[nodiscard]] std::int64_t Extent() const override { return kPartitionBytes; }
  // The room that a partition can have, since the probed size may be wrong where sectors are bad.
  [[nodiscard]] std::int64_t EndOfData() const override { return kPartitionBytes; }
  [[nodiscard]] std::int64_t LongestFile() const override;
  [[nodiscard]] std::optional<std::int32_t> UsableSectors() const override;
  [[nodiscard]] std::span<const std::uint8_t> Storable(
      std::int64_t offset, std::span<const std::uint8_t> bytes) override;
  [[nodiscard]] bool IsOpen() const override { return device_.IsOpen(); }
  [[nodiscard]] bool IsReady() const override { return true; }
  [[nodiscard]] bool Is(const std::string& path) const override { return device_.Is(path); }
  [[nodiscard]] std::string HostPath() const override;
  [[nodiscard]] bool MayBeReplaced() const override { return false; }
  void Close() override;

  // 512-byte device sectors that the probe found on the whole card; at most 0x400000 (2 GiB).
  [[nodiscard]] std::int32_t DeviceSectors() const override { return deviceSectors_; }
  // Failed transfers and refused stores since the card was opened.
  [[nodiscard]] std::int32_t Faults() const override { return faults_; }
  // Writes bytes, which are whole device sectors, from a device sector of the partition on.
  void WriteDeviceSectors(std::int32_t sector, std::span<const std::uint8_t> bytes) override;

 private:
  static constexpr int kCardBlockSize = 2 * kBlockSize;

  void Probe();
  [[nodiscard]] bool ProbeRead(std::int32_t sector);
  // How many disc bytes may be stored in the partition.
  [[nodiscard]] std::int64_t WritableBytes() const;
  [[nodiscard]] std::string KindOfJournal() const;
  // Counts one more fault of the card. what says what failed, such as "sector 7 can't be read".
  void CountFault(const std::string& what);
  // The same for a write, which counts among the WriteFaults too.
  void CountWriteFault(const std::string& what);
  // Both give the count of bytes done. Without an open device all bytes count as done. A write is
  // cut at the end of the partition, and the bytes that were cut count as done. offset counts
  // device bytes from the start of the partition.
  [[nodiscard]] std::size_t DeviceRead(std::uint64_t offset, std::span<std::uint8_t> bytes);
  [[nodiscard]] std::size_t DeviceWrite(std::uint64_t offset, std::span<const std::uint8_t> bytes);
  // Writes those bytes of one disc sector of a block that are in stored.
  void WriteStoredSector(std::int32_t block, std::int32_t sector,
                         std::span<const std::uint8_t> data, const StoredBytes& stored);

  std::string name_;
  std::int32_t partition_;
  RawDevice& device_;
  StatusLine& status_;
  std::int32_t deviceSectors_ = 0;
  std::int32_t faults_ = 0;
  std::int32_t writeFaults_ = 0;
  std::int32_t readFaults_ = 0;
  std::string firstFault_;
  StateJournal journal_{""};
};

}  // namespace sectorbox
