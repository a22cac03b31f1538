#include "link/transfer/ReceiveImage.h"

#include <gtest/gtest.h>

#include "link/transfer/TransferFile.h"
#include "tests/link/LinkRig.h"

namespace sectorbox::testing {
namespace {

using Runs = std::vector<std::pair<int, int>>;
using Bytes = std::vector<std::uint8_t>;

class ReceiveImageTest : public ::testing::Test {
 protected:
  bool Receive(const std::string& name, bool dataOnly = false) {
    rig.Host.FileAnswers.push_back(rig.Folder / name);
    std::string fileName;
    return ReceiveImage(rig.TheLink, 0, dataOnly, fileName);
  }
  Bytes File(const std::string& name) const { return ReadAll(rig.Folder / name); }
  std::vector<std::string> Reads() const {
    std::vector<std::string> reads;
    for (const auto& command : rig.Bbc.Heard) {
      if (command[0] == 'A') reads.push_back(command);
    }
    return reads;
  }

  LinkRig rig;
};

TEST_F(ReceiveImageTest, AWholeReceiveRunsThisExchangeFromConnectToSound) {
  const Bytes disc = DiscOfEightSectors();
  rig.Bbc.Drives[4] = disc;
  rig.Host.Wave = true;
  rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
  std::string fileName;
  EXPECT_TRUE(ReceiveImage(rig.TheLink, 4, false, fileName));
  EXPECT_EQ(fileName, rig.Folder / "x.dat");
  const std::string ack =
      "trace RX: 0000 : 2D 2D 2D 2D 2D 42 42 43 2D 2D 2D 2D 2D 50 43 2D  -----BBC-----PC-";
  const std::string ackEnd =
      "trace RX: 0010 : 2D 2D 2D 2D 0A 0D                                ----..";
  const std::vector<std::string> expected = {
      "settings 1200,N,8,1",
      "settings 1200,N,8,1",
      "open 1200,N,8,1",
      "trace TX: 0000 : 53 31 39 32 30 30 0D                             S19200.",
      "close",
      "settings 19200,N,8,1",
      "open 19200,N,8,1",
      ack,
      ackEnd,
      "trace TX: 0000 : 42 0D                                            B.",
      "trace RX: 0000 : 34 30 39 36 0D                                   4096.",
      "trace Transfer buffer is 16 sectors",
      "trace TX: 0000 : 2A 46 41 44 46 53 0D                             *FADFS.",
      ack,
      ackEnd,
      "trace TX: 0000 : 2A 4D 4F 55 4E 54 20 34 0D                       *MOUNT 4.",
      ack,
      ackEnd,
      "trace Receiving Sectors 0 to 1 of 2",
      "trace TX: 0000 : 41 34 0D 30 0D 32 0D                             A4.0.2.",
      "trace Waiting for CRC",
      "trace RX: 0000 : 33 36 36 37 32 0A 0D                             36672..",
      "trace Received CRC of  36672",
      "trace My CRC =  36672",
      "trace Address : Length",
      "trace 000007  : 000001",
      "trace Size : 000008, 8 sectors",
      "trace Free : 000001, 1 sectors",
      "trace Used : 000007, 7 sectors",
      "save Receive ADFS Image|ADFS (*.dat)|*.dat|",
      "dialog Receive Image",
      "total Read 0 of 8",
      "trace Read 0 of 8",
      "counters 0 0 0",
      "trace Reading 8 sectors starting at sector 0",
      "chunk Receiving Sectors 0 to 7",
      "trace Receiving Sectors 0 to 7",
      "trace TX: 0000 : 41 34 0D 30 0D 38 0D                             A4.0.8.",
      "trace Waiting for CRC",
      "trace RX: 0000 : 33 35 32 39 38 0A 0D                             35298..",
      "trace Received CRC of  35298",
      "trace My CRC =  35298",
      "percent 100",
      "total Read 8 of 8",
      "trace Read 8 of 8",
      "finish",
      "wave /nowhere/xfer.wav",
  };
  EXPECT_EQ(rig.Host.Log, expected);
  EXPECT_EQ(File("x.dat"), disc);
}

TEST_F(ReceiveImageTest, TheKindOfImageFollowsFromTheDiscsSize) {
  const std::vector<std::pair<int, std::string>> kinds = {
      {640, "adf"}, {1280, "adf"}, {2560, "adl"}, {800, "dat"}};
  for (const auto& [sectors, extension] : kinds) {
    LinkRig one;
    one.Bbc.SetBuffer(64);
    one.Bbc.Drives[0] = NoiseDisc(sectors, {});
    one.Host.FileAnswers.push_back(one.Folder / "image");
    std::string fileName;
    EXPECT_TRUE(ReceiveImage(one.TheLink, 0, false, fileName));
    EXPECT_EQ(one.Host.LogOf("save").at(0),
              "save Receive ADFS Image|ADFS (*." + extension + ")|*." + extension + "|");
    const auto file = ReadAll(one.Folder / "image");
    EXPECT_EQ(file, extension == "adl" ? Interleave(one.Bbc.Drives[0]) : one.Bbc.Drives[0]);
  }
}

TEST_F(ReceiveImageTest, TheThirdSectorOfTrack80OfAnAdlLiesAtStoredTrackOne) {
  EXPECT_EQ(TransferOffset(FileLayout::kDoubleSided, 1282), (16 + 2) * 256);
  EXPECT_EQ(TransferOffset(FileLayout::kLinear, 1282), 1282 * 256);
}

TEST_F(ReceiveImageTest, AFullyUsedDiscIsOneAreaAlsoForADataImage) {
  rig.Bbc.Drives[0] = NoiseDisc(40, {});
  EXPECT_TRUE(Receive("x", true));
  EXPECT_EQ(File("x"), rig.Bbc.Drives[0]);
  EXPECT_EQ(rig.Host.LogOf("trace Reading"),
            (std::vector<std::string>{"trace Reading 40 sectors starting at sector 0"}));
}

TEST_F(ReceiveImageTest, FreeSpaceThatEndsWithTheDiscEndsTheLastAreaAtItsStart) {
  rig.Bbc.Drives[0] = NoiseDisc(60, {{10, 5}, {30, 30}});
  EXPECT_TRUE(Receive("x", true));
  EXPECT_EQ(rig.Host.LogOf("trace Reading"),
            (std::vector<std::string>{"trace Reading 10 sectors starting at sector 0",
                                      "trace Reading 15 sectors starting at sector 15"}));
  EXPECT_EQ(File("x").size(), 30U * 256);
}

TEST_F(ReceiveImageTest, UsedSectorsBehindTheLastRunAreAnAreaOfTheirOwn) {
  rig.Bbc.Drives[0] = NoiseDisc(60, {{10, 5}, {30, 10}});
  EXPECT_TRUE(Receive("x", true));
  EXPECT_EQ(rig.Host.LogOf("trace Reading"),
            (std::vector<std::string>{"trace Reading 10 sectors starting at sector 0",
                                      "trace Reading 15 sectors starting at sector 15",
                                      "trace Reading 20 sectors starting at sector 40"}));
  Bytes expected = rig.Bbc.Drives[0];
  std::fill(expected.begin() + 10 * 256, expected.begin() + 15 * 256, std::uint8_t{0});
  std::fill(expected.begin() + 30 * 256, expected.begin() + 40 * 256, std::uint8_t{0});
  EXPECT_EQ(File("x"), expected);
}

TEST_F(ReceiveImageTest, AWholeReceiveOnlyTracesTheFreeRunsAndCountsTheWholeDisc) {
  rig.Bbc.Drives[0] = NoiseDisc(64, {{10, 5}, {30, 34}});
  EXPECT_TRUE(Receive("x"));
  EXPECT_TRUE(rig.Host.Traced("00001E  : 000022"));
  EXPECT_EQ(rig.Host.LogOf("percent"),
            (std::vector<std::string>{"percent 25", "percent 50", "percent 75", "percent 100"}));
  EXPECT_EQ(File("x"), rig.Bbc.Drives[0]);
}

TEST_F(ReceiveImageTest, AReadErrorIsFeltAroundSectorBySectorAndFullChunksResumeBehindIt) {
  rig.Bbc.SetBuffer(32);
  rig.Bbc.Drives[0] = NoiseDisc(96, {});
  rig.Bbc.Faults.CannotRead = {34};
  EXPECT_TRUE(Receive("x"));
  EXPECT_EQ(Reads(), (std::vector<std::string>{"A0|0|2|", "A0|0|32|", "A0|32|32|", "A0|32|1|",
                                               "A0|33|1|", "A0|34|1|", "A0|35|32|", "A0|67|29|"}));
  EXPECT_TRUE(rig.Host.Traced("Error reading sector 000022, 34"));
  EXPECT_EQ(rig.Host.Counters.BadSectors, 2);
  EXPECT_EQ(rig.Host.Counters.Retries, 0);
  Bytes expected = rig.Bbc.Drives[0];
  std::fill(expected.begin() + 34 * 256, expected.begin() + 35 * 256, std::uint8_t{0});
  EXPECT_EQ(File("x"), expected);
}

TEST_F(ReceiveImageTest, AReadErrorThatPassesIsFollowedByOneSingleForEachSector) {
  rig.Bbc.SetBuffer(32);
  rig.Bbc.Drives[0] = NoiseDisc(96, {});
  rig.Bbc.Faults.CannotRead = {40};
  rig.Host.OnLog = [&](const std::string& line) {
    if (line == "trace Read Error from BBC") rig.Bbc.Faults.CannotRead.clear();
  };
  EXPECT_TRUE(Receive("x"));
  const auto reads = Reads();
  ASSERT_EQ(reads.size(), 3U + 32 + 1);
  EXPECT_EQ(reads[3], "A0|32|1|");
  EXPECT_EQ(reads[34], "A0|63|1|");
  EXPECT_EQ(reads[35], "A0|64|32|");
  EXPECT_EQ(File("x"), rig.Bbc.Drives[0]);
}

TEST_F(ReceiveImageTest, AGivenUpSectorKeepsWhatAnEarlierCopyHeld) {
  rig.Bbc.Drives[0] = NoiseDisc(20, {});
  const Bytes old(20 * 256, 0x55);
  WriteAll(rig.Folder / "x", old);
  rig.Bbc.Faults.CannotRead = {5};
  EXPECT_TRUE(Receive("x"));
  const Bytes file = File("x");
  EXPECT_EQ(Bytes(file.begin() + 5 * 256, file.begin() + 6 * 256), Bytes(256, 0x55));
  EXPECT_EQ(Bytes(file.begin() + 6 * 256, file.end()),
            Bytes(rig.Bbc.Drives[0].begin() + 6 * 256, rig.Bbc.Drives[0].end()));
}

TEST_F(ReceiveImageTest, CheckBeforeTransferReadsEverythingIntoANewFile) {
  rig.Bbc.Drives[0] = NoiseDisc(40, {});
  rig.Host.Check = true;
  EXPECT_TRUE(Receive("x"));
  EXPECT_EQ(rig.Bbc.SectorsSent, 42);
  EXPECT_EQ(File("x"), rig.Bbc.Drives[0]);
}

TEST_F(ReceiveImageTest, CheckBeforeTransferReadsOnlyTheChunksThatDiffer) {
  for (const int sectors : {640, 2560}) {
    LinkRig one;
    one.Bbc.SetBuffer(16);
    one.Bbc.Drives[0] = NoiseDisc(sectors, {});
    one.Host.Check = true;
    Bytes file = sectors == 2560 ? Interleave(one.Bbc.Drives[0]) : one.Bbc.Drives[0];
    const Bytes whole = file;
    file[20 * 256] ^= 1;
    WriteAll(one.Folder / "x", file);
    one.Host.FileAnswers.push_back(one.Folder / "x");
    std::string fileName;
    EXPECT_TRUE(ReceiveImage(one.TheLink, 0, false, fileName));
    EXPECT_EQ(one.Bbc.SectorsSent, 2 + 16);
    EXPECT_EQ(one.Host.LogOf("trace CRC Match - don't read").size(),
              static_cast<std::size_t>(sectors) / 16 - 1);
    EXPECT_EQ(ReadAll(one.Folder / "x"), whole);
  }
}

TEST_F(ReceiveImageTest, ADriveThatCannotBeComparedIsRead) {
  rig.Bbc.Drives[0] = NoiseDisc(20, {});
  WriteAll(rig.Folder / "x", rig.Bbc.Drives[0]);
  rig.Host.Check = true;
  rig.Bbc.Faults.CannotRead = {17};
  EXPECT_TRUE(Receive("x"));
  EXPECT_EQ(rig.Host.LogOf("trace Error reading sector"),
            (std::vector<std::string>{"trace Error reading sector 000011, 17"}));
  EXPECT_EQ(File("x"), rig.Bbc.Drives[0]);
}

TEST_F(ReceiveImageTest, ASilentCompareCountsARetryAndComesAgainWithNothingShown) {
  rig.Bbc.Drives[0] = NoiseDisc(20, {});
  rig.Host.Check = true;
  rig.Bbc.Faults.SilentEvery = 4;  // the compare of the second chunk
  rig.Host.OnLog = [&](const std::string& line) {
    if (line.starts_with("counters 1")) rig.Bbc.Faults.SilentEvery = 0;
  };
  EXPECT_TRUE(Receive("x"));
  EXPECT_EQ(rig.Host.LogOf("counters").back(), "counters 1 0 0");
  EXPECT_EQ(rig.Host.LogOf("total"),
            (std::vector<std::string>{"total Read 0 of 20", "total Read 16 of 20",
                                      "total Read 20 of 20"}));
  EXPECT_EQ(rig.Host.LogOf("chunk").size(), 3U);
  EXPECT_EQ(File("x"), rig.Bbc.Drives[0]);
}

TEST_F(ReceiveImageTest, NoiseInPlaceOfAChecksumIsNoMatchForANewFile) {
  Bytes disc = NoiseDisc(32, {});
  rig.Bbc.Drives[0] = disc;
  rig.Host.Check = true;
  rig.Host.OnLog = [&](const std::string& line) {
    rig.Bbc.Faults.NoiseForCrcEvery = line.starts_with("trace TX: 0000 : 63") ? 1 : 0;
  };
  EXPECT_TRUE(Receive("x"));
  EXPECT_TRUE(rig.Host.LogOf("trace CRC Match").empty());
  EXPECT_EQ(File("x"), disc);
}

TEST_F(ReceiveImageTest, EachKindOfFailureHasItsCounter) {
  const std::vector<std::pair<const char*, std::function<void(BbcFaults&)>>> table = {
      {"counters 1 0 0", [](BbcFaults& f) { f.NoCrcEvery = 2; }},
      {"counters 0 1 0", [](BbcFaults& f) { f.WrongCrcEvery = 2; }},
      {"counters 0 1 0", [](BbcFaults& f) { f.WrongEscapeEvery = 2; }},
      {"counters 0 1 0", [](BbcFaults& f) { f.ShortStreamEvery = 2; }},
      {"counters 0 1 0", [](BbcFaults& f) { f.LongStreamEvery = 2; }},
  };
  for (const auto& [counters, damage] : table) {
    LinkRig one;
    one.Bbc.Drives[0] = NoiseDisc(16, {});
    damage(one.Bbc.Faults);
    one.Host.FileAnswers.push_back(one.Folder / "x");
    std::string fileName;
    EXPECT_TRUE(ReceiveImage(one.TheLink, 0, false, fileName));
    EXPECT_EQ(one.Host.LogOf("counters").back(), counters);
    EXPECT_EQ(ReadAll(one.Folder / "x"), one.Bbc.Drives[0]);
  }
}

TEST_F(ReceiveImageTest, TheTailOfALongerFileStays) {
  rig.Bbc.Drives[0] = NoiseDisc(20, {});
  WriteAll(rig.Folder / "x", Bytes(25 * 256, 0xEE));
  EXPECT_TRUE(Receive("x"));
  Bytes expected = rig.Bbc.Drives[0];
  expected.insert(expected.end(), 5 * 256, 0xEE);
  EXPECT_EQ(File("x"), expected);
}

TEST_F(ReceiveImageTest, EachFailureOfTheOpeningHasItsWords) {
  const std::vector<std::pair<std::string, std::function<void(SimulatedBbc&)>>> table = {
      {"Beeb Not Responding", [](SimulatedBbc& b) { b.Faults.Mute = true; }},
      {"Beeb Not Responding", [](SimulatedBbc& b) { b.Acknowledge = "hello\r"; }},
      {"Error reading track buffer size", [](SimulatedBbc& b) { b.BufferReply = ""; }},
      {"Error reading track buffer size", [](SimulatedBbc& b) { b.BufferReply = "255\r"; }},
      {"Error reading track buffer size", [](SimulatedBbc& b) { b.BufferReply = "none\r"; }},
      {"Error changing to ADFS", [](SimulatedBbc& b) { b.AdfsFails = true; }},
      {"Error setting drive 0", [](SimulatedBbc& b) { b.MountFails = true; }},
      {"Error reading free space map", [](SimulatedBbc& b) { b.Faults.CannotRead = {1}; }},
      {"Error reading free space map", [](SimulatedBbc& b) { b.Faults.WrongCrcEvery = 1; }},
  };
  for (const auto& [message, damage] : table) {
    LinkRig one;
    one.Bbc.Drives[0] = NoiseDisc(20, {});
    damage(one.Bbc);
    one.Host.ExpectedMessages = {message};
    std::string fileName;
    EXPECT_FALSE(ReceiveImage(one.TheLink, 0, false, fileName)) << message;
    EXPECT_EQ(one.Host.LogOf("message"),
              (std::vector<std::string>{"message Sectorbox|" + message}));
    EXPECT_TRUE(one.Host.LogOf("dialog").empty());
  }
}

TEST_F(ReceiveImageTest, CancellingTheFileDialogEndsSilently) {
  rig.Bbc.Drives[0] = NoiseDisc(20, {});
  rig.Host.FileAnswers.push_back("");
  std::string fileName;
  EXPECT_FALSE(ReceiveImage(rig.TheLink, 0, false, fileName));
  EXPECT_TRUE(rig.Host.LogOf("dialog").empty());
}

TEST_F(ReceiveImageTest, AFileThatCannotBeOpenedIsShownInTheSystemsWords) {
  rig.Bbc.Drives[0] = NoiseDisc(20, {});
  const std::string path = rig.Folder / "no/such/folder/x";
  rig.Host.ExpectedMessages = {path + ": No such file or directory"};
  EXPECT_FALSE(Receive("no/such/folder/x"));
  EXPECT_TRUE(rig.Port.PortOpen());
}

TEST_F(ReceiveImageTest, AHostDiscThatIsFullEndsItInTheSystemsWordsAndTheLinkGoesOn) {
  rig.Bbc.Drives[0] = NoiseDisc(40, {});
  rig.Host.FileAnswers.push_back("/dev/full");
  rig.Host.ExpectedMessages = {"/dev/full: No space left on device"};
  std::string fileName;
  EXPECT_FALSE(ReceiveImage(rig.TheLink, 0, false, fileName));
  EXPECT_EQ(rig.Host.LogOf("warning").size(), 1U);
  EXPECT_FALSE(rig.Host.DialogOpen);
  EXPECT_FALSE(rig.Host.DialogFinished);
  EXPECT_TRUE(Receive("x"));
  EXPECT_EQ(File("x"), rig.Bbc.Drives[0]);
}

TEST_F(ReceiveImageTest, ASecondTransferSkipsTheConnection) {
  rig.Bbc.Drives[0] = NoiseDisc(20, {});
  EXPECT_TRUE(Receive("x"));
  const int opens = rig.Port.Opens;
  EXPECT_TRUE(Receive("y"));
  EXPECT_EQ(rig.Port.Opens, opens);
  EXPECT_EQ(File("x"), File("y"));
}

TEST_F(ReceiveImageTest, AMapWhoseRunsOverlapEndsWithTheMismatchAndIsStillDone) {
  rig.Bbc.Drives[0] = NoiseDisc(60, {{10, 10}, {15, 45}});
  rig.Host.ExpectedMessages = {"Sector write mismatch - written = 10 used = 5"};
  EXPECT_TRUE(Receive("x", true));
  EXPECT_TRUE(rig.Host.Traced("Sector write mismatch - written = 10 used = 5"));
  EXPECT_TRUE(rig.Host.DialogFinished);
}

TEST_F(ReceiveImageTest, AMapOfNoiseEndsTheTransferAndHurtsNothing) {
  for (std::uint32_t seed = 1; seed <= 30; ++seed) {
    LinkRig one;
    auto disc = NoiseDisc(16, {});
    const auto noise = NoiseBytes(512, seed);
    std::copy(noise.begin(), noise.end(), disc.begin());
    one.Bbc.Drives[0] = disc;
    one.Host.AcceptMessages = true;
    one.Host.FileAnswers.push_back(one.Folder / "x");
    // The BBC refuses the sectors behind the end one by one, as long as the user lets the transfer
    // go on.
    one.Host.OnLog = [&](const std::string&) {
      if (one.Host.Log.size() > 400) one.TheLink.AbortRequested = true;
    };
    std::string fileName;
    (void)ReceiveImage(one.TheLink, 0, seed % 2 == 0, fileName);
    EXPECT_LE(ReadAll(one.Folder / "x").size(), 16U * 256);
  }
}

TEST_F(ReceiveImageTest, ABufferOfAnySizeThatTheServerClaimsIsBounded) {
  rig.Bbc.Drives[0] = NoiseDisc(20, {});
  rig.Bbc.BufferReply = "99999999999999999999999999\r";
  EXPECT_TRUE(Receive("x"));
  EXPECT_TRUE(rig.Host.Traced("Transfer buffer is 4096 sectors"));
  EXPECT_EQ(File("x"), rig.Bbc.Drives[0]);
}

}  // namespace
}  // namespace sectorbox::testing
