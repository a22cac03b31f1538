#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "disc/ask/DiscHost.h"
#include "disc/format/Format.h"
#include "disc/host/RawDevice.h"
#include "disc/store/DiscImg.h"

namespace sectorbox {

// The one shared state of the engine: the store, the open disc's name and dirty flag, and the free
// list in memory. There is one in each program, made in main; a test makes its own. Every operation
// of the engine is a free function that takes it first.
struct Disc {
  // host outlives the disc. device is what a card is reached through.
  explicit Disc(DiscHost& discHost, std::unique_ptr<RawDevice> device = MakeHostDevice())
      : Host(discHost), TheDisc(*this, std::move(device)) {}

  DiscHost& Host;

  std::string ImageName;         // path of the open image, or device, comma and partition of a card
  bool ImageChanged = false;     // the open image holds unsaved changes
  bool ProgressRunning = false;  // go-on flag of the long copies; Abort clears it

  // The free runs in rising order of their starts, in sectors; FreeCount of them are in use.
  std::array<std::int32_t, format::kMapEntriesInMemory> FreeStart{};
  std::array<std::int32_t, format::kMapEntriesInMemory> FreeLen{};
  std::int16_t FreeCount = 0;

  // Geometry of a hard disc image.
  std::int32_t DiscTracks = 0;
  std::int32_t DiscHeads = 0;
  std::int32_t DiscSectors = 0;

  // Sector numbers that operations hold across a possible compaction (TrackedSector.h).
  std::vector<std::int32_t*> TrackedSectors;
  // How many times a disc has been compacted here; who notes down where objects lie compares it.
  std::int32_t Compactions = 0;

  DiscImg TheDisc;
};

}  // namespace sectorbox
