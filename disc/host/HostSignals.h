#pragma once

// What the host sends a running program without being asked.
namespace sectorbox {

// After this call a signal that ends the program first takes the temporary files away
// (TemporaryFiles.h). The program then ends by that signal, as its status tells. A signal that the
// program was started to ignore stays ignored. The journals of changes stay.
void RemoveTemporaryFilesAtSignals();

// Ctrl-C ends a program where it happens to be. After this call the first Ctrl-C is only kept for
// TakeInterrupt, so that a command can end by itself; the second one takes the temporary files away
// and ends the program.
void CatchInterrupt();
// True once after a Ctrl-C has come; false again from then on.
[[nodiscard]] bool TakeInterrupt();

// After this call a file that grows over the user's limit is a failed write, with an error as any
// other, and no longer the sudden end of the program.
void MakeFileLimitAnError();

}  // namespace sectorbox
