#include "disc/image/SaveImage.h"

#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "disc/image/OpenImage.h"
#include "tests/support/MemoryDevice.h"

#include <gtest/gtest.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class SaveImageTest : public ::testing::Test {
 protected:
  SaveImageTest() { host_.ProgressRunning = &disc_.ProgressRunning; }

  void Open(const ImageBuilder& image, const std::string& name) {
    if (image.Bytes().size() == 2560U * 256) {
      image.WriteInterleavedTo(folder_ / name);
    } else {
      image.WriteTo(folder_ / name);
    }
    OpenImage(disc_, folder_ / name);
    host_.Log.clear();
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_, std::make_unique<MemoryDevice>(0x10000)};
};

TEST_F(SaveImageTest, SavingAsksWithTheNameOfTheImage) {
  Open(ImageBuilder(640), "x.adf");
  host_.YesNoAnswers = {true};
  host_.SaveAnswers = {folder_ / "y.adf"};
  disc_.ImageChanged = true;
  RunSaveCommand(disc_);
  EXPECT_EQ(host_.Log, (std::vector<std::string>{"yesno Are You Sure ?|Save Changes",
                                                 "save Save ADFS Disc Image As", "caption"}));
  EXPECT_EQ(host_.Questions[0].FileName, folder_ / "x.adf");
  EXPECT_EQ(host_.Questions[0].Filter, "ADFS Disc (*.adl;*.adf;*.dat)|*.adl;*.adf;*.dat");
  EXPECT_EQ(disc_.ImageName, folder_ / "y.adf");
  EXPECT_FALSE(disc_.ImageChanged);
}

TEST_F(SaveImageTest, NoOrACancelledDialogSavesNothing) {
  Open(ImageBuilder(640), "x.adf");
  disc_.ImageChanged = true;
  host_.YesNoAnswers = {false, true};
  host_.SaveAnswers = {""};
  RunSaveCommand(disc_);
  RunSaveCommand(disc_);
  EXPECT_TRUE(disc_.ImageChanged);
  EXPECT_EQ(disc_.ImageName, folder_ / "x.adf");
}

TEST_F(SaveImageTest, A640SectorDiscUnderADatNameIsALinearFloppyWithoutCompanion) {
  ImageBuilder image(640);
  image.AddFile(2, {"A", {1, 2, 3}});
  Open(image, "x.adf");
  SaveImageTo(disc_, folder_ / "y.dat");
  const auto saved = ReadAll(folder_ / "y.dat");
  EXPECT_EQ(saved,
            std::vector<std::uint8_t>(image.Bytes().begin(), image.Bytes().begin() + 8 * 256));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "y.dsc"));
}

TEST_F(SaveImageTest, APaddedSingleSidedFloppyIsSavedEmpty) {
  Open(ImageBuilder(1280), "x.adf");
  host_.Pad = true;
  SaveImageTo(disc_, folder_ / "y.adf");
  EXPECT_EQ(ReadAll(folder_ / "y.adf").size(), 0U);
  EXPECT_EQ(host_.LogOf("note "),
            (std::vector<std::string>{"note Saved empty: Pad Disc Images is set"}));
}

TEST_F(SaveImageTest, ADiscIsNotSavedEmptyOverTheFileThatItWasOpenedFrom) {
  const ImageBuilder image(640);
  Open(image, "x.adf");
  std::filesystem::create_symlink(folder_ / "x.adf", folder_ / "link.adf");
  host_.Pad = true;
  for (const char* name : {"x.adf", "./x.adf", "link.adf"}) {
    disc_.ImageChanged = true;
    try {
      SaveImageTo(disc_, folder_ / name);
      ADD_FAILURE() << name;
    } catch (const HostError& error) {
      EXPECT_STREQ(error.what(), "Cannot Save An Empty Disc Over Itself");
    }
    EXPECT_EQ(ReadAll(folder_ / "x.adf"), image.Bytes());
    EXPECT_TRUE(disc_.ImageChanged);
    EXPECT_EQ(disc_.ImageName, folder_ / "x.adf");
  }
}

TEST_F(SaveImageTest, AFullFloppyIsSavedInFull) {
  ImageBuilder image(640);
  image.SetFreeRuns({});
  Open(image, "x.adf");
  SaveImageTo(disc_, folder_ / "y.adf");
  EXPECT_EQ(ReadAll(folder_ / "y.adf"), image.Bytes());
}

TEST_F(SaveImageTest, ADoubleSidedFloppyIsSavedTrackByTrackOfTheTwoSides) {
  ImageBuilder image(2560);
  for (int track = 0; track < 160; ++track) {
    image.Poke(track * 4096 + 4000, static_cast<std::uint8_t>(track));
  }
  Open(image, "x.adl");
  SaveImageTo(disc_, folder_ / "y.adl");
  auto saved = ReadAll(folder_ / "y.adl");
  EXPECT_EQ(saved[4096 + 4000], 80);
  EXPECT_EQ(saved[2 * 4096 + 4000], 1);
  EXPECT_EQ(saved, image.InterleavedBytes());
  host_.Interleave = false;
  SaveImageTo(disc_, folder_ / "z.adl");
  EXPECT_EQ(ReadAll(folder_ / "z.adl"), image.Bytes());
}

TEST_F(SaveImageTest, AHardDiscIsTrimmedToItsLastFreeRunAndOpensAtItsFullSizeAgain) {
  ImageBuilder image(4224);
  image.AddFile(2, {"A", std::vector<std::uint8_t>(70000, 9)});
  Open(image, "x.dat");
  SaveImageTo(disc_, folder_ / "y.dat");
  EXPECT_EQ(ReadAll(folder_ / "y.dat").size(), 281U * 256);
  OpenImage(disc_, folder_ / "y.dat");
  EXPECT_EQ(MapDiscSize(disc_), 4224);
  EXPECT_EQ(disc_.TheDisc.Fetch(4000 * 256), 0);
}

TEST_F(SaveImageTest, APaddedHardDiscIsSavedInFull) {
  const ImageBuilder image(4224);
  Open(image, "x.dat");
  host_.Pad = true;
  SaveImageTo(disc_, folder_ / "y.dat");
  EXPECT_EQ(ReadAll(folder_ / "y.dat"), image.Bytes());
}

TEST_F(SaveImageTest, ProgressIsToldAtEvery256thSector) {
  ImageBuilder image(4224);
  image.SetFreeRuns({{600, 4224 - 600}});
  Open(image, "x.dat");
  SaveImageTo(disc_, folder_ / "y.dat");
  EXPECT_EQ(host_.Log, (std::vector<std::string>{"pointer busy", "progress open Save Image",
                                                 "progress Saving Sectors 0 Of 600", "pump",
                                                 "progress Saving Sectors 256 Of 600", "pump",
                                                 "progress Saving Sectors 512 Of 600", "pump",
                                                 "progress close", "pointer normal", "caption"}));
}

TEST_F(SaveImageTest, AnAbortLeavesAShortFileAndTheChangesCountAsSaved) {
  ImageBuilder image(4224);
  image.SetFreeRuns({{600, 4224 - 600}});
  Open(image, "x.dat");
  disc_.ImageChanged = true;
  int pumps = 0;
  host_.OnPump = [&] {
    if (++pumps == 2) disc_.ProgressRunning = false;
  };
  SaveImageTo(disc_, folder_ / "y.dat");
  // The sector at which the button was pressed is still written.
  EXPECT_EQ(ReadAll(folder_ / "y.dat").size(), 257U * 256);
  EXPECT_FALSE(disc_.ImageChanged);
  EXPECT_TRUE(std::filesystem::exists(folder_ / "y.dsc"));
}

TEST_F(SaveImageTest, ADatSavedOverItselfGoesOnWithTheNewFile) {
  ImageBuilder image(4224);
  Open(image, "x.dat");
  disc_.TheDisc.Store(512 + 1241, 'T');
  SaveImageTo(disc_, folder_ / "x.dat");
  EXPECT_EQ(ReadAll(folder_ / "x.dat").size(), 7U * 256);
  disc_.TheDisc.Store(512 + 1242, 'U');
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(folder_ / "x.dat")[512 + 1241], 'T');
  EXPECT_EQ(ReadAll(folder_ / "x.dat")[512 + 1242], 'U');
}

TEST_F(SaveImageTest, AnAbortedSaveOfADatOverItselfLeavesItWhole) {
  ImageBuilder image(4224);
  image.SetFreeRuns({{600, 4224 - 600}});
  Open(image, "x.dat");
  host_.OnPump = [&] { disc_.ProgressRunning = false; };
  SaveImageTo(disc_, folder_ / "x.dat");
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), image.Bytes());
}

TEST_F(SaveImageTest, AHardDiscSavedElsewhereGoesOnWithItsOldFile) {
  Open(ImageBuilder(4224), "x.dat");
  SaveImageTo(disc_, folder_ / "y.dat");
  disc_.TheDisc.Store(512 + 1241, 'T');
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(folder_ / "x.dat")[512 + 1241], 'T');
  EXPECT_EQ(ReadAll(folder_ / "y.dat")[512 + 1241], '$');
}

TEST_F(SaveImageTest, AMapThatClaimsTheLargestSizeIsSavedWithoutFillingTheMedium) {
  ImageBuilder image(4224);
  for (int i = 252; i < 255; ++i) image.Poke(i, 0xFF);
  image.SetFreeRuns({});
  Open(image, "x.dat");
  SaveImageTo(disc_, folder_ / "y.dat");
  EXPECT_EQ(std::filesystem::file_size(folder_ / "y.dat"), std::uintmax_t{0xFFFFFF} * 256);
}

// --- Cards -------------------------------------------------------------------------------------

TEST_F(SaveImageTest, AWholeCardIsSavedToItsOwnSizeWithoutCompanion) {
  Disc disc(host_, std::make_unique<MemoryDevice>(600));
  host_.ProgressRunning = &disc.ProgressRunning;
  OpenCFPartition(disc, "/dev/card,0");
  disc.TheDisc.Store(599 * 256, 5);
  SaveDatImage(disc, folder_ / "card.dat", true);
  const auto saved = ReadAll(folder_ / "card.dat");
  ASSERT_EQ(saved.size(), 600U * 256);
  EXPECT_EQ(saved[599 * 256], 5);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "card.dsc"));
}

TEST_F(SaveImageTest, APartitionOfNoSizeIsSavedEmpty) {
  OpenCFPartition(disc_, "/dev/card,1");
  SaveDatImage(disc_, folder_ / "card.dat", true);
  EXPECT_EQ(ReadAll(folder_ / "card.dat").size(), 0U);
}

TEST_F(SaveImageTest, AFloppySizedPartitionIsSavedAsADoubleSidedFloppy) {
  ImageBuilder image(2560);
  image.AddFile(2, {"A", {1, 2, 3}});
  OpenCFPartition(disc_, "/dev/card,0");
  disc_.TheDisc.StoreBytes(0, image.Bytes());
  SaveImageTo(disc_, folder_ / "y.adl");
  EXPECT_EQ(ReadAll(folder_ / "y.adl"), image.InterleavedBytes());
}

TEST_F(SaveImageTest, AFloppyThatSaysItHasAHardDiscsSizeIsSavedAsThatOverItsOwnFile) {
  Open(ImageBuilder(640), "x.adf");
  MapSectors map = ReadMap(disc_);
  map.SetDiscSize(700);
  WriteMap(disc_, map);
  host_.Pad = true;
  SaveImageTo(disc_, folder_ / "x.adf");
  EXPECT_EQ(ReadAll(folder_ / "x.adf").size(), 700U * 256);
}

TEST_F(SaveImageTest, NothingIsSavedOverTheOpenCardNorRestoredFromIt) {
  const std::string card = folder_ / "card";
  const std::vector<std::uint8_t> bytes(640 * 512, 7);
  WriteAll(card, bytes);
  Disc disc(host_);
  OpenCFPartition(disc, card + ",0");
  EXPECT_THROW(SaveDatImage(disc, card, true), HostError);
  EXPECT_THROW(SaveAdfImage(disc, card), HostError);
  EXPECT_THROW(SaveAdlImage(disc, card), HostError);
  EXPECT_THROW((void)RestoreImage(disc, card), HostError);
  disc.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(card), bytes);
}

TEST_F(SaveImageTest, ARestorePoursTheFileIntoThePartition) {
  ImageBuilder image(640);
  image.WriteTo(folder_ / "x.dat");
  OpenCFPartition(disc_, "/dev/card,0");
  host_.Log.clear();
  disc_.ImageChanged = true;
  EXPECT_EQ(RestoreImage(disc_, folder_ / "x.dat"), RestoreEnd::kDone);
  std::vector<std::uint8_t> bytes(640 * 256);
  disc_.TheDisc.FetchBytes(0, bytes);
  EXPECT_EQ(bytes, image.Bytes());
  EXPECT_FALSE(disc_.ImageChanged);
  EXPECT_EQ(host_.Log, (std::vector<std::string>{"pointer busy", "progress open Restore Image",
                                                 "progress Restoring Sectors 0 Of 640", "pump",
                                                 "progress Restoring Sectors 256 Of 640", "pump",
                                                 "progress Restoring Sectors 512 Of 640", "pump",
                                                 "progress close", "pointer normal"}));
}

TEST_F(SaveImageTest, ARestoreCountsSectorsToTheNearestAndFillsTheLastWithZeros) {
  for (const auto& [length, sectors] : std::vector<std::pair<std::size_t, std::int64_t>>{
           {128, 0}, {129, 1}, {384, 2}, {640, 2}, {896, 4}, {1152, 4}}) {
    SCOPED_TRACE(length);
    WriteAll(folder_ / "x.dat", std::vector<std::uint8_t>(length, 1));
    OpenCFPartition(disc_, "/dev/card,0");
    disc_.TheDisc.StoreBytes(0, std::vector<std::uint8_t>(2048, 7));
    EXPECT_EQ(RestoreImage(disc_, folder_ / "x.dat"), RestoreEnd::kDone);
    EXPECT_EQ(disc_.TheDisc.Fetch(sectors * 256), 7);
    if (sectors == 0) continue;
    const auto held = static_cast<std::int64_t>(length) < sectors * 256;
    EXPECT_EQ(disc_.TheDisc.Fetch(sectors * 256 - 1), held ? 0 : 1);
  }
}

TEST_F(SaveImageTest, ARestoreThatIsAbortedBeforeItsFirstSectorLeavesTheOldDisc) {
  const ImageBuilder former(640);
  former.WriteTo(folder_ / "former.dat");
  WriteAll(folder_ / "x.dat", std::vector<std::uint8_t>(600 * 256, 1));
  OpenCFPartition(disc_, "/dev/card,0");
  ASSERT_EQ(RestoreImage(disc_, folder_ / "former.dat"), RestoreEnd::kDone);
  host_.Log.clear();
  host_.OnPump = [&] { disc_.ProgressRunning = false; };
  EXPECT_EQ(RestoreImage(disc_, folder_ / "x.dat"), RestoreEnd::kAborted);
  std::vector<std::uint8_t> bytes(640 * 256);
  disc_.TheDisc.FetchBytes(0, bytes);
  EXPECT_EQ(bytes, former.Bytes());
  EXPECT_TRUE(host_.LogOf("note ").empty());
}

TEST_F(SaveImageTest, AnAbortedRestoreLeavesNoDiscAndIsTold) {
  const ImageBuilder image(640);
  image.WriteTo(folder_ / "x.dat");
  OpenCFPartition(disc_, "/dev/card,0");
  ASSERT_EQ(RestoreImage(disc_, folder_ / "x.dat"), RestoreEnd::kDone);
  host_.Log.clear();
  int pumps = 0;
  host_.OnPump = [&] { disc_.ProgressRunning = ++pumps < 2; };
  EXPECT_EQ(RestoreImage(disc_, folder_ / "x.dat"), RestoreEnd::kAborted);
  EXPECT_FALSE(IsDirectory(disc_, 2));
  EXPECT_EQ(host_.LogOf("note "),
            (std::vector<std::string>{"note /dev/card,0: there is no disc on it now. Format it "
                                      "again, or restore a backup"}));
}

TEST_F(SaveImageTest, AFileThatIsGoneInTheMiddleOfARestoreIsTold) {
  ImageBuilder(640).WriteTo(folder_ / "x.dat");
  OpenCFPartition(disc_, "/dev/card,0");
  int pumps = 0;
  host_.OnPump = [&] {
    if (++pumps == 2) std::filesystem::resize_file(folder_ / "x.dat", 1000);
  };
  EXPECT_THROW((void)RestoreImage(disc_, folder_ / "x.dat"), HostError);
  EXPECT_FALSE(IsDirectory(disc_, 2));
  EXPECT_EQ(host_.LogOf("note ").size(), 1U);
}

TEST_F(SaveImageTest, ARestoreOfAMissingFileClosesItsDialog) {
  OpenCFPartition(disc_, "/dev/card,0");
  EXPECT_THROW((void)RestoreImage(disc_, folder_ / "none.dat"), HostError);
  EXPECT_EQ(host_.LogOf("progress close").size(), 1U);
  EXPECT_EQ(host_.Log.back(), "pointer normal");
}

}  // namespace
}  // namespace sectorbox
