#pragma once

#include <QElapsedTimer>
#include <QPointer>

#include "link/windows/frmRX.h"
#include "link/windows/frmTrace.h"
#include "link/wire/Link.h"
#include "shell/commands/WavePlayer.h"

namespace sectorbox {

class MainWindow;

// Gives the link what it wants from outside, with the help of the main window: the options, boxes,
// frmRX and frmTrace.
class LinkWindowHost final : public LinkHost {
 public:
  explicit LinkWindowHost(MainWindow& window);

  // Call this before any other operation. link outlives this.
  void Attach(Link& link) { link_ = &link; }
  // The entry "Window": opens frmTrace. The entry is disabled while frmTrace is open.
  void OpenTraceWindow();

  std::int64_t Milliseconds() override;
  void Sleep(std::int32_t milliseconds) override;
  void PumpEvents() override;
  std::string DateAndTime() override;
  void ShowMessage(const std::string& text, const std::string& title) override;
  void ShowWarning(const std::string& text) override;
  ReplaceAnswer AskReplace(const std::string& text) override;
  std::string AskOpenFileName(const FileQuestion& question) override;
  std::string AskSaveFileName(const FileQuestion& question) override;
  void ShowStep(const std::string& text) override;
  void OpenTransfer(const std::string& caption) override;
  void ShowChunk(const std::string& text) override;
  void ShowTotal(const std::string& text) override;
  void ShowCounters(const TransferCounters& counters) override;
  void ShowPercent(float percent) override;
  void FinishTransfer() override;
  void CloseTransfer() override;
  std::int32_t TickedSpeed() override;
  bool CheckBeforeTransfer() override;
  bool PlayWaveOnSuccess() override;
  std::string ProgramFolder() override;
  [[nodiscard]] bool PlayWave(const std::string& path, bool wait) override;
  void ShowTrace(const std::string& text) override;

 private:
  QWidget* BoxParent() const;

  MainWindow& window_;
  Link* link_ = nullptr;
  QElapsedTimer clock_;
  // Each is null once the user has closed the window. Calls for a closed window do nothing.
  QPointer<frmRX> transfer_;
  QPointer<frmTrace> trace_;
  WavePlayer wave_;
};

}  // namespace sectorbox
