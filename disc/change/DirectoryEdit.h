#pragma once

#include <cstdint>
#include <string>

#include "disc/catalogue/Directories.h"
#include "disc/change/Outcome.h"
#include "disc/store/Disc.h"

// Small steps that the changes to a directory share.
namespace sectorbox {

// Shows the message and gives kRefused: the end of an operation that can't be done.
[[nodiscard]] Outcome Refuse(Disc& disc, const std::string& message);

// Eight hex digits taken by pairs, so that what is wrong in one pair leaves the others alone.
[[nodiscard]] std::uint32_t ParseAddress(const std::string& digits);

// A directory carries its own name, attributes included: puts the first bytes of the entry's name
// there too. Nothing for a file's entry, nor for one that leads to no directory (on a damaged disc
// those bytes would land in something else).
void CopyNameToDirectory(Disc& disc, const Entry& entry, std::int32_t bytes);

}  // namespace sectorbox
