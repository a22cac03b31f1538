#include "disc/health/DiscSizes.h"

#include <optional>

#include "disc/format/DiscLimits.h"
#include "disc/host/HostPath.h"
#include "disc/medium/Companion.h"

namespace sectorbox {
namespace {

// All hard discs have as many sectors a track; a companion doesn't tell them.
constexpr std::int64_t kSectorsOfTrack = 33;

// The sectors of which a companion tells; none if the open disc has no companion.
std::optional<std::int64_t> SectorsOfCompanion(const Disc& disc) {
  if (!disc.TheDisc.Kind().HasCompanion) return std::nullopt;
  const auto shape = ReadCompanion(disc.TheDisc.FileName());
  if (!shape) return std::nullopt;
  return std::int64_t{shape->Tracks} * shape->Heads * kSectorsOfTrack;
}

}  // namespace

std::vector<Fault> FindSizeFaults(Disc& disc) {
  std::vector<Fault> faults;
  const std::int32_t size = MapDiscSize(disc);
  if (!format::BbcCanWriteTo(size)) {
    faults.push_back({false, "sector 0", format::kTooLargeForTheBbc});
  }
  const auto sectors = SectorsOfCompanion(disc);
  if (sectors && *sectors < size) {
    faults.push_back({false, HostBaseName(CompanionName(disc.TheDisc.FileName())),
                      "tells of " + std::to_string(*sectors) + " sectors, and the disc has " +
                          std::to_string(size)});
  }
  return faults;
}

}  // namespace sectorbox
