#pragma once

#include <cstdint>

#include "link/wire/LinkHost.h"
#include "link/wire/SerialPort.h"
#include "link/wire/TraceLog.h"

namespace sectorbox {

// The one-shot time-out. It runs inside the event pump and does nothing but set Link::TimedOut.
struct LinkTimer {
  std::int32_t Interval = 0;  // milliseconds; rewritten by each waiting operation
  bool Enabled = false;
  std::int64_t Due = 0;
};

// The state that all operations of the link share. There is one in each program; a test makes its
// own. port and host outlive it.
//
// Both flags are written by handlers inside the pump and read at fixed points by the loops, so a
// change is seen at the next poll and never in the middle of a step.
struct Link {
  Link(SerialPort& port, LinkHost& host) : Port(port), Host(host) {}

  SerialPort& Port;
  LinkHost& Host;

  bool AbortRequested = false;  // set by Abort and Cancel; stays as the last transfer left it
  bool TimedOut = false;
  LinkTimer Timer4;
  TraceLog TraceFile;
};

// Starts Timer4 with the interval that it holds, from now on.
void EnableTimer(Link& link);
// The event pump of every wait: the host's, and Timer4 if its time has come.
void PumpEvents(Link& link);

}  // namespace sectorbox
