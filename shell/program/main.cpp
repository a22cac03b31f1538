#include "cfcard/cards/CardDrives.h"
#include "disc/store/Disc.h"
#include "shell/program/Application.h"
#include "shell/program/Program.h"
#include "shell/program/WindowHost.h"

int main(int argc, char** argv) {
  using namespace sectorbox;
  Application application(argc, argv);
  // One path, in quotes that are part of the argument. An unquoted path with blanks arrives as
  // several arguments.
  std::string commandLine;
  for (int i = 1; i < argc; ++i) commandLine += (i == 1 ? "" : " ") + std::string(argv[i]);
  WindowHost host;
  Disc disc(host, MakeCardDevice(host.Drives));
  const auto window = StartProgram(disc, host, SystemHooks(), commandLine);
  return window == nullptr ? 1 : Application::exec();
}
