#pragma once

#include <string>

#include "disc/store/Disc.h"

// Tells whether opening a card has worked. The store itself doesn't tell: without a device it reads
// as a card of the largest size.
namespace sectorbox {

// True if the device that the store was to open last is open. If not, the host is told why.
[[nodiscard]] bool CardIsOpen(Disc& disc);
// Tells the host why the last open failed. name is the device's name as the user knows it.
void NoteNotOpened(Disc& disc, const std::string& name);

}  // namespace sectorbox
