#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace sectorbox {

// What lies under the store of a disc: the bytes of a floppy image in memory, a file, a partition
// of a card. Offsets and lengths are bytes of the disc unless told otherwise; byte 0 is the first
// byte of sector 0. The store (DiscImg) owns its medium, holds two of its blocks and passes whole
// blocks and long runs on; it knows no kind of medium.
//
// A medium is open from its making until Close. Host failures are HostError. A card that fails is
// no error to the caller: the user is told with a line instead, and ReadBlock says so.
class Medium {
 public:
  static constexpr int kBlockSize = 1024;  // disc bytes in a block

  // How a block lies on the medium. A block takes BlockBytes bytes of it; disc byte i of the block
  // is byte i x Stride of those.
  struct Layout {
    std::size_t BlockBytes = kBlockSize;
    std::size_t Stride = 1;
  };
  // The disc bytes of a block that were stored since it was read.
  using StoredBytes = std::bitset<kBlockSize>;

  virtual ~Medium() = default;

  // --- All bytes in memory ---------------------------------------------------------------------
  // True if the whole disc is in memory and reaches its file only with Close. Memory gives its
  // bytes then, and nobody calls the operations on blocks and runs.
  [[nodiscard]] virtual bool InMemory() const { return false; }
  [[nodiscard]] virtual std::span<std::uint8_t> Memory() { return {}; }
  // The bytes of an image file that holds all of a disc in memory, whatever its map says.
  [[nodiscard]] virtual std::vector<std::uint8_t> WholeFile() { return {}; }

  // --- Blocks and runs -------------------------------------------------------------------------
  [[nodiscard]] virtual Layout BlockLayout() const { return {}; }
  // False if the block couldn't be read in full: data then holds what the medium made of it, and
  // the user has been told. What a medium doesn't hold reads as zeros. data is at least BlockBytes
  // long; a longer one takes the bytes that follow the block too.
  virtual bool ReadBlock(std::int32_t block, std::span<std::uint8_t> data) = 0;
  // Writes all of data at the block's place, also where data is longer than the block.
  virtual void WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) = 0;
  // Writes a block whose ReadBlock gave false: only the bytes in stored go to the medium, so that
  // what couldn't be read isn't written over.
  virtual void WriteStored(std::int32_t block, std::span<const std::uint8_t> data,
                           const StoredBytes& stored);
  // Reads a front part of bytes in one transfer, past the blocks, and gives its length; 0 where the
  // caller has to go block by block.
  [[nodiscard]] virtual std::size_t ReadRun(std::int64_t offset, std::span<std::uint8_t> bytes);
  // The same for writing. The part is whole blocks.
  [[nodiscard]] virtual std::size_t WriteRun(std::int64_t offset,
                                             std::span<const std::uint8_t> bytes);
  // What was written is on its way to the medium and stays there: returns when that is so.
  virtual void Sync() {}

  // --- Bounds ----------------------------------------------------------------------------------
  // Offset from which on there is no place for a byte: it reads as zero and isn't stored.
  [[nodiscard]] virtual std::int64_t Extent() const {
    return std::numeric_limits<std::int64_t>::max();
  }
  // Offset from which on everything reads as zero, because nothing was ever written there.
  [[nodiscard]] virtual std::int64_t EndOfData() const = 0;
  // No file on the disc is longer than this. A length beyond it is damage.
  [[nodiscard]] virtual std::int64_t LongestFile() const = 0;
  // Sectors that a disc can use here, where the medium has a fixed size. Negative for the second
  // partition of a card that ends before it.
  [[nodiscard]] virtual std::optional<std::int32_t> UsableSectors() const { return std::nullopt; }
  // The front part of bytes that may be stored at offset; the user is told about a rest. HostError
  // if the medium can't be written at all.
  [[nodiscard]] virtual std::span<const std::uint8_t> Storable(
      std::int64_t offset, std::span<const std::uint8_t> bytes) {
    (void)offset;
    return bytes;
  }

  // --- What only a raw device has --------------------------------------------------------------
  // Transfers that failed and stores that were refused since the medium was opened, where these are
  // no HostError.
  [[nodiscard]] virtual std::int32_t Faults() const { return 0; }
  // Sectors of the whole device; 0 where there is none.
  [[nodiscard]] virtual std::int32_t DeviceSectors() const { return 0; }
  // Writes bytes of the device itself, whole device sectors, from a device sector on.
  virtual void WriteDeviceSectors(std::int32_t sector, std::span<const std::uint8_t> bytes) {
    (void)sector;
    (void)bytes;
  }

  // --- Identity and end ------------------------------------------------------------------------
  // True while the file or device is open.
  [[nodiscard]] virtual bool IsOpen() const { return true; }
  // True if a block can be asked for. A card can always give one: without its device it gives what
  // the caller's buffer held.
  [[nodiscard]] virtual bool IsReady() const { return IsOpen(); }
  // True if path is the very file or device that is open here, by whatever name.
  [[nodiscard]] virtual bool Is(const std::string& path) const {
    (void)path;
    return false;
  }
  // True if a new file may take the place of the one that the medium works on. A card has no such
  // place: what replaced it would be the end of it.
  [[nodiscard]] virtual bool MayBeReplaced() const { return true; }
  // Brings everything to where it belongs and gives back what the host lent. A floppy image is
  // written to its file and stays readable.
  virtual void Close() = 0;
};

}  // namespace sectorbox
