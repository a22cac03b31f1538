#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "disc/change/Outcome.h"
#include "disc/store/Disc.h"

// Every change to a directory. Each operation tests in a set order, shows its own message when it
// refuses, and changes nothing before the last test. The caller refreshes its panes.
namespace sectorbox {

// IgnoreLock deletes a locked entry too. A name that isn't there is kDone, without a
// message.
[[nodiscard]] Outcome DeleteEntry(Disc& disc, std::int32_t DirSector, const std::string& Name,
                                  bool IsDir, bool IgnoreLock);

// Deletes the directory at DirSector, entry Name of the directory Parent; with DeleteNonEmpty, its
// contents first. Parent -1 empties a directory and keeps it. What was deleted before a refusal
// stays deleted. The event pump runs after each entry; where another disc is opened there, or the
// directory itself deleted, the operation stops.
[[nodiscard]] Outcome DeleteTree(Disc& disc, std::int32_t Parent, std::int32_t DirSector,
                                 const std::string& Name, bool IgnoreLock, bool DeleteNonEmpty);

// A name that isn't there is kRefused, without a message.
[[nodiscard]] Outcome RenameEntry(Disc& disc, const std::string& NewName,
                                  const std::string& OldName, std::int32_t DirSector,
                                  bool IgnoreLock);

// The new directory's start sector; none when refused.
[[nodiscard]] std::optional<std::int32_t> NewDirectory(Disc& disc, std::int32_t DirSector,
                                                       const std::string& Name);

void SetEntryAttributes(Disc& disc, std::int32_t DirSector, const std::string& Name, bool Read,
                        bool Write, bool Locked);
// Load and Exec are eight hex digits each.
void SetEntryAddresses(Disc& disc, std::int32_t DirSector, const std::string& Name,
                       const std::string& Load, const std::string& Exec);
[[nodiscard]] Outcome SetDirTitle(Disc& disc, std::int32_t DirSector, const std::string& Title);

// Byte 509 alone, without the map's checksum and without ImageChanged: the window's boot dialog.
void SetBootOption(Disc& disc, std::uint8_t option);
// Both of the map's checksums as they should be. With a wrong one the BBC refuses the disc.
void UpdateMapChecksums(Disc& disc);

}  // namespace sectorbox
