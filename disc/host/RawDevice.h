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

  // Opens an existing device for reading and writing, without buffering where the medium is a
  // block device, and not while the system itself has it in use (a mounted file system). False when
  // that fails; nothing is reported here. Closes what was open before.
  virtual bool Open(const std::string& path) = 0;
  virtual bool IsOpen() const = 0;
  // Both give the count of bytes done, which is short at the end of the device or on a fault.
  virtual std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> buffer) = 0;
  virtual std::size_t Write(std::uint64_t offset, std::span<const std::uint8_t> buffer) = 0;
  // What was written is on the medium when this returns, unless LastError says otherwise.
  virtual void Close() = 0;
  // The system's error number of the last of these calls that failed, until another one succeeds;
  // 0 when there is none, as after a transfer that merely ended at the end of the device.
  virtual int LastError() const { return 0; }
  // True if path is the very device or file that is open, by whatever name.
  virtual bool Is(const std::string& path) const {
    (void)path;
    return false;
  }
};

// The real thing, on the platform's own calls.
std::unique_ptr<RawDevice> MakeHostDevice();

}  // namespace sectorbox
