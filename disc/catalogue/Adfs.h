#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "disc/format/Directory.h"
#include "disc/store/Disc.h"

// Single facts of a disc by sector and name. Nothing is cached: each call reads the store again.
// dirSector is a directory's start sector; slot is 0 to 46. Texts are BBC bytes. Code that wants
// more than one fact of a directory reads the whole directory (Directories.h).
namespace sectorbox {

// True if bytes 1 to 4 hold "Hugo". Every reader here tests this mark and nothing else.
[[nodiscard]] bool IsDirectory(Disc& disc, std::int32_t dirSector);

// The entry's name, as Entry::Name gives it.
[[nodiscard]] std::string GetEntryName(Disc& disc, std::int32_t dirSector, std::int32_t slot);
// The letters E, D, L, W, R in that order, one for each attribute of the entry that is set.
[[nodiscard]] std::string GetEntryAttributes(Disc& disc, std::int32_t dirSector, std::int32_t slot);
// Slot of the entry with that name, without regard to case, or -1. The search ends at the first
// empty entry. start counts as in Directory::Find.
[[nodiscard]] std::int32_t FindEntry(Disc& disc, std::int32_t dirSector, std::string_view name,
                                     std::int32_t start = kAnyStart);
// The 24-bit start sector of that entry, or -1.
[[nodiscard]] std::int32_t GetEntrySector(Disc& disc, std::int32_t dirSector,
                                          std::string_view name);

// The directory's own name; an empty name of the root (sector 2) becomes "$".
[[nodiscard]] std::string GetDirName(Disc& disc, std::int32_t dirSector);
[[nodiscard]] std::string GetDirTitle(Disc& disc, std::int32_t dirSector);

// Loads the free list from the store. It believes what stands there, right or wrong. Every open and
// every compaction ends with it.
void ReadFreeMap(Disc& disc);
// Shows a text such as " 653568 Bytes Free,  1792 Bytes Used" in the status line.
void ShowFreeSpace(Disc& disc);

}  // namespace sectorbox
