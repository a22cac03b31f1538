#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "disc/host/FileLock.h"
#include "disc/host/HostFile.h"

namespace sectorbox {

// What other programs do to the host file or device of the open disc. While the disc is changed,
// the lock keeps out those that ask for it; the stamp tells what the others have done.
class ImageLock {
 public:
  enum class Result {
    kTaken,    // nobody else changes the disc until another one is opened
    kInUse,    // another program has the lock
    kChanged,  // another program has changed the disc since it was opened
  };

  // A disc was opened: path is its file or device, or empty if it has none. What was read from a
  // file that isWrittenInPlace is out of date when another program writes to it. A lock on another
  // file is given up.
  void NoteOpening(const std::string& path, bool isWrittenInPlace);
  // Takes the lock, if the open disc doesn't have it yet. Waits for it at most as long as patience
  // says.
  [[nodiscard]] Result Take(std::chrono::milliseconds patience);
  // True if the open disc holds the lock on the file that path names.
  [[nodiscard]] bool IsOn(const std::string& path) const { return lock_.IsOn(path); }
  // A lock on the file that is about to be opened, which the caller has taken before it is read.
  void Adopt(FileLock lock) { lock_ = std::move(lock); }

  // We have written to the file.
  void NoteWrite() { stamp_.reset(); }
  // The disc has been saved in the file that it was opened from.
  void NoteSave() { stamp_ = StampOfPath(path_); }
  // True if another program has changed or replaced the file of a disc in memory since it was read
  // or saved here.
  [[nodiscard]] bool WasReplaced() const;

 private:
  FileLock lock_;
  std::string path_;
  bool isWrittenInPlace_ = false;
  // The file's stamp when it was opened or saved; none if it isn't known.
  std::optional<FileStamp> stamp_;
};

}  // namespace sectorbox
