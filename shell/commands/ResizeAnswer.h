#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace sectorbox {

// The tracks of a disc of that many megabytes: 32 for each megabyte, to the nearest whole number.
// Nothing if the text is no number, or if no map could record the size: a map records 1 to 16777215
// sectors, and a track has 132.
[[nodiscard]] std::optional<std::int32_t> TracksOfAnswer(const QString& text);

}  // namespace sectorbox
