#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The words of the wire. The PC always begins an exchange: it sends a short text command, and the
// BBC sends back a burst of text. Sector data goes as one compressed, escaped stream with a CRC.
namespace sectorbox::wire {

inline constexpr std::int32_t kSectorSize = 256;
inline constexpr std::uint8_t kEscape = 27;

// The codes that follow ESC in a data stream. Outside a stream, "ESC, kStreamFailed" is the
// server's failure reply, and from the PC the order to abandon a running exchange.
inline constexpr std::uint8_t kStreamRun = 0;      // then count and value, both raw
inline constexpr std::uint8_t kStreamLiteral = 1;  // one data byte 27
inline constexpr std::uint8_t kStreamFailed = 2;
inline constexpr std::uint8_t kStreamEnd = 3;

inline constexpr std::string_view kAbandon{"\x1B\x02", 2};
inline constexpr std::string_view kFailureReply = kAbandon;

// Tells the server that the program ends: it goes back to 1200 baud. It has no line end, and no
// reply comes.
inline constexpr std::string_view kQuit = "Q";

inline constexpr std::string_view kAcknowledge = "-----BBC-----PC-----";
inline constexpr std::string_view kStarError = "-----BBCerror1-----PC-----";

// The speeds of the line in baud, in the order in which they are offered.
inline constexpr std::array<std::int32_t, 5> kSpeeds = {19200, 9600, 4800, 2400, 1200};
inline constexpr std::int32_t kDefaultSpeed = 19200;
// The server listens at this speed whenever no PC is connected. So does a BBC that runs no server.
inline constexpr std::int32_t kBootstrapSpeed = 1200;

// The settings of a port (SerialPort::Settings) for a speed: no parity, eight data bits, one stop
// bit.
inline std::string LineSettings(std::int32_t speed) {
  return std::to_string(speed) + ",N,8,1";
}

// The most bytes that wait in the port's queue. A byte that finds the queue full is held back, so
// that the time limit for the reply starts only when the stream has really gone out.
inline constexpr std::size_t kOutBufferSize = 128;

// The most bytes of a reply. Each reply but the output of a star command is a line or two.
inline constexpr std::size_t kLongestReply = 1024;
// The same for that output. It may be as long as a file that is listed.
inline constexpr std::size_t kLongestOutput = std::size_t{1} << 20;
// The most wire bytes of a stream that carries dataBytes: a run for each byte, and the end mark.
// (Nobody sends such a stream. Runs of no byte aren't counted: they could go on for ever.)
constexpr std::size_t MostBytesOfStream(std::size_t dataBytes) {
  return 4 * dataBytes + 2;
}

// How long a wait lasts, in milliseconds.
inline constexpr std::int32_t kFirstByteLimit = 10000;   // for the first byte of a reply
inline constexpr std::int32_t kReplySilence = 100;       // the silence that ends a reply
inline constexpr std::int32_t kStreamByteLimit = 30000;  // for each byte of a stream
inline constexpr std::int32_t kResetSilence = 2000;      // the silence that a reset waits for
inline constexpr std::int32_t kResetClosed = 500;        // how long a reset keeps the port closed
inline constexpr std::int32_t kAnswerPatience = 10000;  // for an answer beyond its time on the line
inline constexpr std::int32_t kOutputPatience = 60000;  // the same for all output of a star command
inline constexpr std::int32_t kConsolePause = 1000;     // for more output of a star command

}  // namespace sectorbox::wire
