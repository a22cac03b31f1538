#include "viewers/text/TextView.h"

#include <gtest/gtest.h>

#include "tests/support/CollectingView.h"

namespace sectorbox {
namespace {

using testing::CollectingView;

TEST(TextViewTest, TextWithoutCarriageReturnsIsShownAsItIs) {
  CollectingView view;
  view.ShowData("A\nB");
  EXPECT_EQ(view.Text, "A\nB");
}

TEST(TextViewTest, EachCarriageReturnGetsALineFeedBehindIt) {
  CollectingView view;
  std::string text = "A\rB\r";
  view.ShowData(text);
  EXPECT_EQ(text, "A\r\nB\r\n");
  view.ShowData("\r\r");
  EXPECT_EQ(view.Text, "A\r\nB\r\n\r\n\r\n");
}

TEST(TextViewTest, ASingleCharacterLetsNoEventsRunButACarriageReturnDoes) {
  CollectingView view;
  int yields = 0;
  view.OnYield = [&] { ++yields; };
  view.ShowData("A");
  EXPECT_EQ(yields, 0);
  view.ShowData("\r");
  EXPECT_EQ(yields, 1);
}

TEST(TextViewTest, AViewEndsFinishedAndClosesItsWindowOnlyAfterACloseRequest) {
  CollectingView view;
  EndView(view);
  EXPECT_TRUE(view.Finished);
  EXPECT_EQ(view.Closed, 0);
  EndView(view);
  EXPECT_EQ(view.Closed, 1);
}

}  // namespace
}  // namespace sectorbox
