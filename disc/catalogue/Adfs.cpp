#include "disc/catalogue/Adfs.h"

#include "disc/catalogue/Directories.h"
#include "disc/format/Text.h"

namespace sectorbox {

using namespace format;

bool IsDirectory(Disc& disc, std::int32_t dirSector) {
  return DirectoryAt(disc, dirSector).HasMark();
}

std::string GetEntryName(Disc& disc, std::int32_t dirSector, std::int32_t slot) {
  return EntryAt(disc, dirSector, slot).Name();
}

std::string GetEntryAttributes(Disc& disc, std::int32_t dirSector, std::int32_t slot) {
  return EntryAt(disc, dirSector, slot).Letters();
}

std::int32_t FindEntry(Disc& disc, std::int32_t dirSector, std::string_view name,
                       std::int32_t start) {
  return DirectoryAt(disc, dirSector).Find(name, start);
}

std::int32_t GetEntrySector(Disc& disc, std::int32_t dirSector, std::string_view name) {
  const Directory directory = DirectoryAt(disc, dirSector);
  const std::int32_t slot = directory.Find(name);
  return slot < 0 ? -1 : directory.At(slot).Start();
}

std::string GetDirName(Disc& disc, std::int32_t dirSector) {
  const std::string name = DirectoryAt(disc, dirSector).Name();
  return name.empty() && dirSector == kRootSector ? "$" : name;
}

std::string GetDirTitle(Disc& disc, std::int32_t dirSector) {
  return DirectoryAt(disc, dirSector).Title();
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
