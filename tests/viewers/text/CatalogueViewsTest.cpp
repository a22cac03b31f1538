#include "viewers/text/CatalogueViews.h"

#include "tests/viewers/text/ViewTest.h"

namespace sectorbox {
namespace {

using testing::CollectingView;
using testing::ImageBuilder;

constexpr const char* kNoDirectory = "This does not appear to be a Directory structure\n";
const std::string kStars = std::string(40, '*') + "\n";

class CatalogueViewsTest : public testing::ViewTest {
 protected:
  static std::string Head(const std::string& title, const std::string& name,
                          const std::string& sequence = "01") {
    std::string first = title + std::string(19 - title.size(), ' ');
    std::string third = "Dir. " + name;
    return first + " (" + sequence + ")\n" + "Drive:0             Option 00 (Off )\n" + third +
           std::string(19 - third.size(), ' ') + " Lib. \"Unset\"\n\n";
  }
  std::string Cat(std::int32_t sector = 2) {
    view_.Text.clear();
    view_.Finished = false;
    ShowCat(disc_, sector, view_);
    return view_.Plain();
  }
  std::string Ex(std::int32_t sector = 2) {
    view_.Text.clear();
    view_.Finished = false;
    ShowEx(disc_, sector, view_);
    return view_.Plain();
  }
  static std::string Name(int n) { return "F" + std::to_string(10 + n); }
  static ImageBuilder WithFiles(int count) {
    ImageBuilder image(kSectors);
    for (int n = 0; n < count; ++n) image.AddFile(2, {Name(n), {1}});
    return image;
  }
};

TEST_F(CatalogueViewsTest, AnEmptyDirectoryIsTheHeadAndTwoEmptyLinesOrTheHeadAlone) {
  Open(ImageBuilder(kSectors));
  EXPECT_EQ(Cat(), Head("$", "$") + "\n\n");
  EXPECT_TRUE(view_.Finished);
  EXPECT_EQ(Ex(), Head("$", "$"));
  EXPECT_FALSE(view_.Finished);
  EXPECT_EQ(view_.Captions, (std::vector<std::string>{"*CAT", "*EX"}));
  EXPECT_EQ(view_.DefaultName, "$");
}

TEST_F(CatalogueViewsTest, TheHeadShowsTitleSequenceAndBootOption) {
  ImageBuilder image(kSectors);
  image.SetTitle(2, "Games of Old");
  image.SetBootOption(3);
  image.Poke(512, 0x47);
  Open(image);
  EXPECT_EQ(Cat(),
            "Games of Old        (47)\n"
            "Drive:0             Option 03 (Exec)\n"
            "Dir. $              Lib. \"Unset\"\n\n\n\n");
}

TEST_F(CatalogueViewsTest, EveryBootOptionHasAnEndAndHighOnesShowBlanks) {
  const char* const names[] = {"00 (Off )", "01 (Load)", "02 (Run )", "03 (Exec)", "04 (    )"};
  for (std::uint8_t option = 0; option < 5; ++option) {
    ImageBuilder image(kSectors);
    image.SetBootOption(option);
    Open(image);
    EXPECT_EQ(Cat().substr(25, 36), std::string("Drive:0             Option ") + names[option]);
  }
}

TEST_F(CatalogueViewsTest, ATitleOfNineteenCharactersTouchesTheSequenceNumber) {
  ImageBuilder image(kSectors);
  image.SetTitle(2, "1234567890123456789");
  Open(image);
  EXPECT_EQ(Cat().substr(0, 24), "1234567890123456789 (01)");
}

TEST_F(CatalogueViewsTest, TitleAndNameAreCutAtACarriageReturnOrNul) {
  ImageBuilder image(kSectors);
  const std::int32_t dir = image.AddDirectory(2, "LONGNAME");
  image.SetTitle(dir, std::string("Ti\0tle", 6));
  image.Poke(dir * 256 + 1228 + 4, 13);
  Open(image);
  EXPECT_EQ(Cat(dir), Head("Ti", "LONG") + "\n\n");
}

TEST_F(CatalogueViewsTest, ABlankRootNameIsShownAsDollar) {
  ImageBuilder image(kSectors);
  image.Poke(512 + 1228, 0);
  Open(image);
  Cat();
  EXPECT_EQ(view_.DefaultName, "$");
  EXPECT_NE(view_.Text.find("Dir. $ "), std::string::npos);
}

TEST_F(CatalogueViewsTest, FourEntriesFillALineOfEightyColumns) {
  Open(WithFiles(4));
  EXPECT_EQ(Cat(), Head("$", "$") +
                       "F10        WR (00)  F11        WR (00)  F12        WR (00)  "
                       "F13        WR (00)  \n\n");
}

TEST_F(CatalogueViewsTest, AnOpenLastLineIsClosedAndAnEmptyOneFollows) {
  Open(WithFiles(5));
  EXPECT_EQ(Cat(), Head("$", "$") +
                       "F10        WR (00)  F11        WR (00)  F12        WR (00)  "
                       "F13        WR (00)  \nF14        WR (00)  \n\n");
}

TEST_F(CatalogueViewsTest, FortySevenEntriesFillElevenLinesAndThreeQuartersOfATwelfth) {
  Open(WithFiles(47));
  const std::string text = Cat();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4 + 12 + 1);
  EXPECT_EQ(text.size(), Head("$", "$").size() + 47 * 20 + 12 + 1);
  EXPECT_NE(text.find("F56        WR (00)  \n\n"), std::string::npos);
}

TEST_F(CatalogueViewsTest, CellsShowNameThreeAttributesAndSequence) {
  ImageBuilder image(kSectors);
  image.AddFile(2, {"ABCDEFGHIJ", {1}, 0x12345678, 0x9ABCDEF0, "LWR"});
  image.AddFile(2, {"ZEBRA", {1}, 0, 0, "ELWR"});
  const std::int32_t dir = image.AddDirectory(2, "MIDDLE", "LR");
  image.Poke(2 * 256 + 5 + 25, 0x99);
  Open(image);
  EXPECT_EQ(Cat(),
            Head("$", "$") + "ABCDEFGHIJ LWR(99)  MIDDLE     DLR(00)  ZEBRA      ELW(00)  \n\n");
  EXPECT_EQ(dir, 9);
  EXPECT_EQ(Ex(), Head("$", "$") +
                      "ABCDEFGHIJ LWR(99)  12345678  9ABCDEF0  00000001  000007\n"
                      "MIDDLE     DLR(00)  000009\n"
                      "ZEBRA      ELW(00)  00000000  00000000  00000001  000008\n");
  EXPECT_EQ(std::string("ABCDEFGHIJ LWR(99)  12345678  9ABCDEF0  00000001  000007").size(), 56U);
}

TEST_F(CatalogueViewsTest, ASectorWithoutADirectoryGivesOneLine) {
  ImageBuilder image(kSectors);
  const std::int32_t sector = image.AddFile(2, {"F", testing::BytesOf(std::string(1280, 'x'))});
  Open(image);
  EXPECT_EQ(Cat(sector), kNoDirectory);
  EXPECT_EQ(view_.Closed, 0);
  EXPECT_EQ(view_.DefaultName, "xxxxxxxxxx");
  EXPECT_EQ(Ex(sector), kNoDirectory);
  view_.Text.clear();
  ShowCatAll(disc_, sector, "F", view_);
  EXPECT_EQ(view_.Plain(), kNoDirectory);
}

TEST_F(CatalogueViewsTest, TheListEndsAtTheFirstEmptyNameWhetherByNulOrCarriageReturn) {
  for (const std::uint8_t first : {std::uint8_t{0}, std::uint8_t{13}}) {
    ImageBuilder image = WithFiles(3);
    image.Poke(2 * 256 + 5 + 26, first);
    Open(image);
    EXPECT_EQ(Cat(), Head("$", "$") + "F10        WR (00)  \n\n");
  }
}

TEST_F(CatalogueViewsTest, TheWholeTreeShowsEachDirectoryBeforeItsSubdirectories) {
  ImageBuilder image(kSectors);
  const std::int32_t a = image.AddDirectory(2, "A");
  image.AddDirectory(2, "B");
  image.AddDirectory(a, "C");
  image.AddFile(a, {"D", {1}});
  Open(image);
  ShowCatAll(disc_, 2, "$", view_);
  EXPECT_EQ(view_.Plain(), kStars + "$\n" + kStars + Head("$", "$") +
                               "A          DWR(00)  B          DWR(00)  \n\n" + kStars + "$.A\n" +
                               kStars + Head("A", "A") +
                               "C          DWR(00)  D          WR (00)  \n\n" + kStars + "$.A.C\n" +
                               kStars + Head("C", "C") + "\n\n" + kStars + "$.B\n" + kStars +
                               Head("B", "B") + "\n\n");
  EXPECT_EQ(view_.DefaultName, "$");
  EXPECT_FALSE(view_.Finished);
  EXPECT_EQ(view_.Captions.back(), "*CATALL");
}

TEST_F(CatalogueViewsTest, TheWholeTreeInExLayoutEndsEachDirectoryWithAnEmptyLine) {
  ImageBuilder image(kSectors);
  image.AddDirectory(2, "A");
  Open(image);
  ShowExAll(disc_, 2, "$", view_);
  EXPECT_EQ(view_.Plain(), kStars + "$\n" + kStars + Head("$", "$") +
                               "A          DWR(00)  000007\n\n" + kStars + "$.A\n" + kStars +
                               Head("A", "A") + "\n");
  EXPECT_EQ(view_.Captions.back(), "*EXALL");
}

TEST_F(CatalogueViewsTest, SubdirectoriesBehindAnEmptyEntryAreShownToo) {
  ImageBuilder image(kSectors);
  image.AddDirectory(2, "A");
  image.AddDirectory(2, "B");
  image.AddDirectory(2, "C");
  image.Poke(2 * 256 + 5 + 26, 0);  // the B bit of a name that is gone, its D bit still set
  Open(image);
  ShowCatAll(disc_, 2, "$", view_);
  EXPECT_EQ(view_.Plain().find("$.B"), std::string::npos);
  EXPECT_NE(view_.Plain().find("$.C"), std::string::npos);
}

TEST_F(CatalogueViewsTest, ASubdirectoryGoesByTheNameInItsOwnTail) {
  ImageBuilder image(kSectors);
  const std::int32_t dir = image.AddDirectory(2, "ENTRY");
  image.Poke(dir * 256 + 1228, 'X');
  Open(image);
  ShowExAll(disc_, 2, "$", view_);
  EXPECT_NE(view_.Plain().find("$.XNTRY\n"), std::string::npos);
}

TEST_F(CatalogueViewsTest, ADamagedSubdirectoryGivesItsLineWithoutABannerAndTheWalkGoesOn) {
  ImageBuilder image(kSectors);
  const std::int32_t a = image.AddDirectory(2, "A");
  image.AddDirectory(2, "B");
  image.Poke(a * 256 + 1, 'h');
  Open(image);
  ShowCatAll(disc_, 2, "$", view_);
  EXPECT_EQ(view_.Plain().find("$.A"), std::string::npos);
  EXPECT_NE(view_.Plain().find(std::string("\n\n") + kNoDirectory + kStars + "$.B\n"),
            std::string::npos);
}

TEST_F(CatalogueViewsTest, ADirectoryThatListsItselfIsShownOnlySoDeep) {
  ImageBuilder image(kSectors);
  const std::int32_t a = image.AddDirectory(2, "A");
  const std::int32_t b = image.AddDirectory(a, "B");
  for (int n = 0; n < 46; ++n) image.AddDirectory(b, "C" + std::to_string(n + 10));
  image.Poke(a * 256 + 5 + 22, static_cast<std::uint8_t>(a));
  Open(image);
  ShowExAll(disc_, 2, "$", view_);
  EXPECT_LT(view_.Text.size(), 1000000U);
  EXPECT_EQ(view_.DefaultName, "$");
}

TEST_F(CatalogueViewsTest, ADirectoryFullOfItselfEndsToo) {
  ImageBuilder image(kSectors);
  const std::int32_t a = image.AddDirectory(2, "A");
  for (int n = 0; n < 47; ++n) image.AddDirectory(a, "D" + std::to_string(n + 10));
  for (int n = 0; n < 47; ++n) {
    image.Poke(a * 256 + 5 + 26 * n + 22, static_cast<std::uint8_t>(a));
    image.Poke(a * 256 + 5 + 26 * n + 23, 0);
  }
  Open(image);
  ShowCatAll(disc_, 2, "$", view_);
  EXPECT_LT(view_.Text.size(), 1000000U);
}

TEST_F(CatalogueViewsTest, ACloseRequestStopsATreeWithinADirectory) {
  Open(WithFiles(10));
  view_.OnYield = [&] {
    if (view_.Texts.size() == 8) view_.Finished = true;  // three of the banner, three of the head
  };
  ShowExAll(disc_, 2, "$", view_);
  EXPECT_EQ(view_.Texts.size(), 9U);
  EXPECT_EQ(view_.Closed, 0);
  view_.Text.clear();
  ShowExAll(disc_, 2, "$", view_);
  EXPECT_EQ(view_.Text, "");
}

TEST_F(CatalogueViewsTest, ACloseRequestDuringCatTakesEffectAtItsEndAndDuringExIsLost) {
  Open(WithFiles(5));
  view_.OnYield = [&] { view_.Finished = true; };
  Cat();
  EXPECT_NE(view_.Text.find("F14"), std::string::npos);
  EXPECT_EQ(view_.Closed, 1);
  Ex();
  EXPECT_NE(view_.Text.find("F14"), std::string::npos);
  EXPECT_EQ(view_.Closed, 1);
}

TEST_F(CatalogueViewsTest, TheMapListsTheRunsInMemoryInSectors) {
  ImageBuilder image(kSectors);
  image.AddHole(3);
  Open(image);
  ShowMap(disc_, view_);
  EXPECT_EQ(view_.Plain(), "Address : Length\n000007  : 000003\n00000A  : 000276\n");
  EXPECT_EQ(view_.Captions, std::vector<std::string>{"Free Disc Space Map"});
  EXPECT_EQ(view_.DefaultName, "FreeSpace");
  EXPECT_TRUE(view_.Finished);
}

TEST_F(CatalogueViewsTest, AMapWithoutRunsIsItsHeading) {
  ImageBuilder image(kSectors);
  image.SetFreeRuns({});
  Open(image);
  ShowMap(disc_, view_);
  EXPECT_EQ(view_.Plain(), "Address : Length\n");
}

}  // namespace
}  // namespace sectorbox
