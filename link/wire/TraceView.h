#pragma once

#include <string>

namespace sectorbox {

// The window that shows the trace.
class TraceView {
 public:
  virtual ~TraceView() = default;

  // Appends lines to the trace window, for each line of the trace. Does nothing while the window is
  // closed.
  virtual void ShowTrace(const std::string& text) = 0;
};

}  // namespace sectorbox
