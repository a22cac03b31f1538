#pragma once

#include <memory>
#include <string>

class QSoundEffect;

namespace sectorbox {

// Plays one sound at a time.
class WavePlayer {
 public:
  WavePlayer();
  ~WavePlayer();

  // False if there is no such file, or no device to play it on. If wait is set, it returns at the
  // end of the sound, else at once.
  bool Play(const std::string& path, bool wait);

 private:
  std::unique_ptr<QSoundEffect> effect_;
};

}  // namespace sectorbox
