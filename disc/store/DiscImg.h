#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "disc/host/RawDevice.h"
#include "disc/medium/DiscBytes.h"
#include "disc/medium/Medium.h"
#include "disc/medium/MediumKinds.h"
#include "disc/store/DiscWatcher.h"
#include "disc/store/HeldBlocks.h"
#include "disc/store/ImageLock.h"
#include "disc/store/OldBytes.h"
#include "disc/store/TwoBlocks.h"

namespace sectorbox {

// The store of bytes behind a disc. Every byte of a disc is read and written here, at a flat
// offset: byte 0 is the first byte of sector 0, a sector is 256 bytes. The bytes lie on a medium.
// Some mediums hold the whole disc in memory; CloseFile or an explicit save writes it to its file.
// The others are reached through two blocks in memory, which are written back when another block
// takes their place, and at CloseFile.
//
// Neither storing nor fetching sets Disc::ImageChanged; the operations that call them do.
// A byte outside a disc in memory reads as zero and is not written. A byte behind the end of a file
// reads as zero, and the file grows when a block there is written back. A host that fails is a
// HostError. A card that fails is no error to the caller: the user gets a line
// (StatusLine::Note). Nothing is ever written outside the open partition of a card.
//
// The destructor writes nothing back. The owner calls CloseFile first.
class DiscImg final : public DiscBytes {
 public:
  static constexpr int kTransferSize = 32768;  // the CF transfer buffer
  static constexpr int kBlockSize = Medium::kBlockSize;

  // status and rules outlive the store. A card is reached through device. maker makes the mediums;
  // if it is null, the table of kinds does.
  DiscImg(StatusLine& status, ImageRules& rules, std::unique_ptr<RawDevice> device,
          std::unique_ptr<MediumMaker> maker = nullptr);
  ~DiscImg() override;
  DiscImg(const DiscImg&) = delete;
  DiscImg& operator=(const DiscImg&) = delete;

  std::int32_t mTracks = 0;   // tracks, as OpenFile was given them; 0 for a card
  std::int32_t mNumSecs = 0;  // 512-byte device sectors found on a card by OpenFile

  // Writes back and closes. A floppy image is written to its file and stays readable in memory
  // until the next OpenFile. The next access to a byte of a .dat or a card opens it again, so that
  // a user who cancels the dialog that follows goes on working on the same disc.
  void CloseFile();
  // Closes a .dat or a card as CloseFile does, but no access opens it again: from then on stores
  // have no effect. This is for a card that the program has only looked at. A disc in memory stays
  // as it is.
  void Abandon();
  // Writes those of the two blocks that have changed to the medium. The blocks stay in memory. For
  // a disc in memory nothing happens.
  void WriteBack();
  // CloseFile, and then OpenFile with the same name, kind and geometry.
  void Flush();
  // Opens fileName as the given kind. A .dat that doesn't exist is created; one that can't be
  // written is opened for reading, and the first Store into it is a HostError. For kCF fileName is
  // the device, a comma and the partition digit ("/dev/sdb,0"), and tracks is the partition. An
  // open .dat or card is closed first, with write-back; an open floppy image is dropped unsaved.
  // After a HostError the disc that was open is still open.
  void OpenFile(const std::string& fileName, DiscType type, std::int32_t tracks, std::int32_t heads,
                std::int32_t sectors);
  // Zeroes the CF transfer buffer.
  void ClearCFSector();
  // Writes the first secs x 512 bytes of the transfer buffer to the partition, at device byte
  // sector x 512. A larger secs than 64 counts as 64.
  void WriteCFSector(std::int32_t sector, std::int32_t secs);

  // --- Other programs --------------------------------------------------------------------------
  // The lock on the open disc's file or device, and what other programs have done to it.
  [[nodiscard]] ImageLock& Lock() { return lock_; }
  [[nodiscard]] const ImageLock& Lock() const { return lock_; }

  // --- A change that is whole or not at all ----------------------------------------------------
  // Begins a change. Change (disc/change/Change.h) calls it for an operation on what the disc
  // holds, and DiscReplacement (disc/image) for a whole new disc on a card. free are the disc's
  // free runs. Until the change ends, no block that the disc needs is written to its medium.
  // HostError if the host fails; no change runs then.
  void BeginChange(std::vector<FreeRun> free);
  // Ends the change: writes the held blocks to the journal and then to their places. HostError if
  // the host fails. If the journal wasn't whole then, the change is still running and can only be
  // dropped. If it was, ChangeIsMade tells, and the blocks go to their places before the next
  // change, at CloseFile, or when the disc is opened again. CloseFile leaves them to the journal,
  // with a line to the user, if the medium can't take them then either.
  void CommitChange();
  // Ends the change; the bytes are what they were when it began. Nothing happens if no change runs
  // or ChangeIsMade.
  void DropChange() noexcept;
  [[nodiscard]] bool IsChanging() const { return held_.IsActive() || old_.IsActive(); }
  [[nodiscard]] bool ChangeIsMade() const { return held_.IsSealed(); }
  // A change holds no more than about so many bytes in memory, and the rest in its journal.
  void HoldInMemory(std::size_t bytes) { held_.HoldInMemory(bytes); }
  // Bytes that the running change holds; 0 for a disc in memory.
  [[nodiscard]] std::size_t HeldBytes() const { return held_.Bytes(); }

  // --- What happened before --------------------------------------------------------------------
  // Tells watcher from now on what happens to the bytes; null tells nobody. watcher outlives the
  // store, or is taken away before.
  void Watch(DiscWatcher* watcher) { watcher_ = watcher; }
  // FetchBytes for a watcher in the middle of a change. False if something can't be read; the
  // change may go on all the same.
  [[nodiscard]] bool FetchToKeep(std::int64_t offset, std::span<std::uint8_t> bytes);
  // The file of a .dat ends at this offset again, at which nothing of the disc is in use. Nothing
  // happens to other kinds, and while a change runs. HostError if the host fails.
  void Cut(std::int64_t length);
  // A save is about to leave out what lies at this offset or behind it.
  void TellCut(std::int64_t length);

  // How many times a disc has been opened here.
  [[nodiscard]] std::int64_t Openings() const { return openings_; }

  void Store(std::int64_t offset, std::uint8_t value);
  [[nodiscard]] std::uint8_t Fetch(std::int64_t offset);
  // The same for a run of bytes. The result is that of as many single calls in rising order.
  void FetchBytes(std::int64_t offset, std::span<std::uint8_t> bytes) override;
  void StoreBytes(std::int64_t offset, std::span<const std::uint8_t> bytes);

  [[nodiscard]] DiscType disctype() const { return kind_->Type; }
  // The open disc's line in the table of kinds.
  [[nodiscard]] const MediumKind& Kind() const { return *kind_; }
  // Usable size of the open card partition in sectors; at most 0x1FFFFF, and negative for
  // partition 1 of a card below 1 GiB. 0 for a disc without such a limit.
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
  // seems to have the largest size, so code that opens a card asks this first.
  [[nodiscard]] bool DeviceIsOpen() const { return device_->IsOpen(); }
  // The system's error number of the device's last call (RawDevice::LastError).
  [[nodiscard]] int DeviceError() const { return device_->LastError(); }
  // How many transfers failed and how many stores were refused since a card was opened; 0 for a
  // disc that is no card.
  [[nodiscard]] std::int32_t CardFaults() const;
  // Bytes of a disc in memory; 0 for any other disc.
  [[nodiscard]] std::size_t ImageBytes() const;
  // True if the whole disc is in memory and is written to its file only by CloseFile or a save.
  [[nodiscard]] bool InMemory() const { return inMemory_; }
  // The bytes of an image file that holds all of the disc in memory, whatever its map says.
  [[nodiscard]] std::vector<std::uint8_t> WholeFile();
  // True if path names the file or device that is open and written through, also if the name is
  // another one.
  [[nodiscard]] bool IsOpenMedium(const std::string& path) const;
  // True if a new file may replace the open one. A card must not be replaced.
  [[nodiscard]] bool MayBeReplaced() const;
  // Every byte at this offset or behind it reads as zero, because the store ends there. On a card
  // this is the largest size of a partition, since the probed size may be wrong if sectors are bad.
  [[nodiscard]] std::int64_t EndOfData();
  // No file on the open disc is longer than this many bytes. An entry that states more is damaged.
  [[nodiscard]] std::int64_t LongestFile();

 private:
  void OpenMedium(const MediumKind& kind, const MediumRequest& request);
  // Opens the medium once more, as it was opened before.
  void Reopen();
  // Puts the blocks of a sealed change in place, or leaves that to whoever opens the disc again.
  void PlaceOrLeave();
  // Finishes or drops a change that an earlier program began.
  void Recover();
  // Tells the user what has become of the journal of an earlier program.
  void TellJournalEnd(JournalEnd end);
  // Tells the watcher that the change has become safe, or was dropped.
  void TellEnd(bool isMade) noexcept;
  // How many of want bytes from offset on lie together: in one block, in the image in memory, or
  // outside the disc.
  [[nodiscard]] std::size_t TogetherAt(std::int64_t offset, std::size_t want) const;
  // Opens a medium again that CloseFile has closed. False if the medium has no blocks to give.
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
  bool suspended_ = false;  // closed by CloseFile, to be opened again at the next byte access
  std::array<std::uint8_t, kTransferSize> transfer_{};
  // The running change of a disc that isn't in memory, and of one that is.
  HeldBlocks held_;
  OldBytes old_;
  TwoBlocks blocks_{held_};
  std::int64_t openings_ = 0;
  DiscWatcher* watcher_ = nullptr;
  ImageLock lock_;
};

}  // namespace sectorbox
