#include "shell/program/Program.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <cstdlib>

#include "shell/dialogs/frmSplash.h"

namespace sectorbox {

double SystemHooks::Seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Handles events and then rests for a moment, so that the wait for the splash doesn't keep a
// processor busy.
void SystemHooks::Pump() {
  QEventLoop loop;
  QTimer::singleShot(20, &loop, &QEventLoop::quit);
  loop.exec();
}

void SystemHooks::EndProgram(int status) {
  std::_Exit(status);
}

std::unique_ptr<frmMain> StartProgram(Disc& disc, WindowHost& host, StartHooks& hooks,
                                      const std::string& commandLine) {
  std::unique_ptr<frmMain> window;
  {
    frmSplash splash;
    ShowSplash(
        splash, [&hooks] { return hooks.Seconds(); }, [&hooks] { hooks.Pump(); });
    window = std::make_unique<frmMain>(disc, host, hooks);
    hooks.Created(*window);
  }
  try {
    window->Load(commandLine);
  } catch (const std::exception& error) {
    window->Fail(QString::fromLocal8Bit(error.what()));
    return nullptr;
  }
  return window;
}

}  // namespace sectorbox
