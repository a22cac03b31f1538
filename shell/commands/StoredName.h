#pragma once

#include <string>

#include "disc/format/Format.h"

namespace sectorbox {

// The part of a typed name that an entry holds: its first ten characters, up to a carriage return.
[[nodiscard]] inline std::string StoredName(const std::string& typed) {
  const std::string kept = typed.substr(0, format::kNameLength);
  return kept.substr(0, kept.find('\r'));
}

}  // namespace sectorbox
