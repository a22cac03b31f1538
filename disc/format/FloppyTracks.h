#pragma once

#include <cstdint>

#include "disc/format/Format.h"

// Where the tracks of a double-sided floppy lie. A disc counts the 80 tracks of side 0 and then
// those of side 1. An interleaved image file holds track 0 of side 0, track 0 of side 1, track 1 of
// side 0, and so on.
namespace sectorbox::format {

// The disc's track that lies at a track of an interleaved file.
[[nodiscard]] constexpr std::int32_t DiscTrackOfInterleaved(std::int32_t fileTrack) {
  return fileTrack % 2 * kFloppyTracks + fileTrack / 2;
}

// The other way round: the track of an interleaved file that holds a track of the disc.
[[nodiscard]] constexpr std::int32_t InterleavedTrackOfDisc(std::int32_t discTrack) {
  return discTrack % kFloppyTracks * 2 + discTrack / kFloppyTracks;
}

static_assert([] {
  for (std::int32_t track = 0; track < 2 * kFloppyTracks; ++track) {
    if (DiscTrackOfInterleaved(InterleavedTrackOfDisc(track)) != track) return false;
  }
  return true;
}());

}  // namespace sectorbox::format
