#include "disc/store/OpenDisc.h"

#include "disc/medium/Companion.h"

namespace sectorbox {
namespace {

// True if both paths name the same file, or the same place in which no file is yet.
bool NameSamePlace(const std::string& one, const std::string& other) {
  if (one.empty() || other.empty()) return false;
  if (NameSameFile(one, other)) return true;
  return HostBaseName(one) == HostBaseName(other) &&
         NameSameFile(HostFolderOf(one), HostFolderOf(other));
}

bool IsOpenImage(const Disc& disc, const std::string& path) {
  if (disc.TheDisc.IsOpenMedium(path)) return true;
  // After a save under another name both files are the disc's: the store still has the former one.
  return NameSamePlace(path, disc.ImageName) || NameSamePlace(path, disc.TheDisc.FileName());
}

bool IsOpenCompanion(const Disc& disc, const std::string& path) {
  if (!disc.TheDisc.Kind().HasCompanion) return false;
  for (const std::string& image : {disc.ImageName, disc.TheDisc.FileName()}) {
    const std::string companion = CompanionName(image);
    if (companion != image && NameSamePlace(path, companion)) return true;
  }
  return false;
}

}  // namespace

OpenDiscError::OpenDiscError(const std::string& path)
    : HostError(path, "Is The Open Disc"), message_(HostBaseName(path) + " Is The Open Disc") {}

void RefuseOpenImage(const Disc& disc, const std::string& path) {
  if (IsOpenImage(disc, path)) throw OpenDiscError(path);
}

void RefuseOpenCompanion(const Disc& disc, const std::string& path) {
  if (IsOpenCompanion(disc, path)) throw OpenDiscError(path);
}

void RefuseOpenDisc(const Disc& disc, const std::string& path) {
  RefuseOpenImage(disc, path);
  RefuseOpenCompanion(disc, path);
}

OutputFile CreateExportFile(const Disc& disc, const std::string& path) {
  RefuseOpenDisc(disc, path);
  return CreateOutputFile(path, OnMedium::kLater, LinkAtPath::kReplaced);
}

}  // namespace sectorbox
