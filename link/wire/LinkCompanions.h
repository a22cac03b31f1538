#pragma once

#include <string>

namespace sectorbox {

// The files that lie beside the program: the BBC's programs and the sound.
class LinkCompanions {
 public:
  virtual ~LinkCompanions() = default;

  // The folder of the program's own file, without a separator at its end.
  [[nodiscard]] virtual std::string ProgramFolder() = 0;
  // Plays a sound file, to its end if wait is set. False if it didn't start; a missing file is
  // simply not heard.
  [[nodiscard]] virtual bool PlayWave(const std::string& path, bool wait) = 0;
};

}  // namespace sectorbox
