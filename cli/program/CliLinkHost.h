#pragma once

#include <memory>
#include <string>

#include "cli/program/CommandLine.h"
#include "link/wire/Link.h"
#include "link/wire/SerialPort.h"

namespace sectorbox::cli {

// The link's host at the command line. A box is a line on standard error, a file dialog gives the
// file that the command line has named, and progress is one line on a terminal. The first Ctrl-C is
// Abort, the second ends the program.
class CliLinkHost final : public LinkHost {
 public:
  explicit CliLinkHost(const CommandLine& line);

  // Points at the link's flag, which PumpEvents sets after a Ctrl-C. Null until the link exists.
  bool* AbortRequested = nullptr;
  std::string FileAnswer;
  bool MessageShown = false;
  bool Finished = false;        // a transfer ran to its end
  bool WasInterrupted = false;  // PumpEvents has seen a Ctrl-C
  TransferCounters Counters;

  std::int64_t Milliseconds() override;
  void Sleep(std::int32_t milliseconds) override;
  void PumpEvents() override;
  std::string DateAndTime() override;
  void ShowMessage(const std::string& text, const std::string& title) override;
  void ShowWarning(const std::string& text) override;
  ReplaceAnswer AskReplace(const std::string& text) override;
  std::string AskOpenFileName(const FileQuestion& question) override;
  std::string AskSaveFileName(const FileQuestion& question) override;
  void OpenTransfer(const std::string& caption) override;
  void ShowChunk(const std::string& text) override;
  void ShowTotal(const std::string& text) override;
  void ShowCounters(const TransferCounters& counters) override;
  void ShowPercent(float percent) override;
  void FinishTransfer() override;
  void CloseTransfer() override;
  std::int32_t TickedSpeed() override { return speed_; }
  bool CheckBeforeTransfer() override { return check_; }
  bool PlayWaveOnSuccess() override { return false; }
  std::string ProgramFolder() override;
  [[nodiscard]] bool PlayWave(const std::string&, bool) override { return false; }
  void ShowTrace(const std::string&) override {}

  // Shows the progress line if standard error is a terminal. An empty text clears it.
  void ShowProgressLine(const std::string& text);

 private:
  std::int32_t speed_;
  bool check_;
  bool terminal_;
  bool transferring_ = false;
  std::string chunk_;
  float percent_ = 0;
};

// The link of one command, on the port that the command line names, or on the machine's first one.
// The destructor sends "Q" to the server if the port is open, so that the next program can connect.
class CliLink {
 public:
  explicit CliLink(const CommandLine& line);
  ~CliLink() { Disconnect(); }
  CliLink(const CliLink&) = delete;
  CliLink& operator=(const CliLink&) = delete;

  CliLinkHost Host;
  std::unique_ptr<SerialPort> Port = MakeSerialPort();
  Link TheLink{*Port, Host};

 private:
  void Disconnect();
};

}  // namespace sectorbox::cli
