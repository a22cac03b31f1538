// A pseudo-terminal for a program that has none: prints the path of the terminal's slave side on a
// line of its own and then carries bytes, standard input to the terminal and the terminal to
// standard output, until standard input ends. The slave may be opened and closed as often as a
// serial port is: we hold it open too, so that nothing on the line is lost in between.

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// Opens both sides in raw mode and returns the master; -1 if the system has no terminals left.
int OpenTerminal() {
  const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
  if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) return -1;
  const char* const name = ::ptsname(master);
  if (name == nullptr) return -1;
  const int slave = ::open(name, O_RDWR | O_NOCTTY);
  termios mode{};
  if (slave < 0 || ::tcgetattr(slave, &mode) != 0) return -1;
  ::cfmakeraw(&mode);
  if (::tcsetattr(slave, TCSANOW, &mode) != 0) return -1;
  ::fcntl(master, F_SETFL, O_NONBLOCK);
  std::printf("%s\n", name);
  std::fflush(stdout);
  return master;
}

// Adds what can be read to `queue`; false at the end of the file.
bool Fetch(int file, std::string& queue) {
  std::array<char, 4096> bytes;
  const ssize_t got = ::read(file, bytes.data(), bytes.size());
  if (got > 0) queue.append(bytes.data(), static_cast<std::size_t>(got));
  return got > 0;
}

void Deliver(int file, std::string& queue) {
  const ssize_t put = ::write(file, queue.data(), queue.size());
  if (put > 0) queue.erase(0, static_cast<std::size_t>(put));
}

}  // namespace

int main() {
  const int master = OpenTerminal();
  if (master < 0) {
    std::perror("PtyBridge");
    return EXIT_FAILURE;
  }
  std::string toTerminal;
  std::string toOutput;
  for (;;) {
    const short terminalEvents = static_cast<short>(POLLIN | (toTerminal.empty() ? 0 : POLLOUT));
    std::array<pollfd, 3> files = {{{STDIN_FILENO, POLLIN, 0},
                                    {master, terminalEvents, 0},
                                    {toOutput.empty() ? -1 : STDOUT_FILENO, POLLOUT, 0}}};
    if (::poll(files.data(), files.size(), -1) < 0) return EXIT_FAILURE;
    if (files[0].revents != 0 && !Fetch(STDIN_FILENO, toTerminal)) return EXIT_SUCCESS;
    if ((files[1].revents & POLLIN) != 0) Fetch(master, toOutput);
    if ((files[1].revents & POLLOUT) != 0) Deliver(master, toTerminal);
    if (files[2].revents != 0) Deliver(STDOUT_FILENO, toOutput);
  }
}
