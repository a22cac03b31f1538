#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <vector>

#include "tests/support/DiscReading.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;
using Bytes = std::vector<std::uint8_t>;

class WriteCommandsTest : public ::testing::Test {
 protected:
  WriteCommandsTest() {
    ImageBuilder image(640);
    image.AddFile(image.AddDirectory(2, "GAMES"), {"ELITE", Bytes(700, 7), 1, 2, "LWR"});
    image.AddFile(2, {"README", Bytes(300, 9), 3, 4, "WR"});
    image.WriteTo(image_);
  }
  Bytes Disc() const {
    Bytes bytes = ReadAll(image_);
    bytes.resize(640 * 256);
    return bytes;
  }
  // Runs a command that has to succeed without output, and gives what is on the disc then.
  ReadObject Do(const std::vector<std::string>& words) {
    const SbxResult result = RunSbx(words);
    EXPECT_EQ(result.Status, 0) << result.Err;
    EXPECT_EQ(result.Out + result.Err, "");
    EXPECT_EQ(FaultsOf(Disc()), std::vector<std::string>());
    return ReadTree(Disc());
  }
  // Runs a command that has to be refused with that line and must leave the image as it was.
  void Refused(const std::vector<std::string>& words, const std::string& line, int status = 1) {
    const Bytes before = ReadAll(image_);
    const SbxResult result = RunSbx(words);
    EXPECT_EQ(result.Status, status) << words[0];
    EXPECT_EQ(result.Err, line + "\n");
    EXPECT_EQ(ReadAll(image_), before);
  }

  TempFolder folder_;
  std::string image_ = folder_ / "disc.adf";
};

TEST_F(WriteCommandsTest, AddTakesFilesAndFolders) {
  std::filesystem::create_directory(folder_ / "in");
  WriteText(folder_ / "in/X", "x");
  WriteText(folder_ / "Y", "yy");
  const ReadObject root = Do({"add", image_, "games", folder_ / "in", folder_ / "Y"});
  const auto& games = root.Contents[0].Contents;
  ASSERT_EQ(games.size(), 3U);
  EXPECT_EQ(games[1].Name, "in");
  EXPECT_EQ(games[1].Contents[0].Name, "X");
  EXPECT_EQ(games[2].Bytes, (Bytes{'y', 'y'}));
}

TEST_F(WriteCommandsTest, AddRefusesAMissingHostFileAndAMissingDirectory) {
  WriteText(folder_ / "Y", "yy");
  Refused({"add", image_, "$", folder_ / "Y", folder_ / "none"},
          (folder_ / "none") + ": No such file or directory");
  Refused({"add", image_, "$.NONE", folder_ / "Y"}, "Not found: $.NONE");
  Refused({"add", image_, "README", folder_ / "Y"}, "Not a directory: README");
}

TEST_F(WriteCommandsTest, APathThatTheHostCannotResolveIsToldInItsWords) {
  Refused({"add", image_, "$", ""}, ": No such file or directory");
}

TEST_F(WriteCommandsTest, NothingIsWrittenIntoADirectoryWithoutItsMark) {
  WriteText(folder_ / "Y", "yy");
  Bytes bytes = Disc();
  bytes[513] = 0;
  WriteAll(image_, bytes);
  Refused({"add", image_, "$", folder_ / "Y"}, "Not a directory: $");
  Refused({"mkdir", image_, "$", "NEW"}, "Not a directory: $");
  Refused({"title", image_, "$", "Mine"}, "Not a directory: $");
  Refused({"compact", image_}, "Cannot Compact A Damaged Disc");
}

TEST_F(WriteCommandsTest, AMessageInTheMidstOfAnAddLeavesTheImageAsItWas) {
  WriteText(folder_ / "GAMES", "not a directory");
  WriteText(folder_ / "Y", "yy");
  Refused({"add", image_, "$", folder_ / "Y", folder_ / "GAMES"},
          "Cannot Yet Overwrite A Directory");
}

TEST_F(WriteCommandsTest, AddReplacesALockedFileUnlessToldNotToAndThenSaysSo) {
  WriteText(folder_ / "ELITE", "new");
  WriteText(folder_ / "Y", "yy");
  const Bytes before = Disc();
  const SbxResult result = RunSbx(
      {"add", "--overwrite-locked", "off", image_, "GAMES", folder_ / "ELITE", folder_ / "Y"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "ELITE is locked and was left as it was\n");
  EXPECT_EQ(ReadTree(Disc()).Contents[0].Contents[0].Bytes, Bytes(700, 7));
  EXPECT_EQ(ReadTree(Disc()).Contents[0].Contents[1].Bytes, (Bytes{'y', 'y'}));
  const ReadObject root = Do({"add", image_, "GAMES", folder_ / "ELITE"});
  EXPECT_EQ(root.Contents[0].Contents[0].Bytes, (Bytes{'n', 'e', 'w'}));
  EXPECT_EQ(root.Contents[0].Contents[0].Attr, "WR");
}

TEST_F(WriteCommandsTest, OfTwoFilesWithOneNameTheFirstIsAddedAndTheStatusTells) {
  WriteText(folder_ / "AB", "first");
  WriteText(folder_ / "ab", "second");
  const SbxResult result = RunSbx({"add", image_, "$", folder_ / "AB", folder_ / "ab"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, (folder_ / "ab") + " was not added: on the disc it has the name of " +
                            (folder_ / "AB") + "\n");
  EXPECT_EQ(ReadTree(Disc()).Contents[0].Bytes, (Bytes{'f', 'i', 'r', 's', 't'}));
}

TEST_F(WriteCommandsTest, ARefusedAddTellsHowManyEntriesAreMissing) {
  WriteText(folder_ / "Y", "yy");
  WriteText(folder_ / "Z", "zz");
  WriteText(folder_ / "a.", "z");
  // The image of a floppy stays as it was, so that nothing of the import is on it.
  Refused({"add", image_, "$", folder_ / "Y", folder_ / "a.", folder_ / "Z"},
          "File a. Contains Illegal Characters\n3 entries were not added: " + (folder_ / "a.") +
              " was refused");
  ImageBuilder(4224).WriteTo(folder_ / "x.dat");
  const SbxResult result =
      RunSbx({"add", folder_ / "x.dat", "$", folder_ / "Y", folder_ / "a.", folder_ / "Z"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "File a. Contains Illegal Characters\n2 entries were not added: " +
                            (folder_ / "a.") + " was refused\n");
  EXPECT_EQ(ReadTree(ReadAll(folder_ / "x.dat")).Contents.size(), 1U);
}

TEST_F(WriteCommandsTest, WhatAnotherProgramChangesIsNeitherSavedNorReplaced) {
  const std::string other = folder_ / "other.adf";
  std::filesystem::copy_file(image_, other);
  const auto before = ReadAll(image_);
  const int file = ::open(image_.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  const std::vector<std::vector<std::string>> commands = {{"save", image_, folder_ / "copy.adf"},
                                                          {"save", other, image_},
                                                          {"new", "80ssd", image_, "--force"}};
  for (const auto& command : commands) {
    const SbxResult result = RunSbx(command);
    EXPECT_EQ(result.Status, 1) << command[0];
    EXPECT_NE(result.Err.find("is in use by another program"), std::string::npos) << result.Err;
  }
  ::close(file);
  EXPECT_EQ(ReadAll(image_), before);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "copy.adf"));
  for (const auto& command : commands) EXPECT_EQ(RunSbx(command).Status, 0) << command[0];
}

TEST_F(WriteCommandsTest, ExportWritesAFileOrADirectorysContents) {
  Do({"export", image_, "GAMES", folder_ / "out"});
  EXPECT_EQ(ReadText((folder_ / "out") + "/ELITE.INF"),
            "ELITE      00000001 00000002 000002BC LWR\r\n");
  Do({"export", image_, "readme", folder_ / "out"});
  EXPECT_EQ(ReadAll((folder_ / "out") + "/README"), Bytes(300, 9));
  Refused({"export", image_, "NONE", folder_ / "out"}, "Not found: NONE");
}

TEST_F(WriteCommandsTest, NothingThatComesFromADiscReplacesThatDisc) {
  ImageBuilder image(640);
  image.AddFile(2, {"disc/adf", Bytes(1000, 1), 0, 0, "WR"});
  image.AddFile(2, {"other", Bytes(1000, 1), 0, 0, "WR"});
  image.WriteTo(image_);
  const Bytes before = ReadAll(image_);
  namespace fs = std::filesystem;
  fs::create_symlink(image_, folder_ / "link");
  fs::create_hard_link(image_, folder_ / "second");
  Refused({"export", image_, "disc/adf", folder_.Path()}, "disc.adf Is The Open Disc");
  Refused({"export", image_, "$", folder_.Path()}, "disc.adf Is The Open Disc");
  Refused({"export", folder_ / "link", "disc/adf", folder_.Path()}, "disc.adf Is The Open Disc");
  for (const char* name : {"disc.adf", "link", "second"}) {
    const std::string message = std::string(name) + " Is The Open Disc";
    for (const char* view : {"get", "text", "hex", "dis", "basic", "wordwise"}) {
      Refused({view, image_, "other", "-o", folder_ / name}, message);
    }
    for (const char* view : {"cat", "ex", "catall", "exall", "map"}) {
      Refused({view, image_, "-o", folder_ / name}, message);
    }
    Refused({"teletext", image_, "other", "-o", folder_ / name}, message);
    Refused({"mode", "4", image_, "other", "-o", folder_ / name}, message);
  }
  EXPECT_EQ(ReadAll(image_), before);
}

TEST_F(WriteCommandsTest, NothingThatComesFromAHardDiscOrACardReplacesIt) {
  ImageBuilder image(4224);
  image.AddFile(2, {"x/dat", Bytes(1000, 1), 0, 0, "WR"});
  image.WriteTo(folder_ / "x.dat");
  const Bytes before = ReadAll(folder_ / "x.dat");
  SbxResult result = RunSbx({"export", folder_ / "x.dat", "x/dat", folder_.Path()});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "x.dat Is The Open Disc\n");
  // The same file as a card.
  result = RunSbx({"cat", "cf:" + (folder_ / "x.dat") + ",0", "-o", folder_ / "x.dat"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "x.dat,0 Is No ADFS Disc\nx.dat Is The Open Disc\n");
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), before);
}

TEST_F(WriteCommandsTest, NothingThatComesFromAHardDiscReplacesItsCompanion) {
  ImageBuilder image(4224);
  image.AddFile(2, {"x/dsc", Bytes(1000, 1), 0, 0, "WR"});
  image.WriteTo(folder_ / "x.dat");
  const Bytes disc = ReadAll(folder_ / "x.dat");
  const Bytes companion(22, 7);
  WriteAll(folder_ / "x.dsc", companion);
  for (const auto& command : std::vector<std::vector<std::string>>{
           {"get", folder_ / "x.dat", "x/dsc", "-o", folder_ / "x.dsc"},
           {"cat", folder_ / "x.dat", "-o", folder_ / "x.dsc"},
           {"export", folder_ / "x.dat", "x/dsc", folder_.Path()},
           {"save", folder_ / "x.dat", folder_ / "x.dsc"}}) {
    const SbxResult result = RunSbx(command);
    EXPECT_EQ(result.Status, 1) << command[0];
    EXPECT_EQ(result.Err, "x.dsc Is The Open Disc\n");
    EXPECT_EQ(ReadAll(folder_ / "x.dsc"), companion) << command[0];
  }
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), disc);
  EXPECT_EQ(RunSbx({"save", folder_ / "x.dat", folder_ / "x.dat"}).Status, 0);
}

TEST_F(WriteCommandsTest, ASaveDoesNotPutTheCompanionOverTheDisc) {
  ImageBuilder(4224).WriteTo(folder_ / "x.dsc");
  const Bytes before = ReadAll(folder_ / "x.dsc");
  const SbxResult result = RunSbx({"save", folder_ / "x.dsc", folder_ / "x.dat"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "x.dsc Is The Open Disc\n");
  EXPECT_EQ(ReadAll(folder_ / "x.dsc"), before);
}

TEST_F(WriteCommandsTest, AFileThatIsNoCompanionIsNotReplacedByOne) {
  const std::string other = folder_ / "x.dsc";
  const std::string line =
      other + ": stands where the companion goes. " + "Move it to another place first\n";
  ImageBuilder(4224).WriteTo(folder_ / "big.dat");
  for (const Bytes& bytes : {ImageBuilder(4224).Bytes(), Bytes(40, 'l')}) {
    WriteAll(other, bytes);
    for (const auto& command :
         std::vector<std::vector<std::string>>{{"save", folder_ / "big.dat", folder_ / "x.dat"},
                                               {"new", "1m", folder_ / "x.dat"},
                                               {"new", "1m", folder_ / "x.dat", "--force"}}) {
      const SbxResult result = RunSbx(command);
      EXPECT_EQ(result.Status, 1) << command[0];
      EXPECT_EQ(result.Err, line);
      EXPECT_EQ(ReadAll(other), bytes) << command[0];
      EXPECT_FALSE(std::filesystem::exists(folder_ / "x.dat")) << command[0];
    }
  }
  // Nor does the image change that is saved over itself.
  ImageBuilder(4224).WriteTo(folder_ / "x.dat");
  const Bytes before = ReadAll(folder_ / "x.dat");
  const SbxResult result = RunSbx({"save", folder_ / "x.dat", folder_ / "x.dat"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, line);
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), before);
  EXPECT_EQ(ReadAll(other), Bytes(40, 'l'));
}

TEST_F(WriteCommandsTest, AnEmptyFileMakesRoomForTheCompanion) {
  WriteText(folder_ / "x.dsc", "");
  EXPECT_EQ(RunSbx({"new", "1m", folder_ / "x.dat"}).Status, 0);
  EXPECT_EQ(ReadAll(folder_ / "x.dsc").size(), 22U);
}

TEST_F(WriteCommandsTest, ASaveWritesItsCompanionIntoTheFolderOfTheImage) {
  namespace fs = std::filesystem;
  ImageBuilder(4224).WriteTo(folder_ / "big.dat");
  fs::create_directories(folder_ / "q/folder");
  EXPECT_EQ(RunSbx({"save", folder_ / "big.dat", folder_ / "q/folder/ab"}).Status, 0);
  EXPECT_TRUE(fs::exists(folder_ / "q/folder/ab.dsc"));
  EXPECT_FALSE(fs::exists(folder_ / "q/folde.dsc"));
}

TEST_F(WriteCommandsTest, AnExportReplacesALinkAndDoesNotFollowIt) {
  namespace fs = std::filesystem;
  fs::create_directory(folder_ / "out");
  for (const char* name : {"README", "README.INF", "GAMES.INF"}) {
    WriteText(folder_ / (std::string("victim-") + name), "precious");
    fs::create_symlink(folder_ / (std::string("victim-") + name),
                       folder_ / (std::string("out/") + name));
  }
  fs::create_directory(folder_ / "elsewhere");
  fs::create_directory_symlink(folder_ / "elsewhere", folder_ / "out/GAMES");
  Do({"export", image_, "$", folder_ / "out"});
  EXPECT_TRUE(fs::is_empty(folder_ / "elsewhere"));
  EXPECT_EQ(ReadAll(folder_ / "out/GAMES/ELITE"), Bytes(700, 7));
  for (const char* name : {"README", "README.INF", "GAMES.INF"}) {
    EXPECT_EQ(ReadText(folder_ / (std::string("victim-") + name)), "precious");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder_ / (std::string("out/") + name))));
  }
  EXPECT_EQ(ReadAll(folder_ / "out/README"), Bytes(300, 9));
  // The file of -o is the user's own word: there a link is followed.
  fs::create_symlink(folder_ / "victim-README", folder_ / "mine");
  Do({"text", image_, "README", "-o", folder_ / "mine"});
  EXPECT_TRUE(fs::is_symlink(fs::symlink_status(folder_ / "mine")));
  EXPECT_NE(ReadText(folder_ / "victim-README"), "precious");
}

TEST_F(WriteCommandsTest, DeleteTakesFilesAndTreesAndTheRootsContents) {
  EXPECT_EQ(Do({"delete", image_, "README"}).Contents.size(), 1U);
  EXPECT_EQ(Do({"delete", image_, "GAMES"}).Contents.size(), 0U);
  WriteText(folder_ / "Y", "yy");
  Do({"add", image_, "$", folder_ / "Y"});
  EXPECT_EQ(Do({"delete", image_, "$"}).Contents.size(), 0U);
}

TEST_F(WriteCommandsTest, DeleteObeysItsOptions) {
  Refused({"delete", "--delete-locked", "off", image_, "README", "GAMES.ELITE"},
          "Cannot Delete Locked File : ELITE");
  Refused({"delete", "--delete-non-empty", "off", image_, "GAMES"},
          "Cannot Delete Non Empty Directory : GAMES");
  Refused({"delete", image_, "README", "README"}, "Not found: README");
}

TEST_F(WriteCommandsTest, RenameGivesANewName) {
  EXPECT_EQ(Do({"rename", image_, "README", "ABOUT"}).Contents[0].Name, "ABOUT");
  Refused({"rename", image_, "ABOUT", "games"}, "games Already Exists");
  Refused({"rename", image_, "ABOUT", "A*B"}, "File A*B Contains Illegal Characters");
  Refused({"rename", image_, "$", "X"}, "Not an entry of a directory: $");
  Refused({"rename", "--delete-locked", "off", image_, "GAMES.ELITE", "X"},
          "Cannot Rename Locked File : ELITE");
  EXPECT_EQ(Do({"rename", image_, "GAMES.ELITE", "X"}).Contents[1].Contents[0].Name, "X");
}

TEST_F(WriteCommandsTest, MkdirMakesADirectory) {
  EXPECT_EQ(Do({"mkdir", image_, "GAMES", "NEW"}).Contents[0].Contents[1].Attr, "DWR");
  Refused({"mkdir", image_, "$", "games"}, "Directory games Already Exists");
}

TEST_F(WriteCommandsTest, AccessSetsTheLettersGivenAndNoOthers) {
  EXPECT_EQ(Do({"access", image_, "README", "LR"}).Contents[1].Attr, "LR");
  EXPECT_EQ(Do({"access", image_, "README", "-"}).Contents[1].Attr, "");
  EXPECT_EQ(Do({"access", image_, "GAMES", "l"}).Contents[0].Attr, "DL");
  Refused({"access", image_, "README", "X"}, "access: LETTERS are any of R W L, or - for none", 2);
  Refused({"access", image_, "NONE", "R"}, "Not found: NONE");
}

TEST_F(WriteCommandsTest, AddressTakesOneToEightDigits) {
  const ReadObject root = Do({"address", image_, "README", "ffff1900", "0"});
  EXPECT_EQ(root.Contents[1].Load, 0xFFFF1900U);
  EXPECT_EQ(root.Contents[1].Exec, 0U);
  Refused({"address", image_, "README", "123456789", "G"}, "Load Address Is Wrong Length");
  Refused({"address", image_, "README", "1", "G"}, "Exec Address Contains Illegal Characters");
  Refused({"address", image_, "GAMES", "1", "1"}, "Not a file: GAMES");
}

TEST_F(WriteCommandsTest, TitleNamesADirectory) {
  EXPECT_EQ(Do({"title", image_, "$", "My Disc"}).Title, "My Disc");
  Refused({"title", image_, "$", "A*"}, "Title A* Contains Illegal Characters");
}

TEST_F(WriteCommandsTest, BootKeepsTheMapSoundForTheBbc) {
  Do({"boot", image_, "exec"});
  EXPECT_EQ(Disc()[509], 3);
  Do({"boot", image_, "off"});
  EXPECT_EQ(Disc()[509], 0);
  Refused({"boot", image_, "maybe"}, "boot: the option is off, load, run or exec", 2);
}

TEST_F(WriteCommandsTest, CompactClosesTheHoles) {
  Do({"delete", image_, "GAMES"});
  Do({"compact", image_});
  EXPECT_EQ(ReadFreeRuns(Disc()).size(), 1U);
  EXPECT_EQ(ReadTree(Disc()).Contents[0].Start, 7);
}

TEST_F(WriteCommandsTest, CompactLeavesADamagedDiscAlone) {
  ImageBuilder image(640);
  image.AddHole(10);
  image.AddDirectory(2, "LOOP");
  image.Poke(517 + 22, 2);
  image.WriteTo(image_);
  Refused({"compact", image_}, "Cannot Compact A Damaged Disc");
}

TEST_F(WriteCommandsTest, ResizeChangesTheRecordedSize) {
  ImageBuilder(4224).WriteTo(folder_ / "x.dat");
  EXPECT_EQ(RunSbx({"resize", folder_ / "x.dat", "2"}).Status, 0);
  const Bytes after = ReadAll(folder_ / "x.dat");
  EXPECT_EQ(after[252] | after[253] << 8 | after[254] << 16, 8448);
  for (const char* size : {"two", "", "1e9x", "nan"}) {
    const SbxResult result = RunSbx({"resize", folder_ / "x.dat", size});
    EXPECT_EQ(result.Status, 1);
    EXPECT_EQ(result.Err, std::string("Not a number: ") + size + "\n");
  }
  EXPECT_EQ(RunSbx({"resize", folder_ / "x.dat", "0"}).Err, "Disc Size Is Out Of Range\n");
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), after);
}

TEST_F(WriteCommandsTest, AResizeThatTheMapDoesNotFitIsToldAndTheFilesStay) {
  ImageBuilder image(4224);
  image.AddHole(100);
  const Bytes last(std::size_t{4224 - 107} * 256, 6);
  image.AddFile(2, {"LAST", last, 0, 0, "WR"});
  image.SetFreeRuns({{7, 100}});
  image.WriteTo(folder_ / "x.dat");
  const SbxResult result = RunSbx({"resize", folder_ / "x.dat", "2"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Err,
            "x.dat: the map doesn't fit the new size, so the disc can't be changed before it is "
            "repaired\n");
  WriteText(folder_ / "new", std::string(200000, 'n'));
  EXPECT_EQ(RunSbx({"add", folder_ / "x.dat", "$", folder_ / "new"}).Err,
            "Cannot Change A Damaged Disc : $.LAST: overlaps free run 0\n");
  EXPECT_EQ(ReadTree(ReadAll(folder_ / "x.dat")).Contents[0].Bytes, last);
}

TEST_F(WriteCommandsTest, OnAHardDiscWhatWasDoneBeforeARefusalStays) {
  ImageBuilder image(4224);
  image.AddFile(2, {"A", Bytes(10, 1), 0, 0, "WR"});
  image.AddFile(2, {"B", Bytes(10, 1), 0, 0, "LWR"});
  image.WriteTo(folder_ / "x.dat");
  EXPECT_EQ(RunSbx({"delete", "--delete-locked", "off", folder_ / "x.dat", "A", "B"}).Status, 1);
  const ReadObject root = ReadTree(ReadAll(folder_ / "x.dat"));
  ASSERT_EQ(root.Contents.size(), 1U);
  EXPECT_EQ(root.Contents[0].Name, "B");
}

TEST_F(WriteCommandsTest, AnOptionThatTheCommandDoesNotTakeIsABadCall) {
  const std::vector<std::vector<std::string>> calls = {
      {"receive", "0", "x", "-o", "y"},
      {"send", "0", "x", "-o", "y"},
      {"star", "CAT", "-o", "y"},
      {"star", "CAT", "--check"},
      {"bootstrap", "basic", "-o", "y"},
      {"add", image_, "$", "y", "-o", "z"},
      {"new", "40ssd", "x", "-o", "y"},
      {"export", image_, "$", "x", "--force"},
      {"info", image_, "--port", "x"},
      {"cf", "scan", "--quick"},
      {"cf", "backup", "x,0", "y", "--non-adfs"},
      {"cf", "restore", "x,0", "y", "--full"},
      {"teletext", image_, "x", "-o", "y", "--flash", "1"},
      {"mode", "4", image_, "x", "-o", "y", "--phase", "1"}};
  for (const auto& call : calls) {
    const SbxResult result = RunSbx(call);
    EXPECT_EQ(result.Status, 2) << call[0];
    EXPECT_NE(result.Err.find(": takes no option -"), std::string::npos) << result.Err;
  }
  EXPECT_EQ(RunSbx({"cf", "scan", "--quick"}).Err, "cf scan: takes no option --quick\n");
}

TEST_F(WriteCommandsTest, ASaveToAPipeThatNobodyReadsEnds) {
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  ImageBuilder(4224).WriteTo(folder_ / "x.dat");
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"save", folder_ / "x.dat", folder_ / "pipe"},
                                             {"get", image_, "README", "-o", folder_ / "pipe"}}) {
    const SbxResult result = RunSbx(words);
    EXPECT_EQ(result.Status, 1);
    EXPECT_EQ(result.Err, (folder_ / "pipe") + ": No such device or address\n");
  }
}

TEST_F(WriteCommandsTest, ASaveKeepsASparseImageSparse) {
  ImageBuilder image(131072);  // 32 MB
  image.AddFile(2, {"FULL", Bytes(20000, 1), 0, 0, "WR"});
  image.AddFile(2, {"ZEROS", Bytes(8000000, 0), 0, 0, "WR"});
  image.AddFile(2, {"LAST", Bytes(20000, 1), 0, 0, "WR"});
  image.WriteTo(folder_ / "x.dat");
  EXPECT_EQ(RunSbx({"save", "--pad", "on", folder_ / "x.dat", folder_ / "y.dat"}).Status, 0);
  EXPECT_EQ(ReadAll(folder_ / "y.dat"), image.Bytes());
  struct stat info {};
  ASSERT_EQ(::stat((folder_ / "y.dat").c_str(), &info), 0);
  EXPECT_LT(info.st_blocks, 400);
}

TEST_F(WriteCommandsTest, ANameWithADotIsAPathToo) {
  ImageBuilder image(640);
  image.AddFile(2, {"A.B", Bytes(3, 1), 0, 0, "WR"});
  image.WriteTo(image_);
  EXPECT_EQ(RunSbx({"get", image_, "A.B"}).Out, std::string(3, '\x01'));
  EXPECT_EQ(Do({"delete", image_, "$.A.B"}).Contents.size(), 0U);
}

TEST_F(WriteCommandsTest, AHardLinkThatAChangeBreaksIsTold) {
  std::filesystem::create_hard_link(image_, folder_ / "second");
  const SbxResult result = RunSbx({"title", image_, "$", "New"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_EQ(result.Err, image_ + ": its other names (hard links) keep the old contents\n");
}

TEST_F(WriteCommandsTest, TooFewWordsAreNamed) {
  for (const char* command : {"add", "export", "delete", "rename", "mkdir", "access", "address",
                              "title", "boot", "resize"}) {
    Refused({command, image_}, std::string(command) + ": an argument is missing", 2);
  }
}

}  // namespace
}  // namespace sectorbox
