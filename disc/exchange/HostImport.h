#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "disc/change/Outcome.h"
#include "disc/host/HostPath.h"
#include "disc/store/Disc.h"

// What AddFile and ImportFolder share while one import runs.
namespace sectorbox {

// The host folders that are being imported, outermost first: a link that leads back to one of them
// is noticed here.
struct ImportWalk {
  std::vector<FileIdentity> Folders;
};

// AddFile and ImportFolder inside a running import.
[[nodiscard]] Outcome AddHostPath(Disc& disc, std::int32_t DirSector, const std::string& HostPath,
                                  ImportWalk& walk);
[[nodiscard]] Outcome AddHostFolder(Disc& disc, std::int32_t DirSector, const std::string& Folder,
                                    ImportWalk& walk);

}  // namespace sectorbox
