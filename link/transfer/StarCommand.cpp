#include "link/transfer/StarCommand.h"

#include "disc/host/HostError.h"
#include "link/wire/AnswerBounds.h"
#include "link/wire/Commands.h"
#include "link/wire/Protocol.h"
#include "link/wire/Silence.h"
#include "link/wire/Trace.h"

namespace sectorbox {
namespace {

constexpr char kErrorTitle[] = "* Command Error";
constexpr char kNoAnswer[] = "Problem sending * Command";

void ShowErrorText(Link& link) {
  // The token without a CR asks the server for the text of the error.
  (void)SendCommand(link, std::string(wire::kStarError), false);
  std::string text;
  link.Host.ShowMessage(ReadReply(link, text) ? text : kNoAnswer, kErrorTitle);
}

// Shows what the BBC prints. False if that has no end.
bool CollectOutput(Link& link, std::string text,
                   const std::function<void(const std::string&)>& show) {
  AnswerBounds bounds(link, wire::kLongestOutput, wire::kOutputPatience);
  while (!text.empty()) {
    if (!bounds.Take(text.size())) return false;
    const auto token = text.find(wire::kAcknowledge);
    if (token != std::string::npos) text.resize(token);
    const std::string shown = ExpandCarriageReturns(text);
    if (shown.size() > 1) PumpEvents(link);
    show(shown);
    // No button can set the flag while the console waits, but Ctrl-C at a command line can. So the
    // user can end a command that never stops printing.
    if (link.AbortRequested) return true;
    // Silence ends the loop, and not the token: the BBC may print in bursts.
    link.Host.Sleep(wire::kConsolePause);
    text.clear();
    if (link.Port.InBufferCount() > 0 && !ReadReply(link, text, wire::kLongestOutput)) return false;
  }
  return true;
}

bool Exchange(Link& link, const std::string& command,
              const std::function<void(const std::string&)>& show) {
  const std::string reply = SendCommand(link, "*" + command + "\r", true, wire::kLongestOutput);
  if (IsStarError(reply)) {
    ShowErrorText(link);
    return false;
  }
  if (!reply.empty() && CollectOutput(link, reply, show)) return true;
  link.Host.ShowMessage(kNoAnswer, kErrorTitle);
  return false;
}

}  // namespace

bool RunStarCommand(Link& link, const std::string& command,
                    const std::function<void(const std::string&)>& show) {
  try {
    return Exchange(link, command, show);
  } catch (const HostError& error) {
    link.Host.ShowWarning(error.what());
    return false;
  } catch (const BbcSilent& silent) {
    link.Host.ShowMessage(silent.what(), kErrorTitle);
    return false;
  }
}

}  // namespace sectorbox
