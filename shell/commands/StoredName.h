#pragma once

#include <string>

#include "disc/format/Format.h"

namespace sectorbox {

// What an entry holds of a name that was typed for it: the first ten characters, up to a carriage
// return.
inline std::string StoredName(const std::string& typed) {
  const std::string kept = typed.substr(0, format::kNameLength);
  return kept.substr(0, kept.find('\r'));
}

}  // namespace sectorbox
