#pragma once

#include <QString>

#include "cfcard/CardDrives.h"

// The files that the user keeps raw cards in: setting "CardFiles", one path a line.
namespace sectorbox {

void ReadCardFiles(CardDrives& drives);
// Adds a path to the setting unless it is there.
void AddCardFile(const QString& path);

}  // namespace sectorbox
