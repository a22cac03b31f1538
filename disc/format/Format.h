#pragma once

#include <cstdint>

// The on-disc format of ADFS with the old map. The BBC's own filing system uses this layout on
// floppies, hard discs and card partitions alike. All offsets are bytes, all numbers are
// little-endian, ranges are half-open.
namespace sectorbox::format {

inline constexpr std::int32_t kSectorSize = 256;

// --- Free space map: sectors 0 and 1, store bytes 0 to 511 ---------------------------------------
inline constexpr std::int32_t kMapSize = 512;
inline constexpr std::int32_t kMapStarts = 0;        // 82 start sectors of 3 bytes
inline constexpr std::int32_t kMapReserved0 = 246;   // 6 bytes, carried unchanged
inline constexpr std::int32_t kMapDiscSize = 252;    // 3 bytes: sectors on the disc
inline constexpr std::int32_t kMapChecksum0 = 255;   // checksum of sector 0
inline constexpr std::int32_t kMapLengths = 256;     // 82 lengths of 3 bytes, in sectors
inline constexpr std::int32_t kMapReserved1 = 502;   // 5 bytes, carried unchanged
inline constexpr std::int32_t kMapIdentifier = 507;  // 2 bytes, the disc identifier; left alone
inline constexpr std::int32_t kMapBootOption = 509;  // 0 Off, 1 Load, 2 Run, 3 Exec
inline constexpr std::int32_t kMapEnd = 510;         // 3 x the number of free runs
inline constexpr std::int32_t kMapChecksum1 = 511;   // checksum of sector 1
inline constexpr std::int32_t kMapEntrySize = 3;
inline constexpr std::int32_t kMapEntries = 82;  // runs that the disc has room for
inline constexpr std::int32_t kMapEntriesInMemory = 83;

static_assert(kMapStarts + kMapEntries * kMapEntrySize == kMapReserved0);
static_assert(kMapReserved0 + 6 == kMapDiscSize);
static_assert(kMapDiscSize + 3 == kMapChecksum0);
static_assert(kMapChecksum0 + 1 == kMapLengths);
static_assert(kMapLengths + kMapEntries * kMapEntrySize == kMapReserved1);
static_assert(kMapReserved1 + 5 == kMapIdentifier);
static_assert(kMapIdentifier + 2 == kMapBootOption);
static_assert(kMapBootOption + 1 == kMapEnd);
static_assert(kMapEnd + 1 == kMapChecksum1);
static_assert(kMapChecksum1 + 1 == kMapSize);

// --- Directory: 1280 bytes, five sectors ---------------------------------------------------------
inline constexpr std::int32_t kRootSector = 2;
inline constexpr std::int32_t kFirstFreeSector = 7;  // on a new disc
inline constexpr std::int32_t kDirSectors = 5;
inline constexpr std::int32_t kDirSize = 1280;
inline constexpr std::int32_t kDirSequence = 0;  // master sequence number, two BCD digits
inline constexpr std::int32_t kDirMark = 1;      // "Hugo"
inline constexpr std::int32_t kDirEntries = 5;
inline constexpr std::int32_t kEntrySize = 26;
inline constexpr std::int32_t kEntryCount = 47;
inline constexpr std::int32_t kDirLastEntry = 1201;  // slot 46
inline constexpr std::int32_t kDirUnused = 1227;     // 1 byte, not interpreted
inline constexpr std::int32_t kDirName = 1228;       // 10 bytes
inline constexpr std::int32_t kDirParent = 1238;     // 3 bytes: sector of the parent
inline constexpr std::int32_t kDirTitle = 1241;      // 19 bytes
inline constexpr std::int32_t kDirReserved = 1260;   // 14 bytes, not interpreted
inline constexpr std::int32_t kDirSequenceCopy = 1274;
inline constexpr std::int32_t kDirMarkCopy = 1275;  // "Hugo"
inline constexpr std::int32_t kDirCheck = 1279;     // neither computed nor read here
inline constexpr std::int32_t kNameLength = 10;
inline constexpr std::int32_t kTitleLength = 19;
inline constexpr char kHugo[] = "Hugo";
inline constexpr std::int32_t kHugoLength = 4;

static_assert(kDirSize == kDirSectors * kSectorSize);
static_assert(kDirSequence + 1 == kDirMark);
static_assert(kDirMark + kHugoLength == kDirEntries);
static_assert(kDirEntries + (kEntryCount - 1) * kEntrySize == kDirLastEntry);
static_assert(kDirLastEntry + kEntrySize == kDirUnused);
static_assert(kDirUnused + 1 == kDirName);
static_assert(kDirName + kNameLength == kDirParent);
static_assert(kDirParent + 3 == kDirTitle);
static_assert(kDirTitle + kTitleLength == kDirReserved);
static_assert(kDirReserved + 14 == kDirSequenceCopy);
static_assert(kDirSequenceCopy + 1 == kDirMarkCopy);
static_assert(kDirMarkCopy + kHugoLength == kDirCheck);
static_assert(kDirCheck + 1 == kDirSize);
static_assert(kRootSector + kDirSectors == kFirstFreeSector);

// --- Entry: 26 bytes -----------------------------------------------------------------------------
inline constexpr std::int32_t kEntryName = 0;       // 10 bytes, flags in the top bits of five
inline constexpr std::int32_t kEntryLoad = 10;      // 4 bytes
inline constexpr std::int32_t kEntryExec = 14;      // 4 bytes
inline constexpr std::int32_t kEntryLength = 18;    // 4 bytes
inline constexpr std::int32_t kEntrySector = 22;    // 3 bytes
inline constexpr std::int32_t kEntrySequence = 25;  // sequence number of the last change

static_assert(kEntryName + kNameLength == kEntryLoad);
static_assert(kEntrySector + 3 == kEntrySequence);
static_assert(kEntrySequence + 1 == kEntrySize);

// The attribute flags are the top bits of these bytes of an entry's name.
inline constexpr std::int32_t kAttrRead = 0;
inline constexpr std::int32_t kAttrWrite = 1;
inline constexpr std::int32_t kAttrLocked = 2;
inline constexpr std::int32_t kAttrDirectory = 3;
inline constexpr std::int32_t kAttrExecuteOnly = 4;

inline constexpr std::uint8_t kTopBit = 0x80;
inline constexpr std::uint8_t kLowBits = 0x7F;

// --- Floppy geometry -----------------------------------------------------------------------------
inline constexpr std::int32_t kFloppySectors = 16;  // sectors a track
inline constexpr std::int32_t kFloppyTracks = 80;   // tracks of side 0 that precede side 1
inline constexpr std::int32_t kFloppyTrackSize = kFloppySectors * kSectorSize;

// A file owns at least one sector, even an empty one. Length is taken as unsigned 32 bits.
constexpr std::int32_t SectorsOfLength(std::uint32_t length) {
  return length == 0 ? 1 : static_cast<std::int32_t>((length - 1) / kSectorSize + 1);
}

}  // namespace sectorbox::format
