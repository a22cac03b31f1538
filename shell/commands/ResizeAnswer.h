#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace sectorbox {

// The tracks of a disc of that many megabytes, 32 to each, to the nearest whole number; none if the
// text is no number, or if no map could record the size (1 to 16777215 sectors, at 132 a track).
std::optional<std::int32_t> TracksOfAnswer(const QString& text);

}  // namespace sectorbox
