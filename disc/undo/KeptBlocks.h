#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <span>

#include "disc/host/HostFile.h"

namespace sectorbox {

// How much room the old bytes of all steps take together, and may take. Bytes.
struct UndoRoom {
  std::size_t MostInMemory = std::size_t{64} << 20;
  std::size_t MostInFiles = std::size_t{1} << 30;
  std::size_t InMemory = 0;
  std::size_t InFiles = 0;
};

// The old bytes of blocks of the disc, of 1024 bytes each. They are in memory as long as all steps
// have room there, and else in a temporary file without a name, which ends with the object and with
// the program. Blocks of zeros take no room.
class KeptBlocks {
 public:
  static constexpr std::size_t kBlockSize = 1024;

  // room outlives the object.
  explicit KeptBlocks(UndoRoom& room) : room_(&room) {}
  ~KeptBlocks() { GiveBack(); }
  KeptBlocks(KeptBlocks&& other) noexcept;
  KeptBlocks& operator=(KeptBlocks&& other) noexcept;
  KeptBlocks(const KeptBlocks&) = delete;
  KeptBlocks& operator=(const KeptBlocks&) = delete;

  [[nodiscard]] bool Has(std::int32_t block) const;
  [[nodiscard]] bool IsEmpty() const { return runs_.empty(); }
  // How many blocks there are.
  [[nodiscard]] std::size_t Count() const { return count_; }
  // Keeps a block that isn't kept yet. False if there is no room; nothing is kept then. HostError
  // if the host fails.
  [[nodiscard]] bool Keep(std::int32_t block, std::span<const std::uint8_t> bytes);
  // Keeps those blocks of other that aren't kept yet. As Keep; some may be kept after a failure.
  [[nodiscard]] bool Join(const KeptBlocks& other);
  // Calls use with each run of blocks that follow each other, in rising order, in parts of at most
  // 256 blocks. HostError if the host fails.
  void ForEachRun(const std::function<void(std::int32_t first,
                                           std::span<const std::uint8_t> bytes)>& use) const;

 private:
  // Blocks that follow each other on the disc and where they are kept.
  struct Run {
    std::int32_t Blocks = 0;
    std::int32_t Place = 0;  // of the first one, counted in blocks; kZeros for blocks of zeros
  };
  static constexpr std::int32_t kZeros = -1;

  // Keeps the bytes behind those that were kept last. False if there is no room.
  [[nodiscard]] bool Append(std::span<const std::uint8_t> bytes);
  void AddRun(std::int32_t block, std::int32_t place);
  // Reads whole blocks from a place on.
  void ReadAt(std::int32_t place, std::span<std::uint8_t> bytes) const;
  void GiveBack() noexcept;
  [[nodiscard]] std::size_t InMemory() const { return memory_ ? memory_->size() : 0; }

  UndoRoom* room_;
  std::map<std::int32_t, Run> runs_;  // by their first blocks
  std::size_t count_ = 0;
  // The places from 0 on are in memory, the others in the file.
  std::unique_ptr<std::deque<std::array<std::uint8_t, kBlockSize>>> memory_;
  RandomAccessFile file_;   // not open as long as there is room in memory
  std::size_t inFile_ = 0;  // blocks
};

}  // namespace sectorbox
