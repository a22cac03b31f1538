#include "disc/host/HostSignals.h"

#include <csignal>

namespace sectorbox {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void NoteInterrupt(int) {
  interrupted = 1;
}

}  // namespace

void CatchInterrupt() {
  interrupted = 0;
  struct sigaction action {};
  action.sa_handler = NoteInterrupt;
  action.sa_flags = SA_RESETHAND;  // a second Ctrl-C ends the program at once
  ::sigemptyset(&action.sa_mask);
  ::sigaction(SIGINT, &action, nullptr);
}

bool TakeInterrupt() {
  if (interrupted == 0) return false;
  interrupted = 0;
  return true;
}

void MakeFileLimitAnError() {
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace sectorbox
