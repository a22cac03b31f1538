#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "tests/support/ImageBuilder.h"
#include "tests/support/PtyBbc.h"
#include "tests/support/RunSbx.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class ReadCommands : public ::testing::Test {
 protected:
  ReadCommands() {
    ImageBuilder image(640);
    const auto games = image.AddDirectory(2, "GAMES");
    image.AddFile(games, {"Elite", {1, 2, 3, 13, 10, 0, 255}, 0xFFFF1900, 0xFFFF8023, "LWR"});
    image.AddDirectory(games, "DEEP");
    image.AddFile(2, {"!BOOT", std::vector<std::uint8_t>(300, 'b'), 0, 0xFFFFFFFF, "WR"});
    image.SetTitle(2, "Test disc");
    image.SetBootOption(3);
    image.WriteTo(disc_);
  }

  // What a call shows on a terminal that has its standard output and standard error.
  static std::string OnTerminal(const std::vector<std::string>& words) {
    PtyBbc screen;
    screen.Bbc.Faults.Mute = true;
    screen.Start();
    SbxProcess sbx(words, "", SBX_PATH, screen.Device(), screen.Device());
    (void)sbx.Wait();
    screen.Stop();
    return screen.Bytes();
  }

  TempFolder folder_;
  std::string disc_ = folder_ / "disc.adf";
};

TEST_F(ReadCommands, InfoTellsTheFiguresOfAFloppy) {
  const SbxResult result = RunSbx({"info", disc_});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Out,
            "kind: adf\ndisctype: 0\ntracks: 40\nheads: 1\nsectors: 16\nsize: 640\n"
            "free: 158720\nused: 5120\nruns: 1\nboot: 3\ntitle: Test disc\n");
  EXPECT_EQ(result.Err, "");
}

TEST_F(ReadCommands, WhatIsNoAdfsDiscIsTold) {
  const std::string photo = folder_ / "photo.jpg";
  WriteAll(photo, std::vector<std::uint8_t>(163840, 0xFF));
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"info", photo},
                                             {"tree", photo},
                                             {"ls", photo},
                                             {"map", photo},
                                             {"cat", photo},
                                             {"ex", photo},
                                             {"catall", photo},
                                             {"exall", photo},
                                             {"check", photo},
                                             {"hex", photo, "$"},
                                             {"export", photo, "$", folder_ / "."},
                                             {"save", photo, folder_ / "out"}}) {
    const SbxResult result = RunSbx(words);
    EXPECT_EQ(result.Status, 1) << words[0];
    EXPECT_EQ(result.Err.substr(0, 26), "photo.jpg Is No ADFS Disc\n") << words[0];
  }
  EXPECT_EQ(RunSbx({"tree", photo}).Out, "$\t000002\n");
  EXPECT_EQ(RunSbx({"get", photo, "FILE"}).Err, "photo.jpg Is No ADFS Disc\nNot found: FILE\n");
}

TEST_F(ReadCommands, InfoTellsTheGeometryOfAHardDisc) {
  ImageBuilder(4224).WriteTo(folder_ / "hard.dat");
  const auto lines = Lines(RunSbx({"info", folder_ / "hard.dat"}).Out);
  ASSERT_EQ(lines.size(), 11U);
  EXPECT_EQ(lines[0], "kind: dat");
  EXPECT_EQ(lines[1], "disctype: 2");
  EXPECT_EQ(lines[2], "tracks: 33");
  EXPECT_EQ(lines[3], "heads: 4");
  EXPECT_EQ(lines[4], "sectors: 33");
  EXPECT_EQ(lines[5], "size: 4224");
}

TEST_F(ReadCommands, ControlBytesOfNamesDoNotReachATerminal) {
  ImageBuilder image(640);
  image.AddFile(2, {"E\x1B]0;X\x07", {1}, 0, 0, "WR"});
  image.AddDirectory(2, "D\x7F\x01");
  image.SetTitle(2, "T\x1B[2J");
  image.WriteTo(disc_);
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"ls", disc_},
                                             {"tree", disc_},
                                             {"cat", disc_},
                                             {"ex", disc_},
                                             {"catall", disc_},
                                             {"exall", disc_},
                                             {"check", disc_},
                                             {"info", disc_}}) {
    SCOPED_TRACE(words[0]);
    const std::string plain = RunSbx(words).Out;
    EXPECT_NE(plain.find_first_of("\x1B\x07\x7F"), std::string::npos);
    const std::string shown = OnTerminal(words);
    EXPECT_EQ(shown.find_first_of("\x1B\x07\x7F\x01"), std::string::npos);
    EXPECT_NE(shown.find('?'), std::string::npos);
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'),
              std::count(plain.begin(), plain.end(), '\n'));
  }
}

TEST_F(ReadCommands, ControlBytesOfMessagesDoNotReachATerminal) {
  const std::vector<std::string> words = {"get", disc_,
                                          "NO\x1BNE\xC2\x9B"
                                          "\xC3\xA9"};
  EXPECT_EQ(RunSbx(words).Err,
            "Not found: NO\x1BNE\xC2\x9B"
            "\xC3\xA9\n");
  const std::string shown = OnTerminal(words);
  EXPECT_EQ(shown.find_first_of("\x1B\x9B"), std::string::npos) << shown;
  EXPECT_EQ(shown.rfind("Not found: NO?NE", 0), 0U);
}

TEST_F(ReadCommands, TreeGivesEachDirectoryInTheOrderOfTheWalk) {
  const SbxResult result = RunSbx({"tree", disc_});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Out, "$\t000002\n$.GAMES\t000007\n$.GAMES.DEEP\t00000D\n");
}

TEST_F(ReadCommands, LsGivesTheSevenColumns) {
  EXPECT_EQ(RunSbx({"ls", disc_}).Out,
            "!BOOT\tWR\t(00)\t00000000\tFFFFFFFF\t0000012C\t000012\n"
            "GAMES\tDWR\t(00)\t000007\t\t\t\n");
  EXPECT_EQ(RunSbx({"ls", disc_, "$.games"}).Out,
            "DEEP\tDWR\t(00)\t00000D\t\t\t\n"
            "Elite\tLWR\t(00)\tFFFF1900\tFFFF8023\t00000007\t00000C\n");
  EXPECT_EQ(RunSbx({"ls", disc_, "GAMES.DEEP"}).Out, "");
}

TEST_F(ReadCommands, LsRefusesAFileAndWhatIsNotThere) {
  const SbxResult file = RunSbx({"ls", disc_, "$.GAMES.ELITE"});
  EXPECT_EQ(file.Status, 1);
  EXPECT_EQ(file.Err, "Not a directory: $.GAMES.ELITE\n");
  const SbxResult none = RunSbx({"ls", disc_, "$.NONE"});
  EXPECT_EQ(none.Status, 1);
  EXPECT_EQ(none.Err, "Not found: $.NONE\n");
  EXPECT_EQ(none.Out, "");
}

TEST_F(ReadCommands, MapPrintsTheFreeRuns) {
  EXPECT_EQ(RunSbx({"map", disc_}).Out, "Address : Length\n000014  : 00026C\n");
  EXPECT_EQ(RunSbx({"map", disc_, "-o", folder_ / "map.txt"}).Out, "");
  EXPECT_EQ(ReadText(folder_ / "map.txt"), "Address : Length\r\n000014  : 00026C\r\n");
}

TEST_F(ReadCommands, GetGivesTheBytesAsTheyAre) {
  const std::string bytes("\1\2\3\r\n\0\377", 7);
  EXPECT_EQ(RunSbx({"get", disc_, "$.GAMES.elite"}).Out, bytes);
  EXPECT_EQ(RunSbx({"get", disc_, "GAMES.ELITE", "-o", folder_ / "elite"}).Status, 0);
  EXPECT_EQ(ReadText(folder_ / "elite"), bytes);
}

TEST_F(ReadCommands, GetFillsALengthPastTheEndWithZerosThatTakeNoRoom) {
  auto bytes = ReadAll(disc_);
  // !BOOT, the first entry of the root, gets the greatest length that the field can state, and
  // starts in the last sectors.
  for (std::size_t i = 18; i < 22; ++i) bytes[517 + i] = 0xFF;
  WriteAll(disc_, bytes);
  EXPECT_EQ(RunSbx({"get", disc_, "!BOOT", "-o", folder_ / "out"}).Status, 0);
  struct stat info {};
  ASSERT_EQ(::stat((folder_ / "out").c_str(), &info), 0);
  EXPECT_EQ(info.st_size, 0xFFFFFFFF);
  EXPECT_LT(info.st_blocks * 512, 1 << 20);
}

TEST_F(ReadCommands, GetRefusesADirectory) {
  const SbxResult result = RunSbx({"get", disc_, "GAMES"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "Not a file: GAMES\n");
}

TEST_F(ReadCommands, CheckIsSilentOnASoundDisc) {
  const SbxResult result = RunSbx({"check", disc_});
  EXPECT_EQ(result.Out + result.Err, "");
  EXPECT_EQ(result.Status, 0);
}

TEST_F(ReadCommands, CheckTellsErrorsAndEndsWithOne) {
  auto bytes = ReadAll(disc_);
  bytes[255] ^= 1;
  WriteAll(disc_, bytes);
  const SbxResult result = RunSbx({"check", disc_});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Out.rfind("error: sector 0: ", 0), 0U) << result.Out;
  EXPECT_EQ(ReadAll(disc_), bytes);
}

TEST_F(ReadCommands, AMissingImageIsToldInTheSystemsWords) {
  for (const char* command : {"info", "tree", "ls", "map", "check"}) {
    const SbxResult result = RunSbx({command, folder_ / "none.adl"});
    EXPECT_EQ(result.Status, 1) << command;
    EXPECT_EQ(result.Err, (folder_ / "none.adl") + ": No such file or directory\n");
  }
}

TEST_F(ReadCommands, APipeInPlaceOfAnImageDoesNotBlock) {
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  const SbxResult result = RunSbx({"info", folder_ / "pipe"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(Lines(result.Err).size(), 1U) << result.Err;
}

TEST_F(ReadCommands, AnOptionOfAnotherCommandIsRefusedInsteadOfIgnored) {
  const SbxResult result = RunSbx({"ls", "-o", folder_ / "out", disc_});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(result.Err, "ls: takes no option -o\n");
  EXPECT_EQ(result.Out, "");
  EXPECT_EQ(RunSbx({"info", "--force", disc_}).Status, 2);
  EXPECT_EQ(RunSbx({"save", disc_, "--full", folder_ / "out"}).Status, 2);
}

TEST_F(ReadCommands, OptionsStandAnywhereAndEndAtTwoDashes) {
  const std::string out = RunSbx({"info", disc_}).Out;
  EXPECT_EQ(RunSbx({"--pad=on", "info", disc_}).Out, out);
  EXPECT_EQ(RunSbx({"--pad", "on", "info", disc_}).Out, out);
  EXPECT_EQ(RunSbx({"info", disc_, "--pad", "on"}).Out, out);
  EXPECT_EQ(RunSbx({"info", "--", disc_}).Out, out);
  EXPECT_EQ(RunSbx({"info", "--", "-x"}).Err, "-x: No such file or directory\n");
}

TEST_F(ReadCommands, WrongWordsEndWithTwo) {
  EXPECT_EQ(RunSbx({"info"}).Status, 2);
  EXPECT_EQ(RunSbx({"info", disc_, "more"}).Status, 2);
  EXPECT_EQ(RunSbx({"info", "--nonsense", disc_}).Status, 2);
  EXPECT_EQ(RunSbx({"nonsense"}).Status, 2);
  EXPECT_EQ(RunSbx({"--pad", "maybe", "info", disc_}).Status, 2);
  EXPECT_EQ(RunSbx({"info", "cf:" + disc_ + ",2"}).Status, 2);
  EXPECT_EQ(Lines(RunSbx({"info"}).Err).size(), 1U);
}

TEST_F(ReadCommands, ACardPartitionIsReadFromTheEvenBytes) {
  const auto flat = ImageBuilder(4224).Bytes();
  std::vector<std::uint8_t> card(flat.size() * 2, 0xEE);
  for (std::size_t i = 0; i < flat.size(); ++i) card[2 * i] = flat[i];
  WriteAll(folder_ / "card", card);
  const auto lines = Lines(RunSbx({"info", "cf:" + (folder_ / "card") + ",0"}).Out);
  ASSERT_EQ(lines.size(), 11U);
  EXPECT_EQ(lines[0], "kind: cf");
  EXPECT_EQ(lines[5], "size: 4224");
  EXPECT_EQ(RunSbx({"info", "cf:" + (folder_ / "none") + ",0"}).Err,
            (folder_ / "none") + ": No such file or directory\n");
}

TEST_F(ReadCommands, OpenStartsTheWindowProgramWithTheQuotes) {
  std::filesystem::copy_file(SBX_PATH, folder_ / "sbx");
  WriteText(folder_ / "sectorbox", "#!/bin/sh\nprintf '%s' \"$*\" > \"$0.seen\"\n");
  ::chmod((folder_ / "sectorbox").c_str(), 0755);
  const SbxResult result = RunSbx({"open", "disc.adf"}, folder_.Path(), folder_ / "sbx");
  EXPECT_EQ(result.Status, 0) << result.Err;
  const std::string expected = "\"" + disc_ + "\"";
  std::string seen;
  for (int i = 0; i < 200 && seen != expected; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
    if (std::filesystem::exists(folder_ / "sectorbox.seen")) {
      seen = ReadText(folder_ / "sectorbox.seen");
    }
  }
  EXPECT_EQ(seen, expected);
}

TEST_F(ReadCommands, OpenSaysWhenThereIsNoWindowProgramOrNoImage) {
  std::filesystem::copy_file(SBX_PATH, folder_ / "sbx");
  const SbxResult program = RunSbx({"open", disc_}, "", folder_ / "sbx");
  EXPECT_EQ(program.Status, 1);
  EXPECT_EQ(program.Err, (folder_ / "sectorbox") + ": No such file or directory\n");
  const SbxResult image = RunSbx({"open", folder_ / "none.adl"});
  EXPECT_EQ(image.Status, 1);
  EXPECT_EQ(image.Err, "File Not Found : " + (folder_ / "none.adl") + "\n");
}

}  // namespace
}  // namespace sectorbox
