#include "disc/medium/FileMedium.h"

#include <algorithm>

#include "disc/host/HostError.h"

namespace sectorbox {
namespace {

std::uint64_t PlaceOf(std::int32_t block) {
  return static_cast<std::uint64_t>(block) * Medium::kBlockSize;
}

}  // namespace

FileMedium::FileMedium(const std::string& path) : file_(path, FileAccess::kCreateOrFallBack) {}

bool FileMedium::ReadBlock(std::int32_t block, std::span<std::uint8_t> data) {
  const std::size_t done = file_.ReadAt(PlaceOf(block), data);
  std::fill(data.begin() + static_cast<std::ptrdiff_t>(done), data.end(), std::uint8_t{0});
  return true;
}

void FileMedium::WriteBlock(std::int32_t block, std::span<const std::uint8_t> data) {
  file_.WriteAt(PlaceOf(block), data);
}

std::size_t FileMedium::ReadRun(std::int64_t offset, std::span<std::uint8_t> bytes) {
  if (offset < 0) return 0;
  const std::size_t done = file_.ReadAt(static_cast<std::uint64_t>(offset), bytes);
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(done), bytes.end(), std::uint8_t{0});
  return bytes.size();
}

std::size_t FileMedium::WriteRun(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  if (offset < 0 || offset % kBlockSize != 0) return 0;
  const auto run = bytes.first(bytes.size() - bytes.size() % kBlockSize);
  file_.WriteAt(static_cast<std::uint64_t>(offset), run);
  return run.size();
}

std::int64_t FileMedium::EndOfData() const {
  return static_cast<std::int64_t>(file_.Length());
}

// The two blocks of the store may hold bytes behind the file's end that aren't written yet.
std::int64_t FileMedium::LongestFile() const {
  return EndOfData() + std::int64_t{2} * kBlockSize;
}

std::span<const std::uint8_t> FileMedium::Storable(std::int64_t offset,
                                                   std::span<const std::uint8_t> bytes) {
  (void)offset;
  if (file_.WriteError() != 0) ThrowHostError(file_.Path(), file_.WriteError());
  return bytes;
}

bool FileMedium::Is(const std::string& path) const {
  const auto other = IdentityOfPath(path);
  if (!other) return false;
  return file_.IsOpen() ? file_.Identity() == *other : IdentityOfPath(file_.Path()) == other;
}

}  // namespace sectorbox
