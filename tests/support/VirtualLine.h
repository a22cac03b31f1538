#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "link/wire/SerialPort.h"
#include "tests/support/SimulatedBbc.h"

namespace sectorbox::testing {

// Time that passes only when somebody sleeps.
struct VirtualClock {
  std::int64_t Nanoseconds = 0;
  std::int64_t Milliseconds() const { return Nanoseconds / 1'000'000; }
  void Sleep(std::int64_t milliseconds) { Nanoseconds += milliseconds * 1'000'000; }
};

// A serial port with a cable and a SimulatedBbc at its end, in virtual time. A byte takes ten bits
// at the speed of the sender. Bytes are lost if the two speeds differ or the port is closed. With a
// log it records "open SETTINGS", "close" and "settings TEXT".
class VirtualPort final : public SerialPort {
 public:
  VirtualPort(VirtualClock& clock, SimulatedBbc& bbc, std::vector<std::string>* log = nullptr)
      : clock_(clock), bbc_(bbc), log_(log) {}

  // --- What the test sets and looks at ---------------------------------------------------------
  bool CTS = true;
  bool DSR = true;
  bool CannotOpen = false;
  // The port vanishes after this many more bytes have come in or gone out.
  std::int64_t BytesUntilItVanishes = std::numeric_limits<std::int64_t>::max();
  // A peer that is out of its mind: a byte comes every so many nanoseconds, whatever is sent. The
  // BBC still hears, but nothing of what it says arrives. 0: there is no such peer.
  std::int64_t DripEvery = 0;
  std::function<std::uint8_t()> DripByte = [] { return std::uint8_t{0}; };
  // What is written comes back, and reaches nobody else.
  bool Echoes = false;
  std::int64_t NanosecondsBusy = 0;  // time in which the BBC was sending
  std::int64_t BytesFromBbc = 0;
  std::string Written;  // everything that was written
  int Opens = 0;

  // Lets the line catch up with the clock.
  void Advance();

  void SelectDevice(const std::string&) override {}
  void Settings(const std::string& settings) override;
  void Open() override;
  void Close() override;
  bool PortOpen() const override { return open_; }
  std::size_t InBufferCount() override;
  std::uint8_t Input() override;
  std::size_t OutBufferCount() override;
  void Output(std::string_view bytes) override;
  bool CTSHolding() override { return CTS; }
  bool DSRHolding() override { return DSR; }

 private:
  struct Travelling {
    std::int64_t Arrival;
    std::uint8_t Byte;
    std::int32_t Speed;
  };
  static std::int64_t ByteTime(std::int32_t speed) { return 10'000'000'000 / speed; }
  void Deliver(const Travelling& item);
  void Drip();
  void Note(const std::string& line);
  void CountByte();

  VirtualClock& clock_;
  SimulatedBbc& bbc_;
  std::vector<std::string>* log_;
  std::string settings_ = "1200,N,8,1";
  std::int32_t speed_ = 1200;
  bool open_ = false;
  std::int64_t outFree_ = 0;  // when each direction is free again
  std::int64_t inFree_ = 0;
  std::int64_t nextDrip_ = 0;
  std::deque<Travelling> toBbc_;
  std::deque<Travelling> toPc_;
  std::deque<std::uint8_t> received_;
};

}  // namespace sectorbox::testing
