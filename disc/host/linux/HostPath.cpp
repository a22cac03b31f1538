// Which file a path names, as Linux tells it.

#include "disc/host/HostPath.h"

#include <sys/stat.h>

#include <cerrno>

#include "disc/host/HostError.h"

namespace sectorbox {

FileIdentity RequireIdentity(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) ThrowHostError(path, errno);
  return {info.st_dev, info.st_ino};
}

}  // namespace sectorbox
