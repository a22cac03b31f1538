#include "disc/host/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <thread>

namespace sectorbox {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kRest{20};

bool IsSameFile(int file, const std::string& path) {
  struct stat own {};
  struct stat other {};
  return ::fstat(file, &own) == 0 && ::stat(path.c_str(), &other) == 0 &&
         own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

}  // namespace

bool FileLock::Take(const std::string& path, std::chrono::milliseconds patience) {
  Release();
  const auto end = Clock::now() + patience;
  for (;;) {
    // O_NONBLOCK: opening a pipe must not wait for a writer.
    OpenFileNumber file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.IsOpen()) return true;
    if (::flock(file.Get(), LOCK_EX | LOCK_NB) == 0) {
      // While we waited, the file may have been replaced by another one, which has its own lock.
      if (IsSameFile(file.Get(), path)) {
        file_ = std::move(file);
        return true;
      }
      continue;
    }
    if (errno != EWOULDBLOCK && errno != EINTR) return true;
    if (Clock::now() >= end) return false;
    std::this_thread::sleep_for(kRest);
  }
}

bool FileLock::IsOn(const std::string& path) const {
  return file_.IsOpen() && IsSameFile(file_.Get(), path);
}

}  // namespace sectorbox
