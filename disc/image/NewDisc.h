#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// Empty discs in every size of the menu.
namespace sectorbox {

// One size of the menu.
struct NewDiscSize {
  std::int32_t Tracks;  // a side
  std::int32_t Heads;
  std::int32_t Sectors;  // a track
  sectorbox::DiscType DiscType;
};

inline constexpr std::array<NewDiscSize, 13> kNewDiscs = {{
    {40, 1, 16, kAdf},
    {80, 1, 16, kAdf},
    {80, 2, 16, kAdl},
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

// Zeroes the store and writes the map and an empty root. A floppy image is then only in memory and
// counts as unchanged; a .dat exists on the host from here on, with its companion if the name ends
// in exactly ".dat".
void CreateDisc(Disc& disc, const std::string& FileName, std::int32_t Tracks, std::int32_t Heads,
                std::int32_t Sectors, DiscType disctype);

// The map and the empty root of a disc of total sectors, as CreateDisc writes them (both checksums
// included), over whatever stands in the first seven sectors; bytes that it doesn't name stay.
void WriteEmptyDisc(Disc& disc, std::int32_t total);

// The file dialogs for the three kinds. Each gives the chosen path, which has also become ImageName
// and the caption, or an empty text.
std::string NewDiscADF(Disc& disc);
std::string NewDiscADL(Disc& disc);
std::string NewDiscDAT(Disc& disc);

// A new-disc menu entry: the unsaved-changes question, the dialog, CreateDisc, RebuildTree.
void RunNewDisc(Disc& disc, const NewDiscSize& size);

}  // namespace sectorbox
