#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>

#include "disc/medium/Medium.h"

namespace sectorbox {

// Runs of blocks that a change has written at once, since they were free, with the sums of their
// bytes. The blocks that the change holds point at them: the change can only be finished on a
// medium that has them.
class WrittenRuns {
 public:
  struct Run {
    std::int32_t Blocks = 0;
    // The sums of all blocks and of all but the last one. None if the blocks weren't written one
    // after the other; the medium has to be read then.
    std::optional<std::uint64_t> Sum;
    std::optional<std::uint64_t> SumBeforeLast;
  };

  // bytes are whole blocks from first on, which take blockBytes bytes each.
  void Note(std::int32_t first, std::span<const std::uint8_t> bytes, std::size_t blockBytes);
  // Some bytes of a block were written.
  void NotePart(std::int32_t block) { Join(block, 1); }
  void Clear() { runs_.clear(); }
  [[nodiscard]] bool IsEmpty() const { return runs_.empty(); }
  // The runs by their first blocks. No two share a block.
  [[nodiscard]] const std::map<std::int32_t, Run>& Runs() const { return runs_; }

 private:
  // One run without a sum takes the place of those that share a block with the one given.
  void Join(std::int32_t first, std::int32_t blocks);

  std::map<std::int32_t, Run> runs_;
};

// The sum of the bytes that a medium has from block first on; none if they can't be read.
[[nodiscard]] std::optional<std::uint64_t> SumOnMedium(Medium& medium, std::int32_t first,
                                                       std::int32_t blocks);

}  // namespace sectorbox
