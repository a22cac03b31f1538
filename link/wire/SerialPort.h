#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sectorbox {

// The one serial port, the only road to the BBC. Everything is polled; nothing here waits, except
// Close, which lets queued bytes out first.
//
// Bytes pass unchanged in both directions: eight bits, no code page, no line ends. The handshake is
// RTS/CTS. A port that fails or vanishes (an adapter that is pulled out) closes itself and throws a
// HostError with the device and the system's text, from whichever call notices it first. Calls on a
// closed port do nothing: no bytes wait, none are queued, both lines read as up. So a menu entry
// that closes the port in the middle of a transfer leaves the transfer to its own time-outs.
class SerialPort {
 public:
  virtual ~SerialPort() = default;

  // The device that the next Open opens. Only while closed.
  virtual void SelectDevice(const std::string& device) = 0;
  // Speed and format, such as "1200,N,8,1". Kept for the next Open and, on an open port, in force
  // at once. HostError for a text that is no such setting.
  virtual void Settings(const std::string& settings) = 0;

  // Only while closed. Raises RTS and DTR.
  virtual void Open() = 0;
  // Sends what is still queued, drops the lines and closes. A line that is held up can't hold the
  // program: after a bounded time the rest is dropped. Never throws; a closed port stays closed.
  virtual void Close() = 0;
  virtual bool PortOpen() const = 0;

  virtual std::size_t InBufferCount() = 0;
  // One byte; only when at least one waits.
  virtual std::uint8_t Input() = 0;
  // Bytes that are queued and have not left yet.
  virtual std::size_t OutBufferCount() = 0;
  // Queues all bytes and returns.
  virtual void Output(std::string_view bytes) = 0;

  // The lines; up where the device has none.
  virtual bool CTSHolding() = 0;
  virtual bool DSRHolding() = 0;
};

}  // namespace sectorbox
