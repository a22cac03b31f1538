#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "disc/medium/Medium.h"
#include "disc/store/HeldBlocks.h"

namespace sectorbox {

// The two blocks in memory through which the store reaches a medium that isn't in memory. A block
// is written back when another one takes its place, and by WriteBack. What is written goes through
// the running change (HeldBlocks). Offsets count bytes of the disc. A host that fails is a
// HostError.
class TwoBlocks {
 public:
  // held outlives the object.
  explicit TwoBlocks(HeldBlocks& held) : held_(held) {}

  // Works on medium from now on, which lives until the next Use. The blocks are empty afterwards;
  // what wasn't written back is lost.
  void Use(Medium& medium);
  void Empty();
  // Forgets blocks that couldn't be read, unless something was stored in them.
  void ForgetUnread();
  // Writes those blocks that have changed. They stay in memory.
  void WriteBack();
  // The end of the last block that isn't written back yet; 0 if there is none.
  [[nodiscard]] std::int64_t EndOfChanges() const;

  // Bytes that lie in one block.
  void Fetch(std::int64_t offset, std::span<std::uint8_t> bytes);
  void Store(std::int64_t offset, std::span<const std::uint8_t> bytes);
  // Fetches a front part of bytes from the medium without the blocks, then copies what the blocks
  // hold over it. Gives its length; 0 if the bytes have to be fetched block by block.
  [[nodiscard]] std::size_t FetchRun(std::int64_t offset, std::span<std::uint8_t> bytes);
  // Stores a front part of bytes straight on the medium, and in the blocks that hold them. The part
  // consists of whole blocks. Gives its length; 0 if the bytes have to be stored block by block.
  [[nodiscard]] std::size_t StoreRun(std::int64_t offset, std::span<const std::uint8_t> bytes);

 private:
  struct Slot {
    std::int32_t Block = -1;
    std::vector<std::uint8_t> Data = std::vector<std::uint8_t>(Medium::kBlockSize);
    bool Dirty = false;
    bool Recent = false;
    bool ReadFailed = false;
    // The bytes that were stored since a failed read. Only these are written back, so that bytes
    // that couldn't be read aren't overwritten with old bytes of Data.
    Medium::StoredBytes Stored;
  };

  // The slot with the block that holds offset; the block is read if no slot has it.
  Slot& LocateBlock(std::int64_t offset);
  // The slot whose block makes room for another one.
  Slot& ChooseVictim();
  void WriteSlot(Slot& slot);
  // Refreshes the bytes of a slot that lie behind its block.
  void RefreshOverhang(Slot& slot);

  HeldBlocks& held_;
  Medium* medium_ = nullptr;  // null before the first Use
  Medium::Layout layout_;
  std::array<Slot, 2> slots_;
};

}  // namespace sectorbox
