#include "link/wire/Silence.h"

#include <algorithm>

namespace sectorbox {
namespace {

constexpr std::int64_t kLimit = 60'000;
constexpr std::int64_t kMostLinesDown = 120'000;
// A BBC has 64 KB for everything. The stream of so much data has at most twice as many bytes.
constexpr std::size_t kMostOfAnExchange = std::size_t{128} << 10;

}  // namespace

void WatchSilence(Link& link) {
  link.Silence.Watched = true;
  NoteValid(link);
}

void NoteValid(Link& link) {
  link.Silence.LastValid = link.Host.Milliseconds();
  link.Silence.LinesDown = 0;
}

void NoteExchange(Link& link, std::size_t bytes) {
  link.Silence.ExchangeBytes = std::min(bytes, kMostOfAnExchange);
}

void NoteLinesDown(Link& link, std::int64_t milliseconds) {
  if (!link.Silence.DiscAtWork) return;
  link.Silence.LinesDown = std::min(link.Silence.LinesDown + milliseconds, kMostLinesDown);
}

void CheckSilence(Link& link) {
  const SilenceState& silence = link.Silence;
  if (!silence.Watched || link.AbortRequested) return;
  const std::int64_t limit =
      kLimit + silence.LinesDown + TimeOnTheLine(link, silence.ExchangeBytes);
  if (link.Host.Milliseconds() - silence.LastValid > limit) throw BbcSilent();
}

}  // namespace sectorbox
