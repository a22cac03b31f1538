#pragma once

#include <cstdint>

#include "link/wire/LinkHost.h"
#include "link/wire/SerialPort.h"
#include "link/wire/TraceLog.h"

namespace sectorbox {

// The time-out of a wait. It fires once, inside the event pump, and only sets Link::TimedOut.
struct LinkTimer {
  std::int32_t Interval = 0;  // milliseconds; each operation that waits sets its own
  bool Enabled = false;
  std::int64_t Due = 0;  // on the clock of LinkHost::Milliseconds
};

// The state that all operations of the link share. Each program has one; a test makes its own. port
// and host outlive it.
//
// Handlers inside the event pump write both flags, and the loops read them at fixed points. So a
// change is seen at the next poll and never in the middle of a step.
struct Link {
  Link(SerialPort& port, LinkHost& host) : Port(port), Host(host) {}

  SerialPort& Port;
  LinkHost& Host;

  bool AbortRequested = false;  // Abort and Cancel set it; it stays as the last transfer left it
  bool TimedOut = false;        // Timer4 has fired since the last ReadByte began
  LinkTimer Timer4;
  TraceLog TraceFile;
};

// Starts Timer4: it is due when its interval has passed from now on.
void EnableTimer(Link& link);
// The event pump of every wait. It runs the host's events, and fires Timer4 if its time has come.
void PumpEvents(Link& link);

}  // namespace sectorbox
