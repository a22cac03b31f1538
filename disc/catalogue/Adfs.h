#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "disc/store/Disc.h"

// Direct readings of the on-disc format. Nothing is cached: each call reads the store again.
// DirSector is a directory's start sector; Slot is 0 to 46. Texts are BBC bytes.
namespace sectorbox {

// Store offset of a sector's first byte, and of an entry's first byte.
std::int64_t SectorOffset(std::int32_t sector);
std::int64_t EntryOffset(std::int32_t DirSector, std::int32_t Slot);

// Little-endian numbers in the store.
std::int32_t Fetch24(Disc& disc, std::int64_t offset);
std::uint32_t Fetch32(Disc& disc, std::int64_t offset);
void Store24(Disc& disc, std::int64_t offset, std::int32_t value);

// Upper-case hexadecimal of exactly digits digits: the rightmost ones, zero-padded on the left, so
// that a wider value loses its top digits.
std::string Hex(std::uint64_t value, int digits);
// The number at the start of a text of hexadecimal digits; 0 when there is none. Wraps at 32 bits.
std::uint32_t ParseHex(std::string_view text);
// A to Z for a to z, every other byte as it is.
std::string UpperCase(std::string_view text);
// A number as the status line prints it: decimal with a leading blank for the sign.
std::string SignedDecimal(std::int64_t value);

// True if bytes 1 to 4 hold "Hugo". That alone makes a directory valid for every reader here.
bool IsDirectory(Disc& disc, std::int32_t DirSector);

// The ten name bytes, top bits cleared, cut before the first carriage return. NUL bytes are not cut
// here: an empty entry is one whose first character has code 0 (EntryIsEmpty), and a name that a
// carriage return in its first byte cuts to nothing counts as empty too.
std::string GetEntryName(Disc& disc, std::int32_t DirSector, std::int32_t Slot);
bool EntryIsEmpty(std::string_view name);
// Slot of the entry with that name, without regard to case, or -1. Ends at the first empty name.
std::int32_t FindEntry(Disc& disc, std::int32_t DirSector, std::string_view Name);
// The 24-bit start sector of that entry, or -1.
std::int32_t GetEntrySector(Disc& disc, std::int32_t DirSector, std::string_view Name);
// The letters E, D, L, W, R in that order, each if the top bit of its name byte is set. offset is
// the entry's store offset.
std::string GetEntryAttributes(Disc& disc, std::int64_t offset);
// True if the top bit of the given name byte (format::kAttrLocked ...) is set.
bool EntryHas(Disc& disc, std::int64_t offset, std::int32_t attribute);

std::string HexByte(Disc& disc, std::int64_t offset);
std::string HexSector(Disc& disc, std::int64_t offset);
std::string HexDword(Disc& disc, std::int64_t offset);

// The directory's own name, cut at the first carriage return and then at the first NUL; an empty
// name of the root (sector 2) becomes "$".
std::string GetDirName(Disc& disc, std::int32_t DirSector);
std::string GetDirTitle(Disc& disc, std::int32_t DirSector);

// The sequence number after b, both two BCD digits; 00 follows 99.
std::uint8_t NextSequence(std::uint8_t b);

// Checksum of the map sector at base (0 or 256), as the BBC's filing system adds it up: from byte
// 254 down to 0, starting from 255, each carry going into the next sum. The carry out of byte 0 is
// dropped.
std::uint8_t MapChecksum(Disc& disc, std::int32_t base);
// The same for a map sector in memory; its byte 255 isn't looked at.
std::uint8_t MapChecksum(std::span<const std::uint8_t, format::kSectorSize> sector);

// Disc size in sectors, from the map.
std::int32_t MapDiscSize(Disc& disc);
// The free runs that an end pointer (byte 510) stands for. Only a damaged disc has one that is no
// multiple of 3: to the nearest then, and never more than the arrays hold.
std::int32_t RunsOfEndPointer(std::uint8_t end);
// Loads the free list from the store, believing what stands there. Called after every open and
// after compaction.
void ReadFreeMap(Disc& disc);
// Gives " 653568 Bytes Free,  1792 Bytes Used" to the host's status line.
void ShowFreeSpace(Disc& disc);
// The sectors up to which a trimmed image is written: the start of the last free run where that run
// reaches the disc's end; none where it doesn't, or there is no run, and the image is written in
// full. Only free space is ever cut off.
std::optional<std::int32_t> TrimmedSize(const Disc& disc, std::int32_t discSize);

}  // namespace sectorbox
