#pragma once

#include <QString>
#include <string>
#include <string_view>

// Text between plain C++ and widgets.
namespace sectorbox {

// The BBC's text is bytes, one a character; each byte becomes the Unicode character of its number.
[[nodiscard]] QString FromBbc(std::string_view bytes);
// Back again. A character above 255 has no byte and becomes "?".
[[nodiscard]] std::string ToBbc(const QString& text);
// The same for a name or title that a user has typed. There a character above 255 becomes byte 255,
// which no name and no title may hold, so that the disc refuses it. It would take a "?".
[[nodiscard]] std::string TypedToBbc(const QString& text);

// Paths and messages of the host, in the host's own 8-bit encoding. A path that goes through
// FromHost and ToHost comes back the same, if the host's encoding can write it.
[[nodiscard]] QString FromHost(const std::string& text);
[[nodiscard]] std::string ToHost(const QString& text);

}  // namespace sectorbox
