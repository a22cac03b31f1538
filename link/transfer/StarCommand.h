#pragma once

#include <functional>
#include <string>

#include "link/wire/Link.h"

namespace sectorbox {

// Runs one command at the BBC's prompt; the star is put in front here. Its output goes piece by
// piece to show, with every CR as CR LF, for as long as the BBC keeps sending: a piece ends with a
// tenth of a second of silence, the command when nothing came in a further second.
//
// True when the command ran. False when it failed; the BBC's own error text, or the words for no
// answer, have then been shown. Doesn't connect: the port is opened at the settings that stand.
// An AbortRequested that the last transfer left set makes every command fail at once; one that
// comes while the output is collected ends that behind the piece at hand.
bool RunStarCommand(Link& link, const std::string& command,
                    const std::function<void(const std::string&)>& show);

}  // namespace sectorbox
