#pragma once

#include <cstdint>
#include <span>

#include "link/wire/Link.h"

// Sectors over the wire. A sector is named by its logical number on the drive, and the drive by a
// field of its own.
namespace sectorbox {

// The outcome of a sector operation.
enum class SectorStatus {
  kSuccess,
  kTimeOut,        // the BBC fell silent, or the user pressed Abort
  kReadError,      // the BBC can't read its disc
  kUnknownEscape,  // the stream holds an escape code that doesn't exist
  kWrongLength,    // the stream holds too few or too many bytes
  kWrongCRC,
};

// Takes one data stream from the line into buffer, which holds at least sectors x 256 bytes.
// Every byte on the wire goes into crc, escapes and end mark included. Of a stream that is too long
// only what fits is stored; the rest is read and counted. A stream that doesn't end is cut off:
// with kWrongLength if it has more bytes than any stream for so many sectors, and with kTimeOut if
// it takes thirty seconds more than twice the time that its bytes take on the line.
[[nodiscard]] SectorStatus ReceivePacket(Link& link, std::span<std::uint8_t> buffer,
                                         std::uint32_t& crc, std::int32_t sectors);

// One whole read: command, stream, CRC. After every failure a line of the trace tells of it, and
// the link has been reset.
[[nodiscard]] SectorStatus ReadSectors(Link& link, std::span<std::uint8_t> buffer,
                                       std::int32_t drive, std::int32_t start, std::int32_t count);

// Compresses sectors x 256 bytes of buffer and writes them as one stream. crc becomes the CRC of
// the bytes on the wire. AbortRequested stops the stream at once, without its end mark. The caller
// reads the server's CRC.
void SendPacket(Link& link, std::span<const std::uint8_t> buffer, std::uint32_t& crc,
                std::int32_t sectors);

// Compares the server's CRC with ours; true if they are equal. Two lines of the trace show both.
// They are compared as numbers, so that leading zeros and a line end don't matter. A reply that
// doesn't begin with a digit is shown as 0 and is never equal.
[[nodiscard]] bool TraceCRCs(Link& link, std::string_view reply, std::uint32_t crc);

}  // namespace sectorbox
