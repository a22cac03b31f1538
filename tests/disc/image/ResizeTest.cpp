#include "disc/host/HostError.h"
#include "disc/image/OpenImage.h"
#include "disc/image/Resize.h"
#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;

class ResizeTest : public EngineTest {
 protected:
  std::string Make(const ImageBuilder& image) {
    image.WriteTo(folder_ / "x.dat");
    return folder_ / "x.dat";
  }
};

TEST_F(ResizeTest, TheLastRunStretchesAndTheFileKeepsItsLength) {
  ImageBuilder image(4224);
  image.AddHole(3);
  image.AddFile(2, {"A", {}, 0, 0, "WR"});
  const std::string path = Make(image);
  ResizeImageFile(disc_, path, 1024, 4, 33);
  const Bytes after = ReadAll(path);
  EXPECT_EQ(after.size(), 4224U * 256);
  EXPECT_EQ(Bytes(after.begin() + 252, after.begin() + 255), (Bytes{0x00, 0x10, 0x02}));
  const auto runs = ReadFreeRuns(after);
  ASSERT_EQ(runs.size(), 2U);
  EXPECT_EQ(runs[0].Length, 3);
  EXPECT_EQ(runs[1].Start, 11);
  EXPECT_EQ(runs[1].Length, 135168 - 11);
  EXPECT_EQ(FaultsOf([&] {
              Bytes grown = after;
              grown.resize(135168U * 256);
              return grown;
            }()),
            std::vector<std::string>());
  EXPECT_EQ(host_.LogOf("rebuild").size(), 1U);
}

TEST_F(ResizeTest, ASizeThatTheBbcCannotWriteToIsTold) {
  const std::string path = Make(ImageBuilder(4224));
  ResizeImageFile(disc_, path, 8192, 4, 33);
  EXPECT_TRUE(host_.LogOf("note ").empty());
  ResizeImageFile(disc_, path, 16384, 4, 33);
  EXPECT_EQ(host_.LogOf("note "),
            std::vector<std::string>{"note the BBC can't write to a disc of this size"});
}

TEST_F(ResizeTest, SizesAboveWhatTwoBytesHoldAreReadWhole) {
  ImageBuilder image(4224);
  image.SetFreeRuns({{100000, 35168}});
  image.Poke(253, 0x10);
  image.Poke(254, 0x02);
  image.Poke(252, 0x00);
  const std::string path = Make(image);
  ResizeImageFile(disc_, path, 1056, 4, 33);
  EXPECT_EQ(ReadFreeRuns(ReadAll(path))[0].Length, 35168 + 4224);
}

TEST_F(ResizeTest, TheSameSizeRewritesTheChecksumsAndNothingElse) {
  ImageBuilder image(4224);
  image.Poke(255, 1);
  image.Poke(511, 2);
  const std::string path = Make(image);
  ResizeImageFile(disc_, path, 32, 4, 33);
  image.FixChecksums();
  EXPECT_EQ(ReadAll(path), image.Bytes());
}

TEST_F(ResizeTest, ARunThatDoesNotReachTheEndGetsAWrongLength) {
  ImageBuilder image(4224);
  image.SetFreeRuns({{100, 5}});
  const std::string path = Make(image);
  ResizeImageFile(disc_, path, 64, 4, 33);
  EXPECT_EQ(ReadFreeRuns(ReadAll(path))[0].Length, 5 + 4224);
}

TEST_F(ResizeTest, AMapThatDoesNotFitTheNewSizeIsToldAndKeepsChangesOut) {
  ImageBuilder image(4224);
  image.AddHole(100);
  image.AddFile(2, {"LAST", Pattern(std::size_t{4224 - 107} * 256), 0, 0, "WR"});
  image.SetFreeRuns({{7, 100}});
  const std::string path = Make(image);
  ResizeImageFile(disc_, path, 64, 4, 33);
  EXPECT_EQ(host_.LogOf("note "),
            std::vector<std::string>{"note x.dat: the map doesn't fit the new size, so the disc "
                                     "can't be changed before it is repaired"});
  const Bytes before = ReadAll(path);
  host_.ExpectedMessages = {"Cannot Change A Damaged Disc : $.LAST: overlaps free run 0"};
  EXPECT_EQ(Add("NEW", Bytes(200000)), Outcome::kRefused);
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(path), before);
}

TEST_F(ResizeTest, ADiscThatFitsItsNewSizeGetsNoNote) {
  ImageBuilder image(4224);
  image.AddHole(100);
  image.AddFile(2, {"A", Pattern(5000), 0, 0, "WR"});
  const std::string path = Make(image);
  for (const std::int32_t tracks : {64, 32, 16, 1024}) ResizeImageFile(disc_, path, tracks, 4, 33);
  EXPECT_TRUE(host_.LogOf("note ").empty());
}

TEST_F(ResizeTest, ADamagedEndPointerStandsForAsManyRunsAsAnOpenDiscTakesFromIt) {
  for (const auto& [end, stretched] : {std::pair{4, 0}, std::pair{5, 1}, std::pair{7, 1}}) {
    SCOPED_TRACE(end);
    ImageBuilder image(4224);
    image.SetFreeRuns({{100, 5}, {200, 6}});
    image.Poke(510, static_cast<std::uint8_t>(end));
    const std::string path = Make(image);
    ResizeImageFile(disc_, path, 64, 4, 33);
    EXPECT_EQ(disc_.FreeCount, stretched + 1);
    EXPECT_EQ(disc_.FreeLen[0], stretched == 0 ? 5 + 4224 : 5);
    EXPECT_EQ(ReadAll(path)[510], 3 * (stretched + 1));
    if (stretched == 1) {
      EXPECT_EQ(disc_.FreeLen[1], 6 + 4224);
    }
  }
}

TEST_F(ResizeTest, ShrinkingBelowTheUsedPartIsNotRefused) {
  ImageBuilder image(8448);
  image.AddFile(2, {"BIG", Bytes(5000 * 256), 0, 0, "WR"});
  const std::string path = Make(image);
  ResizeImageFile(disc_, path, 32, 4, 33);
  const Bytes after = ReadAll(path);
  EXPECT_EQ(Bytes(after.begin() + 252, after.begin() + 255), (Bytes{0x80, 0x10, 0}));
  // 3441 free sectors less 4224, in three bytes.
  EXPECT_EQ(ReadFreeRuns(after)[0].Length, 0x1000000 + 3441 - 4224);
}

TEST_F(ResizeTest, AFullDiscThatGrowsGetsARunForWhatWasAdded) {
  ImageBuilder image(4224);
  image.SetFreeRuns({});
  const std::string path = Make(image);
  ResizeImageFile(disc_, path, 64, 4, 33);
  const auto runs = ReadFreeRuns(ReadAll(path));
  ASSERT_EQ(runs.size(), 1U);
  EXPECT_EQ(runs[0].Start, 4224);
  EXPECT_EQ(runs[0].Length, 4224);
}

TEST_F(ResizeTest, ASizeThatTheFieldCannotHoldLeavesTheImageAsItIs) {
  const std::string path = Make(ImageBuilder(4224));
  const Bytes before = ReadAll(path);
  host_.ExpectedMessages = {"Disc Size Is Out Of Range", "Disc Size Is Out Of Range"};
  ResizeImageFile(disc_, path, 0, 4, 33);
  ResizeImageFile(disc_, path, 0xFFFFFF / 132 + 1, 4, 33);
  EXPECT_EQ(ReadAll(path), before);
}

TEST_F(ResizeTest, ATooShortFileIsAFailureAndStaysAsItIs) {
  WriteText(folder_ / "x.dat", "short");
  EXPECT_THROW(ResizeImageFile(disc_, folder_ / "x.dat", 1024, 4, 33), HostError);
  EXPECT_EQ(ReadText(folder_ / "x.dat"), "short");
}

TEST_F(ResizeTest, BlocksOfTheOpenImageThatWaitInMemoryDoNotUndoIt) {
  const std::string path = Make(ImageBuilder(4224));
  OpenImage(disc_, path);
  ASSERT_EQ(SetBootOption(disc_, 3, MapSums::kLeave), Outcome::kDone);
  ResizeImageFile(disc_, path, 64, 4, 33);
  disc_.TheDisc.CloseFile();
  const Bytes after = ReadAll(path);
  EXPECT_EQ(after[509], 3);
  EXPECT_EQ(Bytes(after.begin() + 252, after.begin() + 255), (Bytes{0x00, 0x21, 0}));
}

TEST_F(ResizeTest, TheUserIsAskedForTheImageAndMayCancel) {
  host_.OpenAnswers = {""};
  ResizeImage(disc_, 1024, 4, 33);
  host_.OpenAnswers = {Make(ImageBuilder(4224))};
  ResizeImage(disc_, 64, 4, 33);
  EXPECT_EQ(ReadFreeRuns(ReadAll(folder_ / "x.dat"))[0].Length, 8448 - 7);
}

TEST_F(ResizeTest, UnsavedChangesAreAskedAboutBeforeTheImageIs) {
  Open(ImageBuilder(640));
  disc_.ImageChanged = true;
  host_.YesNoAnswers = {false};
  host_.OpenAnswers = {folder_ / "none.dat"};
  host_.ExpectedMessages = {"File Not Found : " + (folder_ / "none.dat")};
  ResizeImage(disc_, 1024, 4, 33);
  EXPECT_EQ(host_.Log,
            (std::vector<std::string>{"yesno Save your changes now ?|Changes will be lost",
                                      "open Open ADFS Disc Image",
                                      "message File Not Found : " + (folder_ / "none.dat")}));
}

TEST(TracksOfMegabytesTest, MegabytesAreTakenToTheNearestTrack) {
  EXPECT_EQ(TracksOfMegabytes("256"), 8192);
  EXPECT_EQ(TracksOfMegabytes("1.5"), 48);
  EXPECT_EQ(TracksOfMegabytes("0.02"), 1);
  EXPECT_EQ(TracksOfMegabytes("-1"), -32);
}

TEST(TracksOfMegabytesTest, AnythingElseIsNoNumber) {
  for (const char* text :
       {"", " ", "abc", "12x", "0x10", "nan", "inf", "1e999", "1 2", "99999999999999999999"}) {
    EXPECT_FALSE(TracksOfMegabytes(text)) << text;
  }
}

}  // namespace
}  // namespace sectorbox
