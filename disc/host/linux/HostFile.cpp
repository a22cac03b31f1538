// Linux's part of HostFile.h: files that are open, and files that grow.

#include "disc/host/HostFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <memory>

#include "disc/host/HostError.h"
#include "disc/host/HostPath.h"
#include "disc/host/TemporaryFiles.h"

namespace sectorbox {
namespace {

constexpr const char* kNote = "user.sectorbox.note";

int FlagsOf(FileAccess access) {
  switch (access) {
    case FileAccess::kRead:
      // O_NONBLOCK: without it, opening a pipe that nobody writes to would never end. A pipe can't
      // be read at an offset anyway, and for plain files the flag makes no difference.
      return O_RDONLY | O_NONBLOCK;
    case FileAccess::kWrite:
      return O_WRONLY;
    case FileAccess::kCreate:
    case FileAccess::kCreateOrFallBack:
      break;
  }
  return O_RDWR | O_CREAT;
}

// The number of the opened file, or -1 with errno.
int OpenPath(const std::string& path, int flags) {
  return ::open(path.c_str(), flags | O_CLOEXEC, 0666);
}

// True for the errors that the host gives when a file may be read but not written.
bool MayStillRead(int errorNumber) {
  return errorNumber == EACCES || errorNumber == EROFS || errorNumber == EPERM;
}

// How many bytes a write has taken; 0 if a signal interrupted it. If the host takes nothing and
// reports no error, that counts as a full disc, since the caller would ask for ever.
std::size_t BytesTaken(ssize_t done, const std::string& path) {
  if (done > 0) return static_cast<std::size_t>(done);
  if (done == 0) ThrowHostError(path, ENOSPC);
  if (errno != EINTR) ThrowHostError(path, errno);
  return 0;
}

struct stat StatOf(const OpenFileNumber& file, const std::string& path) {
  struct stat info {};
  if (::fstat(file.Get(), &info) != 0) ThrowHostError(path, errno);
  return info;
}

}  // namespace

int OpenFileNumber::Close() {
  if (!IsOpen()) return 0;
  return ::close(Release()) == 0 ? 0 : errno;
}

void RandomAccessFile::Open(const std::string& path, FileAccess access) {
  (void)file_.Close();
  path_ = path;
  writeError_ = 0;
  int number = OpenPath(path, FlagsOf(access));
  if (number < 0 && access == FileAccess::kCreateOrFallBack && MayStillRead(errno)) {
    writeError_ = errno;
    number = OpenPath(path, O_RDONLY);
  }
  if (number < 0) ThrowHostError(path, errno);
  file_ = OpenFileNumber(number);
}

void RandomAccessFile::OpenNameless(const std::string& folder) {
  (void)file_.Close();
  path_ = folder;
  writeError_ = 0;
  std::string name = JoinHostPath(folder, "sectorbox-XXXXXX");
  OpenFileNumber file(CreateTemporaryFile(name));
  if (!file.IsOpen()) ThrowHostError(folder, errno);
  const int error = ::unlink(name.c_str()) == 0 ? 0 : errno;
  ForgetTemporaryFile(name);
  if (error != 0) ThrowHostError(folder, error);
  file_ = std::move(file);
}

void RandomAccessFile::Cut(std::uint64_t length) {
  if (Length() <= length) return;
  if (::ftruncate(file_.Get(), static_cast<off_t>(length)) != 0) ThrowHostError(path_, errno);
}

std::size_t RandomAccessFile::ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  std::size_t total = 0;
  while (total < bytes.size()) {
    const ssize_t done = ::pread(file_.Get(), bytes.data() + total, bytes.size() - total,
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
    const std::size_t done = BytesTaken(
        ::pwrite(file_.Get(), bytes.data(), bytes.size(), static_cast<off_t>(offset)), path_);
    offset += done;
    bytes = bytes.subspan(done);
  }
}

std::uint64_t RandomAccessFile::Length() const {
  return static_cast<std::uint64_t>(StatOf(file_, path_).st_size);
}

void RandomAccessFile::Sync() {
  if (::fsync(file_.Get()) != 0) ThrowHostError(path_, errno);
}

FileIdentity RandomAccessFile::Identity() const {
  const struct stat info = StatOf(file_, path_);
  return {info.st_dev, info.st_ino};
}

void RandomAccessFile::SetNote(const std::string& text) {
  if (text.empty()) {
    (void)::fremovexattr(file_.Get(), kNote);
  } else {
    (void)::fsetxattr(file_.Get(), kNote, text.data(), text.size(), 0);
  }
}

std::string RandomAccessFile::Note() const {
  std::array<char, PATH_MAX> text{};
  const ssize_t size = ::fgetxattr(file_.Get(), kNote, text.data(), text.size());
  return size > 0 ? std::string(text.data(), static_cast<std::size_t>(size)) : std::string();
}

void RandomAccessFile::Close() {
  if (const int error = file_.Close(); error != 0) ThrowHostError(path_, error);
}

bool HostFolderIsWritable(const std::string& folder) {
  return ::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

// The standard library's walk over a folder ends the program when memory runs out.
std::vector<std::string> ListHostFolder(const std::string& folder) {
  struct CloseFolder {
    void operator()(DIR* opened) const { ::closedir(opened); }
  };
  const std::unique_ptr<DIR, CloseFolder> opened(::opendir(folder.c_str()));
  if (opened == nullptr) ThrowHostError(folder, errno);
  std::vector<std::string> names;
  for (;;) {
    errno = 0;
    const dirent* entry = ::readdir(opened.get());
    if (entry == nullptr) break;
    const char* name = entry->d_name;
    if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) names.emplace_back(name);
  }
  if (errno != 0) ThrowHostError(folder, errno);
  return names;
}

void SyncHostFolder(const std::string& folder) {
  OpenFileNumber opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A folder that may be written but not read can't be opened.
  if (!opened.IsOpen() && errno == EACCES) return;
  if (!opened.IsOpen()) ThrowHostError(folder, errno);
  if (::fsync(opened.Get()) == 0 || errno == EINVAL || errno == EROFS) return;
  ThrowHostError(folder, errno);
}

void AppendedFile::Open(const std::string& path) {
  (void)file_.Close();
  path_ = path;
  const int number = OpenPath(path, O_WRONLY | O_CREAT | O_APPEND);
  if (number < 0) ThrowHostError(path, errno);
  file_ = OpenFileNumber(number);
}

void AppendedFile::Append(const std::string& text) {
  for (std::size_t done = 0; done < text.size();) {
    done += BytesTaken(::write(file_.Get(), text.data() + done, text.size() - done), path_);
  }
}

}  // namespace sectorbox
