#pragma once

#include <QString>
#include <string>
#include <string_view>

// Text at the edge between plain C++ and widgets.
namespace sectorbox {

// The BBC's text is bytes, one a character; each byte becomes the Unicode character of its number.
QString FromBbc(std::string_view bytes);
// Back again. A character above 255 has no byte and becomes "?".
std::string ToBbc(const QString& text);
// The same for a name or title that a user has typed, where "?" would be one that the disc takes:
// here such a character becomes byte 255, which no name and no title may hold.
std::string TypedToBbc(const QString& text);

// Paths and messages of the host, in the host's own 8-bit encoding. A path given to FromHost and
// back is the same path wherever the host's encoding can write it.
QString FromHost(const std::string& text);
std::string ToHost(const QString& text);

}  // namespace sectorbox
