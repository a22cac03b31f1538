#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "disc/format/Text.h"
#include "disc/store/Disc.h"

// Single facts of a disc by sector and name. Nothing is cached: each call reads the store again.
// DirSector is a directory's start sector; Slot is 0 to 46. Texts are BBC bytes. Whoever wants more
// than one fact of a directory reads it whole (Directories.h).
namespace sectorbox {

// True if bytes 1 to 4 hold "Hugo". That alone makes a directory valid for every reader here.
[[nodiscard]] bool IsDirectory(Disc& disc, std::int32_t DirSector);

// The entry's name, as Entry::Name gives it.
[[nodiscard]] std::string GetEntryName(Disc& disc, std::int32_t DirSector, std::int32_t Slot);
// The letters E, D, L, W, R in that order, one for each attribute of the entry that is set.
[[nodiscard]] std::string GetEntryAttributes(Disc& disc, std::int32_t DirSector, std::int32_t Slot);
// Slot of the entry with that name, without regard to case, or -1. The search ends at the first
// empty entry.
[[nodiscard]] std::int32_t FindEntry(Disc& disc, std::int32_t DirSector, std::string_view Name);
// The 24-bit start sector of that entry, or -1.
[[nodiscard]] std::int32_t GetEntrySector(Disc& disc, std::int32_t DirSector,
                                          std::string_view Name);

// The directory's own name; an empty name of the root (sector 2) becomes "$".
[[nodiscard]] std::string GetDirName(Disc& disc, std::int32_t DirSector);
[[nodiscard]] std::string GetDirTitle(Disc& disc, std::int32_t DirSector);

// Loads the free list from the store, believing what stands there. Called after every open and
// after compaction.
void ReadFreeMap(Disc& disc);
// Gives " 653568 Bytes Free,  1792 Bytes Used" to the status line.
void ShowFreeSpace(Disc& disc);

}  // namespace sectorbox
