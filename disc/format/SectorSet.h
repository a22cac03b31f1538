#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace sectorbox {

// A set of sectors, a bit each. An entry's start sector has 24 bits, so a set of such sectors takes
// at most 2 MB. Sectors below 0 are never in a set.
class SectorSet {
 public:
  [[nodiscard]] bool Has(std::int32_t sector) const {
    const auto at = static_cast<std::size_t>(sector);
    return sector >= 0 && at / kBits < words_.size() && (words_[at / kBits] >> at % kBits & 1) != 0;
  }
  // True if the sector wasn't in the set before.
  bool Insert(std::int32_t sector) {
    if (Has(sector)) return false;
    InsertRange(sector, sector + 1);
    return true;
  }
  // Adds [start, end). Those of them that were in the set before are added to again too.
  void InsertRange(std::int32_t start, std::int32_t end, SectorSet* again = nullptr) {
    auto at = static_cast<std::size_t>(std::max(start, 0));
    const auto last = static_cast<std::size_t>(std::max(end, 0));
    if (at >= last) return;
    if (words_.size() * kBits < last) words_.resize((last + kBits - 1) / kBits);
    while (at < last) {
      const std::size_t first = at % kBits;
      const std::size_t here = std::min(last - at, kBits - first);
      const std::uint64_t mask = ~std::uint64_t{0} >> (kBits - here) << first;
      if (again != nullptr) again->InsertWord(at / kBits, words_[at / kBits] & mask);
      words_[at / kBits] |= mask;
      at += here;
    }
  }
  void Erase(std::int32_t sector) {
    const auto at = static_cast<std::size_t>(sector);
    if (Has(sector)) words_[at / kBits] &= ~(std::uint64_t{1} << at % kBits);
  }
  // True if any of [start, end) is in the set.
  [[nodiscard]] bool HasAny(std::int32_t start, std::int32_t end) const {
    return Next(start, end, true) < end;
  }
  // Calls tell(from, to) for each run [from, to) of sectors in [start, end) that aren't in the set,
  // in rising order.
  template <typename Tell>
  void ForEachGap(std::int32_t start, std::int32_t end, Tell tell) const {
    for (std::int32_t from = Next(start, end, false); from < end;) {
      const std::int32_t to = Next(from, end, true);
      tell(from, to);
      from = Next(to, end, false);
    }
  }

 private:
  static constexpr std::size_t kBits = 64;

  void InsertWord(std::size_t index, std::uint64_t bits) {
    if (bits == 0) return;
    if (words_.size() <= index) words_.resize(index + 1);
    words_[index] |= bits;
  }

  // The first sector of [start, end) that is in the set, or that isn't; end if there is none.
  [[nodiscard]] std::int32_t Next(std::int32_t start, std::int32_t end, bool in) const {
    auto at = static_cast<std::size_t>(std::max(start, 0));
    const auto last = static_cast<std::size_t>(std::max(end, 0));
    while (at < last) {
      const std::uint64_t held = at / kBits < words_.size() ? words_[at / kBits] : 0;
      const std::uint64_t rest = (in ? held : ~held) >> at % kBits;
      if (rest != 0) {
        at += static_cast<std::size_t>(std::countr_zero(rest));
        return at < last ? static_cast<std::int32_t>(at) : end;
      }
      at += kBits - at % kBits;
    }
    return end;
  }

  std::vector<std::uint64_t> words_;
};

}  // namespace sectorbox
