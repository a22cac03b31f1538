#include "disc/host/HostSignals.h"

#include <array>
#include <cerrno>
#include <csignal>

#include "disc/host/TemporaryFiles.h"

namespace sectorbox {
namespace {

// The signals that end a program and can be caught, apart from those that tell of a fault in the
// program itself.
constexpr std::array kEndingSignals = {SIGHUP,  SIGINT,  SIGQUIT, SIGPIPE,   SIGALRM, SIGTERM,
                                       SIGUSR1, SIGUSR2, SIGXCPU, SIGVTALRM, SIGPROF};

volatile std::sig_atomic_t interrupted = 0;

// Everything that these handlers call may be called in a handler.
void RemoveAndEnd(int signal) {
  RemoveTemporaryFiles();
  // The signal has its default action again (SA_RESETHAND) and is held back until this function
  // returns. So the program ends by it, and its status tells the signal.
  (void)::raise(signal);
}

void Handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESETHAND;
  ::sigemptyset(&action.sa_mask);
  ::sigaction(signal, &action, nullptr);
}

void NoteInterrupt(int signal) {
  const int error = errno;
  interrupted = 1;
  Handle(signal, RemoveAndEnd);  // a second Ctrl-C ends the program at once
  errno = error;
}

}  // namespace

void RemoveTemporaryFilesAtSignals() {
  for (const int signal : kEndingSignals) {
    struct sigaction former {};
    // What the user has the program ignore (nohup) doesn't end it.
    if (::sigaction(signal, nullptr, &former) != 0 || former.sa_handler == SIG_IGN) continue;
    Handle(signal, RemoveAndEnd);
  }
}

void CatchInterrupt() {
  interrupted = 0;
  Handle(SIGINT, NoteInterrupt);
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
