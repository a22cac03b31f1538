#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "disc/change/Outcome.h"
#include "disc/store/Disc.h"

// What AddFile and ImportFolder share while one import runs.
namespace sectorbox {

// The host folders that are being imported, outermost first, by device and inode: a link that leads
// back to one of them is noticed here.
struct ImportWalk {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> Folders;
};

// AddFile and ImportFolder inside a running import.
[[nodiscard]] Outcome AddHostPath(Disc& disc, std::int32_t DirSector, const std::string& HostPath,
                                  ImportWalk& walk);
[[nodiscard]] Outcome AddHostFolder(Disc& disc, std::int32_t DirSector, const std::string& Folder,
                                    ImportWalk& walk);

// The path from the root of the host on, without "/", "/." or "/.." at its end, so that its last
// part is the name that the file or folder has.
std::string ResolveHostPath(const std::string& path);

}  // namespace sectorbox
