#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "disc/change/Outcome.h"
#include "disc/host/HostPath.h"
#include "disc/store/Disc.h"

// The steps of an import that AddFile and ImportFolder share.
namespace sectorbox {

// The host folders that are being imported, the outermost first. With them an import notices a link
// that leads back to one of these folders.
struct ImportWalk {
  std::vector<FileIdentity> Folders;
};

// AddFile and ImportFolder inside a running import.
[[nodiscard]] Outcome AddHostPath(Disc& disc, std::int32_t dirSector, const std::string& hostPath,
                                  ImportWalk& walk);
[[nodiscard]] Outcome AddHostFolder(Disc& disc, std::int32_t dirSector, const std::string& folder,
                                    ImportWalk& walk);

}  // namespace sectorbox
