// New directories, renaming, attributes, addresses, titles, the boot option.

#include "disc/change/Addresses.h"
#include "disc/change/Compaction.h"
#include "disc/change/Mutation.h"
#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;

class DirectoryTest : public EngineTest {
 protected:
  DirectoryTest() { Open(ImageBuilder(640)); }
};

TEST_F(DirectoryTest, ANewDirectoryStandsByteForByteWhereItBelongs) {
  ImageBuilder image(640);
  for (int i = 0; i < 1280; ++i) image.Poke(7 * 256 + i, 0xEE);
  Open(image);
  EXPECT_EQ(NewDirectory(disc_, 2, "Games"), 7);
  const Bytes disc = Image();
  const Bytes name = {'G' | 128, 'a' | 128, 'm', 'e' | 128, 's', 13, 0, 0, 0, 0};
  Bytes entry = name;
  entry.insert(entry.end(), {0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 7, 0, 0, 2});
  EXPECT_EQ(Bytes(disc.begin() + 517, disc.begin() + 543), entry);
  Bytes expected(1280);
  expected[0] = expected[1274] = 1;
  for (int i = 0; i < 4; ++i)
    expected[1 + i] = expected[1275 + i] = static_cast<std::uint8_t>("Hugo"[i]);
  std::copy(name.begin(), name.end(), expected.begin() + 1228);
  expected[1238] = 2;
  const std::string title = "Games\r";
  std::copy(title.begin(), title.end(), expected.begin() + 1241);
  EXPECT_EQ(Bytes(disc.begin() + 7 * 256, disc.begin() + 12 * 256), expected);
  EXPECT_EQ(Runs(), "12+628");
  EXPECT_EQ(Attr(2, "GAMES"), "DWR");
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DirectoryTest, ANewDirectoryKeepsBlanksAndTenCharactersOfItsName) {
  EXPECT_EQ(NewDirectory(disc_, 2, "A B.C#DEFGHIJ"), 7);
  EXPECT_EQ(Names(2), "A B.C#DEFG");
  EXPECT_EQ(GetDirTitle(disc_, 7), "A B.C#DEFG");
}

TEST_F(DirectoryTest, AnExistingNameInAnyCaseRefusesANewDirectory) {
  EXPECT_EQ(Add("Games", {}), Outcome::kDone);
  const Bytes before = Image();
  host_.ExpectedMessages = {"Directory gAMES Already Exists"};
  EXPECT_EQ(NewDirectory(disc_, 2, "gAMES"), std::nullopt);
  EXPECT_EQ(Image(), before);
}

TEST_F(DirectoryTest, AFullDirectoryRefusesANewOne) {
  ImageBuilder image(640);
  for (int i = 0; i < 47; ++i) image.AddFile(2, {"F" + std::to_string(100 + i), {}, 0, 0, "WR"});
  Open(image);
  const Bytes before = Image();
  host_.ExpectedMessages = {"Directory Full"};
  EXPECT_EQ(NewDirectory(disc_, 2, "G"), std::nullopt);
  EXPECT_EQ(Image(), before);
}

TEST_F(DirectoryTest, ANewDirectoryAsksForSpaceThenForASlotThenForItsName) {
  ImageBuilder image(640);
  for (int i = 0; i < 47; ++i) image.AddFile(2, {"F" + std::to_string(100 + i), {}, 0, 0, "WR"});
  Open(image);
  host_.ExpectedMessages = {"Directory Full"};
  EXPECT_EQ(NewDirectory(disc_, 2, "F100"), std::nullopt);
  image.SetFreeRuns({{600, 4}});
  Open(image);
  host_.ExpectedMessages = {"Not Enough Free Contiguous Space on Disc"};
  EXPECT_EQ(NewDirectory(disc_, 2, "F100"), std::nullopt);
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(DirectoryTest, TheNameThatANewDirectoryFindsTakenIsToldAsItWasCut) {
  EXPECT_EQ(NewDirectory(disc_, 2, "ABCDEFGHIJ"), 7);
  host_.ExpectedMessages = {"Directory AbCDEFGHIJ Already Exists"};
  EXPECT_EQ(NewDirectory(disc_, 2, "AbCDEFGHIJKL"), std::nullopt);
}

TEST_F(DirectoryTest, ADirectoryWithoutANameIsRefused) {
  const Bytes before = Image();
  host_.ExpectedMessages = {"File  Contains Illegal Characters",
                            "File \xC3\x89 Contains Illegal Characters"};
  EXPECT_EQ(NewDirectory(disc_, 2, ""), std::nullopt);
  EXPECT_EQ(NewDirectory(disc_, 2, "\xC3\x89"), std::nullopt);
  EXPECT_EQ(Image(), before);
}

TEST_F(DirectoryTest, RenamingMovesTheEntryToItsPlaceAndBumpsOnce) {
  for (const char* name : {"A", "M", "Z"}) EXPECT_EQ(Add(name, {}), Outcome::kDone);
  const int before = Sequence(2);
  EXPECT_EQ(RenameEntry(disc_, "Q", "a", 2, false), Outcome::kDone);
  EXPECT_EQ(Names(2), "M Q Z");
  EXPECT_EQ(Sequence(2), before + 1);
  EXPECT_EQ(Image()[517 + 26 + 25], before + 1);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(DirectoryTest, RenamingKeepsAllElseOfTheEntry) {
  ImageBuilder image(640);
  image.AddFile(2, {"OLD", Pattern(300), 0x1234, 0x5678, "ELWR"});
  Open(image);
  EXPECT_EQ(RenameEntry(disc_, "LONGERNAMES", "OLD", 2, true), Outcome::kDone);
  EXPECT_EQ(Names(2), "LONGERNAME");
  EXPECT_EQ(Attr(2, "LONGERNAME"), "ELWR");
  EXPECT_EQ(Load(2, "LONGERNAME"), 0x1234U);
  EXPECT_EQ(Contents(2, "LONGERNAME"), Pattern(300));
}

TEST_F(DirectoryTest, AShorterNameSortsBeforeALongerOneThatBeginsWithIt) {
  for (const char* name : {"FOOD", "X"}) EXPECT_EQ(Add(name, {}), Outcome::kDone);
  EXPECT_EQ(RenameEntry(disc_, "FOO", "X", 2, false), Outcome::kDone);
  EXPECT_EQ(Names(2), "FOO FOOD");
}

TEST_F(DirectoryTest, AChangeOfCaseAloneIsRefused) {
  EXPECT_EQ(Add("FOO", {}), Outcome::kDone);
  const Bytes before = Image();
  host_.ExpectedMessages = {"foo Already Exists"};
  EXPECT_EQ(RenameEntry(disc_, "foo", "FOO", 2, false), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
}

TEST_F(DirectoryTest, LockedEntriesAreNotRenamedUnlessTheLockIsIgnored) {
  ImageBuilder image(640);
  image.AddFile(2, {"FILE", {}, 0, 0, "LWR"});
  image.AddDirectory(2, "DIR", "LWR");
  Open(image);
  host_.ExpectedMessages = {"Cannot Rename Locked File : FILE",
                            "Cannot Rename Locked Directory : DIR"};
  EXPECT_EQ(RenameEntry(disc_, "X", "FILE", 2, false), Outcome::kRefused);
  EXPECT_EQ(RenameEntry(disc_, "X", "DIR", 2, false), Outcome::kRefused);
  EXPECT_EQ(RenameEntry(disc_, "X", "FILE", 2, true), Outcome::kDone);
}

TEST_F(DirectoryTest, ARenameTellsOfTheLockThenOfTheNameThenOfItsCharacters) {
  ImageBuilder image(640);
  image.AddFile(2, {"LOCKED", {}, 0, 0, "LWR"});
  image.AddFile(2, {"A.B", {}, 0, 0, "WR"});
  Open(image);
  host_.ExpectedMessages = {"Cannot Rename Locked File : LOCKED", "a.b Already Exists",
                            "File A.C Contains Illegal Characters"};
  EXPECT_EQ(RenameEntry(disc_, "a.b", "LOCKED", 2, false), Outcome::kRefused);
  EXPECT_EQ(RenameEntry(disc_, "a.b", "LOCKED", 2, true), Outcome::kRefused);
  EXPECT_EQ(RenameEntry(disc_, "A.C", "LOCKED", 2, true), Outcome::kRefused);
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(DirectoryTest, OfALongNewNameOnlyTheFirstTenCharactersAreLookedAtAndTold) {
  for (const char* name : {"ABCDEFGHIJ", "X"}) EXPECT_EQ(Add(name, {}), Outcome::kDone);
  host_.ExpectedMessages = {"ABCDEFGHIJ Already Exists",
                            "File A:CDEFGHIJ Contains Illegal Characters"};
  EXPECT_EQ(RenameEntry(disc_, "ABCDEFGHIJKL", "X", 2, false), Outcome::kRefused);
  EXPECT_EQ(RenameEntry(disc_, "A:CDEFGHIJKL", "X", 2, false), Outcome::kRefused);
  EXPECT_EQ(RenameEntry(disc_, "0123456789:*", "X", 2, false), Outcome::kDone);
  EXPECT_EQ(Names(2), "0123456789 ABCDEFGHIJ");
}

TEST_F(DirectoryTest, ANameThatIsNotThereRefusesWithoutAMessage) {
  EXPECT_EQ(RenameEntry(disc_, "X", "NONE", 2, false), Outcome::kRefused);
  EXPECT_TRUE(host_.Messages.empty());
}

TEST_F(DirectoryTest, EachForbiddenCharacterRefusesARename) {
  EXPECT_EQ(Add("FOO", {}), Outcome::kDone);
  const Bytes before = Image();
  for (int c = 0; c < 256; ++c) {
    const std::string name = std::string("A") + static_cast<char>(c) + "B";
    const bool good = c > 32 && c <= 127 &&
                      std::string("-.:*#$&@^").find(static_cast<char>(c)) == std::string::npos;
    if (!good) host_.ExpectedMessages = {"File " + name + " Contains Illegal Characters"};
    const Outcome outcome = RenameEntry(disc_, name, "FOO", 2, false);
    EXPECT_EQ(outcome, good ? Outcome::kDone : Outcome::kRefused) << c;
    if (good) {
      EXPECT_EQ(Names(2), name);
      EXPECT_EQ(RenameEntry(disc_, "FOO", name, 2, false), Outcome::kDone) << c;
    } else {
      EXPECT_EQ(Names(2), "FOO");
    }
  }
  host_.ExpectedMessages = {"File  Contains Illegal Characters"};
  EXPECT_EQ(RenameEntry(disc_, "", "FOO", 2, false), Outcome::kRefused);
  EXPECT_EQ(Names(2), "FOO");
  EXPECT_NE(Image(), before);
}

TEST_F(DirectoryTest, ARenamedDirectoryCarriesItsNewNameAndKeepsItsTitle) {
  ImageBuilder image(640);
  const auto dir = image.AddDirectory(2, "OLD", "LWR");
  Open(image);
  EXPECT_EQ(RenameEntry(disc_, "NEW", "OLD", 2, true), Outcome::kDone);
  const Bytes disc = Image();
  const auto at = disc.begin() + dir * 256 + 1228;
  // The carriage return carries the D bit.
  EXPECT_EQ(Bytes(at, at + 10),
            (Bytes{'N' | 128, 'E' | 128, 'W' | 128, 13 | 128, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(GetDirTitle(disc_, dir), "OLD");
}

// Where a sector's number needs all three of its bytes.
TEST_F(DirectoryTest, BeyondSector65535AllGoesAsBelow) {
  ImageBuilder image(70000);
  image.AddFile(2, {"BELOW", Bytes(66000 * 256), 0, 0, "WR"});
  const auto far = image.AddDirectory(2, "FAR");
  const auto sub = image.AddDirectory(far, "SUB");
  const auto big = image.AddFile(far, {"BIG", Pattern(100000), 0, 0, "WR"});
  image.AddFile(far, {"EMPTY", {}, 0, 0, "WR"});
  ASSERT_GT(far, 65535);
  Open(image, kDat);
  EXPECT_EQ(RenameEntry(disc_, "NEW", "SUB", far, false), Outcome::kDone);
  EXPECT_EQ(GetDirName(disc_, sub), "NEW");
  const std::int32_t made = NewDirectory(disc_, sub, "MADE").value();
  EXPECT_EQ(made, GetEntrySector(disc_, sub, "MADE"));
  EXPECT_EQ(Add("F", Pattern(70000, 2), made), Outcome::kDone);
  EXPECT_EQ(Contents(made, "F"), Pattern(70000, 2));
  EXPECT_EQ(Faults(), std::vector<std::string>());

  // The BBC may leave an empty file at a sector in the middle of another file, which keeps that
  // sector.
  const std::int32_t slot = FindEntry(disc_, far, "EMPTY");
  const std::string runs = Runs();
  EditedDirectory edited(disc_, far);
  Entry elsewhere = edited.Now.At(slot);
  elsewhere.SetStart(big + 300);
  edited.Now.Put(slot, elsewhere);
  edited.Write();
  EXPECT_EQ(DeleteEntry(disc_, far, "EMPTY", false, false), Outcome::kDone);
  EXPECT_EQ(Runs(), runs);

  EXPECT_EQ(DeleteEntry(disc_, 2, "BELOW", false, false), Outcome::kDone);
  (void)CompactDisc(disc_);
  EXPECT_EQ(Faults(), std::vector<std::string>());
  const auto moved = GetEntrySector(disc_, 2, "FAR");
  EXPECT_EQ(moved, 7);
  EXPECT_EQ(Contents(moved, "BIG"), Pattern(100000));
}

TEST_F(DirectoryTest, AttributesAreSetAsToldAndDAndEStay) {
  ImageBuilder image(640);
  image.AddFile(2, {"FILE", {}, 0, 0, "EWR"});
  const auto dir = image.AddDirectory(2, "DIR", "WR");
  Open(image);
  (void)SetEntryAttributes(disc_, 2, "file", false, false, true);
  EXPECT_EQ(Attr(2, "FILE"), "EL");
  (void)SetEntryAttributes(disc_, 2, "DIR", true, false, true);
  EXPECT_EQ(Attr(2, "DIR"), "DLR");
  EXPECT_EQ(Sequence(2), 3);
  const Bytes disc = Image();
  const auto at = static_cast<std::size_t>(dir) * 256 + 1228;
  EXPECT_EQ(disc[at], 'D' | 128);
  EXPECT_EQ(disc[at + 1], 'I');
  EXPECT_EQ(disc[at + 2], 'R' | 128);
  EXPECT_EQ(disc[517 + 25], 3) << "DIR stands in slot 0";
  const Bytes before = Image();
  (void)SetEntryAttributes(disc_, 2, "NONE", true, true, true);
  EXPECT_EQ(Image(), before);
}

TEST_F(DirectoryTest, ADirectoryEntryThatLeadsToNoDirectoryWritesNothingThere) {
  ImageBuilder image(640);
  const auto file = image.AddFile(2, {"FILE", Pattern(2000), 0, 0, "WR"});
  image.AddDirectory(2, "DIR");
  image.Poke(517 + 22, static_cast<std::uint8_t>(file));
  Open(image);
  (void)SetEntryAttributes(disc_, 2, "DIR", false, false, true);
  EXPECT_EQ(RenameEntry(disc_, "NEW", "DIR", 2, true), Outcome::kDone);
  EXPECT_EQ(Contents(2, "FILE"), Pattern(2000));
}

TEST_F(DirectoryTest, AddressesAreTakenByPairsOfDigits) {
  EXPECT_EQ(Add("X", {}), Outcome::kDone);
  (void)SetEntryAddresses(disc_, 2, "x", "FFFF1900", "0012ab34");
  const Bytes disc = Image();
  EXPECT_EQ(Bytes(disc.begin() + 527, disc.begin() + 535),
            (Bytes{0x00, 0x19, 0xFF, 0xFF, 0x34, 0xAB, 0x12, 0x00}));
  EXPECT_EQ(Sequence(2), 3);
  EXPECT_EQ(disc[517 + 25], 3);
}

TEST_F(DirectoryTest, AddressesOfANameThatIsNotThereChangeNothing) {
  const Bytes before = Image();
  (void)SetEntryAddresses(disc_, 2, "NONE", "FFFF1900", "FFFF1900");
  EXPECT_EQ(Image(), before);
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(DirectoryTest, ATitleIsCutBeforeItsCharactersAreLookedAt) {
  EXPECT_EQ(SetDirTitle(disc_, 2, "ABCDEFGHIJKLMNOPQRS*"), Outcome::kDone);
  EXPECT_EQ(GetDirTitle(disc_, 2), "ABCDEFGHIJKLMNOPQRS");
  host_.ExpectedMessages = {"Title *BCDEFGHIJKLMNOPQRS Contains Illegal Characters"};
  EXPECT_EQ(SetDirTitle(disc_, 2, "*BCDEFGHIJKLMNOPQRSTUV"), Outcome::kRefused);
  EXPECT_EQ(GetDirTitle(disc_, 2), "ABCDEFGHIJKLMNOPQRS");
}

TEST_F(DirectoryTest, AnEmptyTitleIsACarriageReturnAndNuls) {
  EXPECT_EQ(SetDirTitle(disc_, 2, "OLD TITLE"), Outcome::kDone);
  EXPECT_EQ(SetDirTitle(disc_, 2, ""), Outcome::kDone);
  Bytes expected(19);
  expected[0] = 13;
  const Bytes disc = Image();
  EXPECT_EQ(Bytes(disc.begin() + 512 + 1241, disc.begin() + 512 + 1260), expected);
  EXPECT_EQ(Sequence(2), 3);
}

TEST_F(DirectoryTest, ATitleOfTwentyCharactersStoresNineteenAndNoCarriageReturn) {
  EXPECT_EQ(SetDirTitle(disc_, 2, "ABCDEFGHIJKLMNOPQRST"), Outcome::kDone);
  const Bytes disc = Image();
  const std::string stored(disc.begin() + 512 + 1241, disc.begin() + 512 + 1260);
  EXPECT_EQ(stored, "ABCDEFGHIJKLMNOPQRS");
  EXPECT_EQ(disc[512 + 1260], 0);
  EXPECT_EQ(Sequence(2), 2);
  EXPECT_TRUE(disc_.ImageChanged);
}

TEST_F(DirectoryTest, ATitleMayHoldBlanksAndNoneOfTheForbiddenCharacters) {
  EXPECT_EQ(SetDirTitle(disc_, 2, "My Own Disc"), Outcome::kDone);
  EXPECT_EQ(GetDirTitle(disc_, 2), "My Own Disc");
  const Bytes before = Image();
  for (const char c : std::string("-.:*#$&@^\x1F\x80")) {
    const std::string title = std::string("A") + c;
    host_.ExpectedMessages = {"Title " + title + " Contains Illegal Characters"};
    EXPECT_EQ(SetDirTitle(disc_, 2, title), Outcome::kRefused);
  }
  EXPECT_EQ(Image(), before);
}

TEST_F(DirectoryTest, TheTitleOfADirectoryLeavesItsParentAlone) {
  const std::int32_t dir = NewDirectory(disc_, 2, "D").value();
  const int parent = Sequence(2);
  EXPECT_EQ(SetDirTitle(disc_, dir, "T"), Outcome::kDone);
  EXPECT_EQ(Sequence(2), parent);
  EXPECT_EQ(Sequence(dir), 2);
}

TEST_F(DirectoryTest, TheBootOptionLeavesTheChecksumStaleAndAsksForNoSave) {
  const Bytes before = Image();
  EXPECT_EQ(SetBootOption(disc_, 3, MapSums::kLeave), Outcome::kDone);
  Bytes expected = before;
  expected[509] = 3;
  EXPECT_EQ(Image(), expected);
  EXPECT_FALSE(disc_.ImageChanged);
}

struct AddressCase {
  const char* Load;
  const char* Exec;
  const char* Message;
};

TEST(CheckAddressesTest, LengthsComeBeforeCharactersAndLoadBeforeExec) {
  const std::vector<AddressCase> cases = {
      {"", "", "Load Address Is Wrong Length"},
      {"123456789", "Z", "Load Address Is Wrong Length"},
      {"G", "", "Exec Address Is Wrong Length"},
      {"G", "G", "Load Address Contains Illegal Characters"},
      {"1", "G", "Exec Address Contains Illegal Characters"},
      {"12345678 ", "0", "Load Address Is Wrong Length"},
      {" ", "0", "Load Address Contains Illegal Characters"},
  };
  for (const AddressCase& c : cases) {
    std::string load = c.Load;
    std::string exec = c.Exec;
    EXPECT_EQ(CheckAddresses(load, exec), c.Message) << c.Load << "|" << c.Exec;
  }
}

TEST(CheckAddressesTest, GoodTextsBecomeEightUpperCaseDigits) {
  std::string load = "0";
  std::string exec = "ffff1900";
  EXPECT_EQ(CheckAddresses(load, exec), "");
  EXPECT_EQ(load, "00000000");
  EXPECT_EQ(exec, "FFFF1900");
}

}  // namespace
}  // namespace sectorbox
