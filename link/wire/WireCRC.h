#pragma once

#include <cstdint>
#include <span>

namespace sectorbox {

// Takes one byte into the link's CRC: 16 bits, polynomial 0x00AF, initial value 0, most significant
// bit first, nothing reflected, nothing inverted at the end. This is none of the common CRCs. The
// server on the BBC computes exactly this one, so 0xAF must not be "corrected" to 0x1021. The nine
// bytes "123456789" give 0x4E84.
void UpdateCRC(std::uint32_t& crc, std::uint32_t byte);

// Takes many bytes into the CRC, in order.
void UpdateCRC(std::uint32_t& crc, std::span<const std::uint8_t> bytes);

}  // namespace sectorbox
