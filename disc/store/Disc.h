#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "disc/ask/DiscHost.h"
#include "disc/format/Format.h"
#include "disc/format/MapSectors.h"
#include "disc/store/DiscImg.h"

namespace sectorbox {

class Change;

// The one shared state of the engine: the store, the open disc's name and dirty flag, and the free
// list in memory. There is one in each program, made in main; a test makes its own. Every operation
// of the engine is a free function that takes it first.
struct Disc : private ImageRules {
  // host outlives the disc. A card is reached through device. maker makes the mediums; null stands
  // for the table of kinds.
  explicit Disc(DiscHost& host, std::unique_ptr<RawDevice> device = MakeHostDevice(),
                std::unique_ptr<MediumMaker> maker = nullptr);

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
  // How many times a disc has been compacted here. Code that notes down where objects lie compares
  // this number, to learn that they have moved.
  std::int32_t Compactions = 0;
  // Moves of directories that the panes haven't been told yet (Change tells them).
  std::vector<std::map<std::int32_t, std::int32_t>> UntoldMoves;
  // The change that runs now, of which all others are parts; null if none runs.
  Change* RunningChange = nullptr;
  // How many running changes have to be whole: while there are any, no part of a change is made
  // safe before its end (Change.h).
  std::int32_t WholeChanges = 0;
  // A long change is made safe in parts of about this many bytes, so that no more has to be held.
  std::size_t StepBytes = std::size_t{32} << 20;
  // What FindContradiction has found (Agreement.h), and the opening of the disc that it holds for.
  std::string Contradiction;
  std::int64_t ComparedAt = -1;
  // FindContradiction has found objects that share sectors. When one of them is deleted, the others
  // keep those sectors.
  bool ObjectsOverlap = false;

  DiscImg TheDisc;

 private:
  [[nodiscard]] bool InterleavedDisc() const override;
  [[nodiscard]] std::optional<std::int32_t> SectorsToStore() override;
  [[nodiscard]] std::chrono::milliseconds LockPatience() const override;
  void ImageLoaded() override;
};

// Gives the free list in memory as values, and sets it from values. At most 83 runs.
[[nodiscard]] std::vector<FreeRun> FreeRuns(const Disc& disc);
void KeepFreeRuns(Disc& disc, std::span<const FreeRun> runs);
// Sectors in all free runs.
[[nodiscard]] std::int64_t FreeSectors(const Disc& disc);

// Store offset of a sector's first byte.
[[nodiscard]] constexpr std::int64_t SectorOffset(std::int32_t sector) {
  return std::int64_t{sector} * format::kSectorSize;
}

// The map as it stands in the store now.
[[nodiscard]] MapSectors ReadMap(Disc& disc);
// Stores those bytes of the map that were set.
void WriteMap(Disc& disc, const MapSectors& map);
// Disc size in sectors, from the map.
[[nodiscard]] std::int32_t MapDiscSize(Disc& disc);

// How many sectors a trimmed image has: the start of the last free run, if that run reaches the
// disc's end. None if it doesn't or if there is no run: the image is then written in full. Only
// free space is ever cut off.
[[nodiscard]] std::optional<std::int32_t> TrimmedSize(const Disc& disc, std::int32_t discSize);

}  // namespace sectorbox
