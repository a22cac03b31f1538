// What paths stand for, as Linux tells it.

#include "disc/host/HostPath.h"

#include <sys/stat.h>

namespace sectorbox {

std::optional<FileIdentity> IdentityOfPath(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return std::nullopt;
  return FileIdentity{info.st_dev, info.st_ino};
}

}  // namespace sectorbox
