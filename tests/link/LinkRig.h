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
    Port.Settings("19200,N,8,1");
    Port.Open();
    Host.Log.clear();
  }
};

}  // namespace sectorbox::testing
