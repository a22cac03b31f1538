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

}  // namespace

OutputFile::OutputFile(const std::string& path, OnMedium onMedium, LinkAtPath link)
    : path_(link == LinkAtPath::kFollowed ? ResolveTarget(path) : path), onMedium_(onMedium) {
  struct stat info {};
  // A link that is here still is replaced as if there were nothing.
  replaces_ = !IsLink(path_) && ::stat(path_.c_str(), &info) == 0;
  if (replaces_ && S_ISDIR(info.st_mode)) ThrowHostError(path, EISDIR);
  if (replaces_ && !S_ISREG(info.st_mode)) {
    // A device or a pipe can't be replaced by a rename: it is written straight through.
    file_ = OpenFileNumber(::open(path_.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file_.IsOpen()) ThrowHostError(path, errno);
    return;
  }
  if (replaces_ && ::access(path_.c_str(), W_OK) != 0) ThrowHostError(path, errno);
  CreateTemporary(path);
  if (replaces_) (void)!::fchown(file_.Get(), info.st_uid, info.st_gid);
  ::fchmod(file_.Get(), replaces_ ? (info.st_mode & 07777) : ModeOfNewFile());
}

void OutputFile::CreateTemporary(const std::string& path) {
  std::string name = JoinHostPath(HostFolderOf(path_), ".sectorbox-XXXXXX");
  const int number = ::mkostemp(name.data(), O_CLOEXEC);
  if (number < 0) ThrowHostError(path, errno);
  file_ = OpenFileNumber(number);
  temporary_ = std::move(name);
}

OutputFile::OutputFile(OutputFile&& other) noexcept
    : path_(std::move(other.path_)),
      temporary_(std::move(other.temporary_)),
      onMedium_(other.onMedium_),
      file_(std::move(other.file_)),
      waiting_(other.waiting_),
      replaces_(other.replaces_),
      endsInHole_(other.endsInHole_) {
  other.temporary_.clear();
}

OutputFile::~OutputFile() {
  (void)file_.Close();
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
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
  // leaves one of the two. If there is no older file to lose, nobody waits for that.
  return replaces_ && !temporary_.empty() && onMedium_ == OnMedium::kAtOnce;
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
  if (::rename(temporary_.c_str(), path_.c_str()) != 0) ThrowHostError(path_, errno);
  temporary_.clear();
}

}  // namespace sectorbox
