#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "disc/host/RawDevice.h"

namespace sectorbox {

struct Disc;

// The kinds of medium behind a disc.
enum DiscType : std::int16_t {
  kAdf = 0,  // single-sided floppy image: whole in memory, linear in its file
  kAdl = 1,  // double-sided floppy image: whole in memory, side 0 then side 1
  kDat = 2,  // hard disc image: a flat file behind two cached blocks
  kCF = 3,   // one partition of a card: a raw device behind two cached blocks
};

// The store of bytes behind a disc. Every byte of a disc is read and written here, at a flat
// offset: byte 0 is the first byte of sector 0, a sector is 256 bytes. Floppy images live in memory
// and reach their file at CloseFile or an explicit save; hard disc images and cards are written
// through as blocks are evicted, and at CloseFile.
//
// Neither storing nor fetching sets Disc::ImageChanged; the operations that call them do.
// A byte outside a floppy image reads as zero and is not written. A byte beyond the end of a .dat
// reads as zero, and the file grows when a block there is written back. File errors of the kinds
// 0, 1 and 2 are HostError. A card that fails is no error to the caller: the host is told with a
// line (DiscHost::Note) at the first fault, and with it and their number when the card is closed,
// should there have been more. Nothing
// is ever written outside the open partition: a byte stored past DiscSize goes nowhere.
//
// The object isn't written back when it is destroyed: who wants that calls CloseFile.
class DiscImg {
 public:
  static constexpr int kTransferSize = 32768;          // the CF transfer buffer
  static constexpr int kBlockSize = 1024;              // disc bytes in a block
  static constexpr int kCFBlockSize = 2 * kBlockSize;  // device bytes in a block of a card
  static constexpr int kDeviceSector = 512;
  static constexpr std::uint64_t kPartitionSpacing = std::uint64_t{1} << 30;
  static constexpr std::int64_t kPartitionBytes = std::int64_t{1} << 29;  // disc bytes up to there

  // disc owns this store; its free list, its ImageChanged flag and its host's options are read.
  DiscImg(Disc& disc, std::unique_ptr<RawDevice> device);
  ~DiscImg();
  DiscImg(const DiscImg&) = delete;
  DiscImg& operator=(const DiscImg&) = delete;

  std::int32_t mTracks = 0;   // tracks; for kCF the partition, 0 or 1
  std::int32_t mNumSecs = 0;  // 512-byte device sectors found on a card by OpenFile

  // Writes back and closes. A floppy image is written to its file as StoreAdf and StoreAdl say, and
  // stays readable in memory until the next OpenFile. A .dat or a card is opened again by the next
  // byte access: a user who cancels the dialog that follows goes on working on the same disc.
  void CloseFile();
  // CloseFile, and no byte access opens a .dat or card again: stores go nowhere from here on. For
  // who has only looked at a card, which the user may not have meant.
  void Abandon();
  // Writes what the blocks of an open .dat or card hold and its medium doesn't yet; they stay held.
  // Nothing for the floppy kinds.
  void WriteBack();
  // CloseFile, then OpenFile with everything as it was.
  void Flush();
  // Opens fileName as the given kind. A .dat that doesn't exist comes into being; one that can't be
  // written is opened for reading, and the first Store into it is a HostError. For kCF fileName is
  // the device, a comma and the partition digit ("/dev/sdb,0"), and tracks is the partition. Only a
  // comma and one digit at the very end are taken off: other commas belong to the device's path.
  // An open .dat or card is closed first, with write-back; a floppy image is dropped unsaved.
  void OpenFile(const std::string& fileName, std::int16_t disctype, std::int32_t tracks,
                std::int32_t heads, std::int32_t sectors);
  // Zeroes the CF transfer buffer.
  void ClearCFSector();
  // Writes the first secs x 512 bytes of the transfer buffer at device byte sector x 512 of the
  // partition. At most 64 sectors; more are cut to that.
  void WriteCFSector(std::int32_t sector, std::int32_t secs);

  void Store(std::int64_t offset, std::uint8_t value);
  std::uint8_t Fetch(std::int64_t offset);
  // The same, for a run of bytes: byte for byte what as many single calls in rising order do.
  void FetchBytes(std::int64_t offset, std::span<std::uint8_t> bytes);
  void StoreBytes(std::int64_t offset, std::span<const std::uint8_t> bytes);

  std::int16_t disctype() const { return disctype_; }
  // Usable size of the open card partition in sectors; at most 0x1FFFFF, and negative for
  // partition 1 of a card below 1 GiB.
  std::int32_t DiscSize() const;

  // As OpenFile was given them; 0 for a card.
  std::int32_t Heads() const { return heads_; }
  std::int32_t Sectors() const { return sectors_; }

  const std::string& FileName() const { return fileName_; }
  // True while a raw device is open. A device that couldn't be opened reads as stale bytes and
  // seems to be of the largest size; who lists cards asks this first.
  bool DeviceIsOpen() const { return device_->IsOpen(); }
  // The system's error number of the device's last failure; 0 when it has none to give.
  int DeviceError() const { return device_->LastError(); }
  // Failed transfers and refused stores since the card was opened.
  std::int32_t CardFaults() const { return cardFaults_; }
  // Bytes of the image in memory for the kinds 0 and 1; 0 for the others.
  std::size_t ImageBytes() const { return image_.size(); }
  // True for the kinds 0 and 1, whose whole image is in memory.
  bool InMemory() const { return disctype_ == kAdf || disctype_ == kAdl; }
  // True if path is the very file that an open .dat works on, by whatever name.
  bool IsOpenFile(const std::string& path) const;
  // True if path is the open card itself, or the file that holds it.
  bool IsOpenCard(const std::string& path) const { return disctype_ == kCF && device_->Is(path); }
  // Byte offset from which everything reads as zero because the store ends there. On a card that is
  // the room that a partition can have, since its probed size may be wrong where sectors are bad.
  std::int64_t EndOfData();

 private:
  struct Slot {
    std::int32_t Block = -1;
    std::vector<std::uint8_t> Data = std::vector<std::uint8_t>(kBlockSize);
    bool Dirty = false;
    bool Recent = false;
    bool ReadFailed = false;
    // After a failed read: the bytes that were stored since. Only they go back to the card, so that
    // what couldn't be read isn't overwritten with what happened to stand in Data.
    std::bitset<kBlockSize> Stored;
  };

  Slot& LocateBlock(std::int64_t offset);
  void WriteSlot(Slot& slot);
  // A long run of a .dat comes straight from the file, with what the slots hold laid over it; the
  // slots stay as they are. False when the run is short or the store is another.
  bool FetchFileRun(std::int64_t offset, std::span<std::uint8_t> bytes);
  // Whole blocks of a .dat go straight to the file, and into the slots that hold them: the count of
  // bytes stored, 0 where they go block by block. After a card has been open they always do, since
  // the slots then write more than their block.
  std::size_t StoreFileRun(std::int64_t offset, std::span<const std::uint8_t> bytes);
  void LoadCardSlot(Slot& slot);
  // Whole blocks of a card past the slots, in one transfer: the count of disc bytes fetched, 0
  // where the bytes are to be had block by block.
  std::size_t FetchCardRun(std::int64_t offset, std::span<std::uint8_t> bytes);
  void WriteCardSlot(Slot& slot);
  void WriteCardSector(const Slot& slot, std::int32_t sector);
  void MarkStored(Slot& slot, std::size_t in, std::size_t bytes);
  void RefreshOverhang(Slot& slot);
  void EmptySlots();
  void CloseCard();
  void ProbeCard();
  bool ProbeRead(std::int32_t sector);
  void LoadImage(const std::string& fileName, std::int16_t disctype, std::size_t bytes);
  void LoadAdf(const std::vector<std::uint8_t>& file);
  void LoadAdl(const std::vector<std::uint8_t>& file);
  void StoreAdf();
  void StoreAdl();
  // How many of want bytes from offset on lie in one place: a block, the image, or outside it.
  std::size_t TogetherAt(std::int64_t offset, std::size_t want) const;
  // True if there is a place for the byte at offset.
  bool Holds(std::int64_t offset);

  // Disc bytes that may be stored in the open partition.
  std::int64_t WritableBytes() const;
  // The front part of bytes that lies inside the open partition; a rest counts as a fault.
  std::span<const std::uint8_t> InsidePartition(std::int64_t offset,
                                                std::span<const std::uint8_t> bytes);
  // One more fault of the card; the first is told, and kept for the end. what: "sector 7 can't be
  // read".
  void CountFault(const std::string& what);
  // The raw wrappers: the partition's offset is added, and without an open device the count of
  // bytes stays as the caller set it. A write is cut at the end of the partition, and what was cut
  // counts as done.
  void DeviceRead(std::uint64_t offset, std::size_t& bytes, std::uint8_t* buffer);
  void DeviceWrite(std::uint64_t offset, std::size_t& bytes, const std::uint8_t* buffer);

  // Byte access to a .dat or card that CloseFile has closed opens it again.
  bool ReadyForBlocks();

  Disc& disc_;
  std::unique_ptr<RawDevice> device_;
  int fileNumber_ = -1;     // the open .dat, -1 when none
  int writeError_ = 0;      // why the open .dat can't be written; 0 when it can
  bool suspended_ = false;  // closed by CloseFile, to be opened again at the next byte access
  std::string fileName_;
  std::int16_t disctype_ = kAdf;
  std::vector<std::uint8_t> image_;
  std::int32_t heads_ = 0;
  std::int32_t sectors_ = 0;
  std::int32_t cardFaults_ = 0;
  std::string firstFault_;
  std::array<std::uint8_t, kTransferSize> transfer_{};
  std::array<Slot, 2> slots_;
};

}  // namespace sectorbox
