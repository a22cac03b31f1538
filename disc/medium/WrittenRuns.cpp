#include "disc/medium/WrittenRuns.h"

#include <algorithm>
#include <vector>

#include "disc/medium/BlockSum.h"

namespace sectorbox {

void WrittenRuns::Note(std::int32_t first, std::span<const std::uint8_t> bytes,
                       std::size_t blockBytes) {
  const auto blocks = static_cast<std::int32_t>(bytes.size() / blockBytes);
  if (blocks == 0) return;
  const auto allButLast = bytes.first(bytes.size() - blockBytes);
  const auto last = bytes.last(blockBytes);
  auto next = runs_.lower_bound(first);
  if (next != runs_.begin()) {
    auto& [start, run] = *std::prev(next);
    const std::int32_t end = start + run.Blocks;
    const bool isAppended = first == end;
    // The block that was written last is often written once more, when more of it is known.
    const bool isLastAgain = first == end - 1;
    const auto sum = isAppended ? run.Sum : run.SumBeforeLast;
    const bool isFreeBehind = next == runs_.end() || next->first >= first + blocks;
    if ((isAppended || isLastAgain) && sum && isFreeBehind) {
      run.Blocks = first + blocks - start;
      run.SumBeforeLast = AddToSum(*sum, allButLast);
      run.Sum = AddToSum(*run.SumBeforeLast, last);
      return;
    }
  }
  Join(first, blocks);
  Run& run = runs_.at(std::prev(runs_.upper_bound(first))->first);
  if (run.Blocks != blocks) return;
  run.SumBeforeLast = AddToSum(kEmptySum, allButLast);
  run.Sum = AddToSum(*run.SumBeforeLast, last);
}

void WrittenRuns::Join(std::int32_t first, std::int32_t blocks) {
  std::int32_t end = first + blocks;
  auto at = runs_.upper_bound(first);
  if (at != runs_.begin()) {
    const auto before = std::prev(at);
    if (before->first + before->second.Blocks > first) at = before;
  }
  while (at != runs_.end() && at->first < end) {
    first = std::min(first, at->first);
    end = std::max(end, at->first + at->second.Blocks);
    at = runs_.erase(at);
  }
  runs_[first].Blocks = end - first;
}

std::optional<std::uint64_t> SumOnMedium(Medium& medium, std::int32_t first, std::int32_t blocks) {
  constexpr std::size_t kPart = std::size_t{1} << 20;
  const auto [blockBytes, stride] = medium.BlockLayout();
  std::vector<std::uint8_t> part(kPart);
  std::uint64_t sum = kEmptySum;
  for (std::int32_t block = first; block < first + blocks;) {
    const auto rest = static_cast<std::size_t>(first + blocks - block) * blockBytes;
    auto bytes = std::span(part).first(std::min(kPart, rest));
    const std::size_t run =
        stride == 1 ? medium.ReadRun(std::int64_t{block} * Medium::kBlockSize, bytes) : 0;
    bytes = bytes.first(std::max(run - run % blockBytes, blockBytes));
    if (run < blockBytes && !medium.ReadBlock(block, bytes)) return std::nullopt;
    sum = AddToSum(sum, bytes);
    block += static_cast<std::int32_t>(bytes.size() / blockBytes);
  }
  return sum;
}

}  // namespace sectorbox
