// Which file a path names, as Linux tells it.

#include "disc/host/HostPath.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

#include "disc/host/HostError.h"

namespace sectorbox {

std::string HostStateFolder() {
  const char* state = std::getenv("XDG_STATE_HOME");
  // A relative path there counts as none.
  if (state != nullptr && state[0] == '/') return JoinHostPath(state, "sectorbox");
  const char* home = std::getenv("HOME");
  if (home == nullptr || home[0] != '/') throw HostError("HOME", "No such folder");
  return JoinHostPath(home, ".local/state/sectorbox");
}

std::optional<FileStamp> StampOfPath(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return std::nullopt;
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return FileStamp{{info.st_dev, info.st_ino},
                   static_cast<std::uint64_t>(info.st_size),
                   info.st_mtim.tv_sec * kNanoseconds + info.st_mtim.tv_nsec};
}

FileIdentity RequireIdentity(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) ThrowHostError(path, errno);
  return {info.st_dev, info.st_ino};
}

}  // namespace sectorbox
