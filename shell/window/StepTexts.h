#pragma once

#include <string>

#include "disc/store/Disc.h"

// The words of what a command has done.
namespace sectorbox {

// "1 Object", "3 Objects": a count and what is counted.
[[nodiscard]] inline std::string CountOf(int count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// Panel 2 says what was deleted, and which key brings it back.
inline void TellDeleted(Disc& disc, const std::string& what) {
  disc.Host.Note(what + " deleted - Ctrl+Z takes it back");
}

}  // namespace sectorbox
