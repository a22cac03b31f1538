#include "cfcard/cards/CardDrives.h"
#include "disc/host/HostSignals.h"
#include "disc/store/Disc.h"
#include "shell/program/Application.h"
#include "shell/program/Program.h"
#include "shell/program/WindowHost.h"

int main(int argc, char** argv) {
  using namespace sectorbox;
  MakeFileLimitAnError();
  RemoveTemporaryFilesAtSignals();
  Application application(argc, argv);
  // The desktop passes one path, and its quotes are part of the argument. A path with blanks and
  // without quotes arrives as several arguments.
  std::string commandLine;
  for (int i = 1; i < argc; ++i) commandLine += (i == 1 ? "" : " ") + std::string(argv[i]);
  WindowHost host;
  Disc disc(host, MakeCardDevice(host.Drives));
  SystemHooks hooks;
  const auto window = StartProgram(disc, host, hooks, commandLine);
  return window == nullptr ? 1 : Application::exec();
}
