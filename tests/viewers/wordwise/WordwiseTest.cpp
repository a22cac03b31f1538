#include "viewers/wordwise/Wordwise.h"

#include "tests/viewers/text/ViewTest.h"

namespace sectorbox {
namespace {

using testing::Bytes;
using testing::BytesOf;
using testing::CollectingView;

std::string Blanks(int n) {
  return std::string(static_cast<std::size_t>(n), ' ');
}

std::string Times(int n, const std::string& text) {
  std::string all;
  for (int i = 0; i < n; ++i) all += text;
  return all;
}

// In the documents here "{" is the byte that starts a command, "}" the one that ends it, "/" the
// end of a paragraph and "^" a tab. The expected texts were worked out by hand.
class WordwiseTest : public testing::ViewTest {
 protected:
  static std::string Document(std::string text) {
    for (char& c : text) {
      if (c == '{') c = 2;
      if (c == '}') c = 7;
      if (c == '/') c = 13;
      if (c == '^') c = static_cast<char>(0xDD);
    }
    return text;
  }
  std::string Format(const std::string& text) {
    view_.Finished = false;
    view_.Text.clear();
    view_.Styles.clear();
    view_.Messages.clear();
    ShowWordwise(disc_, RowOf(BytesOf(Document(text)), "FFFFFFFF", "FFFFFFFF"), view_);
    EXPECT_TRUE(view_.Finished);
    return view_.Plain();
  }
  std::string StylesOf(const std::string& text) {
    Format(text);
    return view_.Styles;
  }
};

// --- The document

TEST_F(WordwiseTest, BothAddressesMustBeFFFFFFFF) {
  ShowWordwise(disc_, RowOf(BytesOf("text"), "FFFFFFFF", "00008023"), view_);
  EXPECT_EQ(view_.Text, "This does not appear to be a WordWise Document");
  EXPECT_TRUE(view_.Finished);
  EXPECT_EQ(view_.Widened, 0);
  view_.Text.clear();
  ShowWordwise(disc_, RowOf(BytesOf("text"), "FFFFFFFE", "FFFFFFFF"), view_);
  EXPECT_EQ(view_.Text, "This does not appear to be a WordWise Document");
}

TEST_F(WordwiseTest, AnEmptyDocumentPrintsNothing) {
  EXPECT_EQ(Format(""), "");
  EXPECT_EQ(view_.Widened, 50);
  EXPECT_EQ(view_.Captions, std::vector<std::string>{"View File - FILE"});
  EXPECT_EQ(view_.DefaultName, "FILE");
}

TEST_F(WordwiseTest, ParagraphsAreLinesAndTheLastLineHasNoEnd) {
  EXPECT_EQ(Format("one//two"), "one\n\ntwo");
  EXPECT_EQ(Format("one/"), "one\n");
}

TEST_F(WordwiseTest, TextIsShownCharacterByCharacter) {
  Format("ab/");
  EXPECT_EQ(view_.Texts, (std::vector<std::string>{"a", "b", "\r\n"}));
}

TEST_F(WordwiseTest, Byte81EndsTheDocument) {
  EXPECT_EQ(Format("one/two\x81three/"), "one\ntwo");
}

TEST_F(WordwiseTest, Bytes7FAnd8DAreIgnored) {
  EXPECT_EQ(Format("a\x7F\x8D"
                   "b/"),
            "ab\n");
}

TEST_F(WordwiseTest, TopBitsAreClearedAndControlCodesTakeAColumnButAreNotPrinted) {
  EXPECT_EQ(Format("\xC1\x01\xC2/"), "AB\n");
  EXPECT_EQ(Format("{LL11/\x01\x01"
                   "3456789abXY/"),
            "3456789ab\nXY\n");
}

TEST_F(WordwiseTest, WordsThatDoNotFitGoToTheNextLine) {
  EXPECT_EQ(Format("{LL11/one two three four/"), "one two\nthree four\n");
}

TEST_F(WordwiseTest, AFullLineBeforeABlankDoesNotCarryTheBlankOver) {
  EXPECT_EQ(Format("{LL11/abcde fghij klm/"), "abcde fghij\nklm\n");
}

TEST_F(WordwiseTest, AWordLongerThanTheLineIsCutHard) {
  EXPECT_EQ(Format("{LL11/abcdefghijklmno/"), "abcdefghijk\nlmno\n");
}

TEST_F(WordwiseTest, ALineBreaksAtASoftCommaWhichIsLost) {
  EXPECT_EQ(Format("a\xAC"
                   "b/"),
            "a,b\n");
  EXPECT_EQ(Format("{LL11/abcdef\xAC"
                   "ghijkl/"),
            "abcdef\nghijkl\n");
}

TEST_F(WordwiseTest, AHardBlankIsPrintedAsABlankAndNeverBroken) {
  EXPECT_EQ(Format("a|b/"), "a b\n");
  EXPECT_EQ(Format("{LL11/abc defgh|ijkl/"), "abc\ndefgh ijkl\n");
}

// --- Commands, each alone

TEST_F(WordwiseTest, INOnAnEmptyLineIndentsItAndTheNextOnes) {
  EXPECT_EQ(Format("{IN5/abc/def"), "     abc\n     def");
}

TEST_F(WordwiseTest, TheIndentOfAnEmptyLastLineIsPrinted) {
  EXPECT_EQ(Format("{IN5/abc/"), "     abc\n     ");
}

TEST_F(WordwiseTest, INBehindTextActsFromTheNextLineAndOnlyIfThereIsRoom) {
  EXPECT_EQ(Format("x/abc{IN5}def/ghi"), "x\nabcdef\n     ghi");
  EXPECT_EQ(Format("x/abc{IN60}def/ghi"), "x\nabcdef\nghi");
}

TEST_F(WordwiseTest, INBehindTextOfAPagesFirstLineIndentsThatLineToo) {
  // The line is read twice, and the first reading has set the indent.
  EXPECT_EQ(Format("abc{IN5}def/ghi"), "     abcdef\n     ghi");
}

TEST_F(WordwiseTest, INOnAnEmptyLineTakesTheNumberAsRead) {
  EXPECT_EQ(Format("{IN65/abcdefgh"), Blanks(65) + "abcde\n" + Blanks(65) + "fgh");
}

TEST_F(WordwiseTest, AnIndentThatLeavesNoRoomCountsAsNone) {
  EXPECT_EQ(Format("{IN70/abc/"), "abc\n");
  EXPECT_EQ(Format("{LL999/{IN256/abc/"), "abc\n");
}

TEST_F(WordwiseTest, ALineLongerThanItsBufferGoesRoundInIt) {
  // The line has 255 blanks, and then the letters in cells 0, 1 and 2. The first cells are printed
  // with what they hold at the end of the line.
  EXPECT_EQ(Format("{LL999/{IN255/abc"), "bc" + Blanks(253) + "abc");
}

TEST_F(WordwiseTest, INWithoutANumberIsZero) {
  EXPECT_EQ(Format("{IN5/a/{IN/b"), "     a\nb");
}

TEST_F(WordwiseTest, TIIndentsOneLine) {
  EXPECT_EQ(Format("{TI3/abc/def/"), "   abc\ndef\n");
  EXPECT_EQ(Format("{TI60/abc/"), "abc\n");
  EXPECT_EQ(Format("{IN5/{TI/abc/def"), "abc\n     def");
}

TEST_F(WordwiseTest, CICancelsTheIndent) {
  EXPECT_EQ(Format("{IN5/abc/{CI/def/"), "     abc\ndef\n");
  EXPECT_EQ(Format("{IN5/abc{CI}d/def/"), "     abcd\ndef\n");
}

TEST_F(WordwiseTest, FLAndLMSetTheLeftMargin) {
  EXPECT_EQ(Format("{FL4/a/{FL/b/"), "    a\nb\n");
  EXPECT_EQ(Format("{LM4/a/{LM/b"), "    a\n    b");
}

TEST_F(WordwiseTest, LLFallsBackToSeventy) {
  const std::string line(70, 'x');
  EXPECT_EQ(Format("{LL20/{LL10/" + line + "y/"), line + "\ny\n");
  EXPECT_EQ(Format("{LL20/{LL0/" + line + "y/"), line + "\ny\n");
  EXPECT_EQ(Format("{LL20/{LL/" + line + "y/"), line + "\ny\n");
  // LL11 leaves ten columns with an indent of 0, and none with an indent of 1.
  EXPECT_EQ(Format("{IN1/{LL11/" + line), " " + std::string(69, 'x') + "\n x");
}

TEST_F(WordwiseTest, OnlyThreeDigitsOfANumberAreRead) {
  const std::string line(200, 'x');
  EXPECT_EQ(Format("{LL0209/" + line + "/"),
            std::string(20, 'x') + "\n" + Times(9, std::string(20, 'x') + "\n"));
}

TEST_F(WordwiseTest, LSAndSSSetTheLineSpacing) {
  EXPECT_EQ(Format("{LS2/a/b/{SS/c/"), "a\n\nb\n\nc\n");
  EXPECT_EQ(Format("{LS3/a/{LS/b/"), "a\n\n\nb\n");
}

TEST_F(WordwiseTest, ALineSpacingOfZeroRunsToTheEndOfThePage) {
  EXPECT_EQ(Format("{PL10/{BS0/{LS0/a/b"), "a" + Times(10, "\n") + "b");
}

TEST_F(WordwiseTest, CECentresTheNextLines) {
  EXPECT_EQ(Format("{LL20/{CE/Hi/text/"), Blanks(9) + "Hi\ntext\n");
  EXPECT_EQ(Format("{LL20/{CE2/a/bb/c/"), Blanks(9) + "a\n" + Blanks(9) + "bb\nc\n");
}

TEST_F(WordwiseTest, CEInTheMiddleOfALineEndsItFirst) {
  EXPECT_EQ(Format("text{CE/Hi/"), "text\n" + Blanks(34) + "Hi\n");
}

TEST_F(WordwiseTest, FIAlignsTheNextLineRight) {
  EXPECT_EQ(Format("{LL20/{FI/right/left/"), Blanks(15) + "right\nleft\n");
}

TEST_F(WordwiseTest, SPLeavesEmptyLines) {
  EXPECT_EQ(Format("a/{SP2/b/"), "a\n\n\nb\n");
  EXPECT_EQ(Format("{SP2/b/"), "\n\nb\n");
  EXPECT_EQ(Format("a{SP2/b/"), "a\n\n\nb\n");
}

TEST_F(WordwiseTest, SPWithoutAUsableNumberDoesNothing) {
  EXPECT_EQ(Format("a/{SP0/b/{SP/c/"), "a\nb\nc\n");
}

TEST_F(WordwiseTest, BPBeginsAPageOnlyWherePagesHaveHeads) {
  EXPECT_EQ(Format("a/{BP/b/"), "a\nb\n");
  EXPECT_EQ(Format("{EP}{TS0}{BS0}{PL10/a/{BP/b/"), "a\n" + Times(9, "\n") + "b\n");
}

TEST_F(WordwiseTest, CPBeginsAPageWhereTooFewLinesRemain) {
  // Behind "a", one of ten lines is used.
  EXPECT_EQ(Format("{BS0}{PL10/a/{CP9/b/"), "a\nb\n");
  EXPECT_EQ(Format("{BS0}{PL10/a/{CP10/b/"), "a\n" + Times(9, "\n") + "b\n");
  EXPECT_EQ(Format("{BS0}{PL10/a/{CP/b/"), "a\nb\n");
}

TEST_F(WordwiseTest, PNAndPPPrintPageNumbers) {
  EXPECT_EQ(Format("{PN7}No.{PP}!/"), "No. 7!\n");
  EXPECT_EQ(Format("{PN7}{PN}{PP}/"), " 7\n");
}

TEST_F(WordwiseTest, TheParagraphEndBehindACommandGivesNoEmptyLine) {
  EXPECT_EQ(Format("a{PP/b/"), "a 1b\n");
}

TEST_F(WordwiseTest, PPIsNotKeptWithinTheLine) {
  EXPECT_EQ(Format("{LL11/{PN123/abcdefghij{PP}k/"), "abcdefghij 123\nk\n");
}

TEST_F(WordwiseTest, PCChangesTheHardBlank) {
  EXPECT_EQ(Format("{PC*/a*b|c/"), "a b|c\n");
  EXPECT_EQ(Format("{PC*/{PC/a*b|c/"), "a*b c\n");
}

TEST_F(WordwiseTest, DPChangesWhatABackquotePrints) {
  EXPECT_EQ(Format("a`b/{DP35/a`b/{DP/a`b/"), "a`b\na#b\na`b\n");
}

TEST_F(WordwiseTest, JOJustifiesAndNJStops) {
  EXPECT_EQ(Format("{LL20}{JO/the quick brown fox the quick brown fox end/"),
            "the  quick brown fox\nthe quick brown  fox\nend\n");
  EXPECT_EQ(Format("{LL20}{JO}{NJ/the quick brown fox end/"), "the quick brown fox\nend\n");
}

TEST_F(WordwiseTest, EMAndDMAndESDoNothing) {
  EXPECT_EQ(Format("{EM}{DM}{ES1,2}text/"), "text\n");
}

TEST_F(WordwiseTest, ACommentIsSkippedToItsEnd) {
  EXPECT_EQ(Format("{*any words, and more/text{*x}more/"), "textmore\n");
}

TEST_F(WordwiseTest, AnEmptyCommentRunsToTheNextEnd) {
  // The comment has one letter, but two are skipped, so that the byte that ends it is skipped too.
  EXPECT_EQ(Format("text{*}more/"), "text");
}

TEST_F(WordwiseTest, OCIsAcceptedAndIgnored) {
  EXPECT_EQ(Format("a{OC27,64,1}b/"), "ab\n");
  EXPECT_EQ(Format("a{OC}b/"), "ab\n");
}

TEST_F(WordwiseTest, CommandsAreKnownInEitherCase) {
  EXPECT_EQ(Format("{in3/abc"), "   abc");
}

// --- Tabs

TEST_F(WordwiseTest, ATabGoesToTheNextStop) {
  EXPECT_EQ(Format("a^b/"), "a" + Blanks(8) + "b\n");
}

TEST_F(WordwiseTest, ATabOnAStopOrPastTheLastDoesNothing) {
  EXPECT_EQ(Format("abcdefghi^x/"), "abcdefghix\n");
  const std::string line(112, 'x');
  EXPECT_EQ(Format("{LL200/" + line + "^y/"), line + "y\n");
  // This is in front of the column at which the count of a line begins again.
  const std::string longest(254, 'x');
  EXPECT_EQ(Format("{LL999/" + longest + "^y/"), longest + "y\n");
}

TEST_F(WordwiseTest, DTSetsTheStopsThatItLists) {
  EXPECT_EQ(Format("{DT5,15/a^b^c^d/"), "a   b" + Blanks(9) + "c" + Blanks(14) + "d\n");
}

TEST_F(WordwiseTest, DTWithAHoleOrWithoutNumbersGivesTheUsualStops) {
  EXPECT_EQ(Format("{DT5,,15/a^b/"), "a" + Blanks(8) + "b\n");
  EXPECT_EQ(Format("{DT5/{DT/a^b/"), "a" + Blanks(8) + "b\n");
}

TEST_F(WordwiseTest, DTTakesElevenStops) {
  EXPECT_EQ(Format("{DT1,2,3,4,5,6,7,8,9,10,11,12/abcdefghijk^x/"), "abcdefghijkx\n");
}

TEST_F(WordwiseTest, ALineBreaksAtATab) {
  EXPECT_EQ(Format("{LL11/abc^defg/"), "abc" + Blanks(6) + "\ndefg\n");
}

TEST_F(WordwiseTest, TheBlanksOfATabAreNotStretched) {
  // 9 columns, then "b c" and a word that doesn't fit in 20.
  EXPECT_EQ(Format("{LL20}{JO/a^b c ddddddddd/"),
            "a" + Blanks(8) + "b" + Blanks(9) + "c" + "\nddddddddd\n");
}

// --- Pages

TEST_F(WordwiseTest, AContinuousDocumentHasItsBottomSpaceAfterSixtyLines) {
  EXPECT_EQ(Format(Times(61, "x/")), Times(60, "x\n") + Times(6, "\n") + "x\n");
}

TEST_F(WordwiseTest, PLAndBSBoundThePage) {
  EXPECT_EQ(Format("{PL10}{BS2/" + Times(9, "x/")), Times(8, "x\n") + "\n\n" + "x\n");
  EXPECT_EQ(Format("{PL9/" + Times(61, "x/")), Times(60, "x\n") + Times(6, "\n") + "x\n");
  EXPECT_EQ(Format("{BS80/" + Times(61, "x/")), Times(60, "x\n") + Times(6, "\n") + "x\n");
}

TEST_F(WordwiseTest, EPGivesHeadsAndCOTakesThemAway) {
  EXPECT_EQ(Format("{EP}{TS2}{BS0}{PL10/" + Times(9, "x/")),
            "\n\n" + Times(8, "x\n") + "\n\n" + "x\n");
  EXPECT_EQ(Format("{EP}{CO}{TS2}{BS0}{PL10/x/"), "x\n");
}

TEST_F(WordwiseTest, TheHeaderStandsOnLineTwoOfTheTopSpace) {
  EXPECT_EQ(Format("{EP}{DH}Title/x/"), "\n\nTitle\n\n\n\nx\n");
}

TEST_F(WordwiseTest, HPAndTSMoveTheHeader) {
  EXPECT_EQ(Format("{EP}{TS3}{HP1}{DH}Title/x/"), "\nTitle\n\nx\n");
  EXPECT_EQ(Format("{EP}{TS3}{HP80}{DH}Title/x/"), "\n\nTitle\nx\n");
}

TEST_F(WordwiseTest, AHeaderMayHoldCommandsAndTheTextAfterItIsNotCentred) {
  EXPECT_EQ(Format("{LL20}{EP}{TS1}{HP0}{DH{CE}Hi/x/"), Blanks(9) + "Hi\nx\n");
}

TEST_F(WordwiseTest, AHeaderThatMovesItselfDownIsPrintedThereTooOnTheSamePage) {
  EXPECT_EQ(Format("{EP}{TS4}{HP1}{DH}T{HP3}/x/"), "\nT\n\nT\nx\n");
}

TEST_F(WordwiseTest, TheFooterShowsThePageNumber) {
  EXPECT_EQ(Format("{BS3}{FP1}{PL10}{DF}Page{PP}/" + Times(15, "x/")),
            Times(7, "x\n") + "\nPage 1\n\n" + Times(7, "x\n") + "\nPage 2\n\n" + "x\n");
}

TEST_F(WordwiseTest, AHeaderDefinedOnALaterPageActsFromThatPageOn) {
  EXPECT_EQ(Format("{EP}{TS1}{HP0}{BS0}{PL10/" + Times(9, "x/") + "{DH}Two/y/"),
            "\n" + Times(9, "x\n") + "Two\ny\n");
}

TEST_F(WordwiseTest, SkippedLinesEndWithThePage) {
  EXPECT_EQ(Format("{BS0}{PL10/a/{SP50/b/"), "a\n" + Times(9, "\n") + "b\n");
}

// --- Deferred commands

TEST_F(WordwiseTest, UnderlineBeginsAtTheNextPrintedCharacter) {
  EXPECT_EQ(StylesOf("ab{US}cd/"), "  UUUU");
  EXPECT_EQ(StylesOf("{US}ab/"), "UUUU");
}

TEST_F(WordwiseTest, ANewLineDoesNotEndUnderlineAndTheStyleOutlivesTheDocument) {
  EXPECT_EQ(StylesOf("a{US}b/c/"), " UUUUUU");
  EXPECT_TRUE(view_.Style.UnderlineOn);
  EXPECT_EQ(StylesOf("a"), " ");
  EXPECT_FALSE(view_.Style.UnderlineOn);
}

TEST_F(WordwiseTest, CommandsAtOnePlaceAreOneGroup) {
  EXPECT_EQ(StylesOf("a{US}{DS}b/{UE}{DE}c/"), " ***   ");
}

TEST_F(WordwiseTest, ASecondGroupOnALineRunsWhatStandsAtTheDocumentsStart) {
  // Offsets 1 and 2 are "b" and the command byte.
  EXPECT_EQ(StylesOf("ab{US}cd{UE}ef/"), "  UU    ");
  EXPECT_EQ(view_.Messages, std::vector<std::string>{"Unrecognised Command B\x02"});
}

TEST_F(WordwiseTest, ASecondGroupIsSilentWhereTheDocumentBeginsWithACommand) {
  EXPECT_EQ(StylesOf("{NJ/ab{US}cd{UE}ef/"), "  UU    ");
  EXPECT_TRUE(view_.Messages.empty());
}

TEST_F(WordwiseTest, ASecondGroupRunsACommandOfAnyClassAtTheStart) {
  EXPECT_EQ(StylesOf("xDSab{US}cd{UE}ef/"), "     UUBBBB");
}

TEST_F(WordwiseTest, DeferredCommandsOfAWordThatMovesToTheNextLineMoveWithIt) {
  EXPECT_EQ(StylesOf("{LL11/abc defghi {US}jkl/"), std::string(12, ' ') + "UUUUU");
  EXPECT_EQ(view_.Plain(), "abc defghi\njkl\n");
}

TEST_F(WordwiseTest, GFLeavesTheDiscAsItWas) {
  EXPECT_EQ(Format("a{GF\"NAME\"}b/"), "ab\n");
  EXPECT_EQ(disc_.TheDisc.Fetch(7 * 256 + 9), '"');
}

TEST_F(WordwiseTest, GFWritesItsClosingQuoteThroughTheStore) {
  // The name has no closing quote, and the next quote stands behind the file. It is found, and is
  // still there afterwards.
  const Bytes bytes = BytesOf(Document("a{GF\"NAME}b/"));
  ShowWordwise(disc_, RowOf(bytes, "FFFFFFFF", "FFFFFFFF", BytesOf("xx\"")), view_);
  EXPECT_EQ(view_.Plain(), "ab\n");
  EXPECT_EQ(disc_.TheDisc.Fetch(7 * 256 + static_cast<std::int64_t>(bytes.size()) + 2), '"');
}

TEST_F(WordwiseTest, GFWithoutAClosingQuoteEndsWithTheImage) {
  EXPECT_EQ(Format("a{GF\"NAME}b/"), "ab\n");
}

// --- Unknown commands and bad documents

TEST_F(WordwiseTest, AnUnknownCommandShowsItsLettersInUpperCaseAndIsSkipped) {
  EXPECT_EQ(Format("a/b{xy12,3}c/"), "a\nbc\n");
  EXPECT_EQ(view_.Messages, std::vector<std::string>{"Unrecognised Command XY"});
}

TEST_F(WordwiseTest, CommandsOnAPagesFirstLineRunTwice) {
  Format("{XX}a/");
  EXPECT_EQ(view_.Messages.size(), 2U);
}

TEST_F(WordwiseTest, ACommandByteBeforeAControlCodeIsSkippedInSilence) {
  EXPECT_EQ(Format("a{}b{/c"), "abc");
  EXPECT_TRUE(view_.Messages.empty());
}

TEST_F(WordwiseTest, ACommandThatTheDocumentsEndCutsOffIsReadAsZeros) {
  EXPECT_EQ(Format("a/b{"), "a\nb");
  EXPECT_TRUE(view_.Messages.empty());
  EXPECT_EQ(Format("a/b{I"), "a\nb");
  EXPECT_EQ(view_.Messages, std::vector<std::string>{std::string("Unrecognised Command I\0", 23)});
}

TEST_F(WordwiseTest, ClosingTheWindowStopsTheBoxesAndTakesEffectAtTheEnd) {
  view_.OnBox = [&] {
    if (view_.Messages.size() == 3) view_.Finished = true;
  };
  EXPECT_EQ(Format("{BS0/" + Times(20000, "{XX}a/")), Times(20000, "a\n"));
  EXPECT_EQ(view_.Messages.size(), 3U);
  EXPECT_EQ(view_.Closed, 1);
}

TEST_F(WordwiseTest, ALostPlaceGoesRoundOnceAndThenEnds) {
  // Pages of 60 lines: the 547th ends at byte 32819, which doesn't fit in 16 bits.
  const std::string text = Format(Times(40000, "/"));
  EXPECT_GT(text.size(), 547U * 66);
  EXPECT_LT(text.size(), 4U * 547 * 66);
}

TEST_F(WordwiseTest, WithoutABottomSpaceNoPlaceIsKeptAndALongDocumentIsShownWhole) {
  EXPECT_EQ(Format("{BS0/" + Times(50000, "x/")).size(), 100000U);
}

TEST_F(WordwiseTest, SearchingTheSameStretchAgainAndAgainComesToAnEnd) {
  // Each second group searches 60000 bytes from offset 3 on; each GF the rest of the disc. Searched
  // anew each time, that would be some billions of bytes, far beyond what a test is given.
  const std::string text = "xUS" + Times(60000, "y") + Times(20000, "{UE}ab{GF}c");
  EXPECT_GT(Format("{BS0/" + text.substr(0, 150000)).size(), 60000U);
  EXPECT_GT(Format(text.substr(0, 150000)).size(), 60000U);
}

}  // namespace
}  // namespace sectorbox
