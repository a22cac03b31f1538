#pragma once

#include <map>
#include <string>

#include "cli/program/CommandLine.h"
#include "disc/store/Disc.h"

namespace sectorbox::cli {

// The engine's host at the command line. A box is a line on standard error. The answer to every
// yes/no question is Yes. A file dialog gives the file that the command line has named. Progress is
// one line on standard error, if that is a terminal. If a command catches Ctrl-C, the next pump
// ends it with the Failure "Aborted"; a file that it was making isn't left half made.
class CliHost : public DiscHost {
 public:
  explicit CliHost(const CommandLine& line);

  // The name that the next file dialog gives; empty cancels.
  std::string FileAnswer;
  // A box was shown. Commands that write then end with status 1.
  bool MessageShown = false;
  // Something was left out that the command was to do. It ends with status 1 then.
  bool LeftOut = false;
  // Points at the open disc's go-on flag, which opening a progress line sets.
  bool* ProgressRunning = nullptr;

  bool DeleteLocked() const { return deleteLocked_; }
  bool DeleteNonEmpty() const { return deleteNonEmpty_; }

  void ShowMessage(const std::string& text) override;
  bool AskYesNo(const std::string& text, const std::string& title) override;
  std::string AskOpenFileName(const FileQuestion& question) override;
  std::string AskSaveFileName(const FileQuestion& question) override;
  void SetStatus(const std::string& text, bool busy) override;
  void Note(const std::string& line) override;
  void NoteLeftOut(const std::string& line) override;
  void SetBusyPointer(bool busy) override;
  void RefreshCaption() override;
  void RebuildTree() override;
  void SetTreeReady() override;
  void DirectoriesMoved(const std::map<std::int32_t, std::int32_t>& moves) override;
  void EnableDiscEntries() override;
  void StoreRoot(const std::string& path) override;
  void PumpEvents() override;
  void OpenProgress(const std::string& caption) override;
  void ShowProgress(const std::string& line, double percent) override;
  void CloseProgress() override;
  bool PadDiscImages() const override { return pad_; }
  bool InterleavedDisc() const override { return interleave_; }
  bool OverwriteLocked() const override { return overwriteLocked_; }
  std::chrono::milliseconds LockPatience() const override { return std::chrono::seconds(5); }

 private:
  bool pad_;
  bool interleave_;
  bool deleteLocked_;
  bool overwriteLocked_;
  bool deleteNonEmpty_;
  bool terminal_;
};

}  // namespace sectorbox::cli
