#include "link/transfer/TransferFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "disc/format/Format.h"
#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

using format::kFloppySectors;
using format::kFloppyTracks;
using format::kSectorSize;

std::size_t ByteIndex(std::int32_t sector) {
  return static_cast<std::size_t>(sector) * kSectorSize;
}

}  // namespace

std::int64_t TransferOffset(FileLayout layout, std::int32_t sector) {
  if (layout == FileLayout::kLinear) return std::int64_t{sector} * kSectorSize;
  const std::int32_t track = sector / kFloppySectors;
  const std::int32_t stored = track / kFloppyTracks + track % kFloppyTracks * 2;
  return (std::int64_t{stored} * kFloppySectors + sector % kFloppySectors) * kSectorSize;
}

TransferFile::TransferFile(const std::string& path, Access access) : path_(path) {
  const int flags = access == Access::kRead ? O_RDONLY : O_RDWR | O_CREAT;
  file_ = ::open(path.c_str(), flags | O_CLOEXEC, 0666);
  if (file_ < 0) ThrowHostError(path_, errno);
}

TransferFile::~TransferFile() {
  ::close(file_);
}

void TransferFile::ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) const {
  std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
  while (!bytes.empty()) {
    const ssize_t got = ::pread(file_, bytes.data(), bytes.size(), offset);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) ThrowHostError(path_, errno);
    if (got == 0) return;
    bytes = bytes.subspan(static_cast<std::size_t>(got));
    offset += got;
  }
}

void TransferFile::WriteAt(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t done = ::pwrite(file_, bytes.data(), bytes.size(), offset);
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) ThrowHostError(path_, done < 0 ? errno : ENOSPC);
    bytes = bytes.subspan(static_cast<std::size_t>(done));
    offset += done;
  }
}

void TransferFile::ReadChunk(FileLayout layout, std::int32_t first, std::int32_t count,
                             std::int32_t discSize, std::span<std::uint8_t> buffer) const {
  const auto chunk = buffer.first(ByteIndex(count));
  std::fill(chunk.begin(), chunk.end(), std::uint8_t{0});
  for (std::int32_t j = 0; j < count && first + j < discSize; ++j) {
    ReadAt(TransferOffset(layout, first + j), chunk.subspan(ByteIndex(j), kSectorSize));
  }
}

void TransferFile::WriteChunk(FileLayout layout, std::int32_t first, std::int32_t count,
                              std::span<const std::uint8_t> buffer) {
  const auto chunk = buffer.first(ByteIndex(count));
  if (layout == FileLayout::kLinear) {
    WriteAt(TransferOffset(layout, first), chunk);
    return;
  }
  for (std::int32_t j = 0; j < count; ++j) {
    WriteAt(TransferOffset(layout, first + j), chunk.subspan(ByteIndex(j), kSectorSize));
  }
}

}  // namespace sectorbox
