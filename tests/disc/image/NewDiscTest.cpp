#include "disc/image/NewDisc.h"

#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "disc/image/OpenImage.h"
#include "disc/store/OpenDisc.h"

#include <gtest/gtest.h>

#include "tests/support/ImageBuilder.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;

class NewDiscTest : public ::testing::Test {
 protected:
  // Makes a disc of the size that a word such as "80dsd" or "4m" names.
  const NewDiscSize& Kind(const std::string& kind) {
    static const std::vector<std::string> kWords = {"40ssd", "80ssd", "80dsd", "1m",  "2m",
                                                    "4m",    "8m",    "16m",   "32m", "64m",
                                                    "128m",  "256m",  "512m"};
    const auto found = std::find(kWords.begin(), kWords.end(), kind);
    return kNewDiscs.at(static_cast<std::size_t>(found - kWords.begin()));
  }
  void Create(const std::string& kind, const std::string& path) {
    const NewDiscSize& g = Kind(kind);
    CreateDisc(disc_, path, g.Tracks, g.Heads, g.Sectors, g.DiscType);
  }

  TempFolder folder_;
  ScriptedHost host_;
  Disc disc_{host_};
};

TEST_F(NewDiscTest, ASizeThatTheBbcCannotWriteToIsTold) {
  const std::string note = "note the BBC can't write to a disc of this size";
  CreateDisc(disc_, folder_ / "x.dat", 8192, 4, 33, kDat);
  EXPECT_TRUE(host_.LogOf("note ").empty());
  CreateDisc(disc_, folder_ / "y.dat", 16384, 4, 33, kDat);
  EXPECT_EQ(host_.LogOf("note "), std::vector<std::string>{note});
}

TEST_F(NewDiscTest, AFileThatExistsIsReplacedOnlyAfterAQuestion) {
  WriteText(folder_ / "x.dat", "older");
  disc_.ImageName = "former";
  host_.SaveAnswers = {folder_ / "x.dat", folder_ / "x.dat"};
  host_.YesNoAnswers = {false, true};
  RunNewDisc(disc_, kNewDiscs[3]);
  EXPECT_EQ(ReadText(folder_ / "x.dat"), "older");
  EXPECT_EQ(disc_.ImageName, "former");
  RunNewDisc(disc_, kNewDiscs[3]);
  EXPECT_EQ(ReadAll(folder_ / "x.dat").size(), 4224U * 256);
  EXPECT_EQ(host_.LogOf("yesno "),
            std::vector<std::string>(2,
                                     "yesno x.dat already exists. Do you want to replace it ?|"
                                     "Create ADFS Disc Image As"));
}

TEST_F(NewDiscTest, TheCompanionNeverReplacesTheOpenDisc) {
  const ImageBuilder image(640);
  image.WriteTo(folder_ / "x.dsc");
  OpenImage(disc_, folder_ / "x.dsc");
  EXPECT_THROW(CreateDisc(disc_, folder_ / "x.dat", 32, 4, 33, kDat), OpenDiscError);
  EXPECT_EQ(ReadAll(folder_ / "x.dsc"), image.Bytes());
}

TEST_F(NewDiscTest, AFileThatIsNoCompanionStaysAndKeepsTheDiscOut) {
  WriteText(folder_ / "x.dsc", "a letter");
  OpenBlankImage(disc_);
  for (const DiscType type : {kDat, kAdf}) {
    EXPECT_THROW(CreateDisc(disc_, folder_ / "x.dat", 32, 4, 33, type), HostError);
    EXPECT_EQ(ReadText(folder_ / "x.dsc"), "a letter");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "x.dat"));
    EXPECT_EQ(disc_.TheDisc.FileName(), "NewDisc.adl");
  }
  // A floppy of another name has no companion.
  CreateDisc(disc_, folder_ / "x.adf", 80, 1, 16, kAdf);
  EXPECT_EQ(ReadText(folder_ / "x.dsc"), "a letter");
}

TEST_F(NewDiscTest, TheSizesOfTheMenu) {
  const std::vector<std::pair<std::string, std::int32_t>> sizes = {
      {"40ssd", 640},   {"80ssd", 1280},   {"80dsd", 2560},  {"1m", 4224},    {"2m", 8448},
      {"4m", 16896},    {"8m", 33792},     {"16m", 67584},   {"32m", 135168}, {"64m", 270336},
      {"128m", 540672}, {"256m", 1081344}, {"512m", 2162688}};
  ASSERT_EQ(sizes.size(), kNewDiscs.size());
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    const NewDiscSize& g = kNewDiscs[i];
    EXPECT_EQ(&g, &Kind(sizes[i].first));
    EXPECT_EQ(g.Tracks * g.Heads * g.Sectors, sizes[i].second);
  }
}

TEST_F(NewDiscTest, AFloppyIsWholeInMemoryAndNotYetAFile) {
  for (const auto& [kind, sectors] :
       std::vector<std::pair<std::string, int>>{{"40ssd", 640}, {"80ssd", 1280}, {"80dsd", 2560}}) {
    disc_.ImageChanged = true;
    Create(kind, folder_ / kind);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(sectors) * 256);
    disc_.TheDisc.FetchBytes(0, bytes);
    EXPECT_EQ(bytes, ImageBuilder(sectors).Bytes()) << kind;
    EXPECT_FALSE(std::filesystem::exists(folder_ / kind));
    EXPECT_FALSE(disc_.ImageChanged);
    EXPECT_EQ(disc_.FreeCount, 1);
    EXPECT_EQ(disc_.FreeStart[0], 7);
    EXPECT_EQ(disc_.FreeLen[0], sectors - 7);
  }
}

TEST_F(NewDiscTest, AFreshDiscUses1792Bytes) {
  Create("80dsd", "NewDisc.adl");
  ShowFreeSpace(disc_);
  EXPECT_EQ(host_.Statuses.back(), " 653568 Bytes Free,  1792 Bytes Used");
}

TEST_F(NewDiscTest, AHardDiscIsAFileWithItsCompanion) {
  Create("2m", folder_ / "x.dat");
  disc_.TheDisc.CloseFile();
  EXPECT_EQ(ReadAll(folder_ / "x.dat"), ImageBuilder(8448).Bytes());
  EXPECT_EQ(ReadAll(folder_ / "x.dsc"),
            (std::vector<std::uint8_t>{0, 0, 0, 8,  0, 0, 0,   0, 0,   0, 1,
                                       0, 1, 0, 64, 4, 0, 128, 0, 128, 0, 1}));
  EXPECT_EQ(disc_.DiscTracks, 64);
  EXPECT_EQ(disc_.DiscHeads, 4);
  EXPECT_EQ(disc_.DiscSectors, 33);
}

TEST_F(NewDiscTest, OnlyTheExactExtensionGetsACompanion) {
  Create("1m", folder_ / "x.DAT");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "x.dsc"));
  Create("40ssd", folder_ / "y.dat");
  EXPECT_TRUE(std::filesystem::exists(folder_ / "y.dsc"));
}

TEST_F(NewDiscTest, EventsRunAtEvery1024thTrackUnderTheHourglass) {
  Create("16m", folder_ / "x.dat");  // 2048 tracks over the four heads
  EXPECT_EQ(host_.Log,
            (std::vector<std::string>{"pointer busy", "pump", "pump", "pointer normal"}));
}

TEST_F(NewDiscTest, AnExistingFileIsOpenedAsItStands) {
  WriteText(folder_ / "x.dat", std::string(4224 * 256 + 100, 'x'));
  Create("1m", folder_ / "x.dat");
  disc_.TheDisc.CloseFile();
  const auto bytes = ReadAll(folder_ / "x.dat");
  EXPECT_EQ(bytes.size(), 4224U * 256 + 100);
  EXPECT_EQ(bytes[4224 * 256 - 1], 0);
  EXPECT_EQ(bytes.back(), 'x');
}

TEST_F(NewDiscTest, TheMenuEntryAsksForTheNameAndRebuildsThePanes) {
  host_.SaveAnswers = {folder_ / "mine.adl"};
  RunNewDisc(disc_, Kind("80dsd"));
  EXPECT_EQ(disc_.ImageName, folder_ / "mine.adl");
  EXPECT_EQ(host_.Log,
            (std::vector<std::string>{"save Create ADFS Disc Image As", "caption", "pointer busy",
                                      "pump", "pointer normal", "rebuild"}));
}

TEST_F(NewDiscTest, TheThreeDialogs) {
  host_.SaveAnswers = {"", "", ""};
  EXPECT_EQ(NewDiscADF(disc_), "");
  EXPECT_EQ(NewDiscADL(disc_), "");
  EXPECT_EQ(NewDiscDAT(disc_), "");
  const auto& q = host_.Questions;
  ASSERT_EQ(q.size(), 3U);
  EXPECT_EQ(q[0].Title + "/" + q[0].Filter + "/" + q[0].FileName,
            "Save ADFS Disc Image As/Create Disc (*.adf)|*.adf/NewDisc.adf");
  EXPECT_EQ(q[1].Title + "/" + q[1].Filter + "/" + q[1].FileName,
            "Create ADFS Disc Image As/ADFS Disc (*.adl)|*.adl/NewDisc.adl");
  EXPECT_EQ(q[2].Title + "/" + q[2].Filter + "/" + q[2].FileName,
            "Create ADFS Disc Image As/ADFS Disc (*.dat)|*.dat/NewDisc.dat");
}

TEST_F(NewDiscTest, EachKindOfDiscAsksWithItsOwnDialog) {
  for (const auto& [kind, name] : std::vector<std::pair<std::string, std::string>>{
           {"40ssd", "NewDisc.adf"}, {"80dsd", "NewDisc.adl"}, {"1m", "NewDisc.dat"}}) {
    host_.SaveAnswers = {""};
    RunNewDisc(disc_, Kind(kind));
    EXPECT_EQ(host_.Questions.back().FileName, name);
  }
}

TEST_F(NewDiscTest, ACancelledDialogLeavesTheOpenDisc) {
  Create("40ssd", "old.adf");
  disc_.ImageName = "old.adf";
  host_.SaveAnswers = {""};
  RunNewDisc(disc_, Kind("80ssd"));
  EXPECT_EQ(disc_.ImageName, "old.adf");
  EXPECT_EQ(MapDiscSize(disc_), 640);
}

TEST_F(NewDiscTest, APlaceThatCannotBeWrittenLeavesTheOpenDiscAndItsChanges) {
  Create("40ssd", "old.adf");
  disc_.ImageName = "old.adf";
  host_.SaveAnswers = {folder_ / "none/x.dat"};
  EXPECT_THROW(RunNewDisc(disc_, Kind("1m")), HostError);
  EXPECT_EQ(disc_.ImageName, "old.adf");
  EXPECT_EQ(MapDiscSize(disc_), 640);
  EXPECT_EQ(disc_.DiscTracks, 40);
  EXPECT_EQ(host_.Log.back(), "pointer normal");
}

}  // namespace
}  // namespace sectorbox
