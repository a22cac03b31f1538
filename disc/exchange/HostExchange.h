#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <span>
#include <string>

#include "disc/change/Outcome.h"
#include "disc/format/Entry.h"
#include "disc/host/HostFile.h"
#include "disc/store/Disc.h"

// Files between a disc and the host, with what the host can't hold in .INF sidecars.
namespace sectorbox {

// The host's form of an ADFS name, and back. The underscores that the first puts in aren't undone.
[[nodiscard]] std::string AdfsToHostName(const std::string& Name);
[[nodiscard]] std::string HostToAdfsName(const std::string& Name);
// AdfsToHostName of an entry's name; empty for an empty entry.
[[nodiscard]] std::string GetHostName(Disc& disc, std::int32_t DirSector, std::int32_t Slot);

// Host names for the entries that go out to one folder. Two entries whose names come out alike, as
// X/INF and X/INF_ do, get different ones: neither may take the other's place.
class HostNamesOfFolder {
 public:
  // AdfsToHostName of an entry's name, with as many "_" behind it as set it apart.
  [[nodiscard]] std::string Take(const std::string& Name);

 private:
  std::set<std::string> used_;
};

// Adds a host file, or a folder with all that is in it. ".INF" files are passed over: they are read
// beside the file they belong to. An entry of the same name is replaced, a locked one only with the
// option, a directory never. A refusal changes nothing but for the directory that a name's prefix
// made necessary.
[[nodiscard]] Outcome AddFile(Disc& disc, std::int32_t DirSector, const std::string& HostPath);

// A folder with all that is in it becomes a directory below DirSector.
[[nodiscard]] Outcome ImportFolder(Disc& disc, std::int32_t DirSector, const std::string& Folder);

// Hands the Length bytes from a start sector on to sink, a part at a time, as far as the store
// goes. Gives the count of the rest, which an entry of a damaged disc claims beyond that: all
// zeros.
[[nodiscard]] std::uint32_t ReadContents(
    Disc& disc, std::int32_t Sector, std::uint32_t Length,
    const std::function<void(std::span<const std::uint8_t>)>& sink);
// The same into a file of the host, where that rest takes no room.
void WriteContents(Disc& disc, OutputFile& output, std::int32_t Sector, std::uint32_t Length);

// Writes one file of the disc to hostPath, and its sidecar beside it.
void ExportFile(Disc& disc, const std::string& hostPath, const Entry& file);
// hostPath + ".INF" with the directory line.
void WriteDirectorySidecar(const std::string& hostPath, const Entry& directory);
// What the entry names, with its sidecar: a file, or a directory with all that is in it.
void ExportEntry(Disc& disc, const std::string& hostPath, const Entry& entry);

// A directory's contents with sidecars, recursively; Folder is made if it isn't there.
void ExportFiles(Disc& disc, const std::string& Folder, std::int32_t DirSector);
// The same with the hourglass showing.
void ExportDisc(Disc& disc, const std::string& Folder, std::int32_t DirSector);
// The same walk for a drag. Drag is the drag's own data, which the walk hands down and doesn't use.
void DragDropExportFiles(Disc& disc, const std::string& Folder, std::int32_t DirSector, void* Drag);

}  // namespace sectorbox
