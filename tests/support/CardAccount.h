#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace sectorbox::testing {

// Knows what every byte of a raw card file should be: odd bytes, gaps and both partitions included.
// A test says what a step should have changed, and then compares the file with it. Only sectors
// that aren't all zero take memory, and the file of a card over a gibibyte has holes.
class CardAccount {
 public:
  static constexpr std::uint64_t kSector = 512;               // device bytes
  static constexpr std::uint64_t kPartitionStart = 0x200000;  // device sectors to partition 1

  explicit CardAccount(std::uint64_t sectors) : size_(sectors) {}

  // Fills device sectors, from one on, with bytes that differ from place to place.
  void Fill(std::uint64_t sector, std::uint64_t count);
  // Zeroes that many sectors of a partition, odd bytes included.
  void Wipe(int partition, std::uint64_t count);
  // Puts bytes on the disc of a partition, from a disc byte on. The odd bytes beside them stay.
  void Put(int partition, std::uint64_t offset, std::span<const std::uint8_t> bytes);
  // The same for a format that makes an empty disc of that many sectors. A full format also wipes
  // these sectors; a quick one only writes the first seven.
  void FormatFully(int partition, std::int32_t sectors);
  void FormatQuickly(int partition, std::int32_t sectors);
  // The disc bytes of a partition's first sectors.
  std::vector<std::uint8_t> DiscBytes(int partition, std::uint64_t sectors) const;

  // Writes the card as it should be to a new file.
  void WriteTo(const std::string& path) const;
  // Compares the file with the card, every byte and the length. Empty if all agrees, else what is
  // wrong.
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

// The bytes of a disc that was made empty and then got one file in its root.
std::vector<std::uint8_t> DiscWithAddedFile(std::int32_t sectors, const std::string& name,
                                            const std::vector<std::uint8_t>& bytes);

}  // namespace sectorbox::testing
