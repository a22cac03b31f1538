#pragma once

#include <memory>
#include <string>
#include <utility>

#include "cfcard/cards/CardDrives.h"
#include "disc/store/Disc.h"

namespace sectorbox {

class frmMain;
class frmSave;

// Gives the disc engine what it wants from outside, with the help of the main window. It is made
// before the disc and the window. While no window is attached its answers are harmless and it shows
// nothing.
class WindowHost : public DiscHost {
 public:
  WindowHost();
  ~WindowHost() override;

  // Sets the window; null when the window goes.
  void Attach(frmMain* window);

  // The drives that may hold a card. The disc's device looks its drive letters up here.
  CardDrives Drives;

  // The host keeps the last Note until TakeNote. This shows it once more, after another text has
  // taken its place. It does nothing if there is no Note.
  void ShowNoteAgain();
  // Gives the kept note, empty if there is none, and forgets it.
  [[nodiscard]] std::string TakeNote() { return std::exchange(note_, {}); }
  // Keeps a note that was taken before.
  void KeepNote(const std::string& line) { note_ = line; }

  void ShowMessage(const std::string& text) override;
  bool AskYesNo(const std::string& text, const std::string& title) override;
  std::string AskOpenFileName(const FileQuestion& question) override;
  std::string AskSaveFileName(const FileQuestion& question) override;
  void SetStatus(const std::string& text, bool busy) override;
  void Note(const std::string& line) override;
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
  bool PadDiscImages() const override;
  bool InterleavedDisc() const override;
  bool OverwriteLocked() const override;

 private:
  frmMain* window_ = nullptr;
  std::unique_ptr<frmSave> progress_;
  bool busy_ = false;
  std::string note_;
};

}  // namespace sectorbox
