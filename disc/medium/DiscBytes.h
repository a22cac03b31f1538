#pragma once

#include <cstdint>
#include <span>

namespace sectorbox {

// A source of a disc's bytes. A byte outside the disc reads as zero.
class DiscBytes {
 public:
  virtual ~DiscBytes() = default;
  // Fills all of bytes from an offset on. Byte 0 is the first byte of sector 0.
  virtual void FetchBytes(std::int64_t offset, std::span<std::uint8_t> bytes) = 0;
};

}  // namespace sectorbox
