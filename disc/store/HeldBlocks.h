#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "disc/format/MapSectors.h"
#include "disc/medium/BlockJournal.h"
#include "disc/medium/Medium.h"

namespace sectorbox {

// A change to a medium that is written in place, whole or not at all. While it runs, no block that
// the disc needed when it began is written to the medium: its new bytes are held. A block that was
// free then is written at once, since nothing on the disc points at it.
//
// Up to about 16 MB are held in memory, more in the journal, which the change writes at its end
// anyway.
//
// The caller gives the same medium to all calls from Begin to the end of the change. What is read
// and written while no change runs goes straight to the medium.
class HeldBlocks {
 public:
  // No more than about so many bytes are held in memory from now on.
  void HoldInMemory(std::size_t bytes) { mostInMemory_ = bytes; }

  // --- The change ------------------------------------------------------------------------------
  // Begins a change. free are the runs of free sectors at that moment. HostError if another file
  // stands where the journal goes; no change runs then.
  void Begin(Medium& medium, std::vector<FreeRun> free);
  // Writes the held blocks to the journal and puts them in place. name is for messages. HostError
  // if the host fails. If the journal wasn't whole then, the change still runs and can only be
  // dropped; else IsSealed, and Place tries once more.
  void Commit(Medium& medium, const std::string& name);
  // Puts the blocks of a sealed change in place; the change ends. HostError if the host fails.
  void Place(Medium& medium, const std::string& name);
  // Ends the change and forgets what it held. A sealed change isn't dropped this way.
  void Drop() noexcept;
  // Ends a sealed change whose blocks can't be put in place. Its journal stays: whoever opens the
  // disc again finishes the change.
  void LeaveJournal() { End(); }
  // So many of the medium's faults since the change began come from reading what the change doesn't
  // need.
  void ForgiveReads(std::int32_t faults) { formerFaults_ += faults; }
  [[nodiscard]] bool IsActive() const { return active_; }
  // The journal is whole: the change has happened, even if its blocks aren't in place yet.
  [[nodiscard]] bool IsSealed() const { return sealed_; }
  // Bytes that are held, in memory and in the journal.
  [[nodiscard]] std::size_t Bytes() const;
  // The last block that is held; -1 if there is none.
  [[nodiscard]] std::int32_t LastBlock() const;

  // --- The medium, as the change sees it -------------------------------------------------------
  // As Medium::ReadBlock. stored is set for a block that is held in part.
  [[nodiscard]] bool ReadBlock(Medium& medium, std::int32_t block, std::span<std::uint8_t> data,
                               Medium::StoredBytes& stored);
  void WriteBlock(Medium& medium, std::int32_t block, NewBlock bytes);
  // As Medium::ReadRun and Medium::WriteRun.
  [[nodiscard]] std::size_t ReadRun(Medium& medium, std::int64_t offset,
                                    std::span<std::uint8_t> bytes);
  [[nodiscard]] std::size_t WriteRun(Medium& medium, std::int64_t offset,
                                     std::span<const std::uint8_t> bytes);

 private:
  // HostError if the medium has had faults since the change began.
  void RequireNoFaults(const Medium& medium, const std::string& name) const;
  // True if the whole block was free when the change began.
  [[nodiscard]] bool WasFree(std::int32_t block) const;
  // The longest front part of size bytes from a block on that can be treated alike: all of its
  // blocks were free when the change began, or none was.
  [[nodiscard]] std::size_t AlikeAt(std::int32_t block, std::size_t size) const;
  void Hold(Medium& medium, std::int32_t block, NewBlock bytes);
  // The new bytes of a block; none if the block isn't held.
  [[nodiscard]] std::optional<NewBlock> Find(std::int32_t block);
  // The blocks that are held, in rising order.
  [[nodiscard]] std::vector<std::int32_t> Blocks() const;
  // Gives the journal what is held in memory.
  void MoveToJournal();
  void End();

  std::size_t mostInMemory_ = std::size_t{16} << 20;
  bool active_ = false;
  bool sealed_ = false;
  std::int32_t formerFaults_ = 0;  // of the medium, when the change began
  std::vector<FreeRun> free_;      // in rising order
  WrittenRuns written_;            // blocks that were free
  NewBlocks inMemory_;
  JournalPlace* place_ = nullptr;  // the medium's journal; null if it has none
  std::optional<JournalWriter> journal_;
};

}  // namespace sectorbox
