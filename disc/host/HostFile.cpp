#include "disc/host/HostFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

// A long file whose end will be waited for starts on its way to the medium while the rest of it is
// still being made, in parts that a medium takes well.
constexpr std::size_t kSendOnEvery = std::size_t{4} << 20;

bool StatOf(const std::string& path, struct stat& result) {
  return ::stat(path.c_str(), &result) == 0;
}

class InputFile {
 public:
  explicit InputFile(const std::string& path) : path_(path) {
    // Without waiting: a pipe that nobody writes to would never open. It can't be read at an offset
    // anyway, and to plain files it makes no difference.
    file_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file_ < 0) ThrowHostError(path_, errno);
  }
  ~InputFile() { ::close(file_); }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> bytes) {
    for (;;) {
      const ssize_t done = ::pread(file_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
      if (done >= 0) return static_cast<std::size_t>(done);
      if (errno != EINTR) ThrowHostError(path_, errno);
    }
  }

 private:
  std::string path_;
  int file_ = -1;
};

std::string FolderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// A link's target is what gets replaced, not the link. A dangling link is replaced itself.
std::string ResolveTarget(const std::string& path) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return path;
  char* resolved = ::realpath(path.c_str(), nullptr);
  if (resolved == nullptr) return path;
  std::string result(resolved);
  std::free(resolved);
  return result;
}

}  // namespace

void ThrowHostError(const std::string& path, int errorNumber) {
  throw HostError(path, std::strerror(errorNumber));
}

bool HostFileExists(const std::string& path) {
  struct stat info {};
  return StatOf(path, info) && !S_ISDIR(info.st_mode);
}

bool HostFileIsPlain(const std::string& path) {
  struct stat info {};
  return StatOf(path, info) && S_ISREG(info.st_mode);
}

bool HostFolderExists(const std::string& path) {
  struct stat info {};
  return StatOf(path, info) && S_ISDIR(info.st_mode);
}

std::uint64_t HostFileLength(const std::string& path) {
  struct stat info {};
  if (!StatOf(path, info)) ThrowHostError(path, errno);
  return S_ISREG(info.st_mode) ? static_cast<std::uint64_t>(info.st_size) : 0;
}

std::vector<std::uint8_t> ReadHostFile(const std::string& path, std::uint64_t offset,
                                       std::uint64_t limit) {
  InputFile input(path);
  std::vector<std::uint8_t> bytes;
  std::array<std::uint8_t, 65536> part{};
  while (bytes.size() < limit) {
    const auto want = std::min<std::uint64_t>(part.size(), limit - bytes.size());
    const auto done =
        input.ReadAt(offset + bytes.size(), std::span(part).first(static_cast<std::size_t>(want)));
    if (done == 0) break;
    bytes.insert(bytes.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(done));
  }
  return bytes;
}

void OverwriteHostFile(const std::string& path, std::uint64_t offset,
                       std::span<const std::uint8_t> bytes) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (file < 0) ThrowHostError(path, errno);
  int error = 0;
  while (!bytes.empty() && error == 0) {
    const ssize_t done = ::pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (done < 0 && errno != EINTR) error = errno;
    if (done <= 0) continue;
    offset += static_cast<std::uint64_t>(done);
    bytes = bytes.subspan(static_cast<std::size_t>(done));
  }
  if (::close(file) != 0 && error == 0) error = errno;
  if (error != 0) ThrowHostError(path, error);
}

std::string HostBaseName(const std::string& path) {
  const auto end = path.find_last_not_of('/');
  if (end == std::string::npos) return "";
  const auto slash = path.rfind('/', end);
  const auto begin = slash == std::string::npos ? 0 : slash + 1;
  return path.substr(begin, end + 1 - begin);
}

OutputFile::OutputFile(const std::string& path, OnMedium onMedium)
    : path_(ResolveTarget(path)), onMedium_(onMedium) {
  struct stat info {};
  const bool replaces = StatOf(path_, info);
  replaces_ = replaces;
  if (replaces && S_ISDIR(info.st_mode)) ThrowHostError(path, EISDIR);
  if (replaces && !S_ISREG(info.st_mode)) {
    // A device or a pipe can't be replaced by a rename: it is written straight through.
    file_ = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    if (file_ < 0) ThrowHostError(path, errno);
    return;
  }
  if (replaces && ::access(path_.c_str(), W_OK) != 0) ThrowHostError(path, errno);
  temporary_ = FolderOf(path_) + "/.sectorbox-XXXXXX";
  file_ = ::mkostemp(temporary_.data(), O_CLOEXEC);
  if (file_ < 0) {
    temporary_.clear();
    ThrowHostError(path, errno);
  }
  if (replaces) (void)!::fchown(file_, info.st_uid, info.st_gid);
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(file_, replaces ? (info.st_mode & 07777) : (0666 & ~mask));
}

OutputFile::OutputFile(OutputFile&& other) noexcept
    : path_(std::move(other.path_)),
      temporary_(std::move(other.temporary_)),
      onMedium_(other.onMedium_),
      file_(other.file_),
      waiting_(other.waiting_),
      replaces_(other.replaces_),
      endsInHole_(other.endsInHole_) {
  other.file_ = -1;
  other.temporary_.clear();
}

OutputFile::~OutputFile() {
  if (file_ >= 0) ::close(file_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void OutputFile::Write(std::span<const std::uint8_t> bytes) {
  if (!bytes.empty()) endsInHole_ = false;
  while (!bytes.empty()) {
    const ssize_t done = ::write(file_, bytes.data(), bytes.size());
    if (done < 0) {
      if (errno == EINTR) continue;
      ThrowHostError(path_, errno);
    }
    bytes = bytes.subspan(static_cast<std::size_t>(done));
    SendOn(static_cast<std::size_t>(done));
  }
}

bool OutputFile::IsAwaited() const {
  // Before an older file goes, the bytes of the new one are on the medium, so that even a power cut
  // leaves one of the two. Where there is none to lose nobody waits for that.
  return replaces_ && !temporary_.empty() && onMedium_ == OnMedium::kAtOnce;
}

void OutputFile::SendOn(std::size_t bytes) {
  if (!IsAwaited()) return;
  waiting_ += bytes;
  if (waiting_ < kSendOnEvery) return;
  waiting_ = 0;
  // No more than a hint: Close waits for the bytes all the same, and hears what went wrong.
  (void)::sync_file_range(file_, 0, 0, SYNC_FILE_RANGE_WRITE);
}

void OutputFile::Skip(std::uint64_t bytes) {
  if (bytes == 0) return;
  // Only a plain file that is made anew reads as zeros where nothing was written.
  if (temporary_.empty()) {
    const std::vector<std::uint8_t> zeros(65536);
    for (; bytes > 0; bytes -= std::min<std::uint64_t>(bytes, zeros.size())) {
      Write(std::span(zeros).first(std::min<std::uint64_t>(bytes, zeros.size())));
    }
    return;
  }
  if (::lseek(file_, static_cast<off_t>(bytes), SEEK_CUR) < 0) ThrowHostError(path_, errno);
  endsInHole_ = true;
}

void OutputFile::Write(const std::string& text) {
  Write(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void OutputFile::Close() {
  if (endsInHole_ && ::ftruncate(file_, ::lseek(file_, 0, SEEK_CUR)) != 0) {
    ThrowHostError(path_, errno);
  }
  const int file = file_;
  file_ = -1;
  if (temporary_.empty()) {
    if (::close(file) != 0) ThrowHostError(path_, errno);
    return;
  }
  const int synced = IsAwaited() ? ::fsync(file) : 0;
  const int syncError = errno;
  if (::close(file) != 0 || synced != 0) ThrowHostError(path_, synced != 0 ? syncError : errno);
  if (::rename(temporary_.c_str(), path_.c_str()) != 0) ThrowHostError(path_, errno);
  temporary_.clear();
}

OutputFile CreateOutputFile(const std::string& path, OnMedium onMedium) {
  return OutputFile(path, onMedium);
}

}  // namespace sectorbox
