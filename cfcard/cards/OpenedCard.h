#pragma once

#include <string>

#include "disc/store/Disc.h"

// Whether a card that was to be opened is there. The store itself says nothing: without a device it
// reads as one of the largest size.
namespace sectorbox {

// Whether the card that was opened last is there; if not, the host is told why.
bool CardIsOpen(Disc& disc);
// Tells the host why the last open failed; name is what the user knows the device by.
void NoteNotOpened(Disc& disc, const std::string& name);

}  // namespace sectorbox
