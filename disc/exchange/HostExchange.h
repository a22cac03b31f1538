#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "disc/change/Outcome.h"
#include "disc/format/Entry.h"
#include "disc/host/HostFile.h"
#include "disc/store/Disc.h"

// Files between a disc and the host, with what the host can't hold in .INF sidecars.
namespace sectorbox {

// The host's form of an ADFS name, and the ADFS form of a host's name. The underscores that the
// first puts in stay when the second turns the name back.
[[nodiscard]] std::string AdfsToHostName(const std::string& name);
[[nodiscard]] std::string HostToAdfsName(const std::string& name);
// AdfsToHostName of an entry's name; empty for an empty entry.
[[nodiscard]] std::string GetHostName(Disc& disc, std::int32_t dirSector, std::int32_t slot);

// Host names for the entries that are exported to one folder. Some names, such as X/INF and X/INF_,
// have the same host form; their entries get different names here, so that no file replaces
// another.
class HostNamesOfFolder {
 public:
  // AdfsToHostName of an entry's name, with as many "_" behind it as make it a new name.
  [[nodiscard]] std::string Take(const std::string& name);

 private:
  std::set<std::string> used_;
};

// Adds a host file, or a folder with all that is in it, to the directory at dirSector. ".INF" files
// are passed over: they are read together with the file they belong to. An entry of the same name
// is replaced; a locked entry only if the option OverwriteLocked is set, a directory never. A
// refusal changes nothing, except that the directory of a name's prefix (A of "A.PROG") may have
// been made. A locked entry that stays gets a note (StatusLine::NoteLeftOut). HostError if the host
// file or its sidecar can't be read.
[[nodiscard]] Outcome AddFile(Disc& disc, std::int32_t dirSector, const std::string& hostPath);

// What becomes of what an import has added when a refusal ends it.
enum class AfterRefusal {
  kStays,     // it stays on the disc
  kDropsAll,  // the caller doesn't store the disc
};

// One import of several host files and folders: AddFile for each, up to the first refusal. Each is
// a change of its own. If the names of two host files become one name in one directory, the second
// isn't added, and a note names both; a file that was on the disc before the import is replaced. If
// a refusal ends the import, a note tells how many entries were not added, and which was refused.
[[nodiscard]] Outcome AddFiles(Disc& disc, std::int32_t dirSector,
                               const std::vector<std::string>& hostPaths,
                               AfterRefusal afterRefusal = AfterRefusal::kStays);

// How many bytes the files at paths and below have together, as far as the host tells. Links to
// folders aren't followed further than 16 folders deep.
[[nodiscard]] std::int64_t BytesToAdd(const std::vector<std::string>& paths);

// Makes a directory of a host folder and adds all that is in the folder. The new directory is
// listed in the directory at dirSector. It is one import, as AddFiles is. HostError as for AddFile.
[[nodiscard]] Outcome ImportFolder(Disc& disc, std::int32_t dirSector, const std::string& folder);

// Reads length bytes from a start sector on and passes them to sink, part by part, up to the end of
// the store. On a damaged disc an entry may claim bytes behind that end: they count as zeros and
// aren't passed on. Gives their number.
[[nodiscard]] std::uint32_t ReadContents(
    Disc& disc, std::int32_t sector, std::uint32_t length,
    const std::function<void(std::span<const std::uint8_t>)>& sink);
// Writes the same bytes to a host file. Long runs of zeros take no room there.
void WriteContents(Disc& disc, OutputFile& output, std::int32_t sector, std::uint32_t length);

// All exports below: a host file that is there is replaced, but never the open disc's own image
// (disc/store/OpenDisc.h); a link that is there is replaced and not followed. OpenDiscError and
// HostError end an export; what it has written stays. Writes one file of the disc to hostPath, and
// its sidecar beside it.
void ExportFile(Disc& disc, const std::string& hostPath, const Entry& file);
// Writes hostPath + ".INF", the sidecar of a directory.
void WriteDirectorySidecar(const Disc& disc, const std::string& hostPath, const Entry& directory);
// Writes what the entry names, with its sidecar: a file, or a directory with all that is in it.
void ExportEntry(Disc& disc, const std::string& hostPath, const Entry& entry);

// Writes a directory's contents with sidecars, recursively. folder is made if it isn't there. On a
// damaged disc many entries may name the same sectors: when the files add up to more than twice the
// disc's size, the export ends with a note (StatusLine::NoteLeftOut).
void ExportFiles(Disc& disc, const std::string& folder, std::int32_t dirSector);
// The same with the hourglass showing.
void ExportDisc(Disc& disc, const std::string& folder, std::int32_t dirSector);
// The same export for a drag. drag is the drag's own data, which isn't used.
void DragDropExportFiles(Disc& disc, const std::string& folder, std::int32_t dirSector, void* drag);

}  // namespace sectorbox
