#include <algorithm>
#include <optional>
#include <system_error>

#include "disc/catalogue/Directories.h"
#include "disc/change/Change.h"
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

// The full paths of everything in a folder, in rising order of their bytes. No path is left out,
// even if there are more than a directory can hold: the user then gets the message that it is full.
std::vector<std::string> PathsInFolder(const std::string& folder) {
  std::vector<std::string> paths;
  for (const std::string& name : ListHostFolder(folder))
    paths.push_back(JoinHostPath(folder, name));
  std::sort(paths.begin(), paths.end());
  return paths;
}

// The reason why a path can't be added: it is neither a file nor a folder, or the host can't tell.
// Empty if it can be added.
std::string WhyPassedOver(const std::string& path) {
  try {
    return KindOfHostFile(path) == HostFileKind::kOther ? "Not a regular file" : "";
  } catch (const HostError& error) {
    return error.SystemText();
  }
}

std::int64_t BytesBelow(const std::vector<std::string>& paths, int depth) {
  constexpr int kDeepest = 16;
  std::int64_t bytes = 0;
  for (const std::string& path : paths) {
    try {
      if (KindOfHostFile(path) == HostFileKind::kPlain) {
        bytes += static_cast<std::int64_t>(HostFileLength(path));
      } else if (KindOfHostFile(path) == HostFileKind::kFolder && depth < kDeepest) {
        bytes += BytesBelow(PathsInFolder(path), depth + 1);
      }
    } catch (const HostError&) {
      continue;
    }
  }
  return bytes;
}

Outcome AddContents(Disc& disc, std::int32_t dirSector, const std::vector<std::string>& paths,
                    ImportWalk& walk) {
  const TrackedSector dir(disc, dirSector);
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const std::string& path = paths[i];
    const std::string why = WhyPassedOver(path);
    if (!why.empty()) {
      disc.Host.Note(path + ": " + why);
      continue;
    }
    const Outcome outcome = AddHostPath(disc, dir, path, walk);
    if (outcome != Outcome::kDone) {
      walk.NotAdded += CountEntries(paths, i + 1);
      return outcome;
    }
    Change::Step(disc);
  }
  return Outcome::kDone;
}

// The new directory of a host folder; none if it was refused.
std::optional<std::int32_t> MakeFor(Disc& disc, std::int32_t dirSector, const std::string& name,
                                    const std::string& folder) {
  if (!name.empty()) return NewDirectory(disc, dirSector, name);
  (void)Refuse(disc, IllegalNameMessage(HostBaseName(folder)));
  return std::nullopt;
}

}  // namespace

Outcome AddHostFolder(Disc& disc, std::int32_t dirSector, const std::string& folder,
                      ImportWalk& walk) {
  const auto identity = RequireIdentity(folder);
  if (std::find(walk.Folders.begin(), walk.Folders.end(), identity) != walk.Folders.end()) {
    disc.Host.Note(folder + ": leads back to a folder that is being added");
    return Outcome::kDone;
  }
  // A deeper tree could be made, but no walk over the disc would reach its lowest directories.
  if (walk.Folders.size() + 2 >= kMaxWalkDepth) {
    ThrowHostError(folder, std::make_error_code(std::errc::filename_too_long));
  }
  const std::vector<std::string> paths = PathsInFolder(folder);
  std::string name = HostBaseName(folder);
  if (const auto line = ReadSidecarLine(folder)) name = ParseFolderSidecar(*line).value_or(name);
  const auto made = MakeFor(disc, dirSector, name, folder);
  if (!made) {
    ++walk.NotAdded;
    walk.Refused = folder;
    return Outcome::kRefused;
  }
  ++walk.Added;
  walk.Folders.push_back(identity);
  const std::size_t remembered = walk.Remember(*made);
  const Outcome result = AddContents(disc, *made, paths, walk);
  // The names of this directory stay: a file B.FOO beside a folder B goes into B too.
  walk.ForgetAfter(remembered);
  walk.Folders.pop_back();
  return result;
}

Outcome ImportFolder(Disc& disc, std::int32_t dirSector, const std::string& folder) {
  return InChange(disc, [&] {
    ImportWalk walk(disc);
    const Outcome outcome = AddHostFolder(disc, dirSector, ResolveHostPath(folder), walk);
    if (outcome != Outcome::kDone) TellNotAdded(disc, walk, walk.NotAdded);
    return outcome;
  });
}

std::int64_t BytesToAdd(const std::vector<std::string>& paths) {
  return BytesBelow(paths, 0);
}

}  // namespace sectorbox
