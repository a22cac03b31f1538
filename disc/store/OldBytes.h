#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace sectorbox {

// A change to a disc in memory, whole or not at all: the old bytes of what is stored to are kept,
// and put back if the change is dropped. Offsets count bytes of the disc.
class OldBytes {
 public:
  // Begins a change.
  void Begin();
  // Ends the change and forgets the old bytes.
  void End();
  [[nodiscard]] bool IsActive() const { return active_; }

  // Keeps what memory, all bytes of the disc, holds at [offset, offset + count), unless it is kept
  // already. Nothing happens while no change runs.
  void Keep(std::span<const std::uint8_t> memory, std::size_t offset, std::size_t count);
  // Puts everything that was kept back.
  void Restore(std::span<std::uint8_t> memory) const;

 private:
  bool active_ = false;
  std::map<std::size_t, std::vector<std::uint8_t>> old_;  // by their offsets
};

}  // namespace sectorbox
