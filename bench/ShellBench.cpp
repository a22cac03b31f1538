// The window's figures: processor time from the start of the program to a filled window, without
// the splash, and the time to refill the list when a directory is selected. Offscreen.
//
//   shell_bench IMAGE
//
// Prints milliseconds. The limits: start 400, refill 16.

#include <QElapsedTimer>
#include <QSettings>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "disc/store/Disc.h"
#include "shell/panes/Panes.h"
#include "shell/program/Application.h"
#include "shell/program/Program.h"
#include "shell/program/WindowHost.h"

namespace {

double ProcessorMilliseconds() {
  return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// A clock on which the four seconds of the splash pass at once.
class QuickHooks : public sectorbox::StartHooks {
 public:
  double Seconds() override { return now_ += 10; }
  void Pump() override {}
  void EndProgram(int status) override { std::exit(status); }

 private:
  double now_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  using namespace sectorbox;
  if (argc != 2) {
    std::fprintf(stderr, "usage: shell_bench IMAGE\n");
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QTemporaryDir settings;
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
  Application application(argc, argv);
  WindowHost host;
  Disc disc(host);
  QuickHooks hooks;
  const auto window = StartProgram(disc, host, hooks, "\"" + std::string(argv[1]) + "\"");
  QCoreApplication::processEvents();
  std::printf("start: %.1f ms of processor time\n", ProcessorMilliseconds());

  constexpr int kRounds = 50;
  DirTree& tree = window->ThePanes().Tree();
  double worst = 0;
  double sum = 0;
  int fills = 0;
  for (int round = 0; round < kRounds; ++round) {
    for (QTreeWidgetItemIterator i(&tree); *i != nullptr; ++i) {
      QElapsedTimer timer;
      timer.start();
      window->ThePanes().tvwDB_NodeClick(static_cast<DirNode&>(**i));
      QCoreApplication::processEvents();
      const double took = static_cast<double>(timer.nsecsElapsed()) / 1e6;
      worst = std::max(worst, took);
      sum += took;
      ++fills;
    }
  }
  std::printf("refill: %.2f ms on average, %.2f ms at worst, of %d\n", sum / fills, worst, fills);
  std::fflush(stdout);
  std::_Exit(0);
}
