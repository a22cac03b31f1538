#pragma once

#include <functional>
#include <string>

#include "link/wire/Link.h"

namespace sectorbox {

// Runs one command at the BBC's prompt; this call puts the star in front. show gets the output
// piece by piece, with CR LF for every CR, as long as the BBC sends. A piece ends with a tenth of a
// second of silence. The command ends if nothing comes in another second.
//
// True if the command ran. False if it failed; a box has shown the BBC's own error text then, or
// the words for no answer. Output without an end is such a failure: more than a megabyte, or more
// than a minute beyond the time that its bytes take on the line. This call doesn't connect: it
// opens a closed port with the settings that it has. If the last transfer left AbortRequested set,
// every command fails at once. If AbortRequested is set while the output comes in, the command ends
// behind the piece that has come.
[[nodiscard]] bool RunStarCommand(Link& link, const std::string& command,
                                  const std::function<void(const std::string&)>& show);

}  // namespace sectorbox
