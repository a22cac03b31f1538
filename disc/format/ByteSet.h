#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace sectorbox {

// Which of size bytes were set. It is looked through word by word, so that a set of few bytes costs
// little.
template <std::size_t size>
class ByteSet {
 public:
  void Set(std::size_t at, std::size_t count) {
    while (count > 0) {
      const std::size_t first = at % kBits;
      const std::size_t here = std::min(count, kBits - first);
      words_[at / kBits] |= ~std::uint64_t{0} >> (kBits - here) << first;
      at += here;
      count -= here;
    }
  }

  // Calls store(at, count) for each run of bytes that were set, in rising order.
  template <typename Store>
  void ForEachRun(Store store) const {
    for (std::size_t at = Next(0, true); at < size;) {
      const std::size_t end = Next(at, false);
      store(at, end - at);
      at = Next(end, true);
    }
  }

 private:
  static constexpr std::size_t kBits = 64;

  // The first byte from at that was set, or that wasn't; size if there is none.
  [[nodiscard]] std::size_t Next(std::size_t at, bool set) const {
    while (at < size) {
      const std::uint64_t word = set ? words_[at / kBits] : ~words_[at / kBits];
      const std::uint64_t rest = word >> (at % kBits);
      if (rest != 0) return std::min(size, at + static_cast<std::size_t>(std::countr_zero(rest)));
      at += kBits - at % kBits;
    }
    return size;
  }

  std::array<std::uint64_t, (size + kBits - 1) / kBits> words_{};
};

}  // namespace sectorbox
