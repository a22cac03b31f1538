#pragma once

#include <memory>
#include <string>

#include "shell/program/ProgramEnd.h"
#include "shell/program/frmMain.h"

namespace sectorbox {

// What the start of the program takes from the system. A test gives other hooks, so that it doesn't
// wait for four seconds and doesn't end.
class StartHooks : public ProgramEnd {
 public:
  // A clock of any origin, in seconds with fractions.
  virtual double Seconds() = 0;
  // Lets window events run for a moment.
  virtual void Pump() = 0;
  // Called after frmMain was made and before it is loaded.
  virtual void Created(frmMain&) {}
};

// The system's own hooks. EndProgram ends the process.
class SystemHooks : public StartHooks {
 public:
  double Seconds() override;
  void Pump() override;
  void EndProgram(int status) override;
};

// The one way into the program: the splash, then the main window. Between the splash's end and the
// main window's load there is nothing on the screen. disc, host and hooks outlive the window. Gives
// null if the program must not go on. A box has told the user then, and EndProgram was called.
[[nodiscard]] std::unique_ptr<frmMain> StartProgram(Disc& disc, WindowHost& host, StartHooks& hooks,
                                                    const std::string& commandLine);

}  // namespace sectorbox
