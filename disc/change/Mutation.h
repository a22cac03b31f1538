#pragma once

#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// Every change to a directory. Each operation tests in a set order, shows its own message when it
// refuses, and changes nothing before the last test (but for the directory that AddFile makes of a
// name's prefix). There is no journal and no undo; the caller refreshes its panes. -1 is "refused"
// or "stop", 0 "done".
namespace sectorbox {

// Adds a host file, or a folder with all that is in it. ".INF" files are passed over: they are read
// beside the file they belong to. An entry of the same name is replaced, a locked one only with the
// option, a directory never.
std::int16_t AddFile(Disc& disc, std::int32_t DirSector, const std::string& HostPath);

// IgnoreLock deletes a locked entry too. A name that isn't there is 0, without a message.
std::int16_t DeleteEntry(Disc& disc, std::int32_t DirSector, const std::string& Name, bool IsDir,
                         bool IgnoreLock);

// Deletes the directory at DirSector, entry Name of the directory Parent; with DeleteNonEmpty, its
// contents first. Parent -1 empties a directory and keeps it. What was deleted before a refusal
// stays deleted. The event pump runs after each entry; where another disc is opened there, or the
// directory itself deleted, the operation stops.
std::int16_t DeleteTree(Disc& disc, std::int32_t Parent, std::int32_t DirSector,
                        const std::string& Name, bool IgnoreLock, bool DeleteNonEmpty);

// True when refused.
bool RenameEntry(Disc& disc, const std::string& NewName, const std::string& OldName,
                 std::int32_t DirSector, bool IgnoreLock);

// The new directory's start sector, or -1.
std::int32_t NewDirectory(Disc& disc, std::int32_t DirSector, const std::string& Name);

void SetEntryAttributes(Disc& disc, std::int32_t DirSector, const std::string& Name, bool Read,
                        bool Write, bool Locked);
// Load and Exec are eight hex digits each.
void SetEntryAddresses(Disc& disc, std::int32_t DirSector, const std::string& Name,
                       const std::string& Load, const std::string& Exec);
void SetDirTitle(Disc& disc, std::int32_t DirSector, const std::string& Title);

// Byte 509 alone, without the map's checksum and without ImageChanged: the window's boot dialog.
void SetBootOption(Disc& disc, std::uint8_t option);

}  // namespace sectorbox
