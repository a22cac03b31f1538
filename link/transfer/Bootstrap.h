#pragma once

#include <functional>

#include "link/wire/Link.h"

// Getting the first programs onto a BBC that has none, over the bare line at 1200 baud. Nothing is
// read back: what goes wrong shows on the BBC's own screen. AbortRequested is the state of the
// dialog here: true is idle, Go clears it, Cancel sets it and so stops a send.
//
// Both leave the port closed and set to 19200 baud, whatever speed is ticked: the next transfer
// connects at 1200 again. Both take a companion file from beside the program; a missing one comes
// into being empty. progress gets 0 to 100. A failing port or file is a HostError, with the port
// closed.
namespace sectorbox {

using BootstrapProgress = std::function<void(double percent)>;

// Types "adfsxfer.bas" at the BASIC prompt, line by line, then REM lines that tell the user at the
// BBC what to do next, also after a Cancel, and gives the BBC its keyboard back.
void SendBasicProgram(Link& link, const BootstrapProgress& progress);

// Types a six-line loader and feeds it the bytes of "aform". After a Cancel nothing more is sent:
// the loader on the BBC goes on waiting until BREAK is pressed there.
void SendFormatProgram(Link& link, const BootstrapProgress& progress);

}  // namespace sectorbox
