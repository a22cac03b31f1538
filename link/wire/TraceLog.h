#pragma once

#include <string>

#include "disc/host/HostFile.h"

namespace sectorbox {

// The trace's log file. Each line is written at once, behind what the file holds already, so that a
// crash of this program loses no line.
class TraceLog {
 public:
  // Closes the current log, then opens path, or creates it. HostError if that fails; no log is open
  // then.
  void Open(const std::string& path) { file_.Open(path); }
  void Close() { file_.Close(); }
  [[nodiscard]] bool IsOpen() const { return file_.IsOpen(); }
  // Writes text to the end of the log; does nothing while no log is open. If the host refuses, the
  // text is lost and nobody is told: the trace must never end a transfer.
  void Append(const std::string& text);

 private:
  AppendedFile file_;
};

}  // namespace sectorbox
