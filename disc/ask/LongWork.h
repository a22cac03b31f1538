#pragma once

#include <string>

namespace sectorbox {

// What a long operation needs from outside: the events of the front end, and a progress dialog.
class LongWork {
 public:
  virtual ~LongWork() = default;

  // Lets waiting user actions run. What runs there only sets flags (Disc::ProgressRunning): the
  // front end starts no command while another one runs.
  virtual void PumpEvents() = 0;
  // The progress dialog. An operation opens it once with its caption, gives it a line and a
  // percentage at every step that is worth showing, and closes it on every way out. Opening it sets
  // Disc::ProgressRunning; its Abort clears that flag.
  virtual void OpenProgress(const std::string& caption) = 0;
  virtual void ShowProgress(const std::string& line, double percent) = 0;
  virtual void CloseProgress() = 0;
};

}  // namespace sectorbox
