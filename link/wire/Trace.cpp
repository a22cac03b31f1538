#include "link/wire/Trace.h"

#include "disc/format/Text.h"
#include "disc/host/HostError.h"
#include "disc/host/HostFile.h"

namespace sectorbox {
namespace {

constexpr std::size_t kBytesPerLine = 16;

char PrintableOf(char byte) {
  const int code = static_cast<unsigned char>(byte) & 0x7F;  // the BBC prints with bit 7 ignored
  return code < 32 || code == 127 ? '.' : static_cast<char>(code);
}

std::string DumpLine(std::string_view run, std::size_t offset, bool isTx) {
  std::string line = (isTx ? "TX: " : "RX: ") + Hex(offset, 4) + " : ";
  for (const char byte : run) line += Hex(static_cast<unsigned char>(byte), 2) + " ";
  line.append(3 * (kBytesPerLine - run.size()) + 1, ' ');
  for (const char byte : run) line += PrintableOf(byte);
  return line + "\r";
}

// Asks for the name of the log to open. Empty for none. After Cancel at the second question the
// first is asked again, so that a slip of the hand does no harm.
std::string AskTraceFile(Link& link) {
  for (;;) {
    std::string name = link.Host.AskSaveFileName(
        {kTraceFileTitle, "Log Files (*.LOG)|*.log|All Files (*.*)|*.*", ""});
    if (name.empty() || !HostFileExists(name)) return name;
    switch (link.Host.AskReplace("Replace existing file - " + name + "?")) {
      case ReplaceAnswer::kYes:
        DeleteHostFile(name);
        return name;
      case ReplaceAnswer::kNo:
        return name;
      case ReplaceAnswer::kCancel:
        break;
    }
  }
}

}  // namespace

std::string ExpandCarriageReturns(std::string_view text) {
  std::string expanded;
  for (const char c : text) {
    expanded += c;
    if (c == '\r') expanded += '\n';
  }
  return expanded;
}

void TraceLine(Link& link, const std::string& text) {
  const std::string line = ExpandCarriageReturns(link.Host.DateAndTime() + " " + text);
  link.TraceFile.Append(line);
  link.Host.ShowTrace(line);
}

void TraceHex(Link& link, std::string_view bytes, bool isTx) {
  for (std::size_t offset = 0; offset < bytes.size(); offset += kBytesPerLine) {
    TraceLine(link, DumpLine(bytes.substr(offset, kBytesPerLine), offset, isTx));
  }
}

void ChooseTraceFile(Link& link) {
  try {
    const std::string name = AskTraceFile(link);
    if (!name.empty()) link.TraceFile.Open(name);
  } catch (const HostError& error) {
    link.Host.ShowWarning(error.what());
  }
}

}  // namespace sectorbox
