#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "disc/store/Disc.h"

// Empty discs in every size of the menu.
namespace sectorbox {

struct DiscGeometry {
  const char* Menu;     // name of the menu entry
  const char* Kind;     // the word for it at the command line
  std::int32_t Tracks;  // a side
  std::int32_t Heads;
  std::int32_t Sectors;  // a track
  std::int16_t DiscType;
};

inline constexpr std::array<DiscGeometry, 13> kNewDiscs = {{
    {"mnuDiscNew40SSD", "40ssd", 40, 1, 16, kAdf},
    {"mnuDiscNew80SSD", "80ssd", 80, 1, 16, kAdf},
    {"mnuDiscNew80DSD", "80dsd", 80, 2, 16, kAdl},
    {"mnuDiscNew1M", "1m", 32, 4, 33, kDat},
    {"mnuDiscNew2M", "2m", 64, 4, 33, kDat},
    {"mnuDiscNew4M", "4m", 128, 4, 33, kDat},
    {"mnuDiscNew8M", "8m", 256, 4, 33, kDat},
    {"mnuDiscNew16M", "16m", 512, 4, 33, kDat},
    {"mnuDiscNew32M", "32m", 1024, 4, 33, kDat},
    {"mnuDiscNew64M", "64m", 2048, 4, 33, kDat},
    {"mnuDiscNew128M", "128m", 4096, 4, 33, kDat},
    {"mnuDiscNew256M", "256m", 8192, 4, 33, kDat},
    {"mnuDiscNew512M", "512m", 16384, 4, 33, kDat},
}};

// Zeroes the store and writes the map and an empty root. A floppy image is then only in memory and
// counts as unchanged; a .dat exists on the host from here on, with its companion if the name ends
// in exactly ".dat".
void CreateDisc(Disc& disc, const std::string& FileName, std::int32_t Tracks, std::int32_t Heads,
                std::int32_t Sectors, std::int16_t disctype);

// The map and the empty root of a disc of total sectors, as CreateDisc writes them (both checksums
// included), over whatever stands in the first seven sectors; bytes that it doesn't name stay.
void WriteEmptyDisc(Disc& disc, std::int32_t total);

// The file dialogs for the three kinds. Each gives the chosen path, which has also become ImageName
// and the caption, or an empty text.
std::string NewDiscADF(Disc& disc);
std::string NewDiscADL(Disc& disc);
std::string NewDiscDAT(Disc& disc);

// A new-disc menu entry: the unsaved-changes question, the dialog, CreateDisc, RebuildTree.
void RunNewDisc(Disc& disc, const DiscGeometry& geometry);

}  // namespace sectorbox
