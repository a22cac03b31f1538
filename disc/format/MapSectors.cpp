#include "disc/format/MapSectors.h"

#include <algorithm>

#include "disc/format/LittleEndian.h"

namespace sectorbox {

using namespace format;

std::uint8_t MapChecksum(std::span<const std::uint8_t, kSectorSize> sector) {
  int sum = 255;
  int carry = 0;
  for (std::size_t i = kSectorSize - 1; i-- > 0;) {
    const int t = sum + sector[i] + carry;
    sum = t % 256;
    carry = t / 256;
  }
  return static_cast<std::uint8_t>(sum);
}

MapSectors::MapSectors(std::span<const std::uint8_t> bytes) {
  const auto there = std::min(bytes.size(), bytes_.size());
  std::copy_n(bytes.begin(), there, bytes_.begin());
}

std::int32_t MapSectors::DiscSize() const {
  return Number(kMapDiscSize);
}

void MapSectors::SetDiscSize(std::int32_t sectors) {
  SetNumber(kMapDiscSize, sectors);
}

std::uint8_t MapSectors::BootOption() const {
  return bytes_[kMapBootOption];
}

void MapSectors::SetBootOption(std::uint8_t option) {
  SetByte(kMapBootOption, option);
}

std::uint8_t MapSectors::EndPointer() const {
  return bytes_[kMapEnd];
}

std::vector<FreeRun> MapSectors::Runs() const {
  const std::int32_t count = std::min((EndPointer() + 1) / kMapEntrySize, kMapEntriesInMemory);
  std::vector<FreeRun> runs;
  runs.reserve(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) runs.push_back(RunAt(i));
  return runs;
}

FreeRun MapSectors::RunAt(std::int32_t place) const {
  return {Number(kMapStarts + kMapEntrySize * place), Number(kMapLengths + kMapEntrySize * place)};
}

void MapSectors::SetRuns(std::span<const FreeRun> runs) {
  const auto count = static_cast<std::int32_t>(runs.size());
  SetByte(kMapEnd, static_cast<std::uint8_t>(count * kMapEntrySize));
  for (std::int32_t i = 0; i < count; ++i) {
    const FreeRun& run = runs[static_cast<std::size_t>(i)];
    SetNumber(kMapStarts + kMapEntrySize * i, run.Start);
    SetNumber(kMapLengths + kMapEntrySize * i, run.Length);
  }
}

std::uint8_t MapSectors::StoredChecksum(std::int32_t sector) const {
  return bytes_[static_cast<std::size_t>((sector + 1) * kSectorSize - 1)];
}

std::uint8_t MapSectors::RightChecksum(std::int32_t sector) const {
  const auto at = static_cast<std::size_t>(sector) * kSectorSize;
  return MapChecksum(std::span(bytes_).subspan(at).first<kSectorSize>());
}

void MapSectors::UpdateChecksums() {
  SetByte(kMapChecksum0, RightChecksum(0));
  SetByte(kMapChecksum1, RightChecksum(1));
}

std::int32_t MapSectors::Number(std::int32_t at) const {
  return static_cast<std::int32_t>(
      ReadLittleEndian(std::span(bytes_).subspan(static_cast<std::size_t>(at), kSectorNumberSize)));
}

void MapSectors::SetNumber(std::int32_t at, std::int32_t value) {
  const auto place = static_cast<std::size_t>(at);
  WriteLittleEndian(std::span(bytes_).subspan(place, kSectorNumberSize),
                    static_cast<std::uint32_t>(value));
  set_.Set(place, kSectorNumberSize);
}

void MapSectors::SetByte(std::int32_t at, std::uint8_t value) {
  bytes_[static_cast<std::size_t>(at)] = value;
  set_.Set(static_cast<std::size_t>(at), 1);
}

}  // namespace sectorbox
