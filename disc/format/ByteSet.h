#pragma once

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
    for (std::size_t i = at; i < at + count; ++i) {
      words_[i / kBits] |= std::uint64_t{1} << (i % kBits);
    }
  }

  // Calls store(at, count) for each run of bytes that were set, in rising order. A run that crosses
  // a word comes in pieces.
  template <typename Store>
  void ForEachRun(Store store) const {
    for (std::size_t word = 0; word < words_.size(); ++word) {
      std::uint64_t rest = words_[word];
      while (rest != 0) {
        const auto first = static_cast<std::size_t>(std::countr_zero(rest));
        const auto count = static_cast<std::size_t>(std::countr_one(rest >> first));
        store(word * kBits + first, count);
        if (first + count >= kBits) break;
        rest = rest >> (first + count) << (first + count);
      }
    }
  }

 private:
  static constexpr std::size_t kBits = 64;

  std::array<std::uint64_t, (size + kBits - 1) / kBits> words_{};
};

}  // namespace sectorbox
