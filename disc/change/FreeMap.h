#pragma once

#include <cstdint>

#include "disc/store/Disc.h"

// Allocation: taking sectors from the free list and putting them back. After each of these changes
// the map on the disc agrees with the list in memory.
namespace sectorbox {

inline constexpr const char* kNoSpaceMessage = "Not Enough Free Contiguous Space on Disc";

// The index of the lowest run that holds need bytes (a file's length, or 1280), or -1. A run of
// length 0 doesn't count.
[[nodiscard]] std::int32_t FindFreeRun(const Disc& disc, std::uint32_t need);

// Takes that many sectors from the start of the run with that index, and writes the map. A run that
// is used up leaves the list.
void TakeSectors(Disc& disc, std::int32_t run, std::int32_t sectors);

// Puts sectors back, merges runs that touch, and writes the map. If 80 or more runs remain, it also
// compacts the disc, which moves files and directories.
void ReleaseSectors(Disc& disc, std::int32_t start, std::int32_t sectors);

// Writes the list in memory to the map: the end pointer (byte 510), the runs and both checksums.
// What stands behind the end pointer stays as it was.
void WriteFreeMap(Disc& disc);

}  // namespace sectorbox
