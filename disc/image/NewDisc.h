#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "disc/store/Disc.h"

// Making empty discs, in every size that a user can choose.
namespace sectorbox {

// One size that a user can choose.
struct NewDiscSize {
  std::int32_t Tracks;  // a side
  std::int32_t Heads;
  std::int32_t Sectors;  // a track
  sectorbox::DiscType DiscType;
};

// The disc that the program has open while the user has opened none.
inline constexpr NewDiscSize kBlankDisc = {80, 2, 16, kAdl};

inline constexpr std::array<NewDiscSize, 13> kNewDiscs = {{
    {40, 1, 16, kAdf},
    {80, 1, 16, kAdf},
    kBlankDisc,
    {32, 4, 33, kDat},
    {64, 4, 33, kDat},
    {128, 4, 33, kDat},
    {256, 4, 33, kDat},
    {512, 4, 33, kDat},
    {1024, 4, 33, kDat},
    {2048, 4, 33, kDat},
    {4096, 4, 33, kDat},
    {8192, 4, 33, kDat},
    {16384, 4, 33, kDat},
}};

// Opens fileName as a disc of that geometry, fills it with zeros, and writes the map and an empty
// root. A floppy image is then only in memory and counts as unchanged. A .dat exists on the host
// from then on; it gets a companion if fileName ends in exactly ".dat". The user gets a note if the
// BBC can't write to a disc of this size. HostError if the file can't be opened, or if another file
// stands where the companion goes: the disc that was open stays open.
void CreateDisc(Disc& disc, const std::string& fileName, std::int32_t tracks, std::int32_t heads,
                std::int32_t sectors, DiscType type);

// Tells the user if the open disc is too large for the BBC to write to it.
void NoteTooLarge(Disc& disc);

// Opens an empty double-sided floppy in memory, named "NewDisc.adl", in place of what was open.
void OpenBlankImage(Disc& disc);

// The first seven sectors of an empty disc of that many sectors: the map, with both checksums, and
// the root. former is what stands in their place; bytes that belong to no field of these are taken
// from it.
[[nodiscard]] std::vector<std::uint8_t> EmptyDisc(std::span<const std::uint8_t> former,
                                                  std::int32_t total);

// Writes the map, with both checksums, and the empty root of a disc of that many sectors, as
// CreateDisc does. Bytes of the first seven sectors that belong to no field of these stay as they
// were.
void WriteEmptyDisc(Disc& disc, std::int32_t total);

// The file dialogs for the three kinds. Each gives the chosen path and makes it ImageName and the
// caption. The user is asked before a file that exists is replaced. An empty text means that the
// user has cancelled or answered No; nothing has changed then.
[[nodiscard]] std::string NewDiscADF(Disc& disc);
[[nodiscard]] std::string NewDiscADL(Disc& disc);
[[nodiscard]] std::string NewDiscDAT(Disc& disc);

// Makes a new disc for a user who has chosen its size: the question about unsaved changes, the
// dialog, CreateDisc, RebuildTree. HostError as for CreateDisc; ImageName is then again that of the
// open disc.
void RunNewDisc(Disc& disc, const NewDiscSize& size);

}  // namespace sectorbox
