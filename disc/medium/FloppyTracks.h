#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "disc/store/Disc.h"

// The order of tracks in a double-sided image file: track 0 of side 0, track 0 of side 1, and so
// on, while the store holds side 0 and then side 1.
namespace sectorbox {

// The track of the store that lies at a track of the file.
std::int32_t LoadedTrack(std::int32_t fileTrack, bool interleaved);

// Tracks that an image of discSize sectors is stored with: to the nearest, but never more than are
// in memory.
std::int32_t StoredTracks(std::int32_t discSize, std::size_t bytesInMemory);

// The bytes of a double-sided image file: as many as the map's size says, and for a disc in memory
// no more than are there.
std::vector<std::uint8_t> ArrangeAdl(Disc& disc);

}  // namespace sectorbox
