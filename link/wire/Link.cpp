#include "link/wire/Link.h"

namespace sectorbox {

void EnableTimer(Link& link) {
  link.Timer4.Enabled = true;
  link.Timer4.Due = link.Host.Milliseconds() + link.Timer4.Interval;
}

void PumpEvents(Link& link) {
  link.Host.PumpEvents();
  if (!link.Timer4.Enabled || link.Host.Milliseconds() < link.Timer4.Due) return;
  link.TimedOut = true;
  link.Timer4.Enabled = false;
}

}  // namespace sectorbox
