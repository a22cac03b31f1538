#include "shell/commands/ResizeAnswer.h"

#include "disc/image/Resize.h"

namespace sectorbox {
namespace {

constexpr std::int32_t kMostTracks = 0xFFFFFF / (4 * 33);

}  // namespace

std::optional<std::int32_t> TracksOfAnswer(const QString& text) {
  const auto tracks = TracksOfMegabytes(text.trimmed().toStdString());
  if (!tracks || *tracks < 1 || *tracks > kMostTracks) return std::nullopt;
  return tracks;
}

}  // namespace sectorbox
