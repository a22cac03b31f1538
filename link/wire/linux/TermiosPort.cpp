#include "link/wire/linux/TermiosPort.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <thread>

#include "disc/host/HostError.h"
#include "link/wire/Protocol.h"

namespace sectorbox {
namespace {

using Clock = std::chrono::steady_clock;

// The system's codes for wire::kSpeeds, in the same order.
constexpr std::array<speed_t, wire::kSpeeds.size()> kSpeedCodes = {B19200, B9600, B4800, B2400,
                                                                   B1200};

// How long Close waits while no byte of the queue goes out.
constexpr std::chrono::milliseconds kDrainPatience{2000};

speed_t SpeedCode(std::int32_t speed) {
  const auto found = std::find(wire::kSpeeds.begin(), wire::kSpeeds.end(), speed);
  if (found == wire::kSpeeds.end()) return B0;
  return kSpeedCodes[static_cast<std::size_t>(found - wire::kSpeeds.begin())];
}

// The speed in a text such as "1200,N,8,1"; 0 if no port can have these settings.
std::int32_t ParseSettings(const std::string& settings) {
  for (const std::int32_t speed : wire::kSpeeds) {
    if (settings == wire::LineSettings(speed)) return speed;
  }
  return 0;
}

bool WouldWait(int errorNumber) {
  return errorNumber == EAGAIN || errorNumber == EWOULDBLOCK || errorNumber == EINTR;
}

}  // namespace

void TermiosPort::Drop() {
  if (file_ >= 0) ::close(file_);
  file_ = -1;
  queued_.clear();
  received_.clear();
}

void TermiosPort::FailWith(int errorNumber) {
  Drop();
  ThrowHostError(device_, errorNumber);
}

void TermiosPort::Settings(const std::string& settings) {
  const std::int32_t speed = ParseSettings(settings);
  if (speed == 0) ThrowHostError(device_ + " at " + settings, EINVAL);
  speed_ = speed;
  if (!PortOpen()) return;
  Drain();
  Apply();
}

void TermiosPort::Open() {
  if (PortOpen()) return;
  // Non-blocking from the first moment: otherwise a device that waits for a carrier would make this
  // call wait.
  file_ = ::open(device_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (file_ < 0) ThrowHostError(device_, errno);
  Apply();
}

void TermiosPort::Apply() {
  termios mode{};
  if (::tcgetattr(file_, &mode) != 0) FailWith(errno);
  ::cfmakeraw(&mode);
  mode.c_cflag |= static_cast<tcflag_t>(CREAD | CLOCAL | CRTSCTS | HUPCL);
  mode.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | PARENB);
  mode.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY);
  // A read that finds no byte fails with "try again" then, while a hang-up gives the end of the
  // file. So the two can be told apart.
  mode.c_cc[VMIN] = 1;
  mode.c_cc[VTIME] = 0;
  ::cfsetispeed(&mode, SpeedCode(speed_));
  ::cfsetospeed(&mode, SpeedCode(speed_));
  if (::tcsetattr(file_, TCSANOW, &mode) != 0) FailWith(errno);
}

void TermiosPort::Close() {
  if (!PortOpen()) return;
  try {
    Drain();
  } catch (const HostError&) {
    // The device is gone: there is nobody left to send to.
  }
  Drop();
}

void TermiosPort::Drain() {
  std::size_t left = OutBufferCount();
  auto lastMove = Clock::now();
  while (left > 0 && Clock::now() - lastMove < kDrainPatience) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const std::size_t now = OutBufferCount();
    if (now < left) lastMove = Clock::now();
    left = now;
  }
  // The system's queue is empty. This call lets out what is still in the device's own registers. It
  // isn't made while bytes are queued, as it would wait for a line that may never rise again.
  if (left == 0 && PortOpen()) ::tcdrain(file_);
}

std::size_t TermiosPort::InBufferCount() {
  if (!PortOpen()) return 0;
  Flush();
  if (!received_.empty()) return received_.size();
  std::array<std::uint8_t, 1024> bytes;
  const ssize_t got = ::read(file_, bytes.data(), bytes.size());
  if (got == 0) FailWith(EIO);
  if (got < 0 && !WouldWait(errno)) FailWith(errno);
  if (got > 0) received_.insert(received_.end(), bytes.begin(), bytes.begin() + got);
  return received_.size();
}

std::uint8_t TermiosPort::Input() {
  if (received_.empty()) return 0;
  const std::uint8_t byte = received_.front();
  received_.pop_front();
  return byte;
}

std::size_t TermiosPort::OutBufferCount() {
  if (!PortOpen()) return 0;
  Flush();
  int inSystem = 0;
  if (::ioctl(file_, TIOCOUTQ, &inSystem) != 0) FailWith(errno);
  return queued_.size() + static_cast<std::size_t>(inSystem > 0 ? inSystem : 0);
}

void TermiosPort::Output(std::string_view bytes) {
  if (!PortOpen()) return;
  queued_ += bytes;
  Flush();
}

void TermiosPort::Flush() {
  while (!queued_.empty()) {
    const ssize_t written = ::write(file_, queued_.data(), queued_.size());
    if (written > 0) {
      queued_.erase(0, static_cast<std::size_t>(written));
      continue;
    }
    if (written < 0 && !WouldWait(errno)) FailWith(errno);
    return;
  }
}

bool TermiosPort::LineIsUp(int line) {
  if (!PortOpen()) return true;
  int lines = 0;
  if (::ioctl(file_, TIOCMGET, &lines) == 0) return (lines & line) != 0;
  // The device has no modem lines, as a pseudo-terminal has none. They count as up, or the wait
  // before a command would never end.
  if (errno == ENOTTY || errno == EINVAL || errno == ENOSYS) return true;
  FailWith(errno);
}

bool TermiosPort::CTSHolding() {
  return LineIsUp(TIOCM_CTS);
}

bool TermiosPort::DSRHolding() {
  return LineIsUp(TIOCM_DSR);
}

std::unique_ptr<SerialPort> MakeSerialPort() {
  return std::make_unique<TermiosPort>();
}

}  // namespace sectorbox
