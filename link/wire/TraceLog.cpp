#include "link/wire/TraceLog.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "disc/host/HostError.h"

namespace sectorbox {

void TraceLog::Open(const std::string& path) {
  Close();
  file_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (file_ < 0) ThrowHostError(path, errno);
}

void TraceLog::Close() {
  if (file_ >= 0) ::close(file_);
  file_ = -1;
}

void TraceLog::Append(const std::string& text) {
  std::size_t done = 0;
  while (file_ >= 0 && done < text.size()) {
    const ssize_t written = ::write(file_, text.data() + done, text.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    done += static_cast<std::size_t>(written);
  }
}

}  // namespace sectorbox
