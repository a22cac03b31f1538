#pragma once

#include <cstdint>
#include <span>

namespace sectorbox {

// The link's CRC: 16 bits, polynomial 0x00AF, initial value 0, most significant bit first, nothing
// reflected, nothing inverted at the end. It is none of the common ones, and the server on the BBC
// computes exactly this; 0xAF must not be "corrected" to 0x1021. The nine bytes "123456789" give
// 0x4E84.
void UpdateCRC(std::uint32_t& crc, std::uint32_t byte);

// The same over many bytes, in order.
void UpdateCRC(std::uint32_t& crc, std::span<const std::uint8_t> bytes);

}  // namespace sectorbox
