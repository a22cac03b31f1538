#include "link/transfer/TransferFile.h"

#include <algorithm>

#include "disc/format/FloppyTracks.h"
#include "disc/format/Format.h"
#include "disc/medium/FileMedium.h"

namespace sectorbox {
namespace {

using format::kFloppySectors;
using format::kSectorSize;

std::size_t ByteIndex(std::int32_t sector) {
  return static_cast<std::size_t>(sector) * kSectorSize;
}

}  // namespace

FileLayout LayoutOf(DiscType type) {
  return type == kAdl ? FileLayout::kDoubleSided : FileLayout::kLinear;
}

std::int64_t TransferOffset(FileLayout layout, std::int32_t sector) {
  if (layout == FileLayout::kLinear) return std::int64_t{sector} * kSectorSize;
  const std::int32_t stored = format::InterleavedTrackOfDisc(sector / kFloppySectors);
  return (std::int64_t{stored} * kFloppySectors + sector % kFloppySectors) * kSectorSize;
}

TransferFile::TransferFile(const std::string& path, Access access) {
  if (access == Access::kReadWrite) RequireNoJournal(path);
  file_.Open(path, access == Access::kRead ? FileAccess::kRead : FileAccess::kCreate);
}

void TransferFile::ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) const {
  const std::size_t done = file_.ReadAt(static_cast<std::uint64_t>(offset), bytes);
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(done), bytes.end(), std::uint8_t{0});
}

void TransferFile::WriteAt(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  file_.WriteAt(static_cast<std::uint64_t>(offset), bytes);
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
