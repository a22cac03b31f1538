#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace sectorbox {

class JournalPlace;

// What lies under the store of a disc: the bytes of a floppy image in memory, a file, or a
// partition of a card. Offsets and lengths count bytes of the disc, unless the comment says
// otherwise; byte 0 is the first byte of sector 0. The store (DiscImg) owns its medium and holds
// two of its blocks. It reads and writes whole blocks and long runs of bytes, and knows no kind of
// medium.
//
// A medium is open from its construction until Close. A host that fails is a HostError. A card that
// fails is no error to the caller: the user gets a line instead, and ReadBlock gives false.
class Medium {
 public:
  static constexpr int kBlockSize = 1024;  // disc bytes in a block

  // How a block lies on the medium. A block takes BlockBytes bytes of the medium; disc byte i of
  // the block is byte i x Stride of these.
  struct Layout {
    std::size_t BlockBytes = kBlockSize;
    std::size_t Stride = 1;
  };
  // The disc bytes of a block that were stored since it was read.
  using StoredBytes = std::bitset<kBlockSize>;

  virtual ~Medium() = default;

  // --- All bytes in memory ---------------------------------------------------------------------
  // True if the whole disc is in memory and is written to its file only by Close. The store then
  // uses the bytes that Memory gives and doesn't call the operations on blocks and runs. The medium
  // owns these bytes.
  [[nodiscard]] virtual bool InMemory() const { return false; }
  [[nodiscard]] virtual std::span<std::uint8_t> Memory() { return {}; }
  // The bytes of an image file that holds all of a disc in memory, whatever its map says.
  [[nodiscard]] virtual std::vector<std::uint8_t> WholeFile() { return {}; }

  // --- Blocks and runs -------------------------------------------------------------------------
  [[nodiscard]] virtual Layout BlockLayout() const { return {}; }
  // Reads a block. False if it couldn't be read in full: data then holds what the medium could
  // give, and the user has been told. Bytes behind the end of the medium read as zeros. data has at
  // least BlockBytes bytes; if it has more, some mediums also read the bytes that follow the block.
  [[nodiscard]] virtual bool ReadBlock(std::int32_t block, std::span<std::uint8_t> data) = 0;
  // Writes data at the block's place. If data is longer than the block, some mediums also write the
  // bytes that follow the block.
  virtual void WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) = 0;
  // Writes a block whose ReadBlock gave false. Only the bytes in stored are written, so that bytes
  // that couldn't be read aren't overwritten.
  virtual void WriteStored(std::int32_t block, std::span<const std::uint8_t> data,
                           const StoredBytes& stored);
  // Reads a front part of bytes in one transfer, without the blocks of the store, and gives its
  // length. 0 if the caller has to read block by block.
  [[nodiscard]] virtual std::size_t ReadRun(std::int64_t offset, std::span<std::uint8_t> bytes);
  // Writes a front part of bytes in the same way. The part consists of whole blocks.
  [[nodiscard]] virtual std::size_t WriteRun(std::int64_t offset,
                                             std::span<const std::uint8_t> bytes);
  // Cuts off what lies at this offset of the disc or behind it, where the medium has an end that
  // moves. HostError if the host fails.
  virtual void Cut(std::int64_t length) { (void)length; }
  // Returns when everything that was written is safe on the medium. HostError if the host fails.
  virtual void Sync() {}
  // Where the journal of a change to this medium is kept; null if changes to it need none. The
  // medium owns the place.
  [[nodiscard]] virtual JournalPlace* Journal() { return nullptr; }
  // The journals that an earlier program may have left for this medium. Some may be for others that
  // look the same.
  [[nodiscard]] virtual std::vector<std::unique_ptr<JournalPlace>> OldJournals();
  // A change begins to put its blocks in place, and its journal is whole; or it has done so, and
  // the journal is gone. In between the medium knows where the journal is, whatever its name
  // becomes.
  virtual void NoteJournal(bool isThere) { (void)isThere; }
  // The path of the journal that was noted; empty if there is none.
  [[nodiscard]] virtual std::string NotedJournal() const { return {}; }
  // How many writes and syncs have failed without a HostError since the medium was opened.
  [[nodiscard]] virtual std::int32_t WriteFaults() const { return 0; }
  // How many blocks that the medium has whole couldn't be read without a HostError.
  [[nodiscard]] virtual std::int32_t ReadFaults() const { return 0; }

  // --- Bounds ----------------------------------------------------------------------------------
  // A byte at this offset or behind it has no place on the medium: it reads as zero and isn't
  // stored.
  [[nodiscard]] virtual std::int64_t Extent() const {
    return std::numeric_limits<std::int64_t>::max();
  }
  // Every byte at this offset or behind it reads as zero, because nothing was ever written there.
  [[nodiscard]] virtual std::int64_t EndOfData() const = 0;
  // No file on the disc is longer than this. A length beyond it is damage.
  [[nodiscard]] virtual std::int64_t LongestFile() const = 0;
  // Sectors that a disc can use, if the medium has a fixed size; else none. Negative for the second
  // partition of a card that ends in front of it.
  [[nodiscard]] virtual std::optional<std::int32_t> UsableSectors() const { return std::nullopt; }
  // The front part of bytes that may be stored at offset. If that isn't all, the user gets a line.
  // HostError if the medium can't be written at all.
  [[nodiscard]] virtual std::span<const std::uint8_t> Storable(
      std::int64_t offset, std::span<const std::uint8_t> bytes) {
    (void)offset;
    return bytes;
  }

  // --- What only a raw device has --------------------------------------------------------------
  // How many transfers failed and how many stores were refused since the medium was opened. A
  // HostError doesn't count.
  [[nodiscard]] virtual std::int32_t Faults() const { return 0; }
  // Sectors of the whole device; 0 for a medium that is no device.
  [[nodiscard]] virtual std::int32_t DeviceSectors() const { return 0; }
  // Writes bytes of the device itself from a device sector on. bytes is whole device sectors.
  virtual void WriteDeviceSectors(std::int32_t sector, std::span<const std::uint8_t> bytes) {
    (void)sector;
    (void)bytes;
  }

  // --- Identity and end ------------------------------------------------------------------------
  // True while the file or device is open.
  [[nodiscard]] virtual bool IsOpen() const { return true; }
  // True if the store may ask for a block. A card always gives one: without its device it leaves
  // the caller's buffer as it is.
  [[nodiscard]] virtual bool IsReady() const { return IsOpen(); }
  // True if path is the very file or device that is open here, by whatever name.
  [[nodiscard]] virtual bool Is(const std::string& path) const {
    (void)path;
    return false;
  }
  // The path of the file or device that the medium works on; empty if there is none.
  [[nodiscard]] virtual std::string HostPath() const { return {}; }
  // True if a new file may replace the one that the medium works on. A card must not be replaced:
  // it would be lost.
  [[nodiscard]] virtual bool MayBeReplaced() const { return true; }
  // Writes what isn't written yet and closes the file or device. A floppy image is written to its
  // file and stays readable in memory. HostError if the host fails.
  virtual void Close() = 0;
};

}  // namespace sectorbox
