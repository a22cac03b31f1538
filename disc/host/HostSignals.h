#pragma once

// What the host sends a running program without being asked.
namespace sectorbox {

// Ctrl-C ends a program where it happens to be. After this call the first Ctrl-C is only kept for
// TakeInterrupt, so that a command can end by itself; the second one ends the program.
void CatchInterrupt();
// True once after a Ctrl-C has come; false again from then on.
[[nodiscard]] bool TakeInterrupt();

// After this call a file that grows over the user's limit is a failed write, with an error as any
// other, and no longer the sudden end of the program.
void MakeFileLimitAnError();

}  // namespace sectorbox
