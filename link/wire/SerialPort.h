#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace sectorbox {

// The one serial port, the only way to the BBC. Everything is polled. No call waits but two: Close
// lets queued bytes out first, and so does Settings on an open port.
//
// Bytes pass unchanged in both directions: eight bits, no code page, no line ends. The handshake is
// RTS/CTS. If the port fails or vanishes (the user pulls an adapter out), the first call that
// notices it closes the port and throws a HostError with the device and the system's text. Calls on
// a closed port do nothing: no bytes wait, none are queued, both lines read as up. So a
// command that closes the port in the middle of a transfer leaves the transfer to its own
// time-outs.
class SerialPort {
 public:
  virtual ~SerialPort() = default;

  // Names the device that the next Open opens. Only while the port is closed.
  virtual void SelectDevice(const std::string& device) = 0;
  // Sets speed and format, such as "1200,N,8,1". They are kept for the next Open. On an open port
  // they are also in force at once. HostError for a text that is no such setting.
  virtual void Settings(const std::string& settings) = 0;

  // Opens the device and raises RTS and DTR. Nothing happens if the port is open.
  virtual void Open() = 0;
  // Sends what is still queued, drops RTS and DTR and closes. If the BBC takes no more bytes, the
  // rest is dropped after two seconds. Never throws; a closed port stays closed.
  virtual void Close() = 0;
  [[nodiscard]] virtual bool PortOpen() const = 0;

  // Bytes that have come in and wait to be taken.
  [[nodiscard]] virtual std::size_t InBufferCount() = 0;
  // Takes one byte; only while at least one waits.
  [[nodiscard]] virtual std::uint8_t Input() = 0;
  // Bytes that are queued and have not left yet.
  [[nodiscard]] virtual std::size_t OutBufferCount() = 0;
  // Queues all bytes and returns.
  virtual void Output(std::string_view bytes) = 0;

  // Whether the BBC holds CTS and DSR up. Both are up if the device has no such lines.
  [[nodiscard]] virtual bool CTSHolding() = 0;
  [[nodiscard]] virtual bool DSRHolding() = 0;
};

// A closed port on the host's own calls, without a device, at 1200 baud.
[[nodiscard]] std::unique_ptr<SerialPort> MakeSerialPort();

}  // namespace sectorbox
