#pragma once

#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// Allocation: taking sectors from the free list and putting them back. The map on the disc agrees
// with the list in memory after each of these.
namespace sectorbox {

inline constexpr const char* kNoSpaceMessage = "Not Enough Free Contiguous Space on Disc";

// The lowest run that holds need bytes (a file's length, or 1280), or -1. A run of length 0 is no
// run.
[[nodiscard]] std::int32_t FindFreeRun(const Disc& disc, std::uint32_t need);

// Takes sectors sectors from the start of run and writes the map. A run that is used up goes.
void TakeSectors(Disc& disc, std::int32_t run, std::int32_t sectors);

// Puts sectors back, merges neighbours, writes the map, and compacts the disc at once when 80 or
// more runs remain.
void ReleaseSectors(Disc& disc, std::int32_t start, std::int32_t sectors);

// Byte 510, the runs, both checksums. Entries beyond the end pointer stay as they were.
void WriteFreeMap(Disc& disc);

}  // namespace sectorbox
