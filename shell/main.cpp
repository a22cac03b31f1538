#include "cfcard/CardDrives.h"
#include "disc/Disc.h"
#include "shell/Application.h"
#include "shell/Program.h"
#include "shell/WindowHost.h"

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
