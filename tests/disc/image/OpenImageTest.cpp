#include "disc/image/OpenImage.h"

#include "disc/host/HostError.h"
#include "disc/image/Session.h"
#include "tests/support/MemoryDevice.h"

#include <gtest/gtest.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class OpenImageTest : public ::testing::Test {
 protected:
  void Expect(std::int16_t disctype, std::int32_t tracks, std::int32_t heads,
              std::int32_t sectors) {
    EXPECT_EQ(disc_.TheDisc.disctype(), disctype);
    EXPECT_EQ(disc_.TheDisc.mTracks, tracks);
    EXPECT_EQ(disc_.TheDisc.Heads(), heads);
    EXPECT_EQ(disc_.TheDisc.Sectors(), sectors);
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_, std::make_unique<MemoryDevice>(0x400000)};
};

TEST_F(OpenImageTest, TheKindFollowsFromTheSizeAndTheName) {
  struct Case {
    const char* Name;
    std::int32_t Size;
    std::int16_t DiscType;
    std::int32_t Tracks, Heads, Sectors;
  };
  for (const Case& c : {
           Case{"a.adf", 640, kAdf, 40, 1, 16},
           Case{"b.adf", 1280, kAdf, 80, 1, 16},
           Case{"c.adf", 2560, kAdl, 80, 2, 16},  // the extension plays no part
           Case{"d.dat", 640, kAdf, 40, 1, 16},
           Case{"e.ADL", 640, kAdl, 80, 2, 16},  // but .adl wins, in any case
           Case{"f.aDl", 4224, kAdl, 80, 2, 16},
           Case{"g.adf", 641, kDat, 5, 4, 33},
           Case{"h", 2560, kAdl, 80, 2, 16},
       }) {
    SCOPED_TRACE(c.Name);
    ImageBuilder(c.Size).WriteTo(folder_ / c.Name);
    OpenImage(disc_, folder_ / c.Name);
    Expect(c.DiscType, c.Tracks, c.Heads, c.Sectors);
  }
}

TEST_F(OpenImageTest, TheStepsComeInTheirOrder) {
  ImageBuilder(640).WriteTo(folder_ / "x.adf");
  OpenImage(disc_, folder_ / "x.adf");
  EXPECT_EQ(host_.Log,
            (std::vector<std::string>{"root " + (folder_ / "x.adf"), "enable", "rebuild"}));
  EXPECT_EQ(disc_.ImageName, folder_ / "x.adf");
  EXPECT_EQ(disc_.FreeCount, 1);
}

TEST_F(OpenImageTest, AHardDiscOpensUnderTheHourglass) {
  ImageBuilder(4224).WriteTo(folder_ / "x.dat");
  OpenImage(disc_, folder_ / "x.dat");
  EXPECT_EQ(host_.Log, (std::vector<std::string>{"root " + (folder_ / "x.dat"), "enable",
                                                 "pointer busy", "pointer normal", "rebuild"}));
}

TEST_F(OpenImageTest, AHardDiscWithoutCompanionHas4HeadsAndItsTracksFromTheLength) {
  ImageBuilder(4224).WriteTo(folder_ / "x.dat");
  OpenImage(disc_, folder_ / "x.dat");
  EXPECT_EQ(disc_.DiscHeads, 4);
  EXPECT_EQ(disc_.DiscTracks, 33);
  Expect(kDat, 33, 4, 33);
}

TEST_F(OpenImageTest, ACompanionTellsTheGeometry) {
  ImageBuilder(4224).WriteTo(folder_ / "x.dat");
  std::vector<std::uint8_t> companion(22);
  companion[13] = 2;
  companion[14] = 3;
  companion[15] = 7;
  WriteAll(folder_ / "x.dsc", companion);
  OpenImage(disc_, folder_ / "x.dat");
  EXPECT_EQ(disc_.DiscTracks, 515);
  EXPECT_EQ(disc_.DiscHeads, 7);
}

TEST_F(OpenImageTest, UnsavedChangesAreAskedAboutFirst) {
  ImageBuilder(640).WriteTo(folder_ / "x.adf");
  OpenImage(disc_, folder_ / "x.adf");
  host_.Log.clear();
  disc_.ImageChanged = true;
  host_.YesNoAnswers = {false};
  OpenImage(disc_, folder_ / "x.adf");
  EXPECT_EQ(host_.Log.at(0), "yesno Save your changes now ?|Changes will be lost");
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(OpenImageTest, AFileThatCannotBeReadLeavesTheOpenDisc) {
  ImageBuilder(640).WriteTo(folder_ / "x.adf");
  OpenImage(disc_, folder_ / "x.adf");
  EXPECT_THROW(OpenImage(disc_, folder_ / "none.adf"), HostError);
  EXPECT_THROW(OpenImage(disc_, folder_.Path()), HostError);
  EXPECT_EQ(disc_.ImageName, folder_ / "x.adf");
  EXPECT_EQ(MapDiscSize(disc_), 640);
}

TEST_F(OpenImageTest, APartitionIsNamedByTheLastCharacter) {
  OpenCFPartition(disc_, "/dev/sdb,1");
  Expect(kCF, 0, 0, 0);
  EXPECT_EQ(disc_.TheDisc.Partition(), 1);
  EXPECT_EQ(host_.Log, (std::vector<std::string>{"pointer busy", "pointer normal"}));
}

// --- The questions around it -------------------------------------------------------------------

TEST_F(OpenImageTest, ADiscInMemoryIsSavedOnYes) {
  ImageBuilder(640).WriteTo(folder_ / "x.adf");
  OpenImage(disc_, folder_ / "x.adf");
  disc_.ImageChanged = true;
  host_.YesNoAnswers = {true};
  host_.SaveAnswers = {folder_ / "y.adf"};
  QuerySaveChanges(disc_);
  EXPECT_FALSE(disc_.ImageChanged);
  EXPECT_TRUE(std::filesystem::exists(folder_ / "y.adf"));
}

TEST_F(OpenImageTest, NoAndACancelledDialogLeaveTheFlagClear) {
  ImageBuilder(640).WriteTo(folder_ / "x.adf");
  OpenImage(disc_, folder_ / "x.adf");
  disc_.ImageChanged = true;
  host_.YesNoAnswers = {false, true};
  QuerySaveChanges(disc_);
  EXPECT_FALSE(disc_.ImageChanged);
  disc_.ImageChanged = true;
  host_.SaveAnswers = {""};
  QuerySaveChanges(disc_);
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(OpenImageTest, ASaveThatTheHostStopsKeepsTheChangesKnown) {
  ImageBuilder(640).WriteTo(folder_ / "x.adf");
  OpenImage(disc_, folder_ / "x.adf");
  disc_.ImageChanged = true;
  host_.YesNoAnswers = {true};
  host_.SaveAnswers = {folder_ / "none/y.adf"};
  EXPECT_THROW(QuerySaveChanges(disc_), HostError);
  EXPECT_TRUE(disc_.ImageChanged);
  EXPECT_EQ(disc_.ImageName, folder_ / "x.adf");
}

TEST_F(OpenImageTest, AHardDiscIsClosedWithoutAQuestion) {
  ImageBuilder(4224).WriteTo(folder_ / "x.dat");
  OpenImage(disc_, folder_ / "x.dat");
  host_.Log.clear();
  disc_.TheDisc.Store(3000, 99);
  disc_.ImageChanged = true;
  QuerySaveChanges(disc_);
  EXPECT_TRUE(host_.Log.empty());
  EXPECT_EQ(ReadAll(folder_ / "x.dat")[3000], 99);
}

TEST_F(OpenImageTest, ChoosingAFileAsksWithAnEmptyName) {
  WriteText(folder_ / "x.adf", "");
  host_.OpenAnswers = {folder_ / "x.adf"};
  EXPECT_EQ(ChooseImageFile(disc_), folder_ / "x.adf");
  EXPECT_EQ(host_.Questions.at(0).Title, "Open ADFS Disc Image");
  EXPECT_EQ(host_.Questions[0].Filter, "ADFS Disc (*.adl;*.adf;*.dat)|*.adl;*.adf;*.dat");
  EXPECT_EQ(host_.Questions[0].FileName, "");
}

TEST_F(OpenImageTest, ChoosingNothingOrAMissingFileGivesAnEmptyName) {
  host_.OpenAnswers = {"", folder_ / "none.adl"};
  EXPECT_EQ(ChooseImageFile(disc_), "");
  host_.ExpectedMessages = {"File Not Found : " + (folder_ / "none.adl")};
  EXPECT_EQ(ChooseImageFile(disc_), "");
}

TEST_F(OpenImageTest, ChoosingAFileAsksAboutChangesFirst) {
  disc_.ImageChanged = true;
  host_.YesNoAnswers = {false};
  host_.OpenAnswers = {""};
  EXPECT_EQ(ChooseImageFile(disc_), "");
  EXPECT_EQ(host_.Log,
            (std::vector<std::string>{"yesno Save your changes now ?|Changes will be lost",
                                      "open Open ADFS Disc Image"}));
}

}  // namespace
}  // namespace sectorbox
