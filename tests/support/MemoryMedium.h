#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "disc/medium/Medium.h"

namespace sectorbox::testing {

// The bytes of a medium that outlive it, as those of a file do. Only blocks that were written take
// memory.
using MemoryBlocks = std::map<std::int32_t, std::vector<std::uint8_t>>;

// A medium of blocks in memory. It grows when a block beyond its end is written.
class MemoryMedium final : public Medium {
 public:
  explicit MemoryMedium(std::shared_ptr<MemoryBlocks> blocks) : blocks_(std::move(blocks)) {}

  [[nodiscard]] bool ReadBlock(std::int32_t block, std::span<std::uint8_t> data) override {
    std::fill(data.begin(), data.end(), std::uint8_t{0});
    const auto found = blocks_->find(block);
    if (found != blocks_->end()) {
      std::copy_n(found->second.begin(), std::min(data.size(), found->second.size()), data.begin());
    }
    return true;
  }
  void WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) override {
    (*blocks_)[block].assign(data.begin(), data.begin() + kBlockSize);
  }
  void WriteStored(std::int32_t block, std::span<const std::uint8_t> data,
                   const StoredBytes& stored) override {
    auto& bytes = (*blocks_)[block];
    bytes.resize(kBlockSize);
    for (std::size_t i = 0; i < stored.size(); ++i) {
      if (stored[i]) bytes[i] = data[i];
    }
  }
  [[nodiscard]] std::int64_t EndOfData() const override {
    return blocks_->empty() ? 0 : (std::int64_t{blocks_->rbegin()->first} + 1) * kBlockSize;
  }
  [[nodiscard]] std::int64_t LongestFile() const override {
    return EndOfData() + std::int64_t{2} * kBlockSize;
  }
  [[nodiscard]] bool IsOpen() const override { return open_; }
  void Close() override { open_ = false; }

 private:
  std::shared_ptr<MemoryBlocks> blocks_;
  bool open_ = true;
};

}  // namespace sectorbox::testing
