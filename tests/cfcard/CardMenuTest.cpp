// The entries of the CF Card menu, from the question about unsaved changes to the panes.

#include <functional>

#include "disc/catalogue/Adfs.h"
#include "disc/host/HostError.h"
#include "tests/cfcard/CardFixture.h"

namespace sectorbox::testing {
namespace {

using Lines = std::vector<std::string>;

// A user at the dialogs: chooses a row, or cancels.
struct ScriptedDialogs : CardDialogs {
  std::function<void()> OnCF = [] { ADD_FAILURE() << "frmCF was not expected"; };
  std::function<void()> OnFormatCF = [] { ADD_FAILURE() << "frmFormatCF was not expected"; };
  void ShowCF() override { OnCF(); }
  void ShowFormatCF() override { OnFormatCF(); }
};

struct QuietView : FormatView {
  void FormatStarted() override {}
  void ShowFormat(const std::string&, double) override {}
};

class CardMenuTest : public CardTest {
 protected:
  std::function<void()> Choose(const std::string& row) {
    return [this, row] {
      (void)ScanCFCards(disc, drives, true);
      disc.ImageName = ImageNameOfRow(row);
      disc.ProgressRunning = true;
    };
  }
  std::function<void()> Cancel() {
    return [this] {
      EXPECT_FALSE(disc.ProgressRunning);
      (void)ScanCFCards(disc, drives, false);
      disc.ProgressRunning = false;
    };
  }
  void ExpectBlank() {
    EXPECT_EQ(disc.ImageName, "NewDisc.adl");
    EXPECT_EQ(disc.TheDisc.disctype(), kAdl);
    EXPECT_EQ(MapDiscSize(disc), 2560);
    EXPECT_FALSE(disc.ImageChanged);
    EXPECT_FALSE(std::filesystem::exists("NewDisc.adl"));
    ExpectEnd("NewDisc.adl");
  }
  void ExpectEnd(const std::string& root) {
    ASSERT_GE(host.Log.size(), 4u);
    EXPECT_EQ(Lines(host.Log.end() - 4, host.Log.end()),
              Lines({"root " + root, "enable", "rebuild", "caption"}));
  }
  static ImageBuilder DiscWithAFile(std::int32_t sectors) {
    ImageBuilder builder(sectors);
    builder.AddFile(2, {"HELLO", std::vector<std::uint8_t>(1000, 0x41)});
    return builder;
  }

  ScriptedDialogs dialogs;
  QuietView view;
};

TEST_F(CardMenuTest, OpenShowsTheChosenPartition) {
  PutDisc(Insert("card", 4096), 0, DiscWithAFile(4096).Bytes());
  dialogs.OnCF = Choose("C: - Partition 0");
  RunCFCardOpen(disc, dialogs);
  EXPECT_EQ(disc.ImageName, "C:,0");
  EXPECT_EQ(FindEntry(disc, 2, "HELLO"), 0);
  EXPECT_EQ(disc.FreeStart[0], 11);
  ExpectEnd("C:,0");
}

TEST_F(CardMenuTest, OpenShowsTheChosenPartition1) {
  PutDisc(Insert("card", 2 * kPartitionSectors), 1, DiscWithAFile(4096).Bytes());
  dialogs.OnCF = Choose("C: - Partition 1");
  RunCFCardOpen(disc, dialogs);
  EXPECT_EQ(FindEntry(disc, 2, "HELLO"), 0);
}

TEST_F(CardMenuTest, CancellingTheDialogOfAnyEntryLeavesABlankImage) {
  const std::vector<std::function<void()>> entries = {
      [&] { RunCFCardOpen(disc, dialogs); },          [&] { RunCFFormat(disc, dialogs); },
      [&] { RunCFCardBackup(disc, dialogs, false); }, [&] { RunCFCardBackup(disc, dialogs, true); },
      [&] { RunCFCardRestore(disc, dialogs); },
  };
  Insert("card", 4096);
  ImageBuilder(640).WriteTo(folder / "a.adf");
  for (const auto& entry : entries) {
    disc.TheDisc.OpenFile(folder / "a.adf", kAdf, 40, 1, 16);
    disc.ImageName = folder / "a.adf";
    dialogs.OnCF = Cancel();
    dialogs.OnFormatCF = Cancel();
    entry();
    ExpectBlank();
  }
}

TEST_F(CardMenuTest, UnsavedChangesAreAskedAboutBeforeTheDialog) {
  ImageBuilder(640).WriteTo(folder / "a.adf");
  disc.TheDisc.OpenFile(folder / "a.adf", kAdf, 40, 1, 16);
  disc.ImageChanged = true;
  disc.ProgressRunning = true;
  host.YesNoAnswers = {false};
  dialogs.OnCF = [&] {
    EXPECT_EQ(host.LogOf("yesno ").size(), 1u);
    EXPECT_FALSE(disc.ProgressRunning);
  };
  RunCFCardOpen(disc, dialogs);
  ExpectBlank();
}

TEST_F(CardMenuTest, OkWithoutAChosenRowEndsOnTheBlankImageAndATold) {
  Insert("card", 4096);
  dialogs.OnCF = Choose("");
  RunCFCardOpen(disc, dialogs);
  EXPECT_EQ(host.LogOf("note ").size(), 1u);
  ExpectBlank();
}

TEST_F(CardMenuTest, ACardThatLeavesAfterTheScanEndsOnTheBlankImage) {
  PutDisc(Insert("card", 4096), 0, DiscWithAFile(4096).Bytes());
  dialogs.OnCF = [&] {
    Choose("C: - Partition 0")();
    shelf.Take("card");
  };
  RunCFCardOpen(disc, dialogs);
  EXPECT_EQ(host.LogOf("note "), Lines({"note C:,0: can't be opened: No such file or directory"}));
  ExpectBlank();
}

TEST_F(CardMenuTest, FormatOpensWhatItMade) {
  Insert("card", 4096);
  dialogs.OnFormatCF = [&] {
    Choose("C: - Non ADFS Partition 0")();
    FormatCFDisc(disc, view, "1MB", false);
  };
  RunCFFormat(disc, dialogs);
  EXPECT_EQ(disc.ImageName, "C:,0");
  EXPECT_TRUE(disc.TheDisc.DeviceIsOpen());
  EXPECT_EQ(disc.FreeLen[0], 4089);
  ExpectEnd("C:,0");
}

TEST_F(CardMenuTest, AbortInTheWipeLeavesTheCardUnformattedAndABlankImage) {
  MemoryDevice& card = Insert("card", 4096);
  PutDisc(card, 0, DiscWithAFile(4096).Bytes());
  host.OnPump = [&] { disc.ProgressRunning = false; };
  dialogs.OnFormatCF = [&] {
    Choose("C: - Partition 0")();
    FormatCFDisc(disc, view, "1MB", false);
  };
  RunCFFormat(disc, dialogs);
  EXPECT_EQ(DiscByte(card, 0, 513), 0);
  ExpectBlank();
}

TEST_F(CardMenuTest, ABackupAsksForAFileNamedAfterTheDrive) {
  PutDisc(Insert("card", 4096), 0, DiscWithAFile(4096).Bytes());
  dialogs.OnCF = Choose("C: - Partition 0");
  host.SaveAnswers = {folder / "b.dat"};
  RunCFCardBackup(disc, dialogs, false);
  EXPECT_EQ(host.Questions[0].FileName, "drive_C0.dat");
  EXPECT_EQ(host.Questions[0].Title, "Backup CF Card Image As");
  EXPECT_EQ(host.Questions[0].Filter, "ADFS Disc (*.dat)|*.dat");
  EXPECT_EQ(BackupFileName("E:,0"), "drive_E0.dat");
  ExpectEnd("C:,0");
}

TEST_F(CardMenuTest, ABackupEndsAtTheLastFreeRun) {
  const ImageBuilder builder = DiscWithAFile(4096);
  PutDisc(Insert("card", 5000), 0, builder.Bytes());
  dialogs.OnCF = Choose("C: - Partition 0");
  host.SaveAnswers = {folder / "b.dat"};
  RunCFCardBackup(disc, dialogs, false);
  const auto& bytes = builder.Bytes();
  EXPECT_EQ(ReadAll(folder / "b.dat"),
            std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + 11 * 256));
}

TEST_F(CardMenuTest, APaddedBackupIsAsLongAsTheDisc) {
  const ImageBuilder builder = DiscWithAFile(4096);
  PutDisc(Insert("card", 5000), 0, builder.Bytes());
  dialogs.OnCF = Choose("C: - Partition 0");
  host.SaveAnswers = {folder / "b.dat"};
  host.Pad = true;
  RunCFCardBackup(disc, dialogs, false);
  EXPECT_EQ(ReadAll(folder / "b.dat"), builder.Bytes());
}

TEST_F(CardMenuTest, AFullBackupIsAsLongAsThePartitionWhateverTheMapSays) {
  auto bytes = DiscWithAFile(4096).Bytes();
  MemoryDevice& card = Insert("card", 5000);
  PutDisc(card, 0, bytes);
  card.Poke(4999 * 512 + 510, 0x99);
  dialogs.OnCF = Choose("C: - Partition 0");
  host.SaveAnswers = {folder / "b.dat"};
  RunCFCardBackup(disc, dialogs, true);
  bytes.resize(5000 * 256);
  bytes.back() = 0x99;
  EXPECT_EQ(ReadAll(folder / "b.dat"), bytes);
}

TEST_F(CardMenuTest, ACancelledSaveDialogLeavesThePartitionOpen) {
  PutDisc(Insert("card", 4096), 0, DiscWithAFile(4096).Bytes());
  dialogs.OnCF = Choose("C: - Partition 0");
  host.SaveAnswers = {""};
  RunCFCardBackup(disc, dialogs, true);
  EXPECT_EQ(disc.ImageName, "C:,0");
  EXPECT_TRUE(disc.TheDisc.DeviceIsOpen());
  EXPECT_EQ(FindEntry(disc, 2, "HELLO"), 0);
  ExpectEnd("C:,0");
}

TEST_F(CardMenuTest, ABackupThatTheHostRefusesStillShowsThePartition) {
  PutDisc(Insert("card", 4096), 0, DiscWithAFile(4096).Bytes());
  dialogs.OnCF = Choose("C: - Partition 0");
  host.SaveAnswers = {folder / "absent/b.dat"};
  EXPECT_THROW(RunCFCardBackup(disc, dialogs, true), HostError);
  EXPECT_EQ(FindEntry(disc, 2, "HELLO"), 0);
  ExpectEnd("C:,0");
}

TEST_F(CardMenuTest, ARestorePutsTheFileOnThePartitionAndShowsIt) {
  const ImageBuilder builder = DiscWithAFile(4096);
  builder.WriteTo(folder / "b.dat");
  MemoryDevice& card = Insert("card", 5000);
  for (std::uint64_t i = 0; i < card.Size(); ++i) card.Poke(i, 0xE5);
  dialogs.OnCF = Choose("C: - Non ADFS Partition 0");
  host.OpenAnswers = {folder / "b.dat"};
  RunCFCardRestore(disc, dialogs);
  EXPECT_EQ(FindEntry(disc, 2, "HELLO"), 0);
  EXPECT_EQ(disc.FreeStart[0], 11);
  for (std::uint64_t i = 0; i < 5000 * 256; ++i) {
    const std::uint8_t byte = i < 4096 * 256 ? builder.Peek(static_cast<std::int64_t>(i)) : 0xE5;
    ASSERT_EQ(card.Peek(2 * i), byte) << i;
    ASSERT_EQ(card.Peek(2 * i + 1), 0xE5) << i;
  }
  ExpectEnd("C:,0");
}

TEST_F(CardMenuTest, ACancelledFileQuestionOfARestoreLeavesTheBlankImage) {
  MemoryDevice& card = Insert("card", 4096);
  dialogs.OnCF = Choose("C: - Non ADFS Partition 0");
  host.OpenAnswers = {""};
  RunCFCardRestore(disc, dialogs);
  for (const auto& transfer : card.Transfers) EXPECT_FALSE(transfer.IsWrite);
  ExpectBlank();
}

TEST_F(CardMenuTest, ARestoreFromAFileThatIsNotThereLeavesTheBlankImage) {
  Insert("card", 4096);
  dialogs.OnCF = Choose("C: - Non ADFS Partition 0");
  host.OpenAnswers = {folder / "absent.dat"};
  host.ExpectedMessages = {"File Not Found : " + folder / "absent.dat"};
  RunCFCardRestore(disc, dialogs);
  ExpectBlank();
}

TEST_F(CardMenuTest, ARestoreOfALargerFileStaysInsideThePartition) {
  WriteAll(folder / "b.dat", std::vector<std::uint8_t>(1200 * 256, 0x5A));
  MemoryDevice& card = Insert("card", kPartitionSectors + 1000);
  card.Poke(0, 0x42);
  dialogs.OnCF = Choose("C: - Non ADFS Partition 1");
  host.OpenAnswers = {folder / "b.dat"};
  host.YesNoAnswers = {true};
  RunCFCardRestore(disc, dialogs);
  EXPECT_EQ(DiscByte(card, 1, 1000 * 256 - 1), 0x5A);
  EXPECT_EQ(card.Peek(0), 0x42);
  EXPECT_EQ(host.LogOf("note "), Lines({"note " + folder / "b.dat: 1200 sectors, of which the "
                                                           "first 1000 fit on the partition"}));
}

TEST_F(CardMenuTest, AFileThatIsNoDiscIsRestoredOnlyAfterAQuestion) {
  WriteAll(folder / "photo.jpg", std::vector<std::uint8_t>(1000, 0x5A));
  MemoryDevice& card = Insert("card", 4096);
  dialogs.OnCF = Choose("C: - Non ADFS Partition 0");
  for (const bool answer : {false, true}) {
    host.Log.clear();
    host.OpenAnswers = {folder / "photo.jpg"};
    host.YesNoAnswers = {answer};
    RunCFCardRestore(disc, dialogs);
    EXPECT_EQ(host.LogOf("yesno "),
              Lines({"yesno photo.jpg Is No ADFS Disc. Restore It All The Same ?|"
                     "Restore CF Card"}));
    disc.TheDisc.CloseFile();
    EXPECT_EQ(DiscByte(card, 0, 0), answer ? 0x5A : 0);
  }
}

TEST_F(CardMenuTest, ABackupOfAPartitionThatIsNoDiscIsTold) {
  Insert("card", 100);
  dialogs.OnCF = Choose("C: - Non ADFS Partition 0");
  for (const bool whole : {false, true}) {
    host.Log.clear();
    host.SaveAnswers = {folder / "b.dat"};
    RunCFCardBackup(disc, dialogs, whole);
    EXPECT_EQ(host.LogOf("note "), whole ? Lines({}) : Lines({"note C:,0 Is No ADFS Disc"}));
    EXPECT_EQ(ReadAll(folder / "b.dat").size(), 100u * 256);
  }
}

TEST_F(CardMenuTest, ACardThatIsPulledInARestoreIsTold) {
  WriteAll(folder / "b.dat", std::vector<std::uint8_t>(1000 * 256, 0x5A));
  MemoryDevice& card = Insert("card", 4096);
  card.WritesLeft = 3;
  dialogs.OnCF = Choose("C: - Non ADFS Partition 0");
  host.YesNoAnswers = {true};
  host.OpenAnswers = {folder / "b.dat"};
  RunCFCardRestore(disc, dialogs);
  // The first write clears the front; sectors 8 to 15 follow.
  EXPECT_EQ(DiscByte(card, 0, 0), 0);
  EXPECT_EQ(DiscByte(card, 0, 16 * 256 - 1), 0x5A);
  EXPECT_EQ(DiscByte(card, 0, 16 * 256), 0);
  ASSERT_EQ(host.LogOf("note ").size(), 3u);
  EXPECT_EQ(host.LogOf("note ")[0],
            "note C:,0: sectors 16 to 19 can't be written in full: Input/output error");
  EXPECT_EQ(host.LogOf("note ")[1],
            "note C:,0: there is no disc on it now. Format it again, or restore a backup");
}

TEST_F(CardMenuTest, ADiscThatIsLargerThanItsDeviceCanBeBackedUp) {
  auto builder = DiscWithAFile(4096);
  PutDisc(Insert("card", 100), 0,
          std::vector<std::uint8_t>(builder.Bytes().begin(), builder.Bytes().begin() + 100 * 256));
  dialogs.OnCF = Choose("C: - Partition 0");
  host.SaveAnswers = {folder / "b.dat"};
  host.Pad = true;
  RunCFCardBackup(disc, dialogs, false);
  EXPECT_EQ(ReadAll(folder / "b.dat").size(), 4096u * 256);
  EXPECT_EQ(host.LogOf("note ")[0],
            "note C:,0: sectors 100 to 103 can't be read in full: Input/output error");
}

TEST_F(CardMenuTest, ABackupRestoredToAnotherCardIsTheSameDisc) {
  const ImageBuilder builder = DiscWithAFile(4096);
  PutDisc(Insert("one", 4096), 0, builder.Bytes());
  MemoryDevice& two = Insert("two", 2 * kPartitionSectors);
  dialogs.OnCF = Choose("C: - Partition 0");
  host.SaveAnswers = {folder / "b.dat"};
  RunCFCardBackup(disc, dialogs, true);
  dialogs.OnCF = Choose("D: - Non ADFS Partition 1");
  host.OpenAnswers = {folder / "b.dat"};
  RunCFCardRestore(disc, dialogs);
  disc.TheDisc.CloseFile();
  for (std::uint64_t i = 0; i < 4096 * 256; ++i) {
    ASSERT_EQ(DiscByte(two, 1, i), builder.Peek(static_cast<std::int64_t>(i))) << i;
  }
}

TEST_F(CardMenuTest, TheTwentyFormatsAreTenSizesInTwoKinds) {
  const auto formats = SizedFormats();
  ASSERT_EQ(formats.size(), 20u);
  for (std::size_t i = 0; i < 10; ++i) {
    EXPECT_EQ(formats[i].Sectors, kCardSizes[i].Sectors);
    EXPECT_EQ(formats[10 + i].Sectors, kCardSizes[i].Sectors);
    EXPECT_TRUE(formats[i].Wipe);
    EXPECT_FALSE(formats[10 + i].Wipe);
  }
}

TEST_F(CardMenuTest, ASizedFormatOfTheFirstKindShowsThePlainDialogAndWipes) {
  MemoryDevice& card = Insert("card", 5000);
  card.Poke(2 * 50000, 0xE5);
  dialogs.OnCF = Choose("C: - Non ADFS Partition 0");
  RunSizedFormat(disc, dialogs, SizedFormats()[0]);
  disc.TheDisc.CloseFile();
  EXPECT_EQ(card.Peek(2 * 50000), 0);
  EXPECT_EQ(DiscByte(card, 0, 253), 0x10);
  EXPECT_EQ(host.LogOf("rebuild").size(), 1u);
}

TEST_F(CardMenuTest, ASizedFormatOfTheSecondKindShowsTheFormatDialogAndDoesNotWipe) {
  MemoryDevice& card = Insert("card", 9000);
  card.Poke(2 * 50000, 0xE5);
  dialogs.OnFormatCF = Choose("C: - Non ADFS Partition 0");
  RunSizedFormat(disc, dialogs, SizedFormats()[11]);
  disc.TheDisc.CloseFile();
  EXPECT_EQ(card.Peek(2 * 50000), 0xE5);
  EXPECT_EQ(DiscByte(card, 0, 253), 0x20);
}

}  // namespace
}  // namespace sectorbox::testing
