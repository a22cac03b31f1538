// Linux's part of HostFile.h: files that are written anew and put in place by a rename.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/host/TemporaryFiles.h"

namespace sectorbox {
namespace {

// If Close will wait until the bytes of a long file are on the medium, the host starts to send them
// there while the rest of the file is still being made. It is asked after each part of this many
// bytes, a size that suits a medium.
constexpr std::size_t kSendOnEvery = std::size_t{4} << 20;

bool IsLink(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
}

// Where a link leads, and any other path as it is. A link that leads nowhere is replaced itself.
std::string ResolveTarget(const std::string& path) {
  if (!IsLink(path)) return path;
  char* resolved = ::realpath(path.c_str(), nullptr);
  if (resolved == nullptr) return path;
  std::string result(resolved);
  std::free(resolved);
  return result;
}

// The mode of a new file: what the user's mask leaves of reading and writing for all.
mode_t ModeOfNewFile() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// A device or a pipe can't be replaced by a rename: it is written straight through. Without
// O_NONBLOCK, opening a pipe that nobody reads would never end. path is the one that the user
// knows.
OpenFileNumber OpenStraight(const std::string& target, const std::string& path) {
  OpenFileNumber file(::open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.IsOpen()) ThrowHostError(path, errno);
  // From here on a reader that is slow is waited for.
  const int flags = ::fcntl(file.Get(), F_GETFL);
  if (flags < 0 || ::fcntl(file.Get(), F_SETFL, flags & ~O_NONBLOCK) != 0) {
    ThrowHostError(path, errno);
  }
  return file;
}

// Gives a new file the owner and the access rights of the file that it replaces, or those of a new
// file if former is null. The bytes count more than whose they are, so what can't be kept is no
// error: the result tells it (OutputFile::Unkept).
std::string KeepProperties(int file, const std::string& path, const struct stat* former) {
  std::string unkept;
  const auto lost = [&](const char* what) {
    unkept += (unkept.empty() ? path + ": " : "; ") + what;
  };
  mode_t mode = ModeOfNewFile();
  if (former != nullptr) {
    mode = former->st_mode & 07777;
    if (former->st_nlink > 1) lost("its other names (hard links) keep the old contents");
    if (::fchown(file, former->st_uid, former->st_gid) != 0) {
      lost("its owner could not be kept");
      // Nobody may run the file with our own user's rights because of that.
      mode &= 0777;
    }
  }
  if (::fchmod(file, mode) != 0) lost("its access rights could not be set");
  return unkept;
}

}  // namespace

OutputFile::OutputFile(const std::string& path, OnMedium onMedium, LinkAtPath link)
    : path_(link == LinkAtPath::kFollowed ? ResolveTarget(path) : path), onMedium_(onMedium) {
  struct stat info {};
  // A link that is here still is replaced as if there were nothing.
  replaces_ = !IsLink(path_) && ::stat(path_.c_str(), &info) == 0;
  if (replaces_ && S_ISDIR(info.st_mode)) ThrowHostError(path, EISDIR);
  if (replaces_ && !S_ISREG(info.st_mode)) {
    file_ = OpenStraight(path_, path);
    return;
  }
  if (replaces_ && ::access(path_.c_str(), W_OK) != 0) ThrowHostError(path, errno);
  CreateTemporary(path);
  unkept_ = KeepProperties(file_.Get(), path, replaces_ ? &info : nullptr);
}

void OutputFile::CreateTemporary(const std::string& path) {
  std::string name = JoinHostPath(HostFolderOf(path_), ".sectorbox-XXXXXX");
  const int number = CreateTemporaryFile(name);
  if (number < 0) ThrowHostError(path, errno);
  file_ = OpenFileNumber(number);
  temporary_ = std::move(name);
}

OutputFile::OutputFile(OutputFile&& other) noexcept
    : path_(std::move(other.path_)),
      temporary_(std::move(other.temporary_)),
      unkept_(std::move(other.unkept_)),
      onMedium_(other.onMedium_),
      file_(std::move(other.file_)),
      waiting_(other.waiting_),
      replaces_(other.replaces_),
      endsInHole_(other.endsInHole_) {
  other.temporary_.clear();
}

OutputFile::~OutputFile() {
  (void)file_.Close();
  if (temporary_.empty()) return;
  ::unlink(temporary_.c_str());
  ForgetTemporaryFile(temporary_);
}

void OutputFile::Write(std::span<const std::uint8_t> bytes) {
  if (!bytes.empty()) endsInHole_ = false;
  while (!bytes.empty()) {
    const ssize_t done = ::write(file_.Get(), bytes.data(), bytes.size());
    if (done < 0) {
      if (errno == EINTR) continue;
      ThrowHostError(path_, errno);
    }
    // A host that takes nothing and reports no error would be asked for ever.
    if (done == 0) ThrowHostError(path_, ENOSPC);
    bytes = bytes.subspan(static_cast<std::size_t>(done));
    SendOn(static_cast<std::size_t>(done));
  }
}

bool OutputFile::IsAwaited() const {
  // Before an older file goes, the bytes of the new one are on the medium, so that even a power cut
  // leaves one of the two. A new file, too, is on the medium when the command has ended.
  return !temporary_.empty() && onMedium_ == OnMedium::kAtOnce;
}

void OutputFile::SendOn(std::size_t bytes) {
  if (!IsAwaited()) return;
  waiting_ += bytes;
  if (waiting_ < kSendOnEvery) return;
  waiting_ = 0;
  // This is only a hint to the host. Close waits for the bytes in any case, and Close reports a
  // failure.
  (void)::sync_file_range(file_.Get(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

void OutputFile::Skip(std::uint64_t bytes) {
  if (bytes == 0) return;
  // In a new plain file, places where nothing was written read as zeros. Devices and pipes get
  // zeros written.
  if (temporary_.empty()) {
    const std::vector<std::uint8_t> zeros(65536);
    for (; bytes > 0; bytes -= std::min<std::uint64_t>(bytes, zeros.size())) {
      Write(std::span(zeros).first(std::min<std::uint64_t>(bytes, zeros.size())));
    }
    return;
  }
  if (::lseek(file_.Get(), static_cast<off_t>(bytes), SEEK_CUR) < 0) ThrowHostError(path_, errno);
  endsInHole_ = true;
}

void OutputFile::Close() {
  if (endsInHole_ && ::ftruncate(file_.Get(), ::lseek(file_.Get(), 0, SEEK_CUR)) != 0) {
    ThrowHostError(path_, errno);
  }
  const int syncError = IsAwaited() && ::fsync(file_.Get()) != 0 ? errno : 0;
  const int closeError = file_.Close();
  if (syncError != 0) ThrowHostError(path_, syncError);
  if (closeError != 0) ThrowHostError(path_, closeError);
  if (temporary_.empty()) return;
  const bool awaited = IsAwaited();
  if (::rename(temporary_.c_str(), path_.c_str()) != 0) ThrowHostError(path_, errno);
  ForgetTemporaryFile(temporary_);
  temporary_.clear();
  // Until the folder is on the medium, a power cut may bring the older file back.
  if (awaited) SyncHostFolder(HostFolderOf(path_));
}

}  // namespace sectorbox
