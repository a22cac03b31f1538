#include "shell/commands/WavePlayer.h"

#include <QAudioDevice>
#include <QEventLoop>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QTimer>
#include <QUrl>

#include "disc/host/HostFile.h"
#include "toolkit/Text.h"

namespace sectorbox {
namespace {

constexpr int kLongestWait = 10000;  // milliseconds; a device that never ends its sound

}  // namespace

WavePlayer::WavePlayer() = default;
WavePlayer::~WavePlayer() = default;

bool WavePlayer::Play(const std::string& path, bool wait) {
  if (!HostFileExists(path) || QMediaDevices::defaultAudioOutput().isNull()) return false;
  effect_ = std::make_unique<QSoundEffect>();
  effect_->setSource(QUrl::fromLocalFile(FromHost(path)));
  effect_->play();  // begins as soon as the file is read
  if (!wait) return true;
  QEventLoop loop;
  QObject::connect(effect_.get(), &QSoundEffect::playingChanged, &loop, [&] {
    if (!effect_->isPlaying()) loop.quit();
  });
  QTimer::singleShot(kLongestWait, &loop, &QEventLoop::quit);
  loop.exec();
  return true;
}

}  // namespace sectorbox
