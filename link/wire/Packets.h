#pragma once

#include <cstdint>
#include <span>

#include "link/wire/Link.h"

// Sectors over the wire. A sector's number is its logical number on the drive; the drive travels as
// a field of its own.
namespace sectorbox {

// The outcome of a sector operation. There is no 2.
enum class SectorStatus : std::int32_t {
  kSuccess = -1,
  kTimeOut = 0,  // or abandoned by the user
  kReadError = 1,
  kUnknownEscape = 3,
  kWrongLength = 4,
  kWrongCRC = 5,
};

// Takes one data stream from the line into buffer, which holds at least sectors x 256 bytes.
// crc is updated with every byte on the wire, escapes and end mark included. A stream that is too
// long is counted to its end and stored no further than the buffer goes.
SectorStatus ReceivePacket(Link& link, std::span<std::uint8_t> buffer, std::uint32_t& crc,
                           std::int32_t sectors);

// One whole read: command, stream, CRC. Every failure is traced and has reset the link.
SectorStatus ReadSectors(Link& link, std::span<std::uint8_t> buffer, std::int32_t drive,
                         std::int32_t start, std::int32_t count);

// Compresses sectors x 256 bytes of buffer and writes them as one stream; crc becomes that of the
// bytes on the wire. AbortRequested stops it at once and leaves the stream without its end mark.
// The caller reads the server's CRC.
void SendPacket(Link& link, std::span<const std::uint8_t> buffer, std::uint32_t& crc,
                std::int32_t sectors);

// The two trace lines that show the server's CRC beside ours; true if the two are equal. Compared
// as numbers, so leading zeros and a line end don't matter. A reply that doesn't begin with a digit
// is shown as 0 and equals nothing.
bool TraceCRCs(Link& link, std::string_view reply, std::uint32_t crc);

}  // namespace sectorbox
