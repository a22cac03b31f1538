#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace sectorbox {

// What a file dialog is asked with. Filters have the form "Text (*.x)|*.x|Text (*.*)|*.*".
struct FileQuestion {
  std::string Title;
  std::string Filter;
  std::string FileName;
};

// Everything that the disc engine wants from outside. The window, the command line and the tests
// each have one. All calls come on the one thread, inside the engine operation that makes them;
// unless told otherwise an operation has left the disc in a state between two whole steps when it
// calls, and goes on from there when the call returns.
class DiscHost {
 public:
  virtual ~DiscHost() = default;

  // --- Boxes and questions ---------------------------------------------------------------------
  // A plain box with OK. The operation that shows it ends right after.
  virtual void ShowMessage(const std::string& text) = 0;
  // A box with Yes and No; true for Yes. Front ends without a user answer what the command said.
  virtual bool AskYesNo(const std::string& text, const std::string& title) = 0;
  // File dialogs; an empty text means that the user cancelled. The open dialog doesn't test that
  // the file exists, and the save dialog doesn't ask before an existing file is replaced.
  virtual std::string AskOpenFileName(const FileQuestion& question) = 0;
  virtual std::string AskSaveFileName(const FileQuestion& question) = 0;

  // --- Status ----------------------------------------------------------------------------------
  // The status line. With busy the front end adds ", please wait..."; an empty text is "Ready".
  virtual void SetStatus(const std::string& text, bool busy) = 0;
  // A line about something that was passed over, such as a link that leads back up.
  virtual void Note(const std::string& line) = 0;
  // The hourglass. Calls don't nest: the last one counts.
  virtual void SetBusyPointer(bool busy) = 0;
  // ImageName or ImageChanged may have changed where the caption must show it.
  virtual void RefreshCaption() = 0;

  // --- The panes -------------------------------------------------------------------------------
  // Refill tree and list from the disc. After it the root is the current directory.
  virtual void RebuildTree() = 0;
  // A node click may refill the list again, as it may whenever no rebuild is running.
  virtual void SetTreeReady() = 0;
  // A compaction moved directories: each key is a directory's former start sector, each value the
  // new one. Whoever holds sectors of directories (the tree's nodes) takes the new ones.
  virtual void DirectoriesMoved(const std::map<std::int32_t, std::int32_t>& moves) = 0;
  // The entries for the map, saving and the boot option are usable, since an image is open.
  virtual void EnableDiscEntries() = 0;
  // Keep the path of the image opened last ("Root" of the settings).
  virtual void StoreRoot(const std::string& path) = 0;

  // --- Long work -------------------------------------------------------------------------------
  // Lets waiting user actions run. They may call back into the program; those that can arrive
  // during the operation only set flags (Disc::ProgressRunning).
  virtual void PumpEvents() = 0;
  // The progress dialog: opened once with its caption, then told a line and a percentage at every
  // step that is worth showing, then closed, on every way out. Its Abort clears
  // Disc::ProgressRunning; opening it has set that flag.
  virtual void OpenProgress(const std::string& caption) = 0;
  virtual void ShowProgress(const std::string& line, double percent) = 0;
  virtual void CloseProgress() = 0;

  // --- The user's options, asked for at the moment of use --------------------------------------
  virtual bool PadDiscImages() const = 0;
  virtual bool InterleavedDisc() const = 0;
  virtual bool OverwriteLocked() const = 0;
};

}  // namespace sectorbox
