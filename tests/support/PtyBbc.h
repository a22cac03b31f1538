#pragma once

#include <atomic>
#include <string>
#include <thread>

#include "tests/support/SimulatedBbc.h"

namespace sectorbox::testing {

// A SimulatedBbc at the other end of a pseudo-terminal, in real time, on a thread of its own. A
// test may set up Bbc before Start and look at it after Stop.
class PtyBbc {
 public:
  PtyBbc();
  ~PtyBbc();
  PtyBbc(const PtyBbc&) = delete;
  PtyBbc& operator=(const PtyBbc&) = delete;

  SimulatedBbc Bbc;

  // The path that a program opens as its serial port.
  const std::string& Device() const { return device_; }
  void Start();
  // Ends the thread. It reads first what the PC has sent before.
  void Stop();
  // Pulls the plug: the PC's side fails from now on.
  void Unplug();
  // A peer that is out of its mind: as soon as the BBC has heard so many commands, these bytes come
  // again and again, one every so many milliseconds, or without any pause (0), and nothing else
  // comes. Set before Start; no bytes, no such peer.
  std::string Flood;
  std::size_t FloodAfterCommands = 0;
  int FloodMilliseconds = 0;
  // The BBC doesn't take what is sent.
  bool TakesNothing = false;
  // Everything that has come from the PC. A test looks at it after Stop.
  const std::string& Bytes() const { return bytes_; }
  // How many bytes have come from the PC so far.
  std::size_t Received() const { return received_; }

 private:
  void Run();
  void SendFlood();
  [[nodiscard]] bool IsFlooding() const;
  void Send(const std::string& bytes);

  std::string device_;
  int master_ = -1;
  int slave_ = -1;  // held open, so that the PC may close and open its own as it likes
  std::atomic<bool> stop_{false};
  std::atomic<std::size_t> received_{0};
  std::size_t flooded_ = 0;
  std::string bytes_;
  std::thread thread_;
};

}  // namespace sectorbox::testing
