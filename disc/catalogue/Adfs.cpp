#include "disc/catalogue/Adfs.h"

#include "disc/catalogue/Directories.h"
#include "disc/format/Text.h"

namespace sectorbox {

using namespace format;

bool IsDirectory(Disc& disc, std::int32_t DirSector) {
  return DirectoryAt(disc, DirSector).HasMark();
}

std::string GetEntryName(Disc& disc, std::int32_t DirSector, std::int32_t Slot) {
  return DirectoryAt(disc, DirSector).At(Slot).Name();
}

std::string GetEntryAttributes(Disc& disc, std::int32_t DirSector, std::int32_t Slot) {
  return DirectoryAt(disc, DirSector).At(Slot).Letters();
}

std::int32_t FindEntry(Disc& disc, std::int32_t DirSector, std::string_view Name) {
  return DirectoryAt(disc, DirSector).Find(Name);
}

std::int32_t GetEntrySector(Disc& disc, std::int32_t DirSector, std::string_view Name) {
  const Directory directory = DirectoryAt(disc, DirSector);
  const std::int32_t slot = directory.Find(Name);
  return slot < 0 ? -1 : directory.At(slot).Start();
}

std::string GetDirName(Disc& disc, std::int32_t DirSector) {
  const std::string name = DirectoryAt(disc, DirSector).Name();
  return name.empty() && DirSector == kRootSector ? "$" : name;
}

std::string GetDirTitle(Disc& disc, std::int32_t DirSector) {
  return DirectoryAt(disc, DirSector).Title();
}

void ReadFreeMap(Disc& disc) {
  KeepFreeRuns(disc, ReadMap(disc).Runs());
}

void ShowFreeSpace(Disc& disc) {
  const std::int64_t free = FreeSectors(disc);
  const std::int64_t total = MapDiscSize(disc);
  disc.Host.SetStatus(SignedDecimal(free * kSectorSize) + " Bytes Free, " +
                          SignedDecimal((total - free) * kSectorSize) + " Bytes Used",
                      false);
}

}  // namespace sectorbox
