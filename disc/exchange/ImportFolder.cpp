#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

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
std::vector<std::string> ListFolder(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> paths;
  std::filesystem::directory_iterator entries(folder, error);
  for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
    paths.push_back(folder + "/" + entries->path().filename().string());
  }
  if (error) ThrowHostError(folder, error.value());
  std::sort(paths.begin(), paths.end());
  return paths;
}

// Why a path can't go onto a disc: it is neither a file nor a folder. Empty if it can.
std::string WhyPassedOver(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return std::strerror(errno);
  return S_ISREG(info.st_mode) || S_ISDIR(info.st_mode) ? "" : "Not a regular file";
}

std::pair<std::uint64_t, std::uint64_t> IdentityOf(const std::string& folder) {
  struct stat info {};
  if (::stat(folder.c_str(), &info) != 0) ThrowHostError(folder, errno);
  return {info.st_dev, info.st_ino};
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

std::string ResolveHostPath(const std::string& path) {
  std::error_code error;
  // An empty path has no absolute form, nor has any in a current folder that is gone.
  std::string full = std::filesystem::absolute(path, error).string();
  if (error) ThrowHostError(path, path.empty() ? ENOENT : error.value());
  const auto end = full.find_last_not_of('/');
  full.resize(end == std::string::npos ? 1 : end + 1);
  if (!full.ends_with("/.") && !full.ends_with("/..")) return full;
  const auto real = std::filesystem::canonical(full, error);
  if (error) ThrowHostError(path, error.value());
  return real.string();
}

Outcome AddHostFolder(Disc& disc, std::int32_t DirSector, const std::string& Folder,
                      ImportWalk& walk) {
  const auto identity = IdentityOf(Folder);
  if (std::find(walk.Folders.begin(), walk.Folders.end(), identity) != walk.Folders.end()) {
    disc.Host.Note(Folder + ": leads back to a folder that is being added");
    return Outcome::kDone;
  }
  // A tree this deep could be made, but no walk over the disc would reach its end.
  if (walk.Folders.size() + 2 >= kMaxWalkDepth) ThrowHostError(Folder, ENAMETOOLONG);
  const std::vector<std::string> paths = ListFolder(Folder);
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
