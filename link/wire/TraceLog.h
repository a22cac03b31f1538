#pragma once

#include <string>

namespace sectorbox {

// The trace's log file. Lines go to its end, one write a line, so that a crash loses none of them.
class TraceLog {
 public:
  TraceLog() = default;
  ~TraceLog() { Close(); }
  TraceLog(const TraceLog&) = delete;
  TraceLog& operator=(const TraceLog&) = delete;

  // Closes the current log, then opens or creates path for appending. HostError if that fails; no
  // log is open then.
  void Open(const std::string& path);
  void Close();
  bool IsOpen() const { return file_ >= 0; }
  // A line that can't be written is lost without a word: the trace must never end a transfer.
  void Append(const std::string& text);

 private:
  int file_ = -1;
};

}  // namespace sectorbox
