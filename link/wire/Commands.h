#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "link/wire/Link.h"

// Commands and replies on the one port. None of these shows a box: failures are traced and given to
// the caller. A port that fails is a HostError from any of them.
namespace sectorbox {

// Writes a command once the port's queue is empty and CTS and DSR are up, and reads the reply if
// asked. Opens a closed port at the settings that stand. There is no time limit on the wait for the
// lines: the window stays alive, and AbortRequested ends it.
// Empty when no reply is expected, when AbortRequested stopped the write, or when none came.
std::string SendCommand(Link& link, const std::string& command, bool expectReply);

// Writes without a trace and without the wait for the lines, unless AbortRequested is set. It waits
// only for room in the port's queue, and AbortRequested ends that wait with nothing written.
void SendRaw(Link& link, std::string_view text);

// One burst: the first byte within ten seconds, the rest until the line is silent for a tenth of
// one. A reply has neither a length nor an end mark. False and an empty text if nothing came.
bool ReadReply(Link& link, std::string& text);

// 0 to 255, or -1 when Timer4's interval, counted from this call on, ran out.
std::int32_t ReadByte(Link& link);

// Gets the line into a known state after any failure: drops what comes in until the line has been
// silent for two seconds, then keeps the port closed for half a second.
void ResetLink(Link& link);

// Raises the link from 1200 baud to the ticked speed and gives the server's reply, empty if none
// came. The server listens at 1200 baud whenever it isn't connected. Without a ticked speed it is
// 19200.
std::string ConnectToBBC(Link& link);

// The acknowledge token followed by CR, or by LF and CR, and nothing else.
bool IsAcknowledge(std::string_view reply);
// The same test for the error token of the star commands.
bool IsStarError(std::string_view reply);
// The server could not read or write: the reply begins with ESC, 2.
bool IsFailureReply(std::string_view reply);

// The digits up to the first character that is none; 0 if there are none. Stops growing at 2^40.
std::int64_t LeadingNumber(std::string_view text);

// The entry "Reconnect": closes the port, connects anew, and says so if the BBC doesn't answer.
// True if it did.
bool Reconnect(Link& link);

// The end of a program: tells an open port's server to listen at 1200 baud again, and closes. A
// port that fails meanwhile is simply closed.
void Disconnect(Link& link);

}  // namespace sectorbox
