#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <span>
#include <string>

#include "disc/host/HostFile.h"
#include "disc/store/Disc.h"

// Files between a disc and the host, with what the host can't hold in .INF sidecars.
namespace sectorbox {

// The host's form of an ADFS name, and back. The underscores that the first puts in aren't undone.
std::string AdfsToHostName(const std::string& Name);
std::string HostToAdfsName(const std::string& Name);
// AdfsToHostName of an entry's name; empty for an empty entry.
std::string GetHostName(Disc& disc, std::int32_t DirSector, std::int32_t Slot);

// Host names for the entries that go out to one folder. Two entries whose names come out alike, as
// X/INF and X/INF_ do, get different ones: neither may take the other's place.
class HostNamesOfFolder {
 public:
  // AdfsToHostName of an entry's name, with as many "_" behind it as set it apart.
  std::string Take(const std::string& Name);

 private:
  std::set<std::string> used_;
};

// -1 when the import should stop.
std::int16_t ImportFolder(Disc& disc, std::int32_t DirSector, const std::string& Folder);

// Hands the Length bytes from a start sector on to sink, a part at a time, as far as the store
// goes. Gives the count of the rest, which an entry of a damaged disc claims beyond that: all
// zeros.
std::uint32_t ReadContents(Disc& disc, std::int32_t Sector, std::uint32_t Length,
                           const std::function<void(std::span<const std::uint8_t>)>& sink);
// The same into a file of the host, where that rest takes no room.
void WriteContents(Disc& disc, OutputFile& output, std::int32_t Sector, std::uint32_t Length);

// Writes one file of the disc, its length in bytes from its start sector on, with its sidecar.
// hostPath is the host file's path; the texts are the row's or the entry's own.
struct ExportedFile {
  std::string Name;
  std::string Load;
  std::string Exec;
  std::string Size;
  std::string Attr;
  std::uint32_t Length = 0;
  std::int32_t Sector = 0;
};
void ExportFile(Disc& disc, const std::string& hostPath, const ExportedFile& file);
// hostPath + ".INF" with the directory line.
void WriteDirectorySidecar(const std::string& hostPath, const std::string& Name,
                           const std::string& Attr);

// A directory's contents with sidecars, recursively; Folder is made if it isn't there.
void ExportFiles(Disc& disc, const std::string& Folder, std::int32_t DirSector);
// The same with the hourglass showing.
void ExportDisc(Disc& disc, const std::string& Folder, std::int32_t DirSector);
// The same walk for a drag. Drag is the drag's own data, which the walk hands down and doesn't use.
void DragDropExportFiles(Disc& disc, const std::string& Folder, std::int32_t DirSector, void* Drag);

}  // namespace sectorbox
