#include "disc/format/SectorSet.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace sectorbox {
namespace {

using Gaps = std::vector<std::pair<std::int32_t, std::int32_t>>;

Gaps GapsOf(const SectorSet& set, std::int32_t start, std::int32_t end) {
  Gaps gaps;
  set.ForEachGap(start, end,
                 [&](std::int32_t from, std::int32_t to) { gaps.emplace_back(from, to); });
  return gaps;
}

TEST(SectorSet, InsertTellsWhetherTheSectorIsNew) {
  SectorSet set;
  EXPECT_TRUE(set.Insert(0xFFFFFF));
  EXPECT_FALSE(set.Insert(0xFFFFFF));
  EXPECT_TRUE(set.Insert(0));
  EXPECT_TRUE(set.Has(0));
  EXPECT_FALSE(set.Has(1));
  EXPECT_FALSE(set.Has(-1));
  set.Erase(0);
  set.Erase(1);
  EXPECT_TRUE(set.Insert(0));
}

TEST(SectorSet, SectorsBelowZeroAreNeverInIt) {
  SectorSet set;
  EXPECT_TRUE(set.Insert(-1));
  EXPECT_TRUE(set.Insert(-1));
  set.InsertRange(-10, 2);
  set.InsertRange(-10, -2);
  EXPECT_EQ(GapsOf(set, 0, 10), (Gaps{{2, 10}}));
}

TEST(SectorSet, GivesTheGapsWhereverARangeStartsAndEnds) {
  for (std::int32_t start = 0; start < 200; ++start) {
    for (std::int32_t end = start + 1; end <= 200; ++end) {
      SectorSet set;
      set.InsertRange(start, end);
      Gaps expected;
      if (start > 0) expected.emplace_back(0, start);
      if (end < 200) expected.emplace_back(end, 200);
      ASSERT_EQ(GapsOf(set, 0, 200), expected);
      ASSERT_EQ(GapsOf(set, start, end), Gaps());
    }
  }
  EXPECT_EQ(GapsOf(SectorSet(), 5, 1000), (Gaps{{5, 1000}}));
  EXPECT_EQ(GapsOf(SectorSet(), 5, 5), Gaps());
}

TEST(SectorSet, WhatIsInsertedASecondTimeIsTold) {
  SectorSet set;
  SectorSet again;
  set.InsertRange(10, 100, &again);
  EXPECT_FALSE(again.HasAny(0, 1000));
  set.InsertRange(90, 300, &again);
  EXPECT_TRUE(again.HasAny(0, 91));
  EXPECT_FALSE(again.HasAny(0, 90));
  EXPECT_EQ(GapsOf(again, 0, 300), (Gaps{{0, 90}, {100, 300}}));
}

}  // namespace
}  // namespace sectorbox
