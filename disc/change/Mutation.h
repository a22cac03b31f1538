#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "disc/change/Outcome.h"
#include "disc/format/Directory.h"
#include "disc/store/Disc.h"

// Every change to a directory. Each operation makes its tests in a set order, shows its own message
// when it refuses, and changes nothing before the last test. The caller brings its panes up to
// date. Names are compared without regard to case. On a damaged disc a directory may list a name
// more than once: start, the start sector of the entry that is meant, then tells which
// (Directory::Find).
namespace sectorbox {

// Deletes a file, or an empty directory (isDir). With ignoreLock it also deletes a locked entry. If
// there is no entry of that name and kind, the outcome is kDone, without a message.
[[nodiscard]] Outcome DeleteEntry(Disc& disc, std::int32_t dirSector, const std::string& name,
                                  bool isDir, bool ignoreLock, std::int32_t start = kAnyStart);

// Deletes the directory at dirSector, which the directory at sector parent lists under that name.
// With deleteNonEmpty its contents are deleted first. If parent is -1, the directory itself is
// kept. What was deleted before a refusal stays deleted. The event pump runs after each entry. If
// another disc is opened then, or the directory itself is deleted, the outcome is kStopped. An
// entry of that name that leads elsewhere is never deleted.
[[nodiscard]] Outcome DeleteTree(Disc& disc, std::int32_t parent, std::int32_t dirSector,
                                 const std::string& name, bool ignoreLock, bool deleteNonEmpty);

// If there is no entry of the old name, the outcome is kRefused, without a message.
[[nodiscard]] Outcome RenameEntry(Disc& disc, const std::string& newName,
                                  const std::string& oldName, std::int32_t dirSector,
                                  bool ignoreLock, std::int32_t start = kAnyStart);

// Makes an empty directory. Gives its start sector; none if the operation was refused.
[[nodiscard]] std::optional<std::int32_t> NewDirectory(Disc& disc, std::int32_t dirSector,
                                                       const std::string& name);

// Sets these three attributes and leaves the others. Nothing happens if there is no such entry.
// kRefused only if the disc may not be changed (MayChange).
[[nodiscard]] Outcome SetEntryAttributes(Disc& disc, std::int32_t dirSector,
                                         const std::string& name, bool read, bool write,
                                         bool locked, std::int32_t start = kAnyStart);
// load and exec are eight hex digits each. Nothing happens if there is no such entry. kRefused only
// if the disc may not be changed.
[[nodiscard]] Outcome SetEntryAddresses(Disc& disc, std::int32_t dirSector, const std::string& name,
                                        const std::string& load, const std::string& exec,
                                        std::int32_t start = kAnyStart);
// Gives a directory another title, cut to 19 characters.
[[nodiscard]] Outcome SetDirTitle(Disc& disc, std::int32_t dirSector, const std::string& title);

// What SetBootOption does with the two checksums of the map. The BBC refuses a disc with a wrong
// one.
enum class MapSums { kLeave, kUpdate };

// Writes byte 509. With kLeave that is all, as the window's boot dialog does it. ImageChanged stays
// as it was. kRefused only if the disc may not be changed.
[[nodiscard]] Outcome SetBootOption(Disc& disc, std::uint8_t option, MapSums sums);

}  // namespace sectorbox
