#include "tests/support/PtyBbc.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

namespace sectorbox::testing {

PtyBbc::PtyBbc() {
  master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0) {
    throw std::runtime_error("no pseudo-terminal");
  }
  device_ = ::ptsname(master_);
  slave_ = ::open(device_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  termios mode{};
  ::tcgetattr(slave_, &mode);
  ::cfmakeraw(&mode);
  ::tcsetattr(slave_, TCSANOW, &mode);
}

PtyBbc::~PtyBbc() {
  Stop();
  if (master_ >= 0) ::close(master_);
  if (slave_ >= 0) ::close(slave_);
}

void PtyBbc::Start() {
  if (TakesNothing) ::tcflow(slave_, TCOOFF);
  stop_ = false;
  thread_ = std::thread([this] { Run(); });
}

void PtyBbc::Stop() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
  if (TakesNothing && slave_ >= 0) ::tcflow(slave_, TCOON);
}

void PtyBbc::Unplug() {
  Stop();
  ::close(slave_);
  ::close(master_);
  slave_ = master_ = -1;
}

void PtyBbc::Send(const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size() && !stop_) {
    const ssize_t written = ::write(master_, bytes.data() + done, bytes.size() - done);
    if (written > 0) {
      done += static_cast<std::size_t>(written);
      continue;
    }
    pollfd waiting{master_, POLLOUT, 0};
    ::poll(&waiting, 1, 10);
  }
}

bool PtyBbc::IsFlooding() const {
  return !Flood.empty() && Bbc.Heard.size() >= FloodAfterCommands;
}

// One turn of the flood. What the PC doesn't take is lost.
void PtyBbc::SendFlood() {
  if (FloodMilliseconds > 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(FloodMilliseconds));
    const char byte = Flood[flooded_++ % Flood.size()];
    (void)!::write(master_, &byte, 1);
  } else if (::write(master_, Flood.data(), Flood.size()) < 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void PtyBbc::Run() {
  for (;;) {
    if (IsFlooding()) {
      if (stop_) return;
      SendFlood();
    }
    pollfd waiting{master_, POLLIN, 0};
    if (::poll(&waiting, 1, IsFlooding() ? 0 : 10) <= 0) {
      if (stop_) return;
      continue;
    }
    std::uint8_t bytes[4096];
    const ssize_t got = ::read(master_, bytes, sizeof bytes);
    for (ssize_t i = 0; i < got; ++i) {
      bytes_ += static_cast<char>(bytes[i]);
      ++received_;
      Bbc.Receive(bytes[i]);
      for (const auto& burst : Bbc.TakeOutput()) {
        if (IsFlooding()) continue;
        std::this_thread::sleep_for(std::chrono::milliseconds(burst.DelayMilliseconds));
        Send(burst.Bytes);
      }
    }
  }
}

}  // namespace sectorbox::testing
