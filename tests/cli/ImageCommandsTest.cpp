#include <gtest/gtest.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

TEST(NewCommand, WritesATrimmedFloppyThatAReadbackFillsUp) {
  const TempFolder folder;
  const SbxResult made = RunSbx({"new", "40ssd", folder / "x.adf"});
  EXPECT_EQ(made.Status, 0) << made.Err;
  EXPECT_EQ(made.Out + made.Err, "");
  const auto whole = ImageBuilder(640).Bytes();
  EXPECT_EQ(ReadAll(folder / "x.adf"),
            std::vector<std::uint8_t>(whole.begin(), whole.begin() + 7 * 256));
}

TEST(NewCommand, PadsAFloppyOnRequest) {
  const TempFolder folder;
  EXPECT_EQ(RunSbx({"--pad", "on", "new", "80ssd", folder / "x.adf"}).Status, 0);
  EXPECT_EQ(ReadAll(folder / "x.adf"), ImageBuilder(1280).Bytes());
}

TEST(NewCommand, WritesADoubleSidedFloppyInFull) {
  const TempFolder folder;
  EXPECT_EQ(RunSbx({"new", "80dsd", folder / "x.adl"}).Status, 0);
  EXPECT_EQ(ReadAll(folder / "x.adl"), ImageBuilder(2560).InterleavedBytes());
}

TEST(NewCommand, WritesAHardDiscWithItsCompanion) {
  const TempFolder folder;
  EXPECT_EQ(RunSbx({"new", "1m", folder / "x.dat"}).Status, 0);
  EXPECT_EQ(ReadAll(folder / "x.dat"), ImageBuilder(4224).Bytes());
  EXPECT_EQ(ReadAll(folder / "x.dsc"),
            (std::vector<std::uint8_t>{0, 0, 0, 8,  0, 0, 0,   0, 0,   0, 1,
                                       0, 1, 0, 32, 4, 0, 128, 0, 128, 0, 1}));
}

TEST(NewCommand, RefusesAnExistingFileUnlessForced) {
  const TempFolder folder;
  WriteText(folder / "x.dat", std::string(2000000, 'x'));
  const SbxResult refused = RunSbx({"new", "1m", folder / "x.dat"});
  EXPECT_EQ(refused.Status, 1);
  EXPECT_EQ(refused.Err, (folder / "x.dat") + ": File exists\n");
  EXPECT_EQ(ReadText(folder / "x.dat"), std::string(2000000, 'x'));
  EXPECT_EQ(RunSbx({"new", "1m", folder / "x.dat", "--force"}).Status, 0);
  // The file is opened as it stands: a longer one keeps its tail behind the new disc.
  auto expected = ImageBuilder(4224).Bytes();
  expected.resize(2000000, 'x');
  EXPECT_EQ(ReadAll(folder / "x.dat"), expected);
}

TEST(NewCommand, RefusesAnUnknownKind) {
  const SbxResult result = RunSbx({"new", "3m", "x.dat"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(result.Err, "new: unknown kind of disc: 3m\n");
}

TEST(SaveCommand, GoesByTheSizeOfTheDiscAndNotByTheName) {
  const TempFolder folder;
  ImageBuilder(640).WriteTo(folder / "x.adf");
  EXPECT_EQ(RunSbx({"save", folder / "x.adf", folder / "y.dat"}).Status, 0);
  EXPECT_EQ(ReadAll(folder / "y.dat").size(), 7U * 256);
  EXPECT_FALSE(std::filesystem::exists(folder / "y.dsc"));
}

TEST(SaveCommand, LeavesAnEmptyFileForAPaddedSingleSidedFloppy) {
  const TempFolder folder;
  ImageBuilder(1280).WriteTo(folder / "x.adf");
  EXPECT_EQ(RunSbx({"save", "--pad", "on", folder / "x.adf", folder / "y.adf"}).Status, 0);
  EXPECT_EQ(ReadAll(folder / "y.adf").size(), 0U);
}

TEST(SaveCommand, NeverWritesItsImage) {
  const TempFolder folder;
  ImageBuilder(2560).WriteInterleavedTo(folder / "x.adl");
  const auto before = std::filesystem::last_write_time(folder / "x.adl");
  EXPECT_EQ(RunSbx({"save", folder / "x.adl", folder / "y.adl"}).Status, 0);
  EXPECT_EQ(ReadAll(folder / "y.adl"), ImageBuilder(2560).InterleavedBytes());
  EXPECT_EQ(std::filesystem::last_write_time(folder / "x.adl"), before);
}

TEST(SaveCommand, TellsTheSystemsWordsWhenTheFolderIsMissing) {
  const TempFolder folder;
  ImageBuilder(640).WriteTo(folder / "x.adf");
  const SbxResult result = RunSbx({"save", folder / "x.adf", folder / "none/y.adf"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, (folder / "none/y.adf") + ": No such file or directory\n");
}

}  // namespace
}  // namespace sectorbox
