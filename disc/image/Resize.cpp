#include "disc/image/Resize.h"

#include <charconv>
#include <cmath>
#include <vector>

#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Session.h"

namespace sectorbox {
namespace {

using namespace format;

constexpr std::int32_t kTracksPerMegabyte = 32;
constexpr std::int64_t kLargestSize = 0xFFFFFF;  // the size field has three bytes

// The last free run is taken to reach the end of the disc, and stretches or shrinks with it. That
// isn't tested: a disc made smaller than what lies on it gets a map that says so. A full disc that
// grows, which has no run to stretch, gets one for what was added.
void ResizeLastRun(MapSectors& map, std::int32_t newSize) {
  const std::int32_t added = newSize - map.DiscSize();
  std::vector<FreeRun> runs = map.Runs();
  if (runs.size() > static_cast<std::size_t>(kMapEntries)) runs.resize(kMapEntries);
  if (!runs.empty()) {
    runs.back().Length += added;
  } else if (added > 0) {
    runs.push_back({map.DiscSize(), added});
  } else {
    return;
  }
  map.SetRuns(runs);
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
  if (!disc.TheDisc.InMemory()) disc.TheDisc.CloseFile();
  const std::vector<std::uint8_t> bytes = ReadHostFile(FileName, 0, kMapSize);
  if (bytes.size() < kMapSize) throw HostError(FileName, "Too short for a disc image");
  MapSectors map(bytes);
  ResizeLastRun(map, static_cast<std::int32_t>(size));
  map.SetDiscSize(static_cast<std::int32_t>(size));
  map.UpdateChecksums();
  OverwriteHostFile(FileName, 0, map.Raw());
  OpenImage(disc, FileName);
}

}  // namespace sectorbox
