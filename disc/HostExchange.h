#pragma once

#include <cstdint>
#include <string>

#include "disc/Disc.h"

// Files between a disc and the host, with what the host can't hold in .INF sidecars.
namespace sectorbox {

// The host's form of an ADFS name, and back. The underscores that the first puts in aren't undone.
std::string AdfsToHostName(const std::string& Name);
std::string HostToAdfsName(const std::string& Name);
// AdfsToHostName of an entry's name; empty for an empty entry.
std::string GetHostName(Disc& disc, std::int32_t DirSector, std::int32_t Slot);

// -1 when the import should stop.
std::int16_t ImportFolder(Disc& disc, std::int32_t DirSector, const std::string& Folder);

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
