#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "link/wire/LinkHost.h"
#include "tests/support/VirtualLine.h"

namespace sectorbox::testing {

// A link's host in virtual time that shows nothing and keeps nothing. It answers both file dialogs
// with one name, which is empty unless the program gives one. It is for programs that measure or
// exercise the link; tests that look at what the link says use ScriptedLinkHost.
class InertLinkHost : public LinkHost {
 public:
  explicit InertLinkHost(VirtualClock& clock, std::string file = {})
      : clock_(clock), file_(std::move(file)) {}

  std::int64_t Milliseconds() override { return clock_.Milliseconds(); }
  void Sleep(std::int32_t milliseconds) override { clock_.Sleep(milliseconds); }
  void PumpEvents() override {}
  std::string DateAndTime() override { return {}; }
  void ShowMessage(const std::string&, const std::string&) override {}
  void ShowWarning(const std::string&) override {}
  ReplaceAnswer AskReplace(const std::string&) override { return ReplaceAnswer::kNo; }
  std::string AskOpenFileName(const FileQuestion&) override { return file_; }
  std::string AskSaveFileName(const FileQuestion&) override { return file_; }
  void OpenTransfer(const std::string&) override {}
  void ShowChunk(const std::string&) override {}
  void ShowTotal(const std::string&) override {}
  void ShowCounters(const TransferCounters&) override {}
  void ShowPercent(float) override {}
  void FinishTransfer() override {}
  void CloseTransfer() override {}
  std::int32_t TickedSpeed() override { return 19200; }
  bool CheckBeforeTransfer() override { return false; }
  bool PlayWaveOnSuccess() override { return false; }
  std::string ProgramFolder() override { return {}; }
  bool PlayWave(const std::string&, bool) override { return false; }
  void ShowTrace(const std::string&) override {}

 private:
  VirtualClock& clock_;
  std::string file_;
};

}  // namespace sectorbox::testing
