#include "link/wire/Commands.h"

#include "disc/host/HostError.h"
#include "link/wire/AnswerBounds.h"
#include "link/wire/Protocol.h"
#include "link/wire/Silence.h"
#include "link/wire/Trace.h"

namespace sectorbox {
namespace {

void OpenIfClosed(Link& link) {
  if (!link.Port.PortOpen()) link.Port.Open();
}

void Poll(Link& link) {
  PumpEvents(link);
  link.Host.Sleep(1);
}

bool LinesAreUp(SerialPort& port) {
  return port.DSRHolding() && port.CTSHolding();
}

bool ReadyForCommand(SerialPort& port) {
  return port.OutBufferCount() == 0 && LinesAreUp(port);
}

// A poll of the wait for the lines.
void PollForLines(Link& link) {
  const std::int64_t before = link.Host.Milliseconds();
  Poll(link);
  if (!LinesAreUp(link.Port)) NoteLinesDown(link, link.Host.Milliseconds() - before);
}

bool IsTokenLine(std::string_view reply, std::string_view token) {
  if (!reply.starts_with(token)) return false;
  const std::string_view rest = reply.substr(token.size());
  return rest == "\r" || rest == "\n\r";
}

}  // namespace

std::string SendCommand(Link& link, const std::string& command, bool expectReply,
                        std::size_t mostBytes) {
  OpenIfClosed(link);
  while (!ReadyForCommand(link.Port)) {
    PollForLines(link);
    if (link.AbortRequested) break;
  }
  // The flag refuses the write also if there was nothing to wait for. An aborted transfer leaves
  // the flag set, so a caller whose command must still go out clears it first.
  if (link.AbortRequested) return {};
  link.Port.Output(command);
  TraceHex(link, command, true);
  std::string reply;
  if (expectReply) (void)ReadReply(link, reply, mostBytes);  // reply is empty if none came
  return reply;
}

void SendRaw(Link& link, std::string_view text) {
  OpenIfClosed(link);
  while (!link.AbortRequested && link.Port.OutBufferCount() >= wire::kOutBufferSize) Poll(link);
  if (!link.AbortRequested) link.Port.Output(text);
}

std::optional<std::uint8_t> ReadByte(Link& link) {
  link.TimedOut = false;
  EnableTimer(link);
  while (link.Port.InBufferCount() < 1) {
    link.Host.Sleep(1);
    PumpEvents(link);
    if (link.TimedOut) {
      link.Timer4.Enabled = false;
      return std::nullopt;
    }
  }
  const std::uint8_t byte = link.Port.Input();
  link.Timer4.Enabled = false;
  return byte;
}

bool ReadReply(Link& link, std::string& text, std::size_t mostBytes) {
  text.clear();
  link.LongestAnswer = mostBytes;
  link.Timer4.Interval = wire::kFirstByteLimit;
  std::optional<std::uint8_t> byte = ReadByte(link);
  if (!byte) {
    TraceLine(link, "Timeout waiting for response\r");
    return false;
  }
  link.Timer4.Interval = wire::kReplySilence;
  AnswerBounds bounds(link, mostBytes, wire::kAnswerPatience);
  bool isSound = true;
  while (byte && isSound) {
    text += static_cast<char>(*byte);
    isSound = bounds.Take();
    if (isSound) byte = ReadByte(link);
  }
  TraceHex(link, text, false);
  if (isSound) return true;
  TraceLine(link, "Response without an end\r");
  text.clear();
  return false;
}

void ResetLink(Link& link) {
  link.Timer4.Interval = wire::kResetSilence;
  AnswerBounds bounds(link, link.LongestAnswer, wire::kAnswerPatience);
  while (ReadByte(link) && bounds.Take()) PumpEvents(link);
  link.Port.Close();
  link.Host.Sleep(wire::kResetClosed);
  link.Port.Open();
}

std::string ConnectToBBC(Link& link) {
  SetSpeed(link, wire::kBootstrapSpeed);
  const std::int32_t ticked = link.Host.TickedSpeed();
  const std::int32_t speed = ticked > 0 ? ticked : wire::kDefaultSpeed;
  (void)SendCommand(link, "S" + std::to_string(speed) + "\r", false);
  // Close lets the command out before it closes the port.
  link.Port.Close();
  SetSpeed(link, speed);
  link.Port.Open();
  std::string reply;
  (void)ReadReply(link, reply);  // reply is empty if none came
  return reply;
}

bool IsAcknowledge(std::string_view reply) {
  return IsTokenLine(reply, wire::kAcknowledge);
}

bool IsStarError(std::string_view reply) {
  return IsTokenLine(reply, wire::kStarError);
}

bool IsFailureReply(std::string_view reply) {
  return reply.starts_with(wire::kFailureReply);
}

std::int64_t LeadingNumber(std::string_view text) {
  constexpr std::int64_t kLargest = std::int64_t{1} << 40;
  std::int64_t number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    if (number < kLargest) number = number * 10 + (c - '0');
  }
  return number;
}

bool Reconnect(Link& link) {
  try {
    link.Port.Close();
    if (IsAcknowledge(ConnectToBBC(link))) {
      NoteValid(link);
      return true;
    }
    link.Host.ShowMessage("Beeb Not Responding", kLinkTitle);
  } catch (const BbcSilent& silent) {
    link.Host.ShowMessage(silent.what(), kLinkTitle);
  } catch (const HostError& error) {
    link.Host.ShowWarning(error.what());
  }
  return false;
}

void Disconnect(Link& link) {
  if (!link.Port.PortOpen()) return;
  try {
    link.Port.Output(wire::kQuit);
  } catch (const HostError&) {
    // The device is gone: there is nobody left to send to.
  }
  link.Port.Close();
}

}  // namespace sectorbox
