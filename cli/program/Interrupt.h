#pragma once

// Ctrl-C as Abort, for commands that end better by themselves than where they happen to be.
namespace sectorbox::cli {

// From here on the first Ctrl-C is kept for TakeInterrupt, and the second ends the program.
void CatchInterrupt();
// True once for a Ctrl-C that has come.
bool TakeInterrupt();

}  // namespace sectorbox::cli
