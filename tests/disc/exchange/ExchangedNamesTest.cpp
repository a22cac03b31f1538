// Names on their way between a disc and the host.
#include <filesystem>
#include <random>

#include "tests/disc/exchange/HostExchangeFixture.h"

namespace sectorbox {
namespace {

using namespace testing;
namespace fs = std::filesystem;

using ExchangedNamesTest = HostExchangeFixture;

TEST_F(ExchangedNamesTest, AFileNamedLikeASidecarGetsOneOfItsOwn) {
  ImageBuilder image(2560);
  image.AddFile(2, {"README/INF", Pattern(3), 0, 0, "WR"});
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), "README.INF_ README.INF_.INF");
}

TEST_F(ExchangedNamesTest, TwoFilesThatComeOutWithOneNameBothGoOut) {
  ImageBuilder image(2560);
  image.AddFile(2, {"X/INF", Pattern(3), 0, 0, "WR"});
  image.AddFile(2, {"X/INF_", Pattern(5), 0, 0, "WR"});
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(ReadAll(OutFile("X.INF_")), Pattern(3));
  EXPECT_EQ(ReadAll(OutFile("X.INF__")), Pattern(5));
}

TEST_F(ExchangedNamesTest, AFileRoundTripsWithAllButE) {
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

TEST_F(ExchangedNamesTest, ASlashComesBackThroughTheSidecarAndWithoutItFromTheThirdPositionOn) {
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
TEST_F(ExchangedNamesTest, EveryNameThatTheFormatAllowsRoundTrips) {
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

TEST_F(ExchangedNamesTest, AFoldersSidecarNamesItAndItsAttributesAreIgnored) {
  MakeFolder("in");
  HostFile("in.INF", "A/B        DL");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  EXPECT_EQ(Names(2), "A/B");
  EXPECT_EQ(Attr(2, "A/B"), "DWR");
}

TEST_F(ExchangedNamesTest, AFolderWhoseSidecarHasNoNameIsRefused) {
  MakeFolder("in");
  HostFile("in.INF", "           DL");
  host_.ExpectedMessages = {"File in Contains Illegal Characters"};
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kRefused);
  EXPECT_EQ(Names(2), "");
}

TEST_F(ExchangedNamesTest, AFoldersOwnNameIsNeitherMappedNorItsBlanksReplaced) {
  MakeFolder("a #.b");
  EXPECT_EQ(ImportFolder(disc_, 2, (folder_ / "a #.b") + "/"), Outcome::kDone);
  EXPECT_EQ(Names(2), "a #.b");
}

TEST_F(ExchangedNamesTest, OfTwoHostFilesWithOneNameOnTheDiscTheSecondIsNotAdded) {
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

TEST_F(ExchangedNamesTest, AFileOfAFolderAndOneWithItsLetterInFrontAreOneNameToo) {
  for (const char* folder : {"in", "in/B", "in/B/C"}) MakeFolder(folder);
  HostFile("in/B/C/X", "deep");
  HostFile("in/B/FOO", "first");
  HostFile("in/B.FOO", "second");
  EXPECT_EQ(ImportFolder(disc_, 2, folder_ / "in"), Outcome::kDone);
  const std::int32_t b = GetEntrySector(disc_, GetEntrySector(disc_, 2, "in"), "B");
  EXPECT_EQ(Contents(b, "FOO"), (Bytes{'f', 'i', 'r', 's', 't'}));
  EXPECT_EQ(host_.LogOf("note").size(), 1U);
}

TEST_F(ExchangedNamesTest, AllPathsOfOneCallAreOneImport) {
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

TEST_F(ExchangedNamesTest, OnlyAPathThatEndsInDotsIsNamedByWhereItLeads) {
  MakeFolder("in");
  MakeFolder("in/sub");
  fs::create_directory_symlink(folder_ / "in", folder_ / "link");
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "in/sub/.."), Outcome::kDone);
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "in/sub/./"), Outcome::kDone);
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "link"), Outcome::kDone);
  EXPECT_EQ(Names(2), "in link sub");
}

TEST_F(ExchangedNamesTest, HostNamesInAnyEncodingAreTakenOrRefusedByName) {
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

TEST_F(ExchangedNamesTest, NamesThatLeadOutOfTheFolderStayInside) {
  ImageBuilder image(640);
  image.AddFile(2, {"/", Pattern(3), 0, 0, "WR"});
  image.AddFile(image.AddDirectory(2, "//"), {"X", Pattern(3), 0, 0, "WR"});
  Open(image);
  ExportFiles(disc_, Out(), 2);
  EXPECT_EQ(Listed(Out()), ".._ .._.INF ._ ._.INF");
  EXPECT_EQ(Listed(folder_.Path()), "disc.img out");
}

}  // namespace
}  // namespace sectorbox
