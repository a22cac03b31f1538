#pragma once

#include <cstddef>
#include <stdexcept>

#include "link/wire/Link.h"

// The end of a program that nobody watches. In the window a transfer is tried again until the user
// presses Abort. A script has no such user, so sbx gives up if nothing valid has come for a minute.
namespace sectorbox {

// Nothing valid has come for too long. Only a link with WatchSilence throws it, in a wait.
class BbcSilent : public std::runtime_error {
 public:
  BbcSilent() : std::runtime_error("The BBC Has Stopped Answering") {}
};

// From now on a wait throws BbcSilent if nothing valid has come for a minute.
void WatchSilence(Link& link);

// Something valid has come: the minute begins anew. Bytes alone are nothing valid: only what brings
// the operation forward is. Where the BBC says nothing at all, as in a bootstrap, these are the
// bytes that it takes.
void NoteValid(Link& link);

// The exchange that begins carries up to so many bytes, counted as the worst stream (twice its
// data). The time that these take on the line comes on top of the minute: at 1200 baud a single
// chunk takes longer than a minute, and it may fail once.
void NoteExchange(Link& link, std::size_t bytes);

// The BBC holds CTS or DSR down, and has done so for these milliseconds. In a transfer this means
// that its filing system is at work: it tries a bad sector for more than a minute. So this time
// doesn't count, up to two minutes.
void NoteLinesDown(Link& link, std::int64_t milliseconds);

// Throws BbcSilent if the time is over. Called at every poll of a wait. After an Abort nothing is
// thrown: the user has ended the operation already.
void CheckSilence(Link& link);

}  // namespace sectorbox
