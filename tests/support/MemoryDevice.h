#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <unordered_map>
#include <vector>

#include "disc/host/RawDevice.h"

namespace sectorbox::testing {

// A card in memory. Only sectors that were written take memory, so that a card of 2 GiB is cheap.
// It records its transfers and can fail after a number of them.
class MemoryDevice final : public RawDevice {
 public:
  static constexpr std::size_t kSector = 512;

  struct Transfer {
    bool IsWrite = false;
    std::uint64_t Offset = 0;
    std::size_t Bytes = 0;
  };

  explicit MemoryDevice(std::uint64_t sectors) : size_(sectors * kSector) {}

  // What the test may set and look at.
  bool Openable = true;
  std::uint64_t ReadsLeft = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t WritesLeft = std::numeric_limits<std::uint64_t>::max();
  std::vector<Transfer> Transfers;
  bool Record = true;
  std::string OpenedPath;

  std::uint8_t Peek(std::uint64_t offset) const {
    const auto sector = sectors_.find(offset / kSector);
    return sector == sectors_.end() ? std::uint8_t{0} : sector->second[offset % kSector];
  }
  void Poke(std::uint64_t offset, std::uint8_t value) {
    Sector(offset / kSector)[offset % kSector] = value;
  }
  std::uint64_t Size() const { return size_; }
  // Cuts the card off behind that many sectors; it may be open.
  void Shrink(std::uint64_t sectors) { size_ = sectors * kSector; }

  bool Open(const std::string& path) override {
    OpenedPath = path;
    open_ = Openable;
    return open_;
  }
  bool IsOpen() const override { return open_; }
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    const std::size_t bytes = Allowed(offset, buffer.size(), ReadsLeft);
    if (Record) Transfers.push_back({false, offset, bytes});
    for (std::size_t i = 0; i < bytes;) {
      const std::size_t part = WithinSector(offset + i, bytes - i);
      const auto sector = sectors_.find((offset + i) / kSector);
      if (sector == sectors_.end()) {
        std::fill_n(buffer.begin() + static_cast<std::ptrdiff_t>(i), part, std::uint8_t{0});
      } else {
        std::copy_n(sector->second.data() + (offset + i) % kSector, part, buffer.data() + i);
      }
      i += part;
    }
    return bytes;
  }
  std::size_t Write(std::uint64_t offset, std::span<const std::uint8_t> buffer) override {
    const std::size_t bytes = Allowed(offset, buffer.size(), WritesLeft);
    if (Record) Transfers.push_back({true, offset, bytes});
    for (std::size_t i = 0; i < bytes;) {
      const std::size_t part = WithinSector(offset + i, bytes - i);
      auto& sector = Sector((offset + i) / kSector);
      std::copy_n(buffer.data() + i, part, sector.data() + (offset + i) % kSector);
      i += part;
    }
    return bytes;
  }
  void Close() override { open_ = false; }

 private:
  static std::size_t WithinSector(std::uint64_t offset, std::size_t bytes) {
    return std::min<std::size_t>(bytes, kSector - offset % kSector);
  }
  std::size_t Allowed(std::uint64_t offset, std::size_t bytes, std::uint64_t& left) const {
    if (!open_ || left == 0 || offset >= size_) return 0;
    if (left != std::numeric_limits<std::uint64_t>::max()) --left;
    return static_cast<std::size_t>(std::min<std::uint64_t>(bytes, size_ - offset));
  }
  std::vector<std::uint8_t>& Sector(std::uint64_t number) {
    auto& sector = sectors_[number];
    if (sector.empty()) sector.resize(kSector);
    return sector;
  }

  std::uint64_t size_;
  std::unordered_map<std::uint64_t, std::vector<std::uint8_t>> sectors_;
  bool open_ = false;
};

}  // namespace sectorbox::testing
