#pragma once

#include <array>
#include <cstdint>

namespace sectorbox {

// Remembers where a forward search for a certain set of bytes has ended. A document can make the
// formatter search the same long stretch thousands of times; with this class all searches together
// take a time that is linear in the document's length. It keeps two stretches that were searched:
// the longest one, and the latest other one.
class ScanMemory {
 public:
  // Calls found(at) for rising at, beginning with from, until it is true or at is end. Gives that
  // at.
  template <typename Found>
  std::int64_t Search(std::int64_t from, std::int64_t end, Found found) {
    std::int64_t at = from;
    while (at < end && !found(at)) {
      const std::int64_t known = KnownEnd(at);
      at = known > at ? known : at + 1;
    }
    Remember(from, at);
    return at;
  }

 private:
  struct Stretch {
    std::int64_t From = 0;
    std::int64_t To = 0;  // nothing was found in [From, To)
    std::int64_t Length() const { return To - From; }
  };

  std::int64_t KnownEnd(std::int64_t at) const {
    for (const Stretch& stretch : stretches_) {
      if (stretch.From <= at && at < stretch.To) return stretch.To;
    }
    return at;
  }

  void Remember(std::int64_t from, std::int64_t to) {
    if (from == to) return;
    for (const Stretch& stretch : stretches_) {
      if (stretch.From <= from && to <= stretch.To) return;
    }
    const bool first = to - from > stretches_[0].Length();
    if (first) stretches_[1] = stretches_[0];
    stretches_[first ? 0 : 1] = {from, to};
  }

  std::array<Stretch, 2> stretches_{};
};

}  // namespace sectorbox
