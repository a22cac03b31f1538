#pragma once

#include <cstdint>
#include <string>

#include "disc/change/Outcome.h"
#include "disc/format/Entry.h"
#include "disc/store/Disc.h"

// Small steps that the changes to a directory share.
namespace sectorbox {

// Shows the message and gives kRefused. An operation that can't be done ends with it.
[[nodiscard]] Outcome Refuse(Disc& disc, const std::string& message);

// The number in eight hex digits. Each pair of digits is read by itself, so that a wrong character
// spoils only its own pair.
[[nodiscard]] std::uint32_t ParseAddress(const std::string& digits);

// A directory holds its own name, with attributes, besides the name in its entry. This copies that
// many bytes from the start of the entry's name field into the directory that the entry leads to.
// Nothing happens for the entry of a file. Nothing happens either if no directory is at the entry's
// start sector: on a damaged disc the bytes would land in something else.
void CopyNameToDirectory(Disc& disc, const Entry& entry, std::int32_t bytes);

}  // namespace sectorbox
