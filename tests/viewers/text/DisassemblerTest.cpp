#include "viewers/text/Disassembler.h"

#include "disc/format/Text.h"
#include "tests/viewers/text/ViewTest.h"

namespace sectorbox {
namespace {

using testing::Bytes;

class DisassemblerTest : public testing::ViewTest {
 protected:
  std::string Dis(const Bytes& bytes, const std::string& load, const Bytes& behind = {}) {
    view_.Finished = false;
    ShowDis(disc_, RowOf(bytes, load, load, behind), view_);
    EXPECT_TRUE(view_.Finished);
    return view_.Text;
  }
};

TEST_F(DisassemblerTest, ACallOfTheSystemIsNamed) {
  EXPECT_EQ(Dis({0x20, 0xEE, 0xFF}, "00001900"), "1900  20 EE FF    JSR  oswrch       n.\r\n");
  EXPECT_EQ(view_.Captions, std::vector<std::string>{"Disassemble File - FILE"});
  EXPECT_EQ(view_.DefaultName, "FILE");
}

TEST_F(DisassemblerTest, AJumpToTheSystemIsNamedAndAnIndirectOneIsNot) {
  EXPECT_EQ(Dis({0x4C, 0xF4, 0xFF, 0x6C, 0xF4, 0xFF}, "00002000"),
            "2000  4C F4 FF    JMP  osbyte      Lt.\r\n"
            "2003  6C F4 FF    JMP  (&FFF4)     lt.\r\n");
}

TEST_F(DisassemblerTest, EveryVectorHasItsLabel) {
  const std::vector<std::pair<int, std::string>> labels = {
      {0xB9, "osrdrm"}, {0xC2, "oseven"}, {0xCE, "osfind"}, {0xD1, "osgbpb"}, {0xD4, "osbput"},
      {0xD7, "osbget"}, {0xDA, "osargs"}, {0xDD, "osfile"}, {0xE0, "osrdch"}, {0xE3, "osasci"},
      {0xE7, "osnewl"}, {0xEE, "oswrch"}, {0xF1, "osword"}, {0xF4, "osbyte"}, {0xF7, "oscli "}};
  for (int low = 0; low < 256; ++low) {
    std::string expected = "&FF" + Hex(static_cast<unsigned>(low), 2) + " ";
    for (const auto& [byte, label] : labels) {
      if (byte == low) expected = label;
    }
    view_.Text.clear();
    Dis({0x20, static_cast<std::uint8_t>(low), 0xFF}, "00001900");
    EXPECT_EQ(view_.Text.substr(23, 6), expected);
  }
}

TEST_F(DisassemblerTest, OnlyPageFFHoldsVectors) {
  EXPECT_EQ(Dis({0x20, 0xEE, 0xFE}, "00001900"), "1900  20 EE FE    JSR  &FEEE        n~\r\n");
}

TEST_F(DisassemblerTest, AnEmptyLineFollowsEachReturn) {
  EXPECT_EQ(Dis({0x60, 0x40, 0xEA}, "00001900"),
            "1900  60          RTS              `\r\n\r\n"
            "1901  40          RTI              @\r\n\r\n"
            "1902  EA          NOP              j\r\n");
  EXPECT_EQ(view_.Texts.size(), 3U);
}

TEST_F(DisassemblerTest, BranchTargetsAreSignedAndWrapInSixteenBits) {
  EXPECT_EQ(Dis({0xD0, 0xFE}, "00002000"), "2000  D0 FE       BNE  &2000       P~\r\n");
  view_.Text.clear();
  EXPECT_EQ(Dis({0x80, 0xFE, 0xEA, 0x80, 0x80}, "00000000"),
            "0000  80 FE       BRA  &0000       .~\r\n"
            "0002  EA          NOP              j\r\n"
            "0003  80 80       BRA  &FF85       ..\r\n");
  view_.Text.clear();
  EXPECT_EQ(Dis({0x80, 0x80}, "00000000").substr(23, 5), "&FF82");
}

TEST_F(DisassemblerTest, AddressesKeepTheirLastFourDigits) {
  EXPECT_EQ(Dis({0xEA, 0xEA}, "0000FFFF"),
            "FFFF  EA          NOP              j\r\n0000  EA          NOP              j\r\n");
}

TEST_F(DisassemblerTest, TheAccumulatorIsNamed) {
  EXPECT_EQ(Dis({0x0A}, "00001900"), "1900  0A          ASL  A           .\r\n");
}

TEST_F(DisassemblerTest, ByteThirtyOneGoesThroughAsACharacterAndThirtyDoesNot) {
  EXPECT_EQ(Dis({0xA9, 0x1F, 0xA9, 0x1E, 0xA9, 0x9F, 0xA9, 0x7F, 0xA9, 0xFF}, "00001900"),
            "1900  A9 1F       LDA  #&1F        )\x1F\r\n"
            "1902  A9 1E       LDA  #&1E        ).\r\n"
            "1904  A9 9F       LDA  #&9F        )\x1F\r\n"
            "1906  A9 7F       LDA  #&7F        ).\r\n"
            "1908  A9 FF       LDA  #&FF        ).\r\n");
}

TEST_F(DisassemblerTest, ABasicProgramIsRecognisedByItsFirstAndLastByte) {
  EXPECT_EQ(Dis({13, 1, 2, 3, 255}, "00001900"), "This appears to be a BASIC program\r\n");
  EXPECT_EQ(view_.Closed, 0);
  view_.Text.clear();
  EXPECT_EQ(Dis({13, 1, 2, 3, 254}, "00001900").substr(0, 18), "1900  0D 01 02    ");
}

TEST_F(DisassemblerTest, TheLastInstructionIsShownWholeWithWhatFollowsTheFile) {
  EXPECT_EQ(Dis({0x4C}, "00001900", {0x34, 0x12}), "1900  4C 34 12    JMP  &1234       L4.\r\n");
}

TEST_F(DisassemblerTest, TheTopOfTheLoadAddressDoesNotMatter) {
  const std::string expected = Dis({0xA9, 1, 0x60}, "00001900");
  view_.Text.clear();
  EXPECT_EQ(Dis({0xA9, 1, 0x60}, "FFFF1900"), expected);
}

TEST_F(DisassemblerTest, AnEmptyFileListsNothing) {
  EXPECT_EQ(Dis({}, "00001900"), "");
}

TEST_F(DisassemblerTest, ACloseRequestTakesEffectAtTheNextLine) {
  view_.OnYield = [&] { view_.Finished = true; };
  EXPECT_EQ(Dis({0xEA, 0xEA}, "00001900"), "1900  EA          NOP              j\r\n");
  EXPECT_EQ(view_.Closed, 1);
}

}  // namespace
}  // namespace sectorbox
