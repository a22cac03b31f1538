#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "link/wire/Protocol.h"
#include "link/wire/SerialPort.h"

namespace sectorbox {

// A serial device of the machine, or a pseudo-terminal, through the system's own terminal calls.
// CTS and DSR are those of the device; if it has no modem lines, both are reported as up.
class TermiosPort final : public SerialPort {
 public:
  TermiosPort() = default;
  ~TermiosPort() override { Close(); }
  TermiosPort(const TermiosPort&) = delete;
  TermiosPort& operator=(const TermiosPort&) = delete;

  void SelectDevice(const std::string& device) override { device_ = device; }
  void Settings(const std::string& settings) override;
  void Open() override;
  void Close() override;
  bool PortOpen() const override { return file_ >= 0; }
  std::size_t InBufferCount() override;
  std::uint8_t Input() override;
  std::size_t OutBufferCount() override;
  void Output(std::string_view bytes) override;
  bool CTSHolding() override;
  bool DSRHolding() override;

 private:
  // The line is lost: drops what was queued, closes the port, and throws HostError.
  [[noreturn]] void FailWith(int errorNumber);
  // Sets the open device to the speed that stands, and to raw bytes with RTS/CTS.
  void Apply();
  // Writes as much of the queue as the system takes without waiting.
  void Flush();
  // Waits until all that is queued has left, or until nothing has left for two seconds.
  void Drain();
  bool LineIsUp(int line);
  // Closes the device and drops what is queued in both directions.
  void Drop();

  std::string device_;
  std::int32_t speed_ = wire::kBootstrapSpeed;
  int file_ = -1;
  std::deque<std::uint8_t> received_;
  std::string queued_;
};

}  // namespace sectorbox
