#include "disc/medium/MediumKinds.h"

#include <algorithm>
#include <array>

#include "disc/format/Format.h"
#include "disc/format/Text.h"
#include "disc/host/HostFile.h"
#include "disc/medium/CardMedium.h"
#include "disc/medium/Companion.h"
#include "disc/medium/FileMedium.h"
#include "disc/medium/FloppyMedium.h"

namespace sectorbox {
namespace {

constexpr std::int32_t kDoubleSidedDisc = 2560;  // sectors
constexpr Geometry kDoubleSided = {80, 2, format::kFloppySectors};
constexpr Geometry kEightyTracks = {80, 1, format::kFloppySectors};
constexpr Geometry kFortyTracks = {40, 1, format::kFloppySectors};

// The assumed geometry of a hard disc image that has no companion.
constexpr std::int32_t kHardDiscHeads = 4;
constexpr std::int32_t kHardDiscSectors = 33;

constexpr std::int32_t SectorsOf(const Geometry& shape) {
  return shape.Tracks * shape.Heads * shape.Sectors;
}

std::unique_ptr<Medium> OpenFloppy(const MediumRequest& request, const MediumParts& parts,
                                   FloppyMedium::Sides sides) {
  const auto bytes = static_cast<std::size_t>(request.Shape.Tracks) *
                     static_cast<std::size_t>(request.Shape.Heads) *
                     static_cast<std::size_t>(request.Shape.Sectors) * format::kSectorSize;
  auto medium =
      std::make_unique<FloppyMedium>(request.Name, sides, bytes, parts.Status, parts.Rules);
  parts.Rules.ImageLoaded();
  return medium;
}

std::unique_ptr<Medium> OpenAdf(const MediumRequest& request, const MediumParts& parts) {
  return OpenFloppy(request, parts, FloppyMedium::Sides::kOne);
}

std::unique_ptr<Medium> OpenAdl(const MediumRequest& request, const MediumParts& parts) {
  return OpenFloppy(request, parts, FloppyMedium::Sides::kTwo);
}

std::unique_ptr<Medium> OpenDat(const MediumRequest& request, const MediumParts&) {
  return std::make_unique<FileMedium>(request.Name);
}

std::unique_ptr<Medium> OpenCard(const MediumRequest& request, const MediumParts& parts) {
  return std::make_unique<CardMedium>(request.Name, request.Partition, parts.Device, parts.Status);
}

// A floppy image is known by its size. A name that ends in ".adl" makes a file a double-sided image
// too. Any other file, ADFS or not, is taken for a hard disc image.
std::optional<Geometry> RecogniseAdl(const ImageLook& look) {
  const bool isNamedAdl = UpperCase(look.Name).ends_with(".ADL");
  if (look.DiscSize == kDoubleSidedDisc || isNamedAdl) return kDoubleSided;
  return std::nullopt;
}

std::optional<Geometry> RecogniseAdf(const ImageLook& look) {
  if (look.DiscSize == SectorsOf(kEightyTracks)) return kEightyTracks;
  if (look.DiscSize == SectorsOf(kFortyTracks)) return kFortyTracks;
  return std::nullopt;
}

// The companion's geometry, or one worked out from the file's length.
std::optional<Geometry> RecogniseDat(const ImageLook& look) {
  if (const auto companion = ReadCompanion(look.Name)) {
    return Geometry{companion->Tracks, companion->Heads, kHardDiscSectors};
  }
  const std::uint64_t sectors = HostFileLength(look.Name) / format::kSectorSize;
  const auto tracks = sectors / kHardDiscHeads / kHardDiscSectors + 1;
  return Geometry{static_cast<std::int32_t>(tracks), kHardDiscHeads, kHardDiscSectors};
}

constexpr std::array<MediumKind, 4> kKinds = {{
    {kAdl, "adl", false, false, OpenAdl, RecogniseAdl},
    {kAdf, "adf", false, false, OpenAdf, RecogniseAdf},
    {kDat, "dat", true, false, OpenDat, RecogniseDat},
    {kCF, "cf", false, true, OpenCard, nullptr},
}};

}  // namespace

std::span<const MediumKind> MediumKinds() {
  return kKinds;
}

const MediumKind& KindOf(DiscType type) {
  return *std::find_if(kKinds.begin(), kKinds.end(),
                       [&](const MediumKind& kind) { return kind.Type == type; });
}

std::unique_ptr<Medium> MediumMaker::Make(DiscType type, const MediumRequest& request,
                                          const MediumParts& parts) {
  return KindOf(type).Open(request, parts);
}

}  // namespace sectorbox
