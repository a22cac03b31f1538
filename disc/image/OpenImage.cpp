#include "disc/image/OpenImage.h"

#include <vector>

#include "disc/ask/BusyPointer.h"
#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/Companion.h"
#include "disc/image/Session.h"

namespace sectorbox {
namespace {

using namespace format;

// Geometry that is assumed of a hard disc image without a companion.
constexpr std::int32_t kHardDiscHeads = 4;
constexpr std::int32_t kHardDiscSectors = 33;

constexpr std::int32_t k40Tracks = 640;
constexpr std::int32_t k80Tracks = 1280;
constexpr std::int32_t kDoubleSided = 2560;

// The size field in the first sector of an image file; what a short file lacks counts as zero.
std::int32_t SizeField(const std::string& fileName) {
  std::vector<std::uint8_t> sector = ReadHostFile(fileName, 0, kSectorSize);
  sector.resize(kSectorSize);
  return sector[kMapDiscSize] | sector[kMapDiscSize + 1] << 8 | sector[kMapDiscSize + 2] << 16;
}

bool IsNamedAdl(const std::string& fileName) {
  return fileName.size() >= 4 && UpperCase(fileName.substr(fileName.size() - 4)) == ".ADL";
}

void OpenByKind(Disc& disc, const std::string& fileName, std::int32_t size) {
  // Floppies are known by their size, and the name counts for double-sided ones only: anything
  // else, ADFS or not, is taken for a hard disc.
  if (size == kDoubleSided || IsNamedAdl(fileName)) {
    OpenAdl(disc, fileName, 80, 2, kFloppySectors);
  } else if (size == k80Tracks) {
    OpenAdf(disc, fileName, 80, 1, kFloppySectors);
  } else if (size == k40Tracks) {
    OpenAdf(disc, fileName, 40, 1, kFloppySectors);
  } else {
    OpenDat(disc, fileName);
  }
}

CompanionGeometry GeometryOf(const std::string& fileName) {
  if (const auto companion = ReadCompanion(fileName)) return *companion;
  const std::uint64_t sectors = HostFileLength(fileName) / kSectorSize;
  const auto tracks = sectors / kHardDiscHeads / kHardDiscSectors + 1;
  return {static_cast<std::int32_t>(tracks), kHardDiscHeads};
}

}  // namespace

void OpenImage(Disc& disc, const std::string& FileName) {
  if (disc.ImageChanged) QuerySaveChanges(disc);
  // Read before anything is given up: a file that can't be read leaves the open disc and its name.
  const std::int32_t size = SizeField(FileName);
  const std::string former = disc.ImageName;
  disc.ImageName = FileName;
  disc.Host.StoreRoot(FileName);
  disc.Host.EnableDiscEntries();
  try {
    OpenByKind(disc, FileName, size);
  } catch (const HostError&) {
    disc.ImageName = former;
    throw;
  }
  disc.Host.RebuildTree();
}

void OpenAdf(Disc& disc, const std::string& FileName, std::int32_t Tracks, std::int32_t Heads,
             std::int32_t Sectors) {
  disc.TheDisc.OpenFile(FileName, kAdf, Tracks, Heads, Sectors);
  ReadFreeMap(disc);
}

void OpenAdl(Disc& disc, const std::string& FileName, std::int32_t Tracks, std::int32_t Heads,
             std::int32_t Sectors) {
  disc.TheDisc.OpenFile(FileName, kAdl, Tracks, Heads, Sectors);
  ReadFreeMap(disc);
}

void OpenDat(Disc& disc, const std::string& FileName) {
  const BusyPointer busy(disc.Host);
  const CompanionGeometry geometry = GeometryOf(FileName);
  disc.TheDisc.OpenFile(FileName, kDat, geometry.Tracks, geometry.Heads, kHardDiscSectors);
  disc.DiscTracks = geometry.Tracks;
  disc.DiscHeads = geometry.Heads;
  ReadFreeMap(disc);
}

void OpenCFPartition(Disc& disc, const std::string& Name) {
  const BusyPointer busy(disc.Host);
  const std::int32_t partition = Name.empty() ? 0 : Name.back() - '0';
  disc.TheDisc.OpenFile(Name, kCF, partition, 0, 0);
  ReadFreeMap(disc);
}

}  // namespace sectorbox
