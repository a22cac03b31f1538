#include <algorithm>
#include <cerrno>

#include "disc/catalogue/Directories.h"
#include "disc/change/DirectoryEdit.h"
#include "disc/change/Mutation.h"
#include "disc/exchange/HostExchange.h"
#include "disc/exchange/HostImport.h"
#include "disc/exchange/Sidecar.h"
#include "disc/format/Names.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/store/TrackedSector.h"

namespace sectorbox {
namespace {

// Full paths of all that is in a folder, in ascending order of their names by byte. All of it, in
// any number: a directory that is full says so, and nothing is left out without a word.
std::vector<std::string> PathsInFolder(const std::string& folder) {
  std::vector<std::string> paths;
  for (const std::string& name : ListHostFolder(folder))
    paths.push_back(JoinHostPath(folder, name));
  std::sort(paths.begin(), paths.end());
  return paths;
}

// Why a path can't go onto a disc: it is neither a file nor a folder. Empty if it can.
std::string WhyPassedOver(const std::string& path) {
  try {
    return KindOfHostFile(path) == HostFileKind::kOther ? "Not a regular file" : "";
  } catch (const HostError& error) {
    return error.SystemText();
  }
}

Outcome AddContents(Disc& disc, std::int32_t DirSector, const std::vector<std::string>& paths,
                    ImportWalk& walk) {
  const TrackedSector dir(disc, DirSector);
  for (const std::string& path : paths) {
    const std::string why = WhyPassedOver(path);
    if (!why.empty()) {
      disc.Host.Note(path + ": " + why);
      continue;
    }
    const Outcome outcome = AddHostPath(disc, dir, path, walk);
    if (outcome != Outcome::kDone) return outcome;
  }
  return Outcome::kDone;
}

}  // namespace

Outcome AddHostFolder(Disc& disc, std::int32_t DirSector, const std::string& Folder,
                      ImportWalk& walk) {
  const auto identity = RequireIdentity(Folder);
  if (std::find(walk.Folders.begin(), walk.Folders.end(), identity) != walk.Folders.end()) {
    disc.Host.Note(Folder + ": leads back to a folder that is being added");
    return Outcome::kDone;
  }
  // A tree this deep could be made, but no walk over the disc would reach its end.
  if (walk.Folders.size() + 2 >= kMaxWalkDepth) ThrowHostError(Folder, ENAMETOOLONG);
  const std::vector<std::string> paths = PathsInFolder(Folder);
  std::string name = HostBaseName(Folder);
  if (const auto line = ReadSidecarLine(Folder)) name = ParseFolderSidecar(*line).value_or(name);
  if (name.empty()) return Refuse(disc, IllegalNameMessage(HostBaseName(Folder)));
  const auto made = NewDirectory(disc, DirSector, name);
  if (!made) return Outcome::kRefused;
  walk.Folders.push_back(identity);
  const Outcome result = AddContents(disc, *made, paths, walk);
  walk.Folders.pop_back();
  return result;
}

// The process's current folder plays no part in all this, and so is never changed.
Outcome ImportFolder(Disc& disc, std::int32_t DirSector, const std::string& Folder) {
  ImportWalk walk;
  return AddHostFolder(disc, DirSector, ResolveHostPath(Folder), walk);
}

}  // namespace sectorbox
