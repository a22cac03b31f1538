#include "disc/store/HeldBlocks.h"

#include <algorithm>
#include <utility>

namespace sectorbox {
namespace {

constexpr std::int64_t kSectorsOfBlock = Medium::kBlockSize / format::kSectorSize;

}  // namespace

void HeldBlocks::Begin(std::vector<FreeRun> free) {
  End();
  free_ = std::move(free);
  std::ranges::sort(free_, {}, &FreeRun::Start);
  active_ = true;
}

void HeldBlocks::End() {
  active_ = false;
  sealed_ = false;
  wroteFree_ = false;
  free_.clear();
  blocks_.clear();
  old_.clear();
}

bool HeldBlocks::WasFree(std::int32_t block) const {
  const std::int64_t first = block * kSectorsOfBlock;
  // The map and the root are never free, even if a damaged map says so.
  if (first < format::kFirstFreeSector) return false;
  auto run = std::ranges::upper_bound(free_, first, {},
                                      [](const FreeRun& one) { return std::int64_t{one.Start}; });
  if (run == free_.begin()) return false;
  --run;
  return first + kSectorsOfBlock <= std::int64_t{run->Start} + run->Length;
}

void HeldBlocks::Hold(std::int32_t block, NewBlock bytes) {
  blocks_[block] = std::move(bytes);
}

const NewBlock* HeldBlocks::Find(std::int32_t block) const {
  const auto found = blocks_.find(block);
  return found == blocks_.end() ? nullptr : &found->second;
}

std::size_t HeldBlocks::Bytes() const {
  return blocks_.empty() ? 0 : blocks_.size() * blocks_.begin()->second.Data.size();
}

void HeldBlocks::KeepOld(std::span<const std::uint8_t> memory, std::size_t offset,
                         std::size_t count) {
  constexpr std::size_t kSize = Medium::kBlockSize;
  const std::size_t end = std::min(offset + count, memory.size());
  for (std::size_t at = offset / kSize * kSize; at < end; at += kSize) {
    if (old_.contains(at)) continue;
    const auto bytes = memory.subspan(at, std::min(kSize, memory.size() - at));
    old_.emplace(at, std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
  }
}

void HeldBlocks::Restore(std::span<std::uint8_t> memory) const {
  for (const auto& [at, bytes] : old_) {
    std::ranges::copy(bytes, memory.begin() + static_cast<std::ptrdiff_t>(at));
  }
}

}  // namespace sectorbox
