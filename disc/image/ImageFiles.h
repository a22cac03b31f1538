#pragma once

#include <cstdint>
#include <string>

#include "disc/medium/MediumKinds.h"

// What the kinds of image files are called, and which kind a disc is saved as. All of it is read
// from the table of kinds.
namespace sectorbox {

// The filter of a dialog that takes every kind of image file: a text for the user, a bar, and the
// patterns of the names.
[[nodiscard]] std::string FilterOfImageFiles();
// The filter of a dialog that takes one kind; label begins its text for the user.
[[nodiscard]] std::string FilterOfKind(const std::string& label, DiscType type);

// The kind of file for a disc of that many sectors: one of the floppy sizes, or else a hard disc.
[[nodiscard]] DiscType KindOfDiscSize(std::int32_t sectors);
// The kind whose usual extension the file name has, in capitals or small letters. Null if it is no
// kind's.
[[nodiscard]] const MediumKind* KindOfExtension(const std::string& fileName);

}  // namespace sectorbox
