#include "disc/exchange/HostExchange.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <random>

#include "disc/host/HostError.h"
#include "tests/disc/EngineTest.h"
#include "tests/support/OrdinaryUser.h"

namespace sectorbox {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class HostExchangeTest : public EngineTest {
 protected:
  HostExchangeTest() { Open(ImageBuilder(2560)); }

  void MakeFolder(const std::string& name) { fs::create_directory(folder_ / name); }
  std::string Out() { return folder_ / "out"; }
  std::string OutFile(const std::string& name) { return Out() + "/" + name; }
  // The names in the folder that an export has written, with blanks between.
  std::string Listed(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    std::string all;
    for (const auto& name : names) all += (all.empty() ? "" : " ") + name;
    return all;
  }
};

TEST_F(HostExchangeTest, ExportWritesEachFileWithItsSidecar) {
  ImageBuilder image(2560);
  image.AddFile(2, {"PROG", Pattern(700), 0xFFFF1900, 0xFFFF8023, "LWR"});
  image.AddFile(2, {"Z/TXT", {}, 1, 2, "R"});
  Open(image);
  const Bytes before = Image();
  ExportDisc(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), "PROG PROG.INF Z.TXT Z.TXT.INF");
  EXPECT_EQ(ReadAll(OutFile("PROG")), Pattern(700));
  EXPECT_EQ(ReadText(OutFile("PROG.INF")), "PROG       FFFF1900 FFFF8023 000002BC LWR\r\n");
  EXPECT_EQ(ReadAll(OutFile("Z.TXT")), Bytes());
  EXPECT_EQ(ReadText(OutFile("Z.TXT.INF")), "Z/TXT      00000001 00000002 00000000 R\r\n");
  EXPECT_EQ(Image(), before);
  EXPECT_EQ(host_.Log.front(), "pointer busy");
  EXPECT_EQ(host_.Log.back(), "pointer normal");
}

TEST_F(HostExchangeTest, ADragAndTheCommandExportTheSameAndTheCommandShowsTheHourglass) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(300), 0, 0, "WR"});
  Open(image);
  DragDropExportFiles(disc_, folder_ / "drag", 2, nullptr);
  EXPECT_EQ(Listed(folder_ / "drag"), "A A.INF");
  EXPECT_EQ(host_.Log, std::vector<std::string>());
  ExportDisc(disc_, folder_ / "all", 2);
  EXPECT_EQ(Listed(folder_ / "all"), "A A.INF");
  EXPECT_EQ(host_.Log, (std::vector<std::string>{"pointer busy", "pointer normal"}));
}

TEST_F(HostExchangeTest, ADirectorysSidecarLiesBesideItsFolder) {
  ImageBuilder image(2560);
  image.AddFile(image.AddDirectory(2, "COMIC", "LR"), {"X", Pattern(3), 0, 0, "WR"});
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), "COM_IC COM_IC.INF");
  EXPECT_EQ(ReadText(OutFile("COM_IC.INF")), "COMIC      DLR\r\n");
  EXPECT_EQ(Listed(OutFile("COM_IC")), "X X.INF");
}

TEST_F(HostExchangeTest, ExistingFilesAreReplacedWithoutAQuestion) {
  ImageBuilder image(2560);
  image.AddFile(2, {"X", Pattern(3), 0, 0, "WR"});
  Open(image);
  MakeFolder("out");
  WriteText(OutFile("X"), "something longer than three bytes");
  WriteText(OutFile("X.INF"), std::string(1000, '?'));
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(ReadAll(OutFile("X")), Pattern(3));
  EXPECT_EQ(ReadText(OutFile("X.INF")).size(), 42U);
}

TEST_F(HostExchangeTest, AFileNamedLikeASidecarGetsOneOfItsOwn) {
  ImageBuilder image(2560);
  image.AddFile(2, {"README/INF", Pattern(3), 0, 0, "WR"});
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), "README.INF_ README.INF_.INF");
}

TEST_F(HostExchangeTest, TwoFilesThatComeOutWithOneNameBothGoOut) {
  ImageBuilder image(2560);
  image.AddFile(2, {"X/INF", Pattern(3), 0, 0, "WR"});
  image.AddFile(2, {"X/INF_", Pattern(5), 0, 0, "WR"});
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(ReadAll(OutFile("X.INF_")), Pattern(3));
  EXPECT_EQ(ReadAll(OutFile("X.INF__")), Pattern(5));
}

TEST_F(HostExchangeTest, AFileRoundTripsWithAllButE) {
  ImageBuilder image(2560);
  const auto dir = image.AddDirectory(2, "OUT");
  image.AddFile(dir, {"PROG", Pattern(700), 0xFFFF1900, 0x8023, "ELR"});
  Open(image);
  ExportFiles(disc_, Out(), dir);
  EXPECT_EQ(AddFile(disc_, 2, OutFile("PROG")), Outcome::kDone);
  EXPECT_EQ(Contents(2, "PROG"), Pattern(700));
  EXPECT_EQ(Load(2, "PROG"), 0xFFFF1900U);
  EXPECT_EQ(Attr(2, "PROG"), "LR");
}

TEST_F(HostExchangeTest, ASlashComesBackThroughTheSidecarAndWithoutItFromTheThirdPositionOn) {
  ImageBuilder image(2560);
  const auto dir = image.AddDirectory(2, "OUT");
  image.AddFile(dir, {"A/B", Pattern(7), 0, 0, "WR"});
  image.AddFile(dir, {"AB/C", Pattern(7), 0, 0, "WR"});
  Open(image);
  ExportFiles(disc_, Out(), dir);
  EXPECT_EQ(AddFile(disc_, 2, OutFile("A.B")), Outcome::kDone);
  fs::remove(OutFile("AB.C.INF"));
  EXPECT_EQ(AddFile(disc_, 2, OutFile("AB.C")), Outcome::kDone);
  EXPECT_EQ(Names(2), "A/B AB/C OUT");
}

// Every character that a rename allows, at each position, and random names besides.
TEST_F(HostExchangeTest, EveryNameThatTheFormatAllowsRoundTrips) {
  std::mt19937 random(11);
  std::string allowed;
  for (char c = 33; c < 127; ++c) {
    if (std::string("-.:*#$&@^").find(c) == std::string::npos) allowed += c;
  }
  allowed += '\x7F';
  for (int round = 0; round < 12; ++round) {
    Open(ImageBuilder(2560));
    const std::int32_t source = NewDirectory(disc_, 2, "SOURCE").value();
    EXPECT_EQ(Add("seed", Pattern(9), source), Outcome::kDone);
    for (int i = 0; i < 45; ++i) {
      std::string name(1 + random() % 10, ' ');
      for (char& c : name) c = allowed[random() % allowed.size()];
      if (round < 4)
        name =
            std::string(1, allowed[static_cast<std::size_t>(round * 24 + i % 24) % allowed.size()]);
      if (FindEntry(disc_, source, name) >= 0) continue;
      ASSERT_EQ(
          Add("new", Pattern(static_cast<std::size_t>(i) * 7, static_cast<unsigned>(round + i)),
              source),
          Outcome::kDone);
      ASSERT_EQ(RenameEntry(disc_, name, "new", source, false), Outcome::kDone) << name;
    }
    const std::string out = folder_ / ("out" + std::to_string(round));
    ExportFiles(disc_, out, source);
    WriteText(out + ".INF", "COPY       DWR");
    ASSERT_EQ(ImportFolder(disc_, 2, out), Outcome::kDone);
    const ReadObject root = Tree();
    ASSERT_EQ(root.Contents.size(), 2U);
    const auto& copy = root.Contents[0].Contents;
    const auto& original = root.Contents[1].Contents;
    ASSERT_EQ(copy.size(), original.size());
    for (std::size_t i = 0; i < copy.size(); ++i) {
      EXPECT_EQ(copy[i].Name, original[i].Name);
      EXPECT_EQ(copy[i].Bytes, original[i].Bytes) << copy[i].Name;
    }
    ASSERT_EQ(Faults(), std::vector<std::string>());
  }
}

TEST_F(HostExchangeTest, ImportMakesTheFolderAndAllBelowItInByteOrder) {
  MakeFolder("in");
  MakeFolder("in/sub");
  HostFile("in/sub/y", "y");
  HostFile("in/b", "b");
  HostFile("in/B2", "B");
  HostFile("in/a", "a");
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "in"), Outcome::kDone);
  const std::int32_t in = GetEntrySector(disc_, 2, "in");
  EXPECT_EQ(Names(in), "a b B2 sub");
  // B2 comes first, since capitals have lower codes than small letters.
  EXPECT_LT(GetEntrySector(disc_, in, "B2"), GetEntrySector(disc_, in, "a"));
  EXPECT_EQ(Names(GetEntrySector(disc_, in, "sub")), "y");
  EXPECT_EQ(Attr(2, "in"), "DWR");
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(HostExchangeTest, AFoldersSidecarNamesItAndItsAttributesAreIgnored) {
  MakeFolder("in");
  HostFile("in.INF", "A/B        DL");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Names(2), "A/B");
  EXPECT_EQ(Attr(2, "A/B"), "DWR");
}

TEST_F(HostExchangeTest, AFolderWhoseSidecarHasNoNameIsRefused) {
  MakeFolder("in");
  HostFile("in.INF", "           DL");
  host_.ExpectedMessages = {"File in Contains Illegal Characters"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(Names(2), "");
}

TEST_F(HostExchangeTest, AFoldersOwnNameIsNeitherMappedNorItsBlanksReplaced) {
  MakeFolder("a #.b");
  EXPECT_EQ(ImportFolder(disc_, 2, (folder_ / "a #.b") + "/"), Outcome::kDone);
  EXPECT_EQ(Names(2), "a #.b");
}

TEST_F(HostExchangeTest, ARefusalEndsTheWholeImportAndKeepsWhatWasAdded) {
  MakeFolder("in");
  HostFile("in/a", "1");
  HostFile("in/b", Pattern(2600 * 256));
  HostFile("in/c", "3");
  host_.ExpectedMessages = {"Not Enough Free Contiguous Space on Disc"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(Names(GetEntrySector(disc_, 2, "in")), "a");
  EXPECT_EQ(host_.LogOf("note"),
            std::vector<std::string>{"note left out: 2 entries were not added"});
}

TEST_F(HostExchangeTest, ARefusalDeepInATreeCountsWhatIsLeftOnEveryFloor) {
  for (const char* folder : {"in", "in/b", "in/b/d"}) MakeFolder(folder);
  for (const char* file : {"in/a", "in/b/c", "in/b/d/x", "in/b/d/z", "in/b/e", "in/f"}) {
    HostFile(file, "1");
  }
  HostFile("in/b/d/y\xE9", "1");
  HostFile("in/b/d/z.INF", "Z          00000000 00000000 00000001 WR");
  host_.ExpectedMessages = {"File y\xE9 Contains Illegal Characters"};
  // x is before the refused one in the order of their bytes; z, e and f are behind it.
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(host_.LogOf("note"),
            std::vector<std::string>{"note left out: 4 entries were not added"});
}

TEST_F(HostExchangeTest, OfTwoHostFilesWithOneNameOnTheDiscTheSecondIsNotAdded) {
  MakeFolder("in");
  HostFile("in/AB", "first");
  HostFile("in/ab", "second");
  HostFile("in/LONGNAME12-1", "first");
  HostFile("in/LONGNAME12-2", "second");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  const std::int32_t in = GetEntrySector(disc_, 2, "in");
  EXPECT_EQ(Names(in), "AB LONGNAME12");
  EXPECT_EQ(Contents(in, "AB"), (Bytes{'f', 'i', 'r', 's', 't'}));
  EXPECT_EQ(Contents(in, "LONGNAME12"), (Bytes{'f', 'i', 'r', 's', 't'}));
  const std::string note = "note left out: ";
  const std::string words = " was not added: on the disc it has the name of ";
  EXPECT_EQ(host_.LogOf("note"),
            (std::vector<std::string>{
                note + (folder_ / "in/LONGNAME12-2") + words + (folder_ / "in/LONGNAME12-1"),
                note + (folder_ / "in/ab") + words + (folder_ / "in/AB")}));
}

TEST_F(HostExchangeTest, AFileOfAFolderAndOneWithItsLetterInFrontAreOneNameToo) {
  for (const char* folder : {"in", "in/B", "in/B/C"}) MakeFolder(folder);
  HostFile("in/B/C/X", "deep");
  HostFile("in/B/FOO", "first");
  HostFile("in/B.FOO", "second");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  const std::int32_t b = GetEntrySector(disc_, GetEntrySector(disc_, 2, "in"), "B");
  EXPECT_EQ(Contents(b, "FOO"), (Bytes{'f', 'i', 'r', 's', 't'}));
  EXPECT_EQ(host_.LogOf("note").size(), 1U);
}

TEST_F(HostExchangeTest, AllPathsOfOneCallAreOneImport) {
  for (const char* folder : {"one", "two"}) MakeFolder(folder);
  HostFile("one/X", "1");
  HostFile("two/x", "2");
  const std::vector<std::string> both = {folder_ / "one/X", folder_ / "two/x"};
  EXPECT_EQ(AddFiles(disc_, 2, both), Outcome::kDone);
  EXPECT_EQ(Contents(2, "X"), (Bytes{'1'}));
  EXPECT_EQ(host_.LogOf("note").size(), 1U);
  // What was there before the import is replaced.
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "two/x"), Outcome::kDone);
  EXPECT_EQ(Contents(2, "X"), (Bytes{'2'}));
}

TEST_F(HostExchangeTest, AnExistingDirectoryOfThatNameEndsTheImport) {
  MakeFolder("in");
  EXPECT_EQ(NewDirectory(disc_, 2, "IN"), 7);
  host_.ExpectedMessages = {"Directory in Already Exists"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
}

TEST_F(HostExchangeTest, ASidecarLengthLargerThanTheFileDoesNotStopTheImport) {
  MakeFolder("in");
  HostFile("in/x", "abc");
  HostFile("in/x.INF", "X          00000000 00000000 00001000 WR");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Length(GetEntrySector(disc_, 2, "in"), "X"), 0x1000U);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(HostExchangeTest, ALinkThatLeadsBackUpIsNotedAndNotFollowed) {
  MakeFolder("in");
  MakeFolder("in/sub");
  fs::create_symlink("..", folder_ / "in/sub/up");
  fs::create_symlink(".", folder_ / "in/here");
  HostFile("in/z", "z");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Names(GetEntrySector(disc_, 2, "in")), "sub z");
  EXPECT_EQ(host_.LogOf("note").size(), 2U);
  EXPECT_NE(host_.LogOf("note")[0].find("in/here: leads back"), std::string::npos);
}

TEST_F(HostExchangeTest, LinksToFilesAndToOtherFoldersAreFollowed) {
  MakeFolder("in");
  MakeFolder("other");
  HostFile("other/f", "f");
  fs::create_symlink(folder_ / "other", folder_ / "in/l");
  fs::create_symlink(folder_ / "other/f", folder_ / "in/m");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Names(GetEntrySector(disc_, 2, "in")), "l m");
  EXPECT_EQ(host_.LogOf("note").size(), 0U);
}

TEST_F(HostExchangeTest, PipesDevicesAndDanglingLinksAreNotedAndTheRestComesIn) {
  MakeFolder("in");
  ASSERT_EQ(::mkfifo((folder_ / "in/a").c_str(), 0600), 0);
  fs::create_symlink("/dev/zero", folder_ / "in/b");
  fs::create_symlink("nowhere", folder_ / "in/c");
  HostFile("in/d", "d");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Names(GetEntrySector(disc_, 2, "in")), "d");
  EXPECT_EQ(host_.LogOf("note").size(), 3U);
}

TEST_F(HostExchangeTest, TheProcesssCurrentFolderIsLeftAloneHoweverTheImportEnds) {
  const auto before = fs::current_path();
  MakeFolder("in");
  HostFile("in/a", "1");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(fs::current_path(), before);
  host_.ExpectedMessages = {"Directory in Already Exists"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(fs::current_path(), before);
  EXPECT_THROW((void)ImportFolder(disc_, 2, folder_ / "none"), HostError);
  EXPECT_EQ(fs::current_path(), before);
}

TEST_F(HostExchangeTest, APathThatLeadsNowhereIsAFailureByItsOwnName) {
  for (const std::string& path : {std::string(), folder_ / "none/..", folder_ / "none"}) {
    try {
      (void)AddFile(disc_, 2, path);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const HostError& error) {
      EXPECT_EQ(error.Path(), path);
      EXPECT_EQ(error.SystemText(), "No such file or directory");
    }
  }
}

TEST_F(HostExchangeTest, RelativePathsAreResolvedWhereTheCallIsMade) {
  MakeFolder("in");
  HostFile("in/a", "1");
  const auto before = fs::current_path();
  fs::current_path(folder_ / "in");
  EXPECT_EQ(AddFile(disc_, 2, "."), Outcome::kDone);
  EXPECT_EQ(AddFile(disc_, 2, "a"), Outcome::kDone);
  EXPECT_EQ(AddFile(disc_, 2, "../in/a"), Outcome::kDone);
  fs::current_path(before);
  EXPECT_EQ(Names(2), "a in");
}

TEST_F(HostExchangeTest, OnlyAPathThatEndsInDotsIsNamedByWhereItLeads) {
  MakeFolder("in");
  MakeFolder("in/sub");
  fs::create_directory_symlink(folder_ / "in", folder_ / "link");
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "in/sub/.."), Outcome::kDone);
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "in/sub/./"), Outcome::kDone);
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "link"), Outcome::kDone);
  EXPECT_EQ(Names(2), "in link sub");
}

TEST_F(HostExchangeTest, OfMoreThanAThousandFilesNoneIsLeftOutWithoutAWord) {
  MakeFolder("in");
  for (int i = 0; i < 1100; ++i) {
    // 26 prefix directories of 43 files: all of them fit.
    const std::string name =
        std::string(1, static_cast<char>('a' + i % 26)) + ".F" + std::to_string(i);
    WriteText((folder_ / "in/") + name, "");
  }
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  std::size_t files = 0;
  const ReadObject root = Tree();
  for (const ReadObject& dir : root.Contents[0].Contents) files += dir.Contents.size();
  EXPECT_EQ(files, 1100U);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(HostExchangeTest, TheFileTooManyForItsDirectorySaysSo) {
  MakeFolder("in");
  for (int i = 0; i < 1001; ++i) WriteText(folder_ / ("in/F" + std::to_string(i)), "");
  host_.ExpectedMessages = {"Directory Full"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(Tree().Contents[0].Contents.size(), 47U);
}

TEST_F(HostExchangeTest, AFolderWithoutRightsIsAFailureAndMakesNoDirectory) {
  MakeFolder("in");
  ::chmod(folder_.Path().c_str(), 0755);
  ::chmod((folder_ / "in").c_str(), 0);
  {
    const OrdinaryUser user;
    EXPECT_THROW((void)ImportFolder(disc_, 2, folder_ / "in"), HostError);
  }
  EXPECT_EQ(Names(2), "");
  ::chmod((folder_ / "in").c_str(), 0700);
}

TEST_F(HostExchangeTest, FoldersDeeperThanAnyWalkReachesAreAFailure) {
  Open(ImageBuilder(2560), kAdl);
  std::string path = folder_ / "in";
  fs::create_directory(path);
  for (int i = 0; i < 300; ++i) {
    path += "/d";
    fs::create_directory(path);
  }
  EXPECT_THROW((void)ImportFolder(disc_, 2, folder_ / "in"), HostError);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(HostExchangeTest, HostNamesInAnyEncodingAreTakenOrRefusedByName) {
  std::mt19937 random(5);
  for (int round = 0; round < 300; ++round) {
    std::string name(1 + random() % 12, ' ');
    for (char& c : name) {
      do c = static_cast<char>(random() & 255);
      while (c == '\0' || c == '/');
    }
    if (name == "." || name == "..") continue;
    host_.AcceptMessages = true;
    host_.Messages.clear();
    const Outcome result = Add(name, {});
    EXPECT_EQ(result == Outcome::kDone, host_.Messages.empty());
    fs::remove(folder_ / name);
    if (Tree().Contents.size() > 40) Open(ImageBuilder(2560));
    ASSERT_EQ(Faults(), std::vector<std::string>()) << round;
  }
}

TEST_F(HostExchangeTest, ACyclicDiscIsExportedOnceAndTheLoopNoted) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"A", Pattern(9), 0, 0, "WR"});
  image.AddDirectory(dir, "LOOP");
  image.Poke(dir * 256 + 5 + 26 + 22, 2);
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), "DIR DIR.INF");
  EXPECT_EQ(Listed(OutFile("DIR")), "A A.INF LOOP.INF");
  EXPECT_EQ(host_.LogOf("note").size(), 1U);
}

TEST_F(HostExchangeTest, ADirectoryWithoutItsMarkExportsAsAnEmptyFolder) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "DIR");
  image.AddFile(dir, {"A", Pattern(9), 0, 0, "WR"});
  image.Poke(dir * 256 + 1, 'X');
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(OutFile("DIR")), "");
}

TEST_F(HostExchangeTest, WhatLiesBehindTheEndOfTheStoreIsCountedAndNotHandedOn) {
  Open(ImageBuilder(640));
  const auto end = static_cast<std::int32_t>(disc_.TheDisc.EndOfData() / 256);
  std::size_t handedOn = 0;
  const auto sink = [&](std::span<const std::uint8_t> bytes) { handedOn += bytes.size(); };
  EXPECT_EQ(ReadContents(disc_, end - 2, 1000, sink), 488U);
  EXPECT_EQ(handedOn, 512U);
  EXPECT_EQ(ReadContents(disc_, end, 10, sink), 10U);
  EXPECT_EQ(ReadContents(disc_, end + 1, 10, sink), 10U);
  EXPECT_EQ(handedOn, 512U);
}

TEST_F(HostExchangeTest, ALengthOfFourGigabytesTakesNoRoomOnTheHost) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(300), 0, 0, "WR"});
  for (int i = 18; i < 22; ++i) image.Poke(517 + i, 0xFF);
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(fs::file_size(OutFile("A")), 0xFFFFFFFFU);
  struct stat info {};
  ASSERT_EQ(::stat(OutFile("A").c_str(), &info), 0);
  EXPECT_LT(info.st_blocks * 512, 1000000);
}

TEST_F(HostExchangeTest, NamesThatLeadOutOfTheFolderStayInside) {
  ImageBuilder image(640);
  image.AddFile(2, {"/", Pattern(3), 0, 0, "WR"});
  image.AddFile(image.AddDirectory(2, "//"), {"X", Pattern(3), 0, 0, "WR"});
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), ".._ .._.INF ._ ._.INF");
  EXPECT_EQ(Listed(folder_.Path()), "disc.img out");
}

TEST_F(HostExchangeTest, AHostDiscThatFillsUpIsAFailureAndLeavesTheOldFile) {
  ImageBuilder image(2560);
  image.AddFile(2, {"BIG", Pattern(200000), 0, 0, "WR"});
  Open(image);
  MakeFolder("out");
  WriteText(OutFile("BIG"), "old");
  struct rlimit former {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  struct rlimit limit = former;
  limit.rlim_cur = 100000;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  EXPECT_THROW(ExportFiles(disc_, Out(), 2), HostError);
  ::setrlimit(RLIMIT_FSIZE, &former);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(Listed(Out()), "BIG");
  EXPECT_EQ(ReadText(OutFile("BIG")), "old");
}

TEST_F(HostExchangeTest, AFileInPlaceOfTheFolderIsAFailure) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(300), 0, 0, "WR"});
  Open(image);
  HostFile("out", "x");
  EXPECT_THROW(ExportFiles(disc_, Out(), 2), HostError);
  EXPECT_EQ(ReadText(Out()), "x");
}

}  // namespace
}  // namespace sectorbox
