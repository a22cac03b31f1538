#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "link/wire/Protocol.h"
#include "link/wire/SerialPort.h"

namespace sectorbox {

// A serial device of the machine, or a pseudo-terminal, through the system's own terminal calls.
// CTS and DSR are read where the device has modem lines and reported as up where it hasn't.
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
  // The line is lost: forgets what was queued, closes, and throws.
  [[noreturn]] void FailWith(int errorNumber);
  void Apply();
  // Writes what the system takes of the queue without waiting.
  void Flush();
  void Drain();
  bool LineIsUp(int line);
  void Drop();

  std::string device_;
  std::int32_t speed_ = wire::kBootstrapSpeed;
  int file_ = -1;
  std::deque<std::uint8_t> received_;
  std::string queued_;
};

}  // namespace sectorbox
