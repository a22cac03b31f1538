#include "disc/exchange/HostImport.h"

#include <algorithm>

#include "disc/exchange/Sidecar.h"
#include "disc/format/Names.h"

namespace sectorbox {

ImportWalk::Names* ImportWalk::NamesIn(std::int32_t dirSector) {
  if (stale_ || compactions_ != disc_.Compactions) {
    bySector_.clear();
    for (const auto& names : directories_) bySector_[names->Sector] = names.get();
    stale_ = false;
    compactions_ = disc_.Compactions;
  }
  const auto found = bySector_.find(dirSector);
  return found == bySector_.end() ? nullptr : found->second;
}

const std::string* ImportWalk::FindAdded(std::int32_t dirSector, const std::string& name) {
  const Names* names = NamesIn(dirSector);
  if (names == nullptr) return nullptr;
  const auto found = names->HostPaths.find(FoldName(name));
  return found == names->HostPaths.end() ? nullptr : &found->second;
}

void ImportWalk::KeepAdded(std::int32_t dirSector, const std::string& name,
                           const std::string& hostPath) {
  if (NamesIn(dirSector) == nullptr) (void)Remember(dirSector);
  NamesIn(dirSector)->HostPaths[FoldName(name)] = hostPath;
}

std::size_t ImportWalk::Remember(std::int32_t dirSector) {
  directories_.push_back(std::make_unique<Names>(disc_, dirSector));
  stale_ = true;
  return directories_.size();
}

void ImportWalk::ForgetAfter(std::size_t count) {
  directories_.resize(std::min(count, directories_.size()));
  stale_ = true;
}

std::size_t CountEntries(const std::vector<std::string>& paths, std::size_t first) {
  const auto from = paths.begin() + static_cast<std::ptrdiff_t>(std::min(first, paths.size()));
  return static_cast<std::size_t>(std::count_if(
      from, paths.end(), [](const std::string& path) { return !path.ends_with(kSidecarEnding); }));
}

void TellNotAdded(Disc& disc, const ImportWalk& walk, std::size_t notAdded) {
  if (notAdded == 0 || walk.Added + walk.NotAdded < 2) return;
  const std::string count = notAdded == 1 ? "1 entry was not added"
                                          : std::to_string(notAdded) + " entries were not added";
  disc.Host.NoteLeftOut(count + ": " + walk.Refused + " was refused");
}

}  // namespace sectorbox
