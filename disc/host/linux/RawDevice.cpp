#include "disc/host/RawDevice.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace sectorbox {
namespace {

// Reads and writes of a device without buffering need memory that begins at a multiple of this.
constexpr std::size_t kAlignment = 4096;
constexpr std::size_t kLargestTransfer = 65536;

class HostDevice final : public RawDevice {
 public:
  HostDevice() : buffer_(kLargestTransfer + kAlignment) {}
  ~HostDevice() override { HostDevice::Close(); }

  [[nodiscard]] bool Open(const std::string& path) override {
    Close();
    lastError_ = 0;
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return Fail(errno);
    // Users of emulators keep the raw bytes of a card in a plain file; the host's cache does no
    // harm there. Anything else that isn't a block device is no card.
    isBlock_ = S_ISBLK(info.st_mode);
    if (!isBlock_ && !S_ISREG(info.st_mode)) return Fail(ENOTBLK);
    // O_EXCL refuses a block device that is mounted: writing to it behind the back of its file
    // system would ruin that.
    const int raw = isBlock_ ? O_DIRECT | O_EXCL : 0;
    limit_ = isBlock_ ? UINT64_MAX : static_cast<std::uint64_t>(info.st_size);
    file_ = ::open(path.c_str(), O_RDWR | O_CLOEXEC | raw);
    return file_ >= 0 || Fail(errno);
  }

  bool IsOpen() const override { return file_ >= 0; }
  int LastError() const override { return lastError_; }

  bool Is(const std::string& path) const override {
    struct stat own {};
    struct stat other {};
    if (!IsOpen() || ::fstat(file_, &own) != 0 || ::stat(path.c_str(), &other) != 0) return false;
    // A block device may have several names in the file system, each a node of its own.
    if (isBlock_) return S_ISBLK(other.st_mode) && own.st_rdev == other.st_rdev;
    return own.st_dev == other.st_dev && own.st_ino == other.st_ino;
  }

  [[nodiscard]] std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    lastError_ = 0;
    std::size_t total = 0;
    while (IsOpen() && total < buffer.size()) {
      const auto part = std::min(buffer.size() - total, kLargestTransfer);
      std::uint8_t* const target = isBlock_ ? Aligned() : buffer.data() + total;
      const ssize_t done = ::pread(file_, target, part, static_cast<off_t>(offset + total));
      if (done < 0 && errno == EINTR) continue;
      if (done < 0) lastError_ = errno;
      if (done <= 0) break;
      if (isBlock_) std::memcpy(buffer.data() + total, target, static_cast<std::size_t>(done));
      total += static_cast<std::size_t>(done);
    }
    return total;
  }

  [[nodiscard]] std::size_t Write(std::uint64_t offset,
                                  std::span<const std::uint8_t> buffer) override {
    lastError_ = 0;
    // A card doesn't grow, so neither does the file that stands for one.
    if (offset >= limit_) return 0;
    const auto room =
        static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), limit_ - offset));
    std::size_t total = 0;
    while (IsOpen() && total < room) {
      const auto part = std::min(room - total, kLargestTransfer);
      const std::uint8_t* source = buffer.data() + total;
      if (isBlock_) source = static_cast<std::uint8_t*>(std::memcpy(Aligned(), source, part));
      const ssize_t done = ::pwrite(file_, source, part, static_cast<off_t>(offset + total));
      if (done < 0 && errno == EINTR) continue;
      if (done < 0) lastError_ = errno;
      if (done <= 0) break;
      written_ = true;
      total += static_cast<std::size_t>(done);
    }
    return total;
  }

  bool Sync() override {
    lastError_ = 0;
    return file_ < 0 || ::fsync(file_) == 0 || Fail(errno);
  }

  void Close() override {
    if (file_ < 0) return;
    lastError_ = 0;
    if (written_ && ::fsync(file_) != 0) lastError_ = errno;
    if (::close(file_) != 0 && lastError_ == 0) lastError_ = errno;
    file_ = -1;
    written_ = false;
  }

 private:
  bool Fail(int error) {
    lastError_ = error;
    return false;
  }
  std::uint8_t* Aligned() {
    const auto address = reinterpret_cast<std::uintptr_t>(buffer_.data());
    return buffer_.data() + (kAlignment - address % kAlignment) % kAlignment;
  }

  int file_ = -1;
  int lastError_ = 0;
  bool isBlock_ = false;
  bool written_ = false;
  std::uint64_t limit_ = 0;
  std::vector<std::uint8_t> buffer_;
};

}  // namespace

std::unique_ptr<RawDevice> MakeHostDevice() {
  return std::make_unique<HostDevice>();
}

bool IsNoMedium(int errorNumber) {
  return errorNumber == ENOMEDIUM;
}

}  // namespace sectorbox
