#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "disc/host/HostError.h"
#include "tests/disc/EngineTest.h"
#include "tests/support/OrdinaryUser.h"

namespace sectorbox {
namespace {

using namespace testing;

class AddFileTest : public EngineTest {
 protected:
  AddFileTest() { Open(ImageBuilder(640)); }
  void Sidecar(const std::string& name, const std::string& line) {
    WriteText(folder_ / (name + ".INF"), line);
  }
};

TEST_F(AddFileTest, TheEntryAndTheDataStandByteForByteWhereTheyBelong) {
  Sidecar("prog", "PROG       FFFF1900 FFFF8023 0000012C LWR\r\n");
  const Bytes bytes = Pattern(300);
  EXPECT_EQ(Add("prog", bytes), Outcome::kDone);
  const Bytes image = Image();
  const Bytes entry(image.begin() + 517, image.begin() + 543);
  EXPECT_EQ(entry, (Bytes{'P' | 128, 'R' | 128, 'O' | 128, 'G',  13,   0,    0,    0,    0,
                          0,         0x00,      0x19,      0xFF, 0xFF, 0x23, 0x80, 0xFF, 0xFF,
                          0x2C,      0x01,      0,         0,    7,    0,    0,    2}));
  EXPECT_EQ(image[512], 2);
  EXPECT_EQ(image[512 + 1274], 2);
  EXPECT_EQ(Bytes(image.begin() + 7 * 256, image.begin() + 7 * 256 + 300), bytes);
  EXPECT_EQ(Runs(), "9+631");
  EXPECT_TRUE(disc_.ImageChanged);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(AddFileTest, WithoutASidecarAddressesAreZeroAndTheFileIsReadableAndWritable) {
  EXPECT_EQ(Add("FILE", Pattern(10)), Outcome::kDone);
  EXPECT_EQ(Load(2, "FILE"), 0U);
  EXPECT_EQ(Attr(2, "FILE"), "WR");
}

TEST_F(AddFileTest, TheTailOfTheLastSectorIsClean) {
  ImageBuilder image(640);
  for (int i = 0; i < 256; ++i) image.Poke(7 * 256 + i, 0xEE);
  Open(image);
  EXPECT_EQ(Add("X", Pattern(3)), Outcome::kDone);
  Bytes expected = Pattern(3);
  expected.resize(256);
  const Bytes disc = Image();
  EXPECT_EQ(Bytes(disc.begin() + 7 * 256, disc.begin() + 8 * 256), expected);
}

TEST_F(AddFileTest, AnEmptyFileOccupiesOneZeroedSector) {
  ImageBuilder image(640);
  for (int i = 0; i < 256; ++i) image.Poke(7 * 256 + i, 0xEE);
  Open(image);
  EXPECT_EQ(Add("X", {}), Outcome::kDone);
  EXPECT_EQ(Length(2, "X"), 0U);
  EXPECT_EQ(Runs(), "8+632");
  const Bytes disc = Image();
  EXPECT_EQ(Bytes(disc.begin() + 7 * 256, disc.begin() + 8 * 256), Bytes(256));
}

TEST_F(AddFileTest, The47thEntrySucceedsAndThe48thFindsTheDirectoryFullAfterTheSpaceWasFound) {
  for (int i = 0; i < 47; ++i) ASSERT_EQ(Add("F" + std::to_string(100 + i), {}), Outcome::kDone);
  EXPECT_NE(Image()[512 + 1201] & 127, 0);
  const Bytes before = Image();
  host_.ExpectedMessages = {"Directory Full"};
  EXPECT_EQ(Add("G", {}), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
}

TEST_F(AddFileTest, WithNoSpaceAndAFullDirectoryTheSpaceIsReported) {
  ImageBuilder image(640);
  for (int i = 0; i < 47; ++i) image.AddFile(2, {"F" + std::to_string(100 + i), {}, 0, 0, "WR"});
  image.SetFreeRuns({});
  Open(image);
  host_.ExpectedMessages = {"Not Enough Free Contiguous Space on Disc"};
  EXPECT_EQ(Add("G", {}), Outcome::kRefused);
}

TEST_F(AddFileTest, AFullDirectoryRefusesEvenToReplace) {
  for (int i = 0; i < 47; ++i) ASSERT_EQ(Add("F" + std::to_string(100 + i), {}), Outcome::kDone);
  host_.ExpectedMessages = {"Directory Full"};
  EXPECT_EQ(Add("F100", Pattern(1)), Outcome::kRefused);
}

TEST_F(AddFileTest, ReplacingTakesTheNameAsNowGivenAndKeepsNoAddress) {
  Sidecar("prog", "PROG       FFFF1900 FFFF8023 00000003 WR");
  EXPECT_EQ(Add("prog", Pattern(3)), Outcome::kDone);
  EXPECT_EQ(Add("Prog", Pattern(500, 2)), Outcome::kDone);
  EXPECT_EQ(Names(2), "Prog");
  EXPECT_EQ(Load(2, "PROG"), 0U);
  EXPECT_EQ(Contents(2, "PROG"), Pattern(500, 2));
  // One bump for the first, and two for the replacement: out and in.
  EXPECT_EQ(Sequence(2), 4);
  EXPECT_EQ(Runs(), "9+631");
}

TEST_F(AddFileTest, ReplacingALockedFileWithoutTheOptionDoesNothingAndSaysSo) {
  ImageBuilder image(640);
  image.AddFile(2, {"KEPT", Pattern(5), 1, 2, "LWR"});
  Open(image);
  const Bytes before = Image();
  host_.Overwrite = false;
  EXPECT_EQ(Add("kept", Pattern(9)), Outcome::kDone);
  EXPECT_EQ(Image(), before);
  EXPECT_FALSE(disc_.ImageChanged);
  EXPECT_EQ(host_.LogOf("note"),
            std::vector<std::string>{"note left out: KEPT is locked and was left as it was"});
  host_.Overwrite = true;
  EXPECT_EQ(Add("kept", Pattern(9)), Outcome::kDone);
  EXPECT_EQ(Contents(2, "KEPT"), Pattern(9));
}

// On these damaged discs a directory lists a name twice.
TEST_F(AddFileTest, OfTwoFilesOfOneNameOnlyTheFirstIsReplaced) {
  for (const char* attr : {"WR", "LWR"}) {
    SCOPED_TRACE(attr);
    ImageBuilder image(640);
    image.AddFile(2, {"A", Pattern(900, 1), 0, 0, "WR"});
    image.AddFile(2, {"B", Pattern(900, 2), 0, 0, attr});
    image.Poke(517 + 26, image.Peek(517));
    Open(image);
    host_.Overwrite = false;
    EXPECT_EQ(Add("A", Pattern(500, 3)), Outcome::kDone);
    const ReadObject root = Tree();
    ASSERT_EQ(root.Contents.size(), 2U);
    EXPECT_EQ(root.Contents[0].Bytes, Pattern(500, 3));
    EXPECT_EQ(root.Contents[1].Bytes, Pattern(900, 2));
  }
}

TEST_F(AddFileTest, AFileIsReplacedAndTheDirectoryOfItsNameStays) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", Pattern(900, 1), 0, 0, "WR"});
  image.AddFile(image.AddDirectory(2, "B"), {"F", Pattern(900, 2), 0, 0, "WR"});
  image.Poke(517 + 26, image.Peek(517));
  Open(image);
  EXPECT_EQ(Add("A", Pattern(500, 3)), Outcome::kDone);
  const ReadObject root = Tree();
  ASSERT_EQ(root.Contents.size(), 2U);
  EXPECT_EQ(root.Contents[0].Bytes, Pattern(500, 3));
  ASSERT_EQ(root.Contents[1].Contents.size(), 1U);
  EXPECT_EQ(root.Contents[1].Contents[0].Bytes, Pattern(900, 2));
}

TEST_F(AddFileTest, AFileThatTellsItIsEmptyIsAddedWithItsBytes) {
  const std::string path = "/proc/self/comm";
  if (!std::filesystem::exists(path)) GTEST_SKIP() << "no /proc on this machine";
  const Bytes bytes = ReadAll(path);
  ASSERT_FALSE(bytes.empty());
  EXPECT_EQ(AddFile(disc_, 2, path), Outcome::kDone);
  EXPECT_EQ(Contents(2, "comm"), bytes);
}

TEST_F(AddFileTest, AFileThatEndsBeforeItsLengthIsAnErrorAndNothingIsAdded) {
  const std::string path = "/sys/devices/system/cpu/online";
  if (!std::filesystem::exists(path) || std::filesystem::file_size(path) <= ReadAll(path).size()) {
    GTEST_SKIP() << "no such file on this machine";
  }
  const Bytes before = Image();
  EXPECT_THROW((void)AddFile(disc_, 2, path), HostError);
  EXPECT_EQ(Image(), before);
}

TEST_F(AddFileTest, NamesThatTheMachineTakesForOneAreOne) {
  EXPECT_EQ(Add("A[B", Pattern(5)), Outcome::kDone);
  EXPECT_EQ(Add("a{b", Pattern(9)), Outcome::kDone);
  EXPECT_EQ(Names(2), "a{b");
}

TEST_F(AddFileTest, ADirectoryIsNeverOverwrittenAndTheCallerGoesOn) {
  ImageBuilder image(640);
  image.AddDirectory(2, "GAMES");
  Open(image);
  const Bytes before = Image();
  host_.ExpectedMessages = {"Cannot Yet Overwrite A Directory"};
  EXPECT_EQ(Add("games", Pattern(9)), Outcome::kDone);
  EXPECT_EQ(Image(), before);
}

TEST_F(AddFileTest, AFullDiscRefusesAReplacementThatTheOldFilesSectorsWouldHold) {
  ImageBuilder image(640);
  image.AddFile(2, {"OLD", Pattern(600), 0, 0, "WR"});
  image.SetFreeRuns({{600, 1}});
  Open(image);
  host_.ExpectedMessages = {"Not Enough Free Contiguous Space on Disc"};
  EXPECT_EQ(Add("OLD", Pattern(600)), Outcome::kRefused);
  EXPECT_EQ(Names(2), "OLD");
}

TEST_F(AddFileTest, ASidecarFileIsPassedOverInThatVeryCaseOnly) {
  EXPECT_EQ(Add("X.INF", Pattern(3)), Outcome::kDone);
  EXPECT_EQ(Names(2), "");
  EXPECT_EQ(Add("XYZ.inf", Pattern(3)), Outcome::kDone);
  EXPECT_EQ(Names(2), "XYZ/inf");
}

TEST_F(AddFileTest, AFolderNamedLikeASidecarIsPassedOverToo) {
  std::filesystem::create_directory(folder_ / "IN.INF");
  const Bytes before = Image();
  EXPECT_EQ(AddFile(disc_, 2, folder_ / "IN.INF"), Outcome::kDone);
  EXPECT_EQ(Image(), before);
}

TEST_F(AddFileTest, BlanksInANameBecomeUnderscores) {
  EXPECT_EQ(Add("A b C", {}), Outcome::kDone);
  EXPECT_EQ(Names(2), "A_b_C");
}

TEST_F(AddFileTest, AHostNameIsTrimmedThenCutThenMapped) {
  EXPECT_EQ(Add(" LONGNAME.TEXT", {}), Outcome::kDone);
  EXPECT_EQ(Names(2), "LONGNAME/T");
}

TEST_F(AddFileTest, ADollarPrefixIsTheDirectoryGiven) {
  Sidecar("x", "$.FILE     00000000 00000000 00000001 WR");
  EXPECT_EQ(Add("x", Pattern(1)), Outcome::kDone);
  EXPECT_EQ(Names(2), "FILE");
}

TEST_F(AddFileTest, ALetterPrefixGoesToThatDirectoryWhichIsMadeIfNeedBe) {
  EXPECT_EQ(Add("B.FILE", Pattern(1)), Outcome::kDone);
  EXPECT_EQ(Names(2), "B");
  const std::int32_t dir = GetEntrySector(disc_, 2, "B");
  EXPECT_EQ(Names(dir), "FILE");
  EXPECT_EQ(host_.LogOf("treeready").size(), 1U);
  EXPECT_EQ(Add("b.TWO", Pattern(1)), Outcome::kDone);
  EXPECT_EQ(Names(dir), "FILE TWO");
  EXPECT_EQ(host_.LogOf("treeready").size(), 1U);
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(AddFileTest, NothingDeeperThanOnePrefixIsRecognised) {
  Sidecar("x", "A.B.C      00000000 00000000 00000001 WR");
  EXPECT_EQ(Add("x", Pattern(1)), Outcome::kDone);
  EXPECT_EQ(Names(GetEntrySector(disc_, 2, "A")), "B.C");
}

TEST_F(AddFileTest, APrefixThatNamesAFileIsRefusedAndTheFileStaysWhole) {
  ImageBuilder image(640);
  image.AddFile(2, {"B", Bytes(1280), 0, 0, "WR"});
  Open(image);
  const Bytes before = Image();
  host_.ExpectedMessages = {"File B.X: B Is Not A Directory"};
  EXPECT_EQ(Add("B.X", Pattern(1)), Outcome::kRefused);
  EXPECT_TRUE(Image() == before);
}

TEST_F(AddFileTest, APrefixThatNamesAFileWithTheBytesOfADirectoryIsFollowed) {
  ImageBuilder image(640);
  const std::int32_t file = image.AddDirectory(2, "B");
  image.Poke(517 + 3, 0x80 ^ image.Peek(517 + 3));  // no longer a directory by its entry
  Open(image);
  EXPECT_EQ(Add("B.X", Pattern(1)), Outcome::kDone);
  EXPECT_EQ(Names(file), "X");
  EXPECT_EQ(Names(2), "B");
}

TEST_F(AddFileTest, TheRunIsSearchedAgainAfterThePrefixDirectoryHasTakenItsOwn) {
  ImageBuilder image(640);
  image.SetFreeRuns({{10, 5}, {20, 1}});
  Open(image);
  EXPECT_EQ(Add("B.X", Pattern(200)), Outcome::kDone);
  EXPECT_EQ(GetEntrySector(disc_, 2, "B"), 10);
  EXPECT_EQ(GetEntrySector(disc_, 10, "X"), 20);
  EXPECT_EQ(Runs(), "");
}

TEST_F(AddFileTest, WithoutSpaceBehindThePrefixDirectoryOnlyTheDirectoryIsNew) {
  ImageBuilder image(640);
  image.SetFreeRuns({{10, 5}});
  Open(image);
  host_.ExpectedMessages = {"Not Enough Free Contiguous Space on Disc"};
  EXPECT_EQ(Add("B.X", Pattern(200)), Outcome::kRefused);
  EXPECT_EQ(Names(2), "B");
  EXPECT_EQ(Names(10), "");
  EXPECT_EQ(Runs(), "");
}

TEST_F(AddFileTest, TheRunHasRoomForALongerLengthThatTheSidecarGives) {
  ImageBuilder image(640);
  image.SetFreeRuns({{10, 1}, {20, 4}});
  for (int i = 0; i < 1024; ++i) image.Poke(20 * 256 + i, 0xEE);
  Open(image);
  Sidecar("x", "X          00000000 00000000 00000300 WR");
  EXPECT_EQ(Add("x", Pattern(5)), Outcome::kDone);
  Bytes expected = Pattern(5);
  expected.resize(0x300);
  EXPECT_EQ(Contents(2, "X"), expected);
  EXPECT_EQ(Runs(), "10+1 23+1");
}

TEST_F(AddFileTest, ALengthThatNoRunHoldsIsRefusedBeforeAnOldFileIsDeleted) {
  EXPECT_EQ(Add("X", Pattern(5)), Outcome::kDone);
  Sidecar("X", "X          00000000 00000000 FFFFFFFF WR");
  const Bytes before = Image();
  host_.ExpectedMessages = {"Not Enough Free Contiguous Space on Disc"};
  EXPECT_EQ(Add("X", Pattern(5)), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
}

TEST_F(AddFileTest, AShorterLengthThatTheSidecarGivesIsWhatCounts) {
  Sidecar("x", "X          00000000 00000000 00000002 WR");
  EXPECT_EQ(Add("x", Pattern(500)), Outcome::kDone);
  EXPECT_EQ(Contents(2, "X"), Pattern(2));
  EXPECT_EQ(Runs(), "8+632");
}

TEST_F(AddFileTest, OnlyRWAndLOfTheAttributesCountAndInUpperCase) {
  Sidecar("x", "X          00000000 00000000 00000001 EDLrw");
  EXPECT_EQ(Add("x", Pattern(1)), Outcome::kDone);
  EXPECT_EQ(Attr(2, "X"), "L");
}

TEST_F(AddFileTest, EntriesStandSortedWithoutRegardToCase) {
  for (const char* name : {"beta", "ALPHA", "Gamma", "AL", "ALPHAS"}) {
    EXPECT_EQ(Add(name, {}), Outcome::kDone);
  }
  EXPECT_EQ(Names(2), "AL ALPHA ALPHAS beta Gamma");
  EXPECT_EQ(Faults(), std::vector<std::string>());
}

TEST_F(AddFileTest, TheSequenceNumberReadsZeroAfter99) {
  ImageBuilder image(640);
  image.Poke(512, 0x99);
  image.Poke(512 + 1274, 0x99);
  Open(image);
  EXPECT_EQ(Add("X", {}), Outcome::kDone);
  EXPECT_EQ(Image()[512], 0);
  EXPECT_EQ(Image()[512 + 1274], 0);
  EXPECT_EQ(Image()[517 + 25], 0);
}

TEST_F(AddFileTest, ANameThatComesOutEmptyIsRefusedBeforeAnythingIsMade) {
  const Bytes before = Image();
  host_.ExpectedMessages = {
      "File a. Contains Illegal Characters", "File nameless Contains Illegal Characters",
      "File dollar Contains Illegal Characters", "File \rX Contains Illegal Characters"};
  EXPECT_EQ(Add("a.", {}), Outcome::kRefused);
  Sidecar("nameless", "           00000000 00000000 00000001 WR");
  EXPECT_EQ(Add("nameless", {}), Outcome::kRefused);
  Sidecar("dollar", "$.         00000000 00000000 00000001 WR");
  EXPECT_EQ(Add("dollar", {}), Outcome::kRefused);
  EXPECT_EQ(Add("\rX", {}), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
}

TEST_F(AddFileTest, ANameBeyondSevenBitsIsRefusedBecauseItWouldSetAttributes) {
  const Bytes before = Image();
  host_.ExpectedMessages = {
      "File caf\xC3\xA9 Contains Illegal Characters", "File \x80z Contains Illegal Characters",
      "File \xE9.X Contains Illegal Characters", "File side Contains Illegal Characters"};
  EXPECT_EQ(Add("caf\xC3\xA9", {}), Outcome::kRefused);
  EXPECT_EQ(Add("\x80z", {}), Outcome::kRefused);
  EXPECT_EQ(Add("\xE9.X", {}), Outcome::kRefused);
  Sidecar("side", "ABC\xC4       00000000 00000000 00000001 WR");
  EXPECT_EQ(Add("side", {}), Outcome::kRefused);
  EXPECT_EQ(Image(), before);
}

TEST_F(AddFileTest, ANameEndsAtACarriageReturn) {
  EXPECT_EQ(Add("AB\rCD", {}), Outcome::kDone);
  EXPECT_EQ(Add("AB\rEF", Pattern(2)), Outcome::kDone);
  EXPECT_EQ(Names(2), "AB");
  EXPECT_EQ(Length(2, "AB"), 2U);
}

TEST_F(AddFileTest, ANameWithANulInItComesFromASidecarAndHarmsNothing) {
  std::string line = "A B        00000000 00000000 00000001 WR";
  line[1] = '\0';
  Sidecar("x", line);
  EXPECT_EQ(Add("x", Pattern(1)), Outcome::kDone);
  EXPECT_EQ(Add("Z", Pattern(1)), Outcome::kDone);
  EXPECT_EQ(Names(2), std::string("A\0B Z", 5));
}

TEST_F(AddFileTest, AMissingFileIsAFailureOfTheHostAndChangesNothing) {
  const Bytes before = Image();
  EXPECT_THROW((void)AddFile(disc_, 2, folder_ / "none"), HostError);
  EXPECT_EQ(Image(), before);
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(AddFileTest, ASidecarThatIsAFolderOrAPipeIsNone) {
  std::filesystem::create_directory(folder_ / "X.INF");
  EXPECT_EQ(Add("X", Pattern(4)), Outcome::kDone);
  ASSERT_EQ(::mkfifo((folder_ / "Y.INF").c_str(), 0600), 0);
  EXPECT_EQ(Add("Y", Pattern(4)), Outcome::kDone);
  EXPECT_EQ(Names(2), "X Y");
}

TEST_F(AddFileTest, APipeOrADeviceIsNoFileAndDoesNotBlock) {
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  const Bytes before = Image();
  EXPECT_THROW((void)AddFile(disc_, 2, folder_ / "pipe"), HostError);
  EXPECT_THROW((void)AddFile(disc_, 2, "/dev/zero"), HostError);
  EXPECT_EQ(Image(), before);
}

TEST_F(AddFileTest, AnUnreadableFileLeavesThePrefixDirectoryUnmadeAndTheOldFileInPlace) {
  EXPECT_EQ(Add("OLD", Pattern(4)), Outcome::kDone);
  const std::string prefixed = HostFile("B.X", Pattern(4));
  ::chmod(folder_.Path().c_str(), 0755);
  ::chmod(prefixed.c_str(), 0);
  ::chmod((folder_ / "OLD").c_str(), 0);
  const Bytes before = Image();
  const OrdinaryUser user;
  EXPECT_THROW((void)AddFile(disc_, 2, prefixed), HostError);
  EXPECT_THROW((void)AddFile(disc_, 2, folder_ / "OLD"), HostError);
  EXPECT_EQ(Image(), before);
}

TEST_F(AddFileTest, AReadThatFailsMidwayLeavesTheDiscUntouched) {
  // A file of the kernel that opens, for root too, and can't be read from its start.
  const std::string unreadable = "/proc/self/mem";
  if (!std::filesystem::exists(unreadable)) GTEST_SKIP() << "no such file here";
  std::filesystem::create_symlink(unreadable, folder_ / "B.X.INF");
  const Bytes before = Image();
  EXPECT_THROW(Add("B.X", Pattern(4)), HostError);
  EXPECT_EQ(Image(), before);
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(AddFileTest, AFileLargerThanAnyDiscFindsNoSpace) {
  const std::string path = HostFile("huge", Bytes());
  std::filesystem::resize_file(path, 0x180000001);
  host_.ExpectedMessages = {"Not Enough Free Contiguous Space on Disc"};
  EXPECT_EQ(AddFile(disc_, 2, path), Outcome::kRefused);
}

}  // namespace
}  // namespace sectorbox
