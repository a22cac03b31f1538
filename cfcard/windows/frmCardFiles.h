#pragma once

#include <string>
#include <vector>

#include "cfcard/cards/CardDrives.h"

// The files in which the user keeps raw cards: setting "CardFiles", one path a line. A "%", and
// each byte that isn't printable ASCII, is written there as "%" and two hex digits. So a path keeps
// its bytes in any encoding, also line ends.
namespace sectorbox {

// Gives the paths of the setting to drives.
void ReadCardFiles(CardDrives& drives);

enum class CardFileTaken { kAdded, kListedAlready, kNoPlainFile };

// Adds a path to the setting. Only a plain file is taken: a folder is no card, and a device that is
// a card is found without this. A file that is listed already, also by another path, keeps its
// line.
[[nodiscard]] CardFileTaken AddCardFile(const std::string& path);

}  // namespace sectorbox
