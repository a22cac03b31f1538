#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "disc/format/MapSectors.h"
#include "disc/medium/BlockJournal.h"
#include "disc/medium/Medium.h"

namespace sectorbox {

// What the store keeps while a change runs, so that the change is whole or not at all.
// - On a medium that is written in place: the new bytes of the blocks that the disc needed when the
//   change began. A block that was free then isn't kept: it is written at once, since nothing on
//   the disc points at it.
// - For a disc in memory: the old bytes of the blocks that were stored to.
class HeldBlocks {
 public:
  // Begins a change. free are the runs of free sectors at that moment.
  void Begin(std::vector<FreeRun> free);
  // Forgets everything; no change runs afterwards.
  void End();
  [[nodiscard]] bool IsActive() const { return active_; }

  // --- A medium that is written in place -------------------------------------------------------
  // True if the whole block was free when the change began.
  [[nodiscard]] bool WasFree(std::int32_t block) const;
  void Hold(std::int32_t block, NewBlock bytes);
  // The new bytes of a block; null if the block isn't held.
  [[nodiscard]] const NewBlock* Find(std::int32_t block) const;
  [[nodiscard]] const NewBlocks& All() const { return blocks_; }
  // A block that was free has been written.
  void NoteWrite() { wroteFree_ = true; }
  [[nodiscard]] bool WroteFree() const { return wroteFree_; }
  // Bytes that are held.
  [[nodiscard]] std::size_t Bytes() const;

  // The journal is written: from now on the change has happened, even if its blocks can't be put in
  // place yet.
  void Seal() { sealed_ = true; }
  [[nodiscard]] bool IsSealed() const { return sealed_; }

  // --- A disc in memory ------------------------------------------------------------------------
  // Keeps what memory holds at [offset, offset + count), unless it is kept already.
  void KeepOld(std::span<const std::uint8_t> memory, std::size_t offset, std::size_t count);
  // Puts everything that was kept back.
  void Restore(std::span<std::uint8_t> memory) const;

 private:
  bool active_ = false;
  bool sealed_ = false;
  bool wroteFree_ = false;
  std::vector<FreeRun> free_;  // in rising order
  NewBlocks blocks_;
  std::map<std::size_t, std::vector<std::uint8_t>> old_;  // by their offsets
};

}  // namespace sectorbox
