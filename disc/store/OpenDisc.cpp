#include "disc/store/OpenDisc.h"

namespace sectorbox {
namespace {

// True if both paths name the same file, or the same place in which no file is yet.
bool NameSamePlace(const std::string& one, const std::string& other) {
  if (one.empty() || other.empty()) return false;
  if (NameSameFile(one, other)) return true;
  return HostBaseName(one) == HostBaseName(other) &&
         NameSameFile(HostFolderOf(one), HostFolderOf(other));
}

bool IsOpenDisc(const Disc& disc, const std::string& path) {
  if (disc.TheDisc.IsOpenMedium(path)) return true;
  // After a save under another name both files are the disc's: the store still has the former one.
  return NameSamePlace(path, disc.ImageName) || NameSamePlace(path, disc.TheDisc.FileName());
}

}  // namespace

OpenDiscError::OpenDiscError(const std::string& path)
    : HostError(path, "Is The Open Disc"), message_(HostBaseName(path) + " Is The Open Disc") {}

void RefuseOpenDisc(const Disc& disc, const std::string& path) {
  if (IsOpenDisc(disc, path)) throw OpenDiscError(path);
}

OutputFile CreateExportFile(const Disc& disc, const std::string& path) {
  RefuseOpenDisc(disc, path);
  return CreateOutputFile(path, OnMedium::kLater, LinkAtPath::kReplaced);
}

}  // namespace sectorbox
