#pragma once

#include <string>

#include "shell/window/MainWindow.h"

// The words of what a command has done.
namespace sectorbox {

// "1 Object", "3 Objects": a count and what is counted.
[[nodiscard]] inline std::string CountOf(int count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// Panel 2 says what the running step has deleted, and which key brings it back. If the step can't
// be undone, the user has been told so.
inline void TellDeleted(MainWindow& window, const std::string& what) {
  if (!window.Steps().IsKeeping()) return;
  window.OpenDisc().Host.Note(what + " deleted - Ctrl+Z takes it back");
}

}  // namespace sectorbox
