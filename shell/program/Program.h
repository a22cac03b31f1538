#pragma once

#include <functional>
#include <memory>
#include <string>

#include "shell/program/frmMain.h"

namespace sectorbox {

// What the start of the program takes from the system, so that a test can do without four seconds
// and without ending.
struct StartHooks {
  std::function<double()> Clock;        // seconds, with fractions
  std::function<void()> Pump;           // lets window events run for a moment
  std::function<void(int)> EndProgram;  // ends the program with a status
  std::function<void(frmMain&)>
      Created;  // after frmMain was made and before it is loaded; may be empty
};

// The system's own hooks. EndProgram ends the process at once.
StartHooks SystemHooks();

// The one way into the program: the splash, then the main window. Between the splash's end and the
// main window's load there is nothing on the screen. disc and host outlive the window. Gives null
// if the program must not go on: the user has been told, and EndProgram was called.
std::unique_ptr<frmMain> StartProgram(Disc& disc, WindowHost& host, const StartHooks& hooks,
                                      const std::string& commandLine);

}  // namespace sectorbox
