#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "disc/format/ByteSet.h"
#include "disc/format/Format.h"

namespace sectorbox {

// A stretch of free sectors: [Start, End).
struct FreeRun {
  std::int32_t Start = 0;
  std::int32_t Length = 0;
  [[nodiscard]] std::int32_t End() const { return Start + Length; }
};

// Checksum of one map sector, as the BBC's filing system adds it up: from byte 254 down to 0,
// starting from 255; each carry is added to the next sum. The carry out of byte 0 is dropped. Byte
// 255 holds the checksum itself and isn't part of the sum.
[[nodiscard]] std::uint8_t MapChecksum(std::span<const std::uint8_t, format::kSectorSize> sector);

// The free space map as a value: sectors 0 and 1 of a disc, with the runs of free sectors, the
// disc's size and the boot option. It believes what stands there; a damaged map may say anything.
//
// The value knows which of its bytes were set, and only those are written back to the disc. So a
// byte that a faulty card couldn't give isn't written back to it.
class MapSectors {
 public:
  using Bytes = std::array<std::uint8_t, format::kMapSize>;

  // If bytes has fewer than 512 bytes, the missing ones are zeros.
  explicit MapSectors(std::span<const std::uint8_t> bytes);

  [[nodiscard]] const Bytes& Raw() const { return bytes_; }
  // The bytes that were set.
  [[nodiscard]] const ByteSet<format::kMapSize>& WasSet() const { return set_; }

  // Sectors on the disc.
  [[nodiscard]] std::int32_t DiscSize() const;
  void SetDiscSize(std::int32_t sectors);

  // 0 Off, 1 Load, 2 Run, 3 Exec.
  [[nodiscard]] std::uint8_t BootOption() const;
  void SetBootOption(std::uint8_t option);

  // The end pointer as it stands: 3 x the number of runs.
  [[nodiscard]] std::uint8_t EndPointer() const;
  // The free runs up to the end pointer, in the order of the map. On a damaged disc the end pointer
  // may be no multiple of 3; the nearest multiple counts then. There are never more than 83 runs,
  // since the arrays in memory hold no more; the last of these lies over other fields.
  [[nodiscard]] std::vector<FreeRun> Runs() const;
  // The run at a place of the map, from 0 to 84; the end pointer plays no part. The places behind
  // 81 lie over other fields.
  [[nodiscard]] FreeRun RunAt(std::int32_t place) const;
  // Puts the runs, at most 83, into the map, and sets the end pointer behind them. What stands
  // behind the end pointer stays.
  void SetRuns(std::span<const FreeRun> runs);

  // The checksum that stands in the map, and the one that should. sector is 0 or 1.
  [[nodiscard]] std::uint8_t StoredChecksum(std::int32_t sector) const;
  [[nodiscard]] std::uint8_t RightChecksum(std::int32_t sector) const;
  // Puts the right checksums of both sectors into the map. The BBC refuses a disc with a wrong one.
  void UpdateChecksums();

 private:
  [[nodiscard]] std::int32_t Number(std::int32_t at) const;
  void SetNumber(std::int32_t at, std::int32_t value);
  void SetByte(std::int32_t at, std::uint8_t value);

  Bytes bytes_{};
  ByteSet<format::kMapSize> set_;
};

}  // namespace sectorbox
