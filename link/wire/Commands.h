#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "link/wire/Link.h"
#include "link/wire/Protocol.h"

// Commands and replies on the one port. None of these shows a box, except Reconnect: they trace a
// failure and give it to the caller. If the port fails, each of them throws HostError, except
// Reconnect and Disconnect.
namespace sectorbox {

// Waits until the port's queue is empty and CTS and DSR are up, writes the command, and reads the
// reply if expectReply is set. A closed port is opened first, with the settings that it has. There
// is no time limit on the wait for the lines: events run meanwhile, and AbortRequested ends it.
// The result is the reply, which may have up to mostBytes bytes. It is empty if no reply is
// expected, if AbortRequested stopped the write, or if no reply came.
[[nodiscard]] std::string SendCommand(Link& link, const std::string& command, bool expectReply,
                                      std::size_t mostBytes = wire::kLongestReply);

// Writes without a trace, and without a wait for the lines. It waits only for room in the port's
// queue. If AbortRequested is set, before or during that wait, nothing is written.
void SendRaw(Link& link, std::string_view text);

// Reads one burst of bytes. The first byte has to come within ten seconds. The burst ends when the
// line has been silent for a tenth of a second, as a reply has neither a length nor an end mark.
// False, with an empty text, if nothing came, or if the burst didn't end: if it has more than
// mostBytes bytes, or takes ten seconds beyond the time that its bytes take on the line.
[[nodiscard]] bool ReadReply(Link& link, std::string& text,
                             std::size_t mostBytes = wire::kLongestReply);

// Waits for one byte. Nothing if none came within Timer4's interval, counted from this call on.
[[nodiscard]] std::optional<std::uint8_t> ReadByte(Link& link);

// Brings the line into a known state after a failure. It drops what comes in until the line has
// been silent for two seconds, keeps the port closed for half a second, and opens it again. A line
// that is never silent is left after Link::LongestAnswer bytes, or after ten seconds and the time
// that these bytes take.
void ResetLink(Link& link);

// Raises the link from 1200 baud to the ticked speed, or to 19200 if none is ticked. The server
// listens at 1200 baud whenever it isn't connected. The result is the server's reply; it is empty
// if none came.
[[nodiscard]] std::string ConnectToBBC(Link& link);

// True for the acknowledge token with CR, or LF and CR, behind it, and nothing else.
[[nodiscard]] bool IsAcknowledge(std::string_view reply);
// The same for the error token of the star commands.
[[nodiscard]] bool IsStarError(std::string_view reply);
// True if the reply begins with ESC, 2: the server couldn't read or write.
[[nodiscard]] bool IsFailureReply(std::string_view reply);

// The number that the digits at the start of text make; 0 if text doesn't start with a digit. Once
// the number has reached 2^40, further digits are left out.
[[nodiscard]] std::int64_t LeadingNumber(std::string_view text);

// Closes the port and connects anew. True if the BBC answered. If it didn't, or the port failed, a
// box has told the user.
[[nodiscard]] bool Reconnect(Link& link);

// For the end of the program. If the port is open, this tells the server to listen at 1200 baud
// again, and closes the port. A port that fails meanwhile is simply closed.
void Disconnect(Link& link);

}  // namespace sectorbox
