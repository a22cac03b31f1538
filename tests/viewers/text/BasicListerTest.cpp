#include "viewers/text/BasicLister.h"

#include "tests/viewers/text/ViewTest.h"

namespace sectorbox {
namespace {

using testing::Bytes;
using testing::BytesOf;

class BasicListerTest : public testing::ViewTest {
 protected:
  std::string List(const Bytes& bytes, const Bytes& behind = {}) {
    Show_Basic(disc_, RowOf(bytes, "FFFF1900", "FFFF8023", behind), view_);
    EXPECT_TRUE(view_.Finished);
    return view_.Text;
  }
  // One line, number 10, of these bytes.
  std::string ListLine(const Bytes& text) {
    Bytes bytes = {13, 0, 10, 0};
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.insert(bytes.end(), {13, 0xFF});
    return List(bytes);
  }
};

TEST_F(BasicListerTest, AnEmptyProgramGivesAnEmptyView) {
  EXPECT_EQ(List({13, 0xFF}), "");
  EXPECT_TRUE(view_.Texts.empty());
  EXPECT_EQ(view_.Captions, std::vector<std::string>{"View File - FILE"});
  EXPECT_EQ(view_.DefaultName, "FILE");
  EXPECT_EQ(view_.Closed, 0);
}

TEST_F(BasicListerTest, AFileThatDoesNotBeginWithACarriageReturnIsNoProgram) {
  EXPECT_EQ(List(BytesOf("10 PRINT\r")), "This does not appear to be a BASIC program\r\n");
}

TEST_F(BasicListerTest, ALineIsItsNumberInFiveColumnsAndItsTextAsStored) {
  EXPECT_EQ(List({13, 0x00, 0x0A, 0x0A, 0xF1, 0x22, 0x41, 0x22, 13, 0xFF}), "   10PRINT\"A\"\r\n");
}

TEST_F(BasicListerTest, HighLineNumbersFillTheFiveColumns) {
  EXPECT_EQ(List({13, 0x7F, 0xFF, 5, 'A', 13, 0xFE, 0xFF, 5, 'B', 13, 0xFF}),
            "32767A\r\n65279B\r\n");
}

TEST_F(BasicListerTest, TheLengthByteOfALineIsNotLookedAt) {
  EXPECT_EQ(List({13, 0, 1, 200, 'A', 13, 0, 2, 0, 'B', 13, 0xFF}), "    1A\r\n    2B\r\n");
}

TEST_F(BasicListerTest, LineReferencesAreDecoded) {
  EXPECT_EQ(ListLine({0x8D, 0x54, 0x68, 0x40}), "   1040\r\n");
}

TEST_F(BasicListerTest, TheTopBitsOfALineReferencesLowByteAreUnfolded) {
  EXPECT_EQ(ListLine({0x8D, 0x44, 0x40, 0x41}), "   10320\r\n");  // 64 + 256
}

TEST_F(BasicListerTest, AllFourTopBitsOfALowByteAreKnown) {
  EXPECT_EQ(ListLine({0x8D, 0x54, 0x41, 0x40, ',', 0x8D, 0x44, 0x41, 0x40, ',', 0x8D, 0x74, 0x41,
                      0x40, ',', 0x8D, 0x64, 0x41, 0x40}),
            "   101,65,129,193\r\n");
}

TEST_F(BasicListerTest, AReferenceFromLine16384UpListsAsASmallerNumber) {
  EXPECT_EQ(ListLine({0x8D, 0x50, 0x40, 0x40}), "   100\r\n");  // 16384 on the BBC
}

TEST_F(BasicListerTest, ADamagedReferenceLosesItsSign) {
  EXPECT_EQ(ListLine({0x8D, 0x54, 0x3F, 0x40}), "   101\r\n");
}

TEST_F(BasicListerTest, AReferenceIsTakenWithoutLookingForALineEndOrQuotes) {
  // -51 - 30 * 256 = -7731
  EXPECT_EQ(ListLine({0x8D, 0x54, 0x0D, 0x22, 'A', 0xF1}), "   107731APRINT\r\n");
}

TEST_F(BasicListerTest, TopBitBytesAreCharactersInsideQuotesAndKeywordsOutside) {
  EXPECT_EQ(ListLine({'"', 0xF1, '"', 0xF1}), "   10\"\xF1\"PRINT\r\n");
}

TEST_F(BasicListerTest, ControlCodesAreSpelledOutInsideQuotesToo) {
  EXPECT_EQ(ListLine({'"', 7, '"', 0x1F}), "   10\" [0x07] \" [0x1F] \r\n");
}

TEST_F(BasicListerTest, ByteCEDisappears) {
  EXPECT_EQ(ListLine({'A', 0xCE, 'B'}), "   10AB\r\n");
}

TEST_F(BasicListerTest, WhatFollowsRemAndDataIsExpandedToo) {
  EXPECT_EQ(ListLine({0xF4, ' ', 0xF1, 0xDC, 0xF1}), "   10REM PRINTDATAPRINT\r\n");
}

TEST_F(BasicListerTest, AQuoteInARemOpensAStringUpToTheEndOfThatLine) {
  EXPECT_EQ(List({13, 0, 1, 0, 0xF4, '"', 0xF1, 13, 0, 2, 0, 0xF1, 13, 0xFF}),
            "    1REM\"\xF1\r\n    2PRINT\r\n");
}

TEST_F(BasicListerTest, OneCarriageReturnAloneGivesAnEmptyView) {
  EXPECT_EQ(List({13}, {0, 10, 4, 'A', 13}), "");
  EXPECT_EQ(List({13}, {0xFF}), "");
}

TEST_F(BasicListerTest, AListingEndsAtTheFilesLengthWithoutAnEndMarker) {
  EXPECT_EQ(List({13, 0, 10, 5, 'A', 13, 0}, {20, 5, 'B', 13}), "   10A\r\n");
}

TEST_F(BasicListerTest, ALineThatTheFilesEndCutsOffIsReadOnFromWhatFollows) {
  EXPECT_EQ(List({13, 0, 10, 5, 'A'}, BytesOf("BC\rrest")), "   10ABC\r\n");
}

TEST_F(BasicListerTest, ALineWithoutAnEndStopsAtTheImagesEnd) {
  List({13, 0, 10, 5, 'A'});
  // What is left of the image is 633 sectors less the five bytes, all zero.
  EXPECT_EQ(view_.Text.size(), std::string("   10A").size() + (633 * 256 - 5) * 8 + 2);
  EXPECT_EQ(view_.Text.substr(0, 14), "   10A [0x00] ");
}

TEST_F(BasicListerTest, ACloseRequestTakesEffectAtTheNextLine) {
  view_.OnYield = [&] { view_.Finished = true; };
  EXPECT_EQ(List({13, 0, 1, 5, 'A', 13, 0, 2, 5, 'B', 13, 0xFF}), "    1A\r\n");
  EXPECT_EQ(view_.Closed, 1);
}

}  // namespace
}  // namespace sectorbox
