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

// The last free run grows or shrinks with the disc. Nothing tests that it reaches the disc's end: a
// disc that becomes smaller than what lies on it gets a damaged map. A full disc has no run; if it
// grows, it gets one for the sectors that were added.
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

void ResizeImage(Disc& disc, std::int32_t tracks, std::int32_t heads, std::int32_t sectors) {
  const std::string name = ChooseImageFile(disc);
  if (!name.empty()) ResizeImageFile(disc, name, tracks, heads, sectors);
}

void ResizeImageFile(Disc& disc, const std::string& fileName, std::int32_t tracks,
                     std::int32_t heads, std::int32_t sectors) {
  const std::int64_t size = std::int64_t{tracks} * heads * sectors;
  if (size < 1 || size > kLargestSize) {
    disc.Host.ShowMessage("Disc Size Is Out Of Range");
    return;
  }
  // If the image is open, blocks that wait in memory would later be written over the new map.
  if (disc.TheDisc.IsOpenMedium(fileName)) disc.TheDisc.CloseFile();
  const std::vector<std::uint8_t> bytes = ReadHostFile(fileName, 0, kMapSize);
  if (bytes.size() < kMapSize) throw HostError(fileName, "Too short for a disc image");
  MapSectors map(bytes);
  ResizeLastRun(map, static_cast<std::int32_t>(size));
  map.SetDiscSize(static_cast<std::int32_t>(size));
  map.UpdateChecksums();
  OverwriteHostFile(fileName, 0, map.Raw());
  OpenImage(disc, fileName);
}

}  // namespace sectorbox
