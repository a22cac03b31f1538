#include "disc/host/TemporaryFiles.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace sectorbox {
namespace {

// A path in memory that is there before any signal comes. A path that is too long, or one more file
// than there are places, isn't listed: the file is then only left behind by a signal.
struct Place {
  std::array<char, 4096> Path{};
  std::atomic<bool> Used = false;
};
static_assert(std::atomic<bool>::is_always_lock_free);  // a signal handler reads it

std::array<Place, 16> places;

void List(const std::string& path) {
  for (Place& place : places) {
    if (place.Used || path.size() >= place.Path.size()) continue;
    std::memcpy(place.Path.data(), path.c_str(), path.size() + 1);
    place.Used = true;
    return;
  }
}

// While it lives no signal comes to this thread.
class NoSignals {
 public:
  NoSignals() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &former_);
  }
  ~NoSignals() { ::pthread_sigmask(SIG_SETMASK, &former_, nullptr); }
  NoSignals(const NoSignals&) = delete;
  NoSignals& operator=(const NoSignals&) = delete;

 private:
  sigset_t former_{};
};

}  // namespace

int CreateTemporaryFile(std::string& pattern) {
  const NoSignals between;  // a signal right after the file is made would miss it
  const int file = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (file >= 0) List(pattern);
  return file;
}

void ForgetTemporaryFile(const std::string& path) {
  for (Place& place : places) {
    if (place.Used && path == place.Path.data()) place.Used = false;
  }
}

void RemoveTemporaryFiles() noexcept {
  for (const Place& place : places) {
    if (place.Used) ::unlink(place.Path.data());
  }
}

}  // namespace sectorbox
