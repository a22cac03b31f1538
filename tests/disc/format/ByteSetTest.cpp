#include "disc/format/ByteSet.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace sectorbox {
namespace {

using Runs = std::vector<std::pair<std::size_t, std::size_t>>;

template <std::size_t size>
Runs RunsOf(const ByteSet<size>& set) {
  Runs runs;
  set.ForEachRun([&](std::size_t at, std::size_t count) { runs.emplace_back(at, count); });
  return runs;
}

TEST(ByteSet, HasNoRunsAtFirst) {
  EXPECT_EQ(RunsOf(ByteSet<512>()), Runs());
}

TEST(ByteSet, GivesEachRunOnceWhereverItStartsAndEnds) {
  for (std::size_t at = 0; at < 200; ++at) {
    for (std::size_t count = 1; at + count <= 200; ++count) {
      ByteSet<200> set;
      set.Set(at, count);
      ASSERT_EQ(RunsOf(set), (Runs{{at, count}}));
    }
  }
}

TEST(ByteSet, JoinsRunsThatTouchAndKeepsOthersApart) {
  ByteSet<256> set;
  set.Set(60, 4);
  set.Set(64, 64);
  set.Set(130, 1);
  set.Set(255, 1);
  set.Set(62, 10);
  EXPECT_EQ(RunsOf(set), (Runs{{60, 68}, {130, 1}, {255, 1}}));
}

TEST(ByteSet, SettingNoBytesSetsNone) {
  ByteSet<64> set;
  set.Set(63, 0);
  EXPECT_EQ(RunsOf(set), Runs());
}

}  // namespace
}  // namespace sectorbox
