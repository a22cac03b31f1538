#pragma once

#include <string>
#include <string_view>

#include "link/wire/Link.h"

// The trace: the link's only log of what went over the wire and what was decided. It goes to the
// trace window, to the log file, to both or to neither.
namespace sectorbox {

// text ends in CR. The line gets date, time and a blank in front, and every CR becomes CR LF.
void TraceLine(Link& link, const std::string& text);

// A dump of sixteen bytes a line: direction, offset in hex, the bytes, and the text with bit 7
// ignored. No bytes give no line.
void TraceHex(Link& link, std::string_view bytes, bool isTx);

// The entry "To File...": asks for the log, asks about an existing one, and opens it. Until another
// is chosen or the program ends there is no way to stop it. Failures are shown and end the choice.
void ChooseTraceFile(Link& link);

// Every CR replaced by CR LF; an LF that is there already stays as it is.
std::string ExpandCarriageReturns(std::string_view text);

}  // namespace sectorbox
