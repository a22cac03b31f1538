#include "viewers/table/TextViews.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/CollectingView.h"
#include "tests/support/ImageBuilder.h"
#include "tests/viewers/text/ViewTest.h"

namespace sectorbox {
namespace {

std::string NameOf(int number) {
  const TextViewKind* kind = FindTextView(number);
  return kind == nullptr ? "" : std::string(kind->Name);
}

TEST(TextViewsTest, EachNumberHasItsView) {
  const std::vector<std::string> names = {"Text",   "Hex",   "Basic", "Map", "Cat",
                                          "CatAll", "Ex",    "ExAll", "Cat", "CatAll",
                                          "Ex",     "ExAll", "Dis",   "",    "Wordwise"};
  for (std::size_t number = 0; number < names.size(); ++number) {
    EXPECT_EQ(NameOf(static_cast<int>(number)), names[number]) << number;
  }
}

TEST(TextViewsTest, OtherNumbersHaveNone) {
  for (const int number : {kNoNumber, -2, 13, 1000}) EXPECT_EQ(FindTextView(number), nullptr);
}

TEST(TextViewsTest, AViewIsFoundByItsSmallName) {
  for (const TextViewKind& kind : TextViews()) {
    EXPECT_EQ(FindTextView(SmallNameOf(kind)), &kind) << kind.Name;
  }
  EXPECT_EQ(FindTextView("catall")->Name, "CatAll");
  EXPECT_EQ(FindTextView("CatAll"), nullptr);
  EXPECT_EQ(FindTextView(""), nullptr);
}

class WholeTreeViewTest : public testing::ViewTest {};

TEST_F(WholeTreeViewTest, AViewOfAWholeTreeNamesTheDirectoryAndEndsAsOthersDo) {
  testing::ImageBuilder image(640);
  const std::int32_t sector = image.AddDirectory(2, "GAMES");
  Open(image);
  for (const char* name : {"catall", "exall"}) {
    testing::CollectingView view;
    view.OnYield = [&] { view.Finished = true; };
    ViewTarget target;
    target.Sector = sector;
    ShowTextView(*FindTextView(name), disc_, target, view);
    EXPECT_EQ(view.Text.substr(42, 7), "GAMES\r\n") << name;
    EXPECT_TRUE(view.Finished) << name;
    EXPECT_EQ(view.Closed, 1) << name;
  }
}

}  // namespace
}  // namespace sectorbox
