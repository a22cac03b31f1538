#include <algorithm>
#include <charconv>
#include <cmath>

#include "disc/catalogue/Adfs.h"
#include "disc/change/Compaction.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Session.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr std::int32_t kTracksPerMegabyte = 32;
constexpr std::int64_t kLargestSize = 0xFFFFFF;  // the size field has three bytes

using MapBytes = std::vector<std::uint8_t>;

std::int32_t Get24(const MapBytes& map, std::int32_t offset) {
  const auto at = static_cast<std::size_t>(offset);
  return map[at] | map[at + 1] << 8 | map[at + 2] << 16;
}

void Put24(MapBytes& map, std::int32_t offset, std::int32_t value) {
  const auto bits = static_cast<std::uint32_t>(value);
  auto at = map.begin() + offset;
  for (std::int32_t i = 0; i < 3; ++i) *at++ = static_cast<std::uint8_t>(bits >> (8 * i));
}

// The last free run is taken to reach the end of the disc, and stretches or shrinks with it. That
// isn't tested: a disc made smaller than what lies on it gets a map that says so. A full disc that
// grows, which has no run to stretch, gets one for what was added.
void ResizeLastRun(MapBytes& map, std::int32_t oldSize, std::int32_t newSize) {
  const std::int32_t count = std::min(RunsOfEndPointer(map[kMapEnd]), kMapEntries);
  if (count == 0 && newSize > oldSize) {
    Put24(map, kMapStarts, oldSize);
    Put24(map, kMapLengths, newSize - oldSize);
    map[kMapEnd] = kMapEntrySize;
  }
  if (count == 0) return;
  const std::int32_t last = kMapLengths + kMapEntrySize * (count - 1);
  Put24(map, last, Get24(map, last) + newSize - oldSize);
  map[kMapEnd] = static_cast<std::uint8_t>(count * kMapEntrySize);
}

}  // namespace

std::optional<std::int32_t> TracksOfMegabytes(const std::string& text) {
  double number = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
  if (error != std::errc() || rest != end || !std::isfinite(number)) return std::nullopt;
  // To the nearest whole number, ties to even.
  const double tracks = std::nearbyint(number * kTracksPerMegabyte);
  if (std::abs(tracks) > 1e9) return std::nullopt;
  return static_cast<std::int32_t>(tracks);
}

void ResizeImage(Disc& disc, std::int32_t Tracks, std::int32_t Heads, std::int32_t Sectors) {
  const std::string name = ChooseImageFile(disc);
  if (!name.empty()) ResizeImageFile(disc, name, Tracks, Heads, Sectors);
}

void ResizeImageFile(Disc& disc, const std::string& FileName, std::int32_t Tracks,
                     std::int32_t Heads, std::int32_t Sectors) {
  const std::int64_t size = std::int64_t{Tracks} * Heads * Sectors;
  if (size < 1 || size > kLargestSize) {
    disc.Host.ShowMessage("Disc Size Is Out Of Range");
    return;
  }
  // Blocks of an open hard disc image that wait in memory would go over the new map later.
  if (disc.TheDisc.disctype() == kDat) disc.TheDisc.CloseFile();
  MapBytes map = ReadHostFile(FileName, 0, kMapSize);
  if (map.size() < kMapSize) throw HostError(FileName, "Too short for a disc image");
  const std::int32_t oldSize = Get24(map, kMapDiscSize);
  Put24(map, kMapDiscSize, static_cast<std::int32_t>(size));
  ResizeLastRun(map, oldSize, static_cast<std::int32_t>(size));
  map[kMapChecksum0] = MapChecksum(std::span(map).first<kSectorSize>());
  map[kMapChecksum1] = MapChecksum(std::span(map).subspan<kSectorSize, kSectorSize>());
  OverwriteHostFile(FileName, 0, map);
  OpenImage(disc, FileName);
}

}  // namespace sectorbox
