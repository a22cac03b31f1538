#pragma once

#include <string>
#include <vector>

#include "cfcard/cards/CardDrives.h"

// The files that the user keeps raw cards in: setting "CardFiles", one path a line. A "%" and what
// isn't printable ASCII stand there as "%" and two hex digits a byte, so that a path keeps its
// bytes in any encoding, line ends included.
namespace sectorbox {

void ReadCardFiles(CardDrives& drives);

enum class CardFileTaken { kAdded, kListedAlready, kNoPlainFile };

// Adds a path to the setting. Only plain files are taken: a folder is no card, and a device is
// found without this if it is one. A file that is listed already, under whatever path, stays the
// one that it is.
CardFileTaken AddCardFile(const std::string& path);

}  // namespace sectorbox
