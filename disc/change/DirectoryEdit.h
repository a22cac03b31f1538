#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "disc/store/Disc.h"

// The small steps that every change to a directory is made of. Names and titles are BBC bytes.
namespace sectorbox {

inline constexpr std::int16_t kDone = 0;
inline constexpr std::int16_t kStop = -1;

using EntryBytes = std::array<std::uint8_t, format::kEntrySize>;

// Gives the directory its next sequence number, at both of its ends, and marks the image changed.
// The new number is what the changed entry carries.
std::uint8_t BumpSequence(Disc& disc, std::int32_t DirSector);

EntryBytes ReadEntry(Disc& disc, std::int32_t DirSector, std::int32_t Slot);
void WriteEntry(Disc& disc, std::int32_t DirSector, std::int32_t Slot, const EntryBytes& entry);

// Entries from Slot on move up by one; the last one is lost (who inserts has tested that slot 46 is
// empty). Slot itself is to be overwritten.
void OpenGap(Disc& disc, std::int32_t DirSector, std::int32_t Slot);
// Entries behind Slot move down by one, and slot 46 becomes zeros.
void CloseGap(Disc& disc, std::int32_t DirSector, std::int32_t Slot);

// True if slot 46 holds an entry.
bool DirectoryIsFull(Disc& disc, std::int32_t DirSector);

// Where an entry named Name belongs: the first empty slot, or the first whose name isn't below
// Name. Names compare in upper case by character code. 47 if there is no such slot.
struct Place {
  std::int32_t Slot = 0;
  bool Taken = false;  // the entry there has that very name
};
Place FindPlace(Disc& disc, std::int32_t DirSector, std::string_view Name);

// The text, a carriage return and NULs, cut to the width of the field.
std::string PadName(const std::string& text);
std::string PadTitle(const std::string& text);
// Puts PadName(Name) into the entry's name field, whose attributes become clear.
void SetName(EntryBytes& entry, const std::string& Name);
// A number into the entry, low byte first.
void SetNumber(EntryBytes& entry, std::int32_t offset, std::uint32_t value, std::int32_t bytes);

// Eight hex digits taken by pairs, so that what is wrong in one pair leaves the others alone.
std::uint32_t ParseAddress(const std::string& digits);

// A directory carries its own name, attributes included: puts the first bytes of the entry's name
// there too. Nothing for a file's entry, nor for one that leads to no directory (on a damaged disc
// those bytes would land in something else).
void CopyNameToDirectory(Disc& disc, const EntryBytes& entry, std::int32_t bytes);

// True if a character is outside 32 to 127 or in the set.
bool HoldsIllegalCharacters(std::string_view text, std::string_view set);
// True for a name that would hide its entry and all behind it, or turn its letters into attributes:
// no first character, or a byte above 127.
bool NameCannotBeStored(std::string_view Name);
// "File NAME Contains Illegal Characters".
std::string IllegalNameMessage(const std::string& Name);

}  // namespace sectorbox
