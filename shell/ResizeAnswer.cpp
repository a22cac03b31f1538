#include "shell/ResizeAnswer.h"

#include <QLocale>
#include <cmath>

namespace sectorbox {
namespace {

constexpr double kTracksPerMegabyte = 32.0;
constexpr double kMostTracks = 0xFFFFFF / (4 * 33);

}  // namespace

std::optional<std::int32_t> TracksOfAnswer(const QString& text) {
  bool number = false;
  const double megabytes = QLocale::c().toDouble(text.trimmed(), &number);
  if (!number || !std::isfinite(megabytes)) return std::nullopt;
  // Halves go to the even neighbour.
  const double tracks = std::nearbyint(megabytes * kTracksPerMegabyte);
  if (tracks < 1 || tracks > kMostTracks) return std::nullopt;
  return static_cast<std::int32_t>(tracks);
}

}  // namespace sectorbox
