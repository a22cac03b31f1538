#include "disc/health/DiscSizes.h"

#include <optional>
#include <string>
#include <utility>

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
    faults.push_back(MakeFault(FaultKind::kTooLargeForBbc, {TouchedKind::kMapSector, 0, -1, ""}));
  }
  const auto sectors = SectorsOfCompanion(disc);
  if (sectors && *sectors < size) {
    std::string companion = HostBaseName(CompanionName(disc.TheDisc.FileName()));
    faults.push_back(MakeFault(FaultKind::kCompanionTooSmall,
                               {TouchedKind::kCompanion, 0, -1, std::move(companion)}, *sectors,
                               size));
  }
  return faults;
}

}  // namespace sectorbox
