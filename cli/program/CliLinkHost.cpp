#include "cli/program/CliLinkHost.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <thread>

#include "cli/program/ProgramFolder.h"
#include "cli/program/TerminalText.h"
#include "disc/host/HostProcess.h"
#include "disc/host/HostSignals.h"
#include "link/wire/Commands.h"
#include "link/wire/Protocol.h"
#include "link/wire/SerialDevices.h"
#include "link/wire/Silence.h"

namespace sectorbox::cli {
namespace {

std::int32_t SpeedOf(const CommandLine& line) {
  if (!line.Has("speed")) return wire::kDefaultSpeed;
  const std::string word = line.Option("speed", "");
  std::string offered;
  for (const std::int32_t speed : wire::kSpeeds) {
    if (word == std::to_string(speed)) return speed;
    if (!offered.empty()) offered += speed == wire::kSpeeds.back() ? " or " : ", ";
    offered += std::to_string(speed);
  }
  throw UsageError("--speed takes " + offered);
}

std::string PortOf(const CommandLine& line) {
  if (line.Has("port")) return line.Option("port", "");
  const auto devices = ListSerialDevices();
  if (devices.empty()) {
    throw Failure("no serial port was found on this machine; name one with --port DEVICE");
  }
  return devices.front();
}

// The text with a blank for each line end, and without blanks around it. The BBC puts line ends
// into its texts. They would spread a message over several lines.
std::string OnOneLine(std::string text) {
  for (char& c : text) {
    if (c == '\r' || c == '\n') c = ' ';
  }
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

CliLinkHost::CliLinkHost(const CommandLine& line)
    : speed_(SpeedOf(line)), check_(line.Has("check")), terminal_(ErrorsGoToTerminal()) {}

std::int64_t CliLinkHost::Milliseconds() {
  using std::chrono::steady_clock;
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             steady_clock::now().time_since_epoch())
      .count();
}

void CliLinkHost::Sleep(std::int32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void CliLinkHost::PumpEvents() {
  if (!TakeInterrupt()) return;
  WasInterrupted = true;
  if (AbortRequested != nullptr) *AbortRequested = true;
}

std::string CliLinkHost::DateAndTime() {
  const std::time_t now = std::time(nullptr);
  const std::tm local = *std::localtime(&now);  // this program has one thread
  std::array<char, 64> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%x %X", &local);
  return {text.data(), length};
}

void CliLinkHost::ShowMessage(const std::string& text, const std::string&) {
  // After a Ctrl-C the step that runs fails, as if the BBC were silent. Its message wouldn't tell
  // the real reason, and would make the user look for a fault in the cable.
  if (WasInterrupted && !transferring_) return;
  ShowWarning(text);
}

void CliLinkHost::ShowWarning(const std::string& text) {
  MessageShown = true;
  ShowProgressLine("");
  PrintErrorLine(OnOneLine(text));
}

ReplaceAnswer CliLinkHost::AskReplace(const std::string&) {
  return ReplaceAnswer::kNo;
}

std::string CliLinkHost::AskOpenFileName(const FileQuestion&) {
  return FileAnswer;
}

std::string CliLinkHost::AskSaveFileName(const FileQuestion&) {
  return FileAnswer;
}

void CliLinkHost::OpenTransfer(const std::string&) {
  transferring_ = true;
  // The transfer has just cleared the flag. A Ctrl-C that came before still counts.
  if (WasInterrupted && AbortRequested != nullptr) *AbortRequested = true;
}

void CliLinkHost::ShowChunk(const std::string& text) {
  chunk_ = text;
  ShowPercent(percent_);
}

void CliLinkHost::ShowTotal(const std::string&) {}

void CliLinkHost::ShowCounters(const TransferCounters& counters) {
  Counters = counters;
}

void CliLinkHost::ShowPercent(float percent) {
  percent_ = percent;
  ShowProgressLine(chunk_ + " (" + std::to_string(static_cast<int>(percent)) + "%, retries " +
                   std::to_string(Counters.Retries) + ", bad CRCs " +
                   std::to_string(Counters.BadCRCs) + ", bad sectors " +
                   std::to_string(Counters.BadSectors) + ")");
}

void CliLinkHost::FinishTransfer() {
  Finished = true;
  ShowProgressLine("");
  if (Counters.BadSectors == 0) return;
  std::fprintf(stderr, "Bad Sectors: %d; given up: %d\n", Counters.BadSectors, Counters.GivenUp);
}

void CliLinkHost::CloseTransfer() {
  ShowProgressLine("");
}

std::string CliLinkHost::ProgramFolder() {
  return cli::ProgramFolder();
}

void CliLinkHost::ShowProgressLine(const std::string& text) {
  if (terminal_) std::fprintf(stderr, "\r%s\033[K", ShownOnErrors(text).c_str());
}

CliLink::CliLink(const CommandLine& line) : Host(line) {
  Host.AbortRequested = &TheLink.AbortRequested;
  Port->SelectDevice(PortOf(line));
  if (line.Has("trace")) TheLink.TraceFile.Open(line.Option("trace", ""));
  CatchInterrupt();
  WatchSilence(TheLink);
}

void CliLink::Disconnect() {
  sectorbox::Disconnect(TheLink);
}

}  // namespace sectorbox::cli
