#pragma once

#include <cstdint>

namespace sectorbox {

// Bounds for walks over directories. A damaged disc may have directories that list themselves, an
// ancestor, or each other many times over; the walks have no guard against cycles of their own, so
// a depth and a count of directories stand for the stack and the patience that would run out. The
// limits lie far beyond any sound disc: ADFS paths are short, and a disc of 512 MB has room for
// fewer than 430,000 directories.
class WalkBudget {
 public:
  static constexpr std::int32_t kMaxDepth = 256;
  static constexpr std::int32_t kMaxDirectories = 450000;

  // Entering a directory: false when a bound is reached, after which every call gives false, so
  // that the whole walk ends and not only this branch. Each true needs its Leave.
  bool Enter() {
    if (exhausted_ || depth_ >= kMaxDepth || count_ >= kMaxDirectories) {
      exhausted_ = true;
      return false;
    }
    ++depth_;
    ++count_;
    return true;
  }
  void Leave() { --depth_; }
  bool Exhausted() const { return exhausted_; }

 private:
  std::int32_t depth_ = 0;
  std::int32_t count_ = 0;
  bool exhausted_ = false;
};

}  // namespace sectorbox
