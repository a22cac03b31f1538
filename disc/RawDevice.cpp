#include "disc/RawDevice.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace sectorbox {
namespace {

// Device reads and writes without buffering need memory at a boundary of the device's sector.
constexpr std::size_t kAlignment = 4096;
constexpr std::size_t kLargestTransfer = 65536;

class HostDevice final : public RawDevice {
 public:
  HostDevice() : buffer_(kLargestTransfer + kAlignment) {}
  ~HostDevice() override { HostDevice::Close(); }

  bool Open(const std::string& path) override {
    Close();
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return false;
    // A plain file holds a raw card for those who work with emulators and copies; the host's cache
    // does it no harm. Anything else that isn't a block device is no card.
    if (!S_ISBLK(info.st_mode) && !S_ISREG(info.st_mode)) return false;
    const int direct = S_ISBLK(info.st_mode) ? O_DIRECT : 0;
    limit_ = S_ISREG(info.st_mode) ? static_cast<std::uint64_t>(info.st_size) : UINT64_MAX;
    file_ = ::open(path.c_str(), O_RDWR | O_CLOEXEC | direct);
    return file_ >= 0;
  }

  bool IsOpen() const override { return file_ >= 0; }

  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> buffer) override {
    std::size_t total = 0;
    while (IsOpen() && total < buffer.size()) {
      const auto part = std::min(buffer.size() - total, kLargestTransfer);
      const ssize_t done = ::pread(file_, Aligned(), part, static_cast<off_t>(offset + total));
      if (done < 0 && errno == EINTR) continue;
      if (done <= 0) break;
      std::memcpy(buffer.data() + total, Aligned(), static_cast<std::size_t>(done));
      total += static_cast<std::size_t>(done);
    }
    return total;
  }

  std::size_t Write(std::uint64_t offset, std::span<const std::uint8_t> buffer) override {
    // A card doesn't grow, so neither does the file that stands for one.
    if (offset >= limit_) return 0;
    const auto room =
        static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), limit_ - offset));
    std::size_t total = 0;
    while (IsOpen() && total < room) {
      const auto part = std::min(room - total, kLargestTransfer);
      std::memcpy(Aligned(), buffer.data() + total, part);
      const ssize_t done = ::pwrite(file_, Aligned(), part, static_cast<off_t>(offset + total));
      if (done < 0 && errno == EINTR) continue;
      if (done <= 0) break;
      total += static_cast<std::size_t>(done);
    }
    return total;
  }

  void Close() override {
    if (file_ < 0) return;
    ::fsync(file_);
    ::close(file_);
    file_ = -1;
  }

 private:
  std::uint8_t* Aligned() {
    const auto address = reinterpret_cast<std::uintptr_t>(buffer_.data());
    return buffer_.data() + (kAlignment - address % kAlignment) % kAlignment;
  }

  int file_ = -1;
  std::uint64_t limit_ = 0;
  std::vector<std::uint8_t> buffer_;
};

}  // namespace

std::unique_ptr<RawDevice> MakeHostDevice() {
  return std::make_unique<HostDevice>();
}

}  // namespace sectorbox
