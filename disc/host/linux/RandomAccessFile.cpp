// RandomAccessFile on Linux's file descriptors.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"

namespace sectorbox {
namespace {

int FlagsOf(FileAccess access) {
  switch (access) {
    case FileAccess::kRead:
      // Without waiting: a pipe that nobody writes to would never open. A pipe can't be read at an
      // offset anyway, and to plain files the flag makes no difference.
      return O_RDONLY | O_NONBLOCK;
    case FileAccess::kWrite:
      return O_WRONLY;
    case FileAccess::kCreateOrFallBack:
      break;
  }
  return O_RDWR | O_CREAT;
}

// True for the errors that the host gives when a file may be read but not written.
bool MayStillRead(int errorNumber) {
  return errorNumber == EACCES || errorNumber == EROFS || errorNumber == EPERM;
}

}  // namespace

RandomAccessFile::~RandomAccessFile() {
  if (file_ >= 0) ::close(file_);
}

RandomAccessFile::RandomAccessFile(RandomAccessFile&& other) noexcept
    : path_(std::move(other.path_)),
      file_(std::exchange(other.file_, -1)),
      writeError_(other.writeError_) {}

RandomAccessFile& RandomAccessFile::operator=(RandomAccessFile&& other) noexcept {
  if (this == &other) return *this;
  if (file_ >= 0) ::close(file_);
  path_ = std::move(other.path_);
  file_ = std::exchange(other.file_, -1);
  writeError_ = other.writeError_;
  return *this;
}

void RandomAccessFile::Open(const std::string& path, FileAccess access) {
  if (file_ >= 0) ::close(file_);
  path_ = path;
  writeError_ = 0;
  file_ = ::open(path.c_str(), FlagsOf(access) | O_CLOEXEC, 0666);
  if (file_ < 0 && access == FileAccess::kCreateOrFallBack && MayStillRead(errno)) {
    writeError_ = errno;
    file_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  }
  if (file_ < 0) ThrowHostError(path, errno);
}

std::size_t RandomAccessFile::ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  std::size_t total = 0;
  while (total < bytes.size()) {
    const ssize_t done = ::pread(file_, bytes.data() + total, bytes.size() - total,
                                 static_cast<off_t>(offset + total));
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) ThrowHostError(path_, errno);
    if (done == 0) break;
    total += static_cast<std::size_t>(done);
  }
  return total;
}

void RandomAccessFile::WriteAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t done = ::pwrite(file_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) ThrowHostError(path_, errno);
    // A host that takes nothing and reports no error would be asked for ever.
    if (done == 0) ThrowHostError(path_, EIO);
    offset += static_cast<std::uint64_t>(done);
    bytes = bytes.subspan(static_cast<std::size_t>(done));
  }
}

std::uint64_t RandomAccessFile::Length() const {
  struct stat info {};
  if (::fstat(file_, &info) != 0) ThrowHostError(path_, errno);
  return static_cast<std::uint64_t>(info.st_size);
}

void RandomAccessFile::Sync() {
  if (::fsync(file_) != 0) ThrowHostError(path_, errno);
}

FileIdentity RandomAccessFile::Identity() const {
  struct stat info {};
  if (::fstat(file_, &info) != 0) ThrowHostError(path_, errno);
  return {info.st_dev, info.st_ino};
}

void RandomAccessFile::Close() {
  if (file_ < 0) return;
  const int file = std::exchange(file_, -1);
  if (::close(file) != 0) ThrowHostError(path_, errno);
}

}  // namespace sectorbox
