#pragma once

#include <cstdint>

// Calls of this very program that fail on demand: a test program that links these sources has its
// own operator new and its own pread, which pass everything on until a test says otherwise. One
// thread only.
namespace sectorbox::testing {

// Which of the calls fail: the one with that number, or that one and all that follow.
enum class Failing { kOne, kFromThere };

// While it lives, the at-th allocation by operator new (counted from 1) throws std::bad_alloc. What
// libraries take from malloc directly doesn't count.
class FailingMemory {
 public:
  FailingMemory(std::int64_t at, Failing which);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  // How many allocations there were until now, with those that failed.
  [[nodiscard]] static std::int64_t Count();
};

// The same for pread, which gives EIO.
class FailingReads {
 public:
  FailingReads(std::int64_t at, Failing which);
  ~FailingReads();
  FailingReads(const FailingReads&) = delete;
  FailingReads& operator=(const FailingReads&) = delete;

  [[nodiscard]] static std::int64_t Count();
};

}  // namespace sectorbox::testing
