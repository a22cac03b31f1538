#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace sectorbox {

// A raw block device: a compact-flash card in a reader, or a plain file that holds a raw card.
// Transfers are whole 512-byte device sectors at multiples of 512 bytes; offsets are bytes from
// the start of the device, 64 bits wide.
class RawDevice {
 public:
  virtual ~RawDevice() = default;

  // Closes what was open before, then opens an existing device for reading and writing. A block
  // device is opened without buffering, and not while the system itself uses it (a mounted file
  // system). False if that fails; LastError tells why, and nobody else is told.
  [[nodiscard]] virtual bool Open(const std::string& path) = 0;
  [[nodiscard]] virtual bool IsOpen() const = 0;
  // Both give the count of bytes done. It is smaller than the buffer at the end of the device, on a
  // fault, and while nothing is open (0). A device never grows.
  [[nodiscard]] virtual std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> buffer) = 0;
  [[nodiscard]] virtual std::size_t Write(std::uint64_t offset,
                                          std::span<const std::uint8_t> buffer) = 0;
  // Returns when what was written is on the medium. False if that fails.
  [[nodiscard]] virtual bool Sync() { return true; }
  // Closes the device. What was written is on the medium then, unless LastError says otherwise.
  // Nothing happens if no device is open.
  virtual void Close() = 0;
  // The system's error number (errno) of the last Open, Read, Write or Close; 0 if that went well.
  // A transfer that ends at the end of the device has gone well.
  [[nodiscard]] virtual int LastError() const { return 0; }
  // True if path names the device or file that is open, also by another of its names. False while
  // nothing is open.
  [[nodiscard]] virtual bool Is(const std::string& path) const {
    (void)path;
    return false;
  }
};

// A device on the host's own calls.
[[nodiscard]] std::unique_ptr<RawDevice> MakeHostDevice();

// True for the error number (RawDevice::LastError) of a reader that has no card in it.
[[nodiscard]] bool IsNoMedium(int errorNumber);

}  // namespace sectorbox
