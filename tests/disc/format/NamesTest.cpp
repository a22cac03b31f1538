#include "disc/format/Names.h"

#include <gtest/gtest.h>

namespace sectorbox {
namespace {

TEST(FoldName, NamesAreComparedAsTheMachineComparesThem) {
  EXPECT_EQ(FoldName("Abc"), FoldName("aBC"));
  EXPECT_EQ(FoldName("@[\\]^_"), FoldName("`{|}~\x7F"));
  EXPECT_NE(FoldName("0"), FoldName("P"));
  EXPECT_NE(FoldName("!"), FoldName("A"));
  // A name that ends sorts before one that goes on, and digits sort before letters.
  EXPECT_LT(FoldName("AB"), FoldName("AB!"));
  EXPECT_LT(FoldName("Z9"), FoldName("Za"));
  EXPECT_LT(FoldName("`"), FoldName("A"));
  EXPECT_LT(FoldName("z"), FoldName("["));
  EXPECT_LT(FoldName("Z"), FoldName("_"));
}

}  // namespace
}  // namespace sectorbox
