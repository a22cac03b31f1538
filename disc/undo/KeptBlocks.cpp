#include "disc/undo/KeptBlocks.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "disc/host/HostError.h"
#include "disc/host/HostPath.h"

namespace sectorbox {
namespace {

constexpr std::int32_t kMostAtOnce = 256;  // blocks

bool IsZeros(std::span<const std::uint8_t> bytes) {
  return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
}

}  // namespace

KeptBlocks::KeptBlocks(KeptBlocks&& other) noexcept
    : room_(other.room_),
      runs_(std::exchange(other.runs_, {})),
      count_(std::exchange(other.count_, 0)),
      memory_(std::move(other.memory_)),
      file_(std::move(other.file_)),
      inFile_(std::exchange(other.inFile_, 0)) {}

KeptBlocks& KeptBlocks::operator=(KeptBlocks&& other) noexcept {
  if (this == &other) return *this;
  GiveBack();
  room_ = other.room_;
  runs_ = std::exchange(other.runs_, {});
  count_ = std::exchange(other.count_, 0);
  memory_ = std::move(other.memory_);
  file_ = std::move(other.file_);
  inFile_ = std::exchange(other.inFile_, 0);
  return *this;
}

void KeptBlocks::GiveBack() noexcept {
  room_->InMemory -= InMemory() * kBlockSize;
  room_->InFiles -= inFile_ * kBlockSize;
}

bool KeptBlocks::Has(std::int32_t block) const {
  auto run = runs_.upper_bound(block);
  if (run == runs_.begin()) return false;
  --run;
  return block < run->first + run->second.Blocks;
}

bool KeptBlocks::Keep(std::int32_t block, std::span<const std::uint8_t> bytes) {
  if (IsZeros(bytes)) {
    AddRun(block, kZeros);
  } else {
    const auto place = static_cast<std::int32_t>(InMemory() + inFile_);
    if (!Append(bytes)) return false;
    AddRun(block, place);
  }
  ++count_;
  return true;
}

bool KeptBlocks::Append(std::span<const std::uint8_t> bytes) {
  if (!file_.IsOpen() && room_->InMemory + kBlockSize <= room_->MostInMemory) {
    if (!memory_) memory_ = std::make_unique<std::deque<std::array<std::uint8_t, kBlockSize>>>();
    std::ranges::copy(bytes, memory_->emplace_back().begin());
    room_->InMemory += kBlockSize;
    return true;
  }
  if (room_->InFiles + kBlockSize > room_->MostInFiles) return false;
  if (!file_.IsOpen()) file_.OpenNameless(GetTempFolder());
  file_.WriteAt(inFile_ * kBlockSize, bytes);
  ++inFile_;
  room_->InFiles += kBlockSize;
  return true;
}

void KeptBlocks::AddRun(std::int32_t block, std::int32_t place) {
  const auto next = runs_.upper_bound(block);
  if (next != runs_.begin()) {
    auto& [first, run] = *std::prev(next);
    const std::int32_t wanted = run.Place == kZeros ? kZeros : run.Place + run.Blocks;
    if (first + run.Blocks == block && place == wanted) {
      ++run.Blocks;
      return;
    }
  }
  runs_[block] = {1, place};
}

void KeptBlocks::ReadAt(std::int32_t place, std::span<std::uint8_t> bytes) const {
  auto at = static_cast<std::size_t>(place);
  for (; !bytes.empty() && at < InMemory(); ++at) {
    std::ranges::copy((*memory_)[at], bytes.begin());
    bytes = bytes.subspan(kBlockSize);
  }
  if (bytes.empty()) return;
  if (file_.ReadAt((at - InMemory()) * kBlockSize, bytes) != bytes.size()) {
    throw HostError(file_.Path(), "Unexpected end of file");
  }
}

bool KeptBlocks::Join(const KeptBlocks& other) {
  bool fits = true;
  other.ForEachRun([&](std::int32_t first, std::span<const std::uint8_t> bytes) {
    for (std::int32_t block = first; fits && !bytes.empty(); ++block) {
      if (!Has(block)) fits = Keep(block, bytes.first(kBlockSize));
      bytes = bytes.subspan(kBlockSize);
    }
  });
  return fits;
}

void KeptBlocks::ForEachRun(
    const std::function<void(std::int32_t first, std::span<const std::uint8_t> bytes)>& use) const {
  std::vector<std::uint8_t> part;
  for (const auto& [first, run] : runs_) {
    for (std::int32_t done = 0; done < run.Blocks; done += kMostAtOnce) {
      const std::int32_t count = std::min(kMostAtOnce, run.Blocks - done);
      part.assign(static_cast<std::size_t>(count) * kBlockSize, 0);
      if (run.Place != kZeros) ReadAt(run.Place + done, part);
      use(first + done, part);
    }
  }
}

}  // namespace sectorbox
