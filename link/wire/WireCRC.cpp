#include "link/wire/WireCRC.h"

#include <array>

namespace sectorbox {
namespace {

constexpr std::uint32_t kPolynomial = 0x00AF;

constexpr std::uint32_t ShiftEightTimes(std::uint32_t crc) {
  for (int bit = 0; bit < 8; ++bit) crc = (crc << 1) ^ ((crc & 0x8000) != 0 ? kPolynomial : 0);
  return crc & 0xFFFF;
}

// For each value of the register's top byte: what that byte becomes after eight shifts. The low
// byte only moves up.
constexpr std::array<std::uint16_t, 256> kTable = [] {
  std::array<std::uint16_t, 256> table{};
  for (std::uint32_t top = 0; top < table.size(); ++top) {
    table[top] = static_cast<std::uint16_t>(ShiftEightTimes(top << 8));
  }
  return table;
}();

}  // namespace

void UpdateCRC(std::uint32_t& crc, std::uint32_t byte) {
  crc = ((crc << 8) & 0xFFFF) ^ kTable[((crc >> 8) ^ byte) & 0xFF];
}

void UpdateCRC(std::uint32_t& crc, std::span<const std::uint8_t> bytes) {
  std::uint32_t running = crc;
  for (const std::uint8_t byte : bytes) UpdateCRC(running, byte);
  crc = running;
}

}  // namespace sectorbox
