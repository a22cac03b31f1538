#include "disc/exchange/Sidecar.h"

#include <random>

#include "disc/exchange/HostExchange.h"
#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;

TEST(SidecarTest, TheFormThatExportWritesIsRead) {
  const FileSidecar s = ParseFileSidecar("NAME       FFFF1900 FFFF8023 00000E00 LWR");
  EXPECT_EQ(s.Name, "NAME");
  EXPECT_EQ(s.Load, "FFFF1900");
  EXPECT_EQ(s.Exec, "FFFF8023");
  EXPECT_EQ(s.Length, 0xE00U);
  EXPECT_EQ(s.Attr, "LWR");
}

TEST(SidecarTest, ALineOf37CharactersFailsBecauseColumn38IsNotThere) {
  const std::string line = "NAME       FFFF1900 FFFF8023 00000E00";
  ASSERT_EQ(line.size(), 37U);
  EXPECT_FALSE(ParseFileSidecar(line).Name);
  EXPECT_EQ(ParseFileSidecar(line + " ").Length, 0xE00U);
  EXPECT_EQ(ParseFileSidecar(line + " ").Attr, "");
}

TEST(SidecarTest, TheShortFormsAddressesAreExtendedByRepeatingTheirFirstDigits) {
  const FileSidecar s = ParseFileSidecar("$.NAME     FF1900 0E1900 000E00");
  EXPECT_EQ(s.Name, "$.NAME");
  EXPECT_EQ(s.Load, "FFFF1900");
  EXPECT_EQ(s.Exec, "0E0E1900");
  EXPECT_EQ(s.Length, 0xE00U);
  EXPECT_EQ(s.Attr, "RW");
}

TEST(SidecarTest, OneCharacterOfTheShortFormJoinsTheAttributes) {
  EXPECT_EQ(ParseFileSidecar("$.NAME     FF1900 0E1900 000E00 L").Attr, "RWL");
  EXPECT_EQ(ParseFileSidecar("$.NAME     FF1900 0E1900 000E00 Locked").Attr, "RWL");
}

TEST(SidecarTest, ALineThatFitsBothFormsIsReadAsTheLongOne) {
  //                 1         2         3
  //        1234567890123456789012345678901234567890
  EXPECT_EQ(ParseFileSidecar("A.BCDEFGHI FF1900 1 12345 78 0000002A WR").Length, 0x2AU);
  EXPECT_EQ(ParseFileSidecar("A.BCDEFGHI FF1900 1 12345 78 0000002A WR").Name, "A.BCDEFGHI");
}

TEST(SidecarTest, ALengthWithItsTopBitSetIsNotNegative) {
  EXPECT_EQ(ParseFileSidecar("NAME       00000000 00000000 FFFFFFFE ").Length, 0xFFFFFFFEU);
}

TEST(SidecarTest, OtherLinesSayNothing) {
  for (const char* line : {"", "X", "NAME 1900 8023", "NAME       FFFF1900-FFFF8023 00000E00 LWR",
                           "AXNAME     FF1900 0E1900 000E00 L"}) {
    const FileSidecar s = ParseFileSidecar(line);
    EXPECT_FALSE(s.Name) << line;
    EXPECT_FALSE(s.Length) << line;
    EXPECT_EQ(s.Load, "00000000");
    EXPECT_EQ(s.Attr, "RW");
  }
}

TEST(SidecarTest, AFolderNameNeedsABlankInColumn11) {
  EXPECT_EQ(ParseFolderSidecar("GAMES      DWR"), "GAMES");
  EXPECT_EQ(ParseFolderSidecar("A B        "), "A B");
  EXPECT_FALSE(ParseFolderSidecar("GAMES"));
  EXPECT_FALSE(ParseFolderSidecar("GAMES     "));
  EXPECT_FALSE(ParseFolderSidecar("GAMESGAMESX DWR"));
}

TEST(SidecarTest, OnlyTheFirstLineCountsWhateverEndsIt) {
  const TempFolder folder;
  for (const char* end : {"\r\n", "\n", "\r", ""}) {
    WriteText(folder / "x.INF", std::string("first") + end + (*end ? "second\r\n" : ""));
    EXPECT_EQ(ReadSidecarLine(folder / "x"), "first");
  }
  EXPECT_FALSE(ReadSidecarLine(folder / "y"));
}

TEST(SidecarTest, AnyBytesOfAnyLengthAreTakenWithoutHarm) {
  const TempFolder folder;
  std::mt19937 random(7);
  for (const std::size_t length :
       {0UL, 1UL, 10UL, 11UL, 30UL, 37UL, 38UL, 39UL, 300UL, 2000000UL}) {
    for (int round = 0; round < (length > 1000 ? 1 : 60); ++round) {
      std::string text(length, '\0');
      for (char& c : text) c = static_cast<char>(random() % 4 == 0 ? ' ' : random() & 255);
      for (const std::size_t at : {10UL, 17UL, 19UL, 24UL, 28UL, 37UL}) {
        if (at < length && round % 2 == 0) text[at] = ' ';
      }
      WriteText(folder / "x.INF", text);
      const auto line = ReadSidecarLine(folder / "x");
      ASSERT_TRUE(line);
      EXPECT_LE(line->size(), 65536U);
      const FileSidecar s = ParseFileSidecar(*line);
      EXPECT_LE(s.Name.value_or("").size(), 10U);
      EXPECT_LE(ParseFolderSidecar(*line).value_or("").size(), 10U);
    }
  }
}

TEST(SidecarTest, LinesAreWrittenInTheirColumns) {
  EXPECT_EQ(MakeFileSidecar("NAME", "FFFF1900", "FFFF8023", "00000E00", "LWR"),
            "NAME       FFFF1900 FFFF8023 00000E00 LWR\r\n");
  EXPECT_EQ(MakeFileSidecar("TENLETTERS", "FFFF1900", "FFFF8023", "00000E00", ""),
            "TENLETTERS FFFF1900 FFFF8023 00000E00 \r\n");
  EXPECT_EQ(MakeFolderSidecar("GAMES", "DLR"), "GAMES      DLR\r\n");
}

TEST(HostNamesTest, CharactersTheHostReservesAreMapped) {
  EXPECT_EQ(AdfsToHostName("A/B?C<D>E"), "A.B#C$D^E");
  EXPECT_EQ(AdfsToHostName("?<>/"), "#$^.");
  EXPECT_EQ(AdfsToHostName("plain!_"), "plain!_");
}

TEST(HostNamesTest, NamesThatBeginLikeADeviceGetAnUnderscore) {
  EXPECT_EQ(AdfsToHostName("COM"), "COM_");
  EXPECT_EQ(AdfsToHostName("LPT1"), "LPT_1");
  EXPECT_EQ(AdfsToHostName("COMMAND"), "COM_MAND");
  EXPECT_EQ(AdfsToHostName("conf"), "con_f");
  EXPECT_EQ(AdfsToHostName("prn"), "prn_");
  EXPECT_EQ(AdfsToHostName("AUX"), "AUX");
}

TEST(HostNamesTest, AFileDoesNotPassForASidecar) {
  EXPECT_EQ(AdfsToHostName("README/INF"), "README.INF_");
  EXPECT_EQ(AdfsToHostName("read/inf"), "read.inf_");
  EXPECT_EQ(AdfsToHostName("INF"), "INF");
}

TEST(HostNamesTest, NoNameLeadsOutOfTheFolder) {
  EXPECT_EQ(AdfsToHostName("/"), "._");
  EXPECT_EQ(AdfsToHostName("//"), ".._");
  EXPECT_EQ(AdfsToHostName(".."), ".._");
  EXPECT_EQ(AdfsToHostName(std::string("AB\0\0", 4)), "AB");
}

TEST(HostNamesTest, ADotAmongTheFirstTwoCharactersStays) {
  EXPECT_EQ(HostToAdfsName("A.PROG"), "A.PROG");
  EXPECT_EQ(HostToAdfsName(".rc"), ".rc");
  EXPECT_EQ(HostToAdfsName("AB.C.D"), "AB/C/D");
  EXPECT_EQ(HostToAdfsName("A#$^"), "A?<>");
  EXPECT_EQ(HostToAdfsName("#$^"), "?<>");
  EXPECT_EQ(HostToAdfsName("COM_MAND"), "COM_MAND");
}

}  // namespace
}  // namespace sectorbox
