#pragma once

#include <string>
#include <string_view>

#include "link/wire/Link.h"

// The trace tells what went over the wire and what the link decided; the link has no other log. It
// goes to the trace window if that is open, and to the log file if the user has chosen one.
namespace sectorbox {

// The title of the dialog in which the user chooses the log. A host knows by it that the file isn't
// for a disc.
inline constexpr char kTraceFileTitle[] = "Open Trace Log File";

// Traces one line. text ends in CR. Date, time and a blank are put in front of it, and every CR
// becomes CR LF.
void TraceLine(Link& link, const std::string& text);

// Traces a dump of bytes, sixteen a line: direction, offset in hex, the bytes in hex, and the bytes
// as text with bit 7 ignored. No bytes give no line.
void TraceHex(Link& link, std::string_view bytes, bool isTx);

// Asks for the log file, asks whether an existing one is to be replaced, and opens it. The log goes
// on until the user chooses another file or the program ends. A failure of the host is shown and
// ends the choice.
void ChooseTraceFile(Link& link);

// The text with CR LF for every CR. An LF that is there already stays.
[[nodiscard]] std::string ExpandCarriageReturns(std::string_view text);

}  // namespace sectorbox
