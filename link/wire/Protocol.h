#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The words of the wire. The PC is always the master: short text commands go out, bursts of text
// come back, and sector data travels as one compressed, escaped stream that a CRC guards.
namespace sectorbox::wire {

inline constexpr std::int32_t kSectorSize = 256;
inline constexpr std::uint8_t kEscape = 27;

// What follows ESC in a data stream. "ESC, kStreamFailed" outside a stream is also the server's
// failure reply and, from the PC, the order to abandon a running exchange.
inline constexpr std::uint8_t kStreamRun = 0;      // then count and value, both raw
inline constexpr std::uint8_t kStreamLiteral = 1;  // one data byte 27
inline constexpr std::uint8_t kStreamFailed = 2;
inline constexpr std::uint8_t kStreamEnd = 3;

inline constexpr std::string_view kAbandon{"\x1B\x02", 2};
inline constexpr std::string_view kFailureReply = kAbandon;

// The program ends: back to 1200 baud. No line end, no reply.
inline constexpr std::string_view kQuit = "Q";

inline constexpr std::string_view kAcknowledge = "-----BBC-----PC-----";
inline constexpr std::string_view kStarError = "-----BBCerror1-----PC-----";

// The speeds of the line in baud, in the order in which they are offered.
inline constexpr std::array<std::int32_t, 5> kSpeeds = {19200, 9600, 4800, 2400, 1200};
inline constexpr std::int32_t kDefaultSpeed = 19200;
// The server listens at this speed whenever no PC is connected; so does a bare BBC.
inline constexpr std::int32_t kBootstrapSpeed = 1200;

// A port's settings for a speed: no parity, eight data bits, one stop bit.
inline std::string LineSettings(std::int32_t speed) {
  return std::to_string(speed) + ",N,8,1";
}

// The port's queue of bytes to be sent. A byte that finds it full waits for its turn, so that the
// time limit for the reply starts when the stream has really gone out.
inline constexpr std::size_t kOutBufferSize = 128;

// How long a wait lasts, in milliseconds.
inline constexpr std::int32_t kFirstByteLimit = 10000;  // of a reply
inline constexpr std::int32_t kReplySilence = 100;      // which ends a reply
inline constexpr std::int32_t kStreamByteLimit = 30000;
inline constexpr std::int32_t kResetSilence = 2000;
inline constexpr std::int32_t kResetClosed = 500;
inline constexpr std::int32_t kConsolePause = 1000;

}  // namespace sectorbox::wire
