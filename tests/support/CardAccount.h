#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace sectorbox::testing {

// What every single byte of a raw card file should be, odd bytes, gaps and both partitions
// included. A test tells it what a step should have changed and then holds the file against it.
// Only sectors that aren't all zero take memory, and the file of a card over a gibibyte stays full
// of holes.
class CardAccount {
 public:
  static constexpr std::uint64_t kSector = 512;               // device bytes
  static constexpr std::uint64_t kPartitionStart = 0x200000;  // device sectors to partition 1

  explicit CardAccount(std::uint64_t sectors) : size_(sectors) {}

  // Bytes that differ from place to place, from a device sector on.
  void Fill(std::uint64_t sector, std::uint64_t count);
  // Zeroes that many sectors of a partition, odd bytes included.
  void Wipe(int partition, std::uint64_t count);
  // Bytes of a disc, from that disc byte on; the odd bytes beside them stay.
  void Put(int partition, std::uint64_t offset, std::span<const std::uint8_t> bytes);
  // The disc bytes of a partition's first sectors.
  std::vector<std::uint8_t> DiscBytes(int partition, std::uint64_t sectors) const;

  // The card as it should be, as a new file.
  void WriteTo(const std::string& path) const;
  // Empty if the file is that card, in every byte and in its length; otherwise what is wrong.
  std::string WhatDiffers(const std::string& path) const;

 private:
  using Sector = std::array<std::uint8_t, kSector>;

  Sector At(std::uint64_t sector) const;
  static std::uint64_t StartOf(int partition) {
    return static_cast<std::uint64_t>(partition) * kPartitionStart;
  }

  std::uint64_t size_;
  std::map<std::uint64_t, Sector> sectors_;
};

// The bytes of a disc on which, after an empty one was made, one file was added to the root.
std::vector<std::uint8_t> DiscWithAddedFile(std::int32_t sectors, const std::string& name,
                                            const std::vector<std::uint8_t>& bytes);

}  // namespace sectorbox::testing
