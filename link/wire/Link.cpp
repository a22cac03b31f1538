#include "link/wire/Link.h"

#include "link/wire/Silence.h"

namespace sectorbox {

void SetSpeed(Link& link, std::int32_t speed) {
  link.Port.Settings(wire::LineSettings(speed));
  link.Speed = speed;
}

std::int64_t TimeOnTheLine(const Link& link, std::size_t bytes) {
  constexpr std::int64_t kBitsInMilliseconds = 10 * 1000;
  return static_cast<std::int64_t>(bytes) * kBitsInMilliseconds / link.Speed;
}

void EnableTimer(Link& link) {
  link.Timer4.Enabled = true;
  link.Timer4.Due = link.Host.Milliseconds() + link.Timer4.Interval;
}

void PumpEvents(Link& link) {
  link.Host.PumpEvents();
  CheckSilence(link);
  if (!link.Timer4.Enabled || link.Host.Milliseconds() < link.Timer4.Due) return;
  link.TimedOut = true;
  link.Timer4.Enabled = false;
}

}  // namespace sectorbox
