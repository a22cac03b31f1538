#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "disc/host/RawDevice.h"
#include "disc/medium/FloppyMedium.h"
#include "disc/medium/Medium.h"
#include "disc/medium/MediumKinds.h"

namespace sectorbox {

// The store of bytes behind a disc. Every byte of a disc is read and written here, at a flat
// offset: byte 0 is the first byte of sector 0, a sector is 256 bytes. The bytes lie on a medium:
// some mediums hold the whole disc in memory, where it reaches its file at CloseFile or an explicit
// save; the others are reached through two blocks, which are written back as they are evicted, and
// at CloseFile.
//
// Neither storing nor fetching sets Disc::ImageChanged; the operations that call them do.
// A byte outside a disc in memory reads as zero and is not written. A byte beyond the end of a file
// reads as zero, and the file grows when a block there is written back. A host that fails is a
// HostError. A card that fails is no error to the caller: the user is told with a line
// (StatusLine::Note). Nothing is ever written outside the open partition of a card.
//
// The object isn't written back when it is destroyed. Its owner calls CloseFile first.
class DiscImg final : public DiscBytes {
 public:
  static constexpr int kTransferSize = 32768;  // the CF transfer buffer
  static constexpr int kBlockSize = Medium::kBlockSize;

  // status and rules outlive the store. device is what a card is reached through. maker may be
  // null: mediums are then made by the table of kinds.
  DiscImg(StatusLine& status, ImageRules& rules, std::unique_ptr<RawDevice> device,
          std::unique_ptr<MediumMaker> maker = nullptr);
  ~DiscImg() override;
  DiscImg(const DiscImg&) = delete;
  DiscImg& operator=(const DiscImg&) = delete;

  std::int32_t mTracks = 0;   // tracks, as OpenFile was given them; 0 for a card
  std::int32_t mNumSecs = 0;  // 512-byte device sectors found on a card by OpenFile

  // Writes back and closes. A floppy image is written to its file and stays readable in memory
  // until the next OpenFile. A .dat or a card is opened again by the next byte access: a user who
  // cancels the dialog that follows goes on working on the same disc.
  void CloseFile();
  // CloseFile, and no byte access opens a .dat or card again: stores go nowhere from here on. It is
  // for a card that was only looked at, and that the user may not have meant.
  void Abandon();
  // Writes what the two blocks hold and the medium doesn't have yet. The blocks stay held. A disc
  // in memory has no blocks, and nothing happens.
  void WriteBack();
  // CloseFile, then OpenFile with everything as it was.
  void Flush();
  // Opens fileName as the given kind. A .dat that doesn't exist comes into being; one that can't be
  // written is opened for reading, and the first Store into it is a HostError. For kCF fileName is
  // the device, a comma and the partition digit ("/dev/sdb,0"), and tracks is the partition.
  // An open .dat or card is closed first, with write-back; a floppy image is dropped unsaved. A
  // HostError leaves the disc that was open.
  void OpenFile(const std::string& fileName, DiscType disctype, std::int32_t tracks,
                std::int32_t heads, std::int32_t sectors);
  // Zeroes the CF transfer buffer.
  void ClearCFSector();
  // Writes the first secs x 512 bytes of the transfer buffer at device byte sector x 512 of the
  // partition. At most 64 sectors; more are cut to that.
  void WriteCFSector(std::int32_t sector, std::int32_t secs);

  void Store(std::int64_t offset, std::uint8_t value);
  [[nodiscard]] std::uint8_t Fetch(std::int64_t offset);
  // The same, for a run of bytes: byte for byte what as many single calls in rising order do.
  void FetchBytes(std::int64_t offset, std::span<std::uint8_t> bytes) override;
  void StoreBytes(std::int64_t offset, std::span<const std::uint8_t> bytes);

  [[nodiscard]] DiscType disctype() const { return kind_->Type; }
  // The open disc's line in the table of kinds.
  [[nodiscard]] const MediumKind& Kind() const { return *kind_; }
  // Usable size of the open card partition in sectors; at most 0x1FFFFF, and negative for
  // partition 1 of a card below 1 GiB. 0 where nothing like that limits the disc.
  [[nodiscard]] std::int32_t DiscSize() const;
  // True if the medium has a size of its own, which DiscSize tells.
  [[nodiscard]] bool HasFixedSize() const;

  // As OpenFile was given them; 0 for a card.
  [[nodiscard]] std::int32_t Heads() const { return request_.Shape.Heads; }
  [[nodiscard]] std::int32_t Sectors() const { return request_.Shape.Sectors; }
  // The partition of a card; 0 for other kinds.
  [[nodiscard]] std::int32_t Partition() const { return request_.Partition; }

  [[nodiscard]] const std::string& FileName() const { return request_.Name; }
  // True while a raw device is open. A device that couldn't be opened reads as stale bytes and
  // seems to be of the largest size, so whoever opens a card asks this first.
  [[nodiscard]] bool DeviceIsOpen() const { return device_->IsOpen(); }
  // The system's error number of the device's last failure; 0 when it has none to give.
  [[nodiscard]] int DeviceError() const { return device_->LastError(); }
  // Failed transfers and refused stores of a card since it was opened.
  [[nodiscard]] std::int32_t CardFaults() const;
  // Bytes of the disc in memory; 0 for a disc that isn't there.
  [[nodiscard]] std::size_t ImageBytes() const;
  // True if the whole disc is in memory, and reaches its file only when it is saved.
  [[nodiscard]] bool InMemory() const { return inMemory_; }
  // The bytes of an image file that holds all of the disc in memory, whatever its map says.
  [[nodiscard]] std::vector<std::uint8_t> WholeFile();
  // True if path is the very file or device that is open and written through, by whatever name.
  [[nodiscard]] bool IsOpenMedium(const std::string& path) const;
  // True if a new file may take the place of the open one. A card's place can't be taken.
  [[nodiscard]] bool MayBeReplaced() const;
  // Byte offset from which everything reads as zero because the store ends there. On a card that is
  // the room that a partition can have, since its probed size may be wrong where sectors are bad.
  [[nodiscard]] std::int64_t EndOfData();
  // No file on the open disc is longer than this many bytes. A length beyond it is damage.
  [[nodiscard]] std::int64_t LongestFile();

 private:
  struct Slot {
    std::int32_t Block = -1;
    std::vector<std::uint8_t> Data = std::vector<std::uint8_t>(kBlockSize);
    bool Dirty = false;
    bool Recent = false;
    bool ReadFailed = false;
    // After a failed read: the bytes that were stored since. Only they go back to the medium, so
    // that what couldn't be read isn't overwritten with what happened to stand in Data.
    Medium::StoredBytes Stored;
  };

  void OpenMedium(const MediumKind& kind, const MediumRequest& request);
  // Opens the medium once more, as it was opened before.
  void Reopen();
  Slot& LocateBlock(std::int64_t offset);
  Slot& ChooseVictim();
  void WriteSlot(Slot& slot);
  void RefreshOverhang(Slot& slot);
  void EmptySlots();
  // A front part of bytes past the blocks, with what the slots hold laid over it: its length, 0
  // where the bytes are to be had block by block.
  [[nodiscard]] std::size_t FetchRun(std::int64_t offset, std::span<std::uint8_t> bytes);
  // Whole blocks go straight to the medium, and into the slots that hold them: the count of bytes
  // stored, 0 where they go block by block.
  [[nodiscard]] std::size_t StoreRun(std::int64_t offset, std::span<const std::uint8_t> bytes);
  void FetchFromSlot(std::int64_t offset, std::span<std::uint8_t> bytes);
  void StoreToSlot(std::int64_t offset, std::span<const std::uint8_t> bytes);
  // How many of want bytes from offset on lie in one place: a block, the image, or outside it.
  [[nodiscard]] std::size_t TogetherAt(std::int64_t offset, std::size_t want) const;
  // Byte access to a medium that CloseFile has closed opens it again. False if there is nothing to
  // open.
  [[nodiscard]] bool ReadyForBlocks();
  // True if there is a place for the byte at offset.
  [[nodiscard]] bool Holds(std::int64_t offset);

  StatusLine& status_;
  ImageRules& rules_;
  std::unique_ptr<RawDevice> device_;
  std::unique_ptr<MediumMaker> maker_;
  const MediumKind* kind_;
  MediumRequest request_;
  std::unique_ptr<Medium> medium_;  // null before the first OpenFile
  bool inMemory_ = true;            // as the medium says
  std::span<std::uint8_t> memory_;  // all bytes of a disc in memory, else empty
  Medium::Layout layout_;           // of the medium's blocks
  bool suspended_ = false;  // closed by CloseFile, to be opened again at the next byte access
  std::array<std::uint8_t, kTransferSize> transfer_{};
  std::array<Slot, 2> slots_;
};

}  // namespace sectorbox
