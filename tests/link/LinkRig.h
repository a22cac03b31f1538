#pragma once

#include <string>
#include <vector>

#include "link/wire/Link.h"
#include "tests/support/NoiseDiscs.h"
#include "tests/support/ScriptedLinkHost.h"
#include "tests/support/SimulatedBbc.h"
#include "tests/support/TempFolder.h"
#include "tests/support/VirtualLine.h"

namespace sectorbox::testing {

// A PC, a cable and a BBC in virtual time. Port and host write into one log, in order.
struct LinkRig {
  VirtualClock Clock;
  SimulatedBbc Bbc;
  ScriptedLinkHost Host{Clock};
  VirtualPort Port{Clock, Bbc, &Host.Log};
  Link TheLink{Port, Host};
  TempFolder Folder;

  LinkRig() { TheLink.Port.Settings("1200,N,8,1"); }

  // Opens the port, and connects the server at 19200 baud.
  void Connect() {
    Bbc.Speed = 19200;
    SetSpeed(TheLink, 19200);
    Port.Open();
    Host.Log.clear();
  }
};

// A disc of eight sectors, of which only the last is free. Sector 2 begins with an ESC.
inline std::vector<std::uint8_t> DiscOfEightSectors() {
  std::vector<std::uint8_t> disc(8 * 256, 0);
  disc[252] = 8;
  disc[510] = 3;
  disc[0] = 7;
  disc[256] = 1;
  disc[2 * 256] = 0x1B;
  return disc;
}

}  // namespace sectorbox::testing
