#include "disc/image/OpenImage.h"

#include <optional>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/Session.h"

namespace sectorbox {
namespace {

void OpenAs(Disc& disc, const MediumKind& kind, const std::string& fileName,
            const Geometry& shape) {
  disc.TheDisc.OpenFile(fileName, kind.Type, shape.Tracks, shape.Heads, shape.Sectors);
  if (kind.HasCompanion) {
    disc.DiscTracks = shape.Tracks;
    disc.DiscHeads = shape.Heads;
  }
  ReadFreeMap(disc);
}

void OpenByLook(Disc& disc, const ImageLook& look) {
  for (const MediumKind& kind : MediumKinds()) {
    if (kind.Recognise == nullptr) continue;
    std::optional<BusyPointer> busy;
    if (kind.HasCompanion) busy.emplace(disc.Host);
    const auto shape = kind.Recognise(look);
    if (!shape) continue;
    OpenAs(disc, kind, look.Name, *shape);
    return;
  }
}

}  // namespace

void OpenImage(Disc& disc, const std::string& fileName) {
  if (disc.ImageChanged) QuerySaveChanges(disc);
  // The file is read before anything changes: if it can't be read, the open disc and its name stay.
  const std::int32_t size = MapSectors(ReadHostFile(fileName, 0, format::kMapSize)).DiscSize();
  const std::string former = disc.ImageName;
  disc.ImageName = fileName;
  disc.Host.StoreRoot(fileName);
  disc.Host.EnableDiscEntries();
  try {
    OpenByLook(disc, {fileName, size});
  } catch (const HostError&) {
    disc.ImageName = former;
    throw;
  }
  disc.Host.RebuildTree();
}

void OpenCFPartition(Disc& disc, const std::string& name) {
  const BusyPointer busy(disc.Host);
  const std::int32_t partition = name.empty() ? 0 : name.back() - '0';
  disc.TheDisc.OpenFile(name, kCF, partition, 0, 0);
  ReadFreeMap(disc);
}

}  // namespace sectorbox
