#pragma once

#include <functional>

#include "link/wire/Link.h"

// Sends the first programs to a BBC that has none, over the bare line at 1200 baud. Nothing is read
// back: what goes wrong shows on the BBC's own screen. Link::AbortRequested is the state of the
// dialog here: true means idle, a send clears it, and Cancel sets it and so stops the send.
//
// Both leave the port closed and set to 19200 baud, whatever speed is ticked: the next transfer
// connects at 1200 baud again. Both read a companion file from the program's folder; a missing one
// is created, empty. If the port or a file fails, they throw HostError, and the port is closed.
// If the silence of the link is watched, and the BBC takes no byte for a minute, they throw
// BbcSilent (Silence.h).
namespace sectorbox {

// Called with 0 to 100, at the start and after each line or byte that was sent.
using BootstrapProgress = std::function<void(double percent)>;

// Types "adfsxfer.bas" at the BASIC prompt, line by line. Then it types REM lines that tell the
// user at the BBC what to do next, also after a Cancel, and gives the BBC its keyboard back.
void SendBasicProgram(Link& link, const BootstrapProgress& progress);

// Types a loader of six lines and sends it the bytes of "aform". After a Cancel nothing more is
// sent: the loader on the BBC waits until the user presses BREAK there.
void SendFormatProgram(Link& link, const BootstrapProgress& progress);

}  // namespace sectorbox
