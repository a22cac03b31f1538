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

  // False if there is no such file or nothing to play it on. With wait it returns at the sound's
  // end, without it at once.
  bool Play(const std::string& path, bool wait);

 private:
  std::unique_ptr<QSoundEffect> effect_;
};

}  // namespace sectorbox
