#pragma once

#include <cstddef>
#include <cstdint>

#include "link/wire/LinkHost.h"
#include "link/wire/Protocol.h"
#include "link/wire/SerialPort.h"
#include "link/wire/TraceLog.h"

namespace sectorbox {

// The time-out of a wait. It fires once, inside the event pump, and only sets Link::TimedOut.
struct LinkTimer {
  std::int32_t Interval = 0;  // milliseconds; each operation that waits sets its own
  bool Enabled = false;
  std::int64_t Due = 0;  // on the clock of LinkHost::Milliseconds
};

// For how long nothing valid has come (Silence.h).
struct SilenceState {
  bool Watched = false;           // a wait that lasts too long ends the operation
  std::int64_t LastValid = 0;     // on the clock of LinkHost::Milliseconds
  std::size_t ExchangeBytes = 0;  // what the exchange that runs may carry
  bool DiscAtWork = false;        // a transfer runs: CTS or DSR are down while the BBC's disc works
  std::int64_t LinesDown = 0;     // milliseconds of that since LastValid
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
  std::int32_t Speed = wire::kBootstrapSpeed;  // of the port's settings, in baud
  // No answer that can still be on its way has more bytes: what a reset throws away at most.
  std::size_t LongestAnswer = wire::kLongestReply;
  SilenceState Silence;
  TraceLog TraceFile;
};

// Gives the port the settings for a speed.
void SetSpeed(Link& link, std::int32_t speed);
// The milliseconds that so many bytes take at the port's speed; a byte goes as ten bits.
[[nodiscard]] std::int64_t TimeOnTheLine(const Link& link, std::size_t bytes);

// Starts Timer4: it is due when its interval has passed from now on.
void EnableTimer(Link& link);
// The event pump of every wait. It runs the host's events, and fires Timer4 if its time has come.
// If the silence is watched and has lasted too long, this throws BbcSilent (Silence.h).
void PumpEvents(Link& link);

}  // namespace sectorbox
