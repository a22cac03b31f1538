#include "disc/store/Disc.h"

namespace sectorbox {

using namespace format;

Disc::Disc(DiscHost& host, std::unique_ptr<RawDevice> device, std::unique_ptr<MediumMaker> maker)
    : Host(host), TheDisc(host, *this, std::move(device), std::move(maker)) {}

bool Disc::InterleavedDisc() const {
  return Host.InterleavedDisc();
}

std::optional<std::int32_t> Disc::SectorsToStore() {
  if (Host.PadDiscImages()) return std::nullopt;
  return TrimmedSize(*this, MapDiscSize(*this));
}

std::chrono::milliseconds Disc::LockPatience() const {
  return Host.LockPatience();
}

void Disc::ImageLoaded() {
  ImageChanged = false;
}

std::vector<FreeRun> FreeRuns(const Disc& disc) {
  std::vector<FreeRun> runs;
  for (std::size_t i = 0; i < static_cast<std::size_t>(disc.FreeCount); ++i) {
    runs.push_back({disc.FreeStart[i], disc.FreeLen[i]});
  }
  return runs;
}

void KeepFreeRuns(Disc& disc, std::span<const FreeRun> runs) {
  disc.FreeCount = static_cast<std::int16_t>(runs.size());
  for (std::size_t i = 0; i < runs.size(); ++i) {
    disc.FreeStart[i] = runs[i].Start;
    disc.FreeLen[i] = runs[i].Length;
  }
}

std::int64_t FreeSectors(const Disc& disc) {
  std::int64_t sectors = 0;
  for (const FreeRun& run : FreeRuns(disc)) sectors += run.Length;
  return sectors;
}

MapSectors ReadMap(Disc& disc) {
  MapSectors::Bytes bytes;
  disc.TheDisc.FetchBytes(0, bytes);
  return MapSectors(bytes);
}

void WriteMap(Disc& disc, const MapSectors& map) {
  const std::span<const std::uint8_t> bytes(map.Raw());
  map.WasSet().ForEachRun([&](std::size_t at, std::size_t count) {
    disc.TheDisc.StoreBytes(static_cast<std::int64_t>(at), bytes.subspan(at, count));
  });
}

std::int32_t MapDiscSize(Disc& disc) {
  return ReadMap(disc).DiscSize();
}

std::optional<std::int32_t> TrimmedSize(const Disc& disc, std::int32_t discSize) {
  const std::vector<FreeRun> runs = FreeRuns(disc);
  if (runs.empty()) return std::nullopt;
  const FreeRun& last = runs.back();
  // The map and the root are never free, even if a damaged map says so.
  if (last.Start < kFirstFreeSector || last.Start > discSize || last.End() < discSize) {
    return std::nullopt;
  }
  return last.Start;
}

}  // namespace sectorbox
