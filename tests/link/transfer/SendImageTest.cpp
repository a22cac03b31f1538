#include "link/transfer/SendImage.h"

#include <gtest/gtest.h>

#include "tests/link/LinkRig.h"

namespace sectorbox::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

class SendImageTest : public ::testing::Test {
 protected:
  void Send(const std::string& name, const Bytes& file, bool dataOnly = false) {
    WriteAll(rig.Folder / name, file);
    rig.Host.FileAnswers.push_back(rig.Folder / name);
    SendImage(rig.TheLink, 0, dataOnly);
  }
  std::vector<std::string> Writes() const {
    std::vector<std::string> writes;
    for (const auto& command : rig.Bbc.Heard) {
      if (command[0] == 'a') writes.push_back(command);
    }
    return writes;
  }
  void BlankDrive(int sectors) {
    rig.Bbc.Drives[0] = Bytes(static_cast<std::size_t>(sectors) * 256);
  }

  LinkRig rig;
};

// The log without what the BBC says; the test of the receive shows that.
TEST_F(SendImageTest, AWholeSendRunsThisExchangeFromConnectToSound) {
  const Bytes disc = DiscOfEightSectors();
  rig.Bbc.Drives[4] = Bytes(8 * 256, 0xEE);
  rig.Bbc.FreeReply = "000001 Sectors Free\n\r000007 Sectors Used\n\r";
  rig.Host.Wave = true;
  WriteAll(rig.Folder / "x.dat", disc);
  rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
  SendImage(rig.TheLink, 4, false);
  std::erase_if(rig.Host.Log, [](const std::string& l) { return l.starts_with("trace RX"); });
  const std::vector<std::string> expected = {
      "settings 1200,N,8,1",
      "settings 1200,N,8,1",
      "open 1200,N,8,1",
      "trace TX: 0000 : 53 31 39 32 30 30 0D                             S19200.",
      "close",
      "settings 19200,N,8,1",
      "open 19200,N,8,1",
      "trace TX: 0000 : 42 0D                                            B.",
      "trace Transfer buffer is 16 sectors",
      "open Send ADFS Image|ADFS Disc (*.adl;*.adf;*.dat)|*.adl;*.adf;*.dat|",
      "trace TX: 0000 : 2A 46 41 44 46 53 0D                             *FADFS.",
      "trace TX: 0000 : 2A 4D 4F 55 4E 54 20 34 0D                       *MOUNT 4.",
      "trace TX: 0000 : 2A 46 52 45 45 0D                                *FREE.",
      "trace Address : Length",
      "trace 000007  : 000001",
      "trace Size : 000008, 8 sectors",
      "trace Free : 000001, 1 sectors",
      "trace Used : 000007, 7 sectors",
      "dialog Send Image",
      "total Written 0 of 8",
      "trace Written 0 of 8",
      "counters 0 0 0",
      "trace Writing 8 sectors starting at sector 0",
      "chunk Sending Sectors 0 to 7",
      "trace Sending Sectors 0 to 7",
      "trace TX: 0000 : 61 34 0D 30 0D 38 0D                             a4.0.8.",
      "trace Compressed Packet Size  46",
      "trace Waiting for CRC",
      "trace Received CRC of  51046",
      "trace My CRC =  51046",
      "percent 100",
      "total Written 8 of 8",
      "trace Written 8 of 8",
      "finish",
      "wave /nowhere/xfer.wav",
  };
  EXPECT_EQ(rig.Host.Log, expected);
  EXPECT_EQ(rig.Bbc.Drives[4], disc);
}

TEST_F(SendImageTest, CancellingTheFileDialogEndsSilentlyBeforeTheFirstStarCommand) {
  BlankDrive(40);
  rig.Host.FileAnswers.push_back("");
  SendImage(rig.TheLink, 0, false);
  EXPECT_EQ(rig.Bbc.Heard, (std::vector<std::string>{"S19200|", "B|"}));
  EXPECT_TRUE(rig.Host.LogOf("message").empty());
  EXPECT_TRUE(rig.Host.LogOf("dialog").empty());
}

TEST_F(SendImageTest, DiscsOfEveryKindArriveByteForByte) {
  for (const auto& [sectors, name] : std::vector<std::pair<int, std::string>>{
           {640, "a.adf"}, {1280, "B.ADF"}, {2560, "c.AdL"}, {800, "d.Dat"}}) {
    LinkRig one;
    one.Bbc.SetBuffer(64);
    one.Bbc.Drives[0] = Bytes(static_cast<std::size_t>(sectors) * 256);
    const Bytes disc = NoiseDisc(sectors, {{sectors / 2, 10}});
    WriteAll(one.Folder / name, sectors == 2560 ? Interleave(disc) : disc);
    one.Host.FileAnswers.push_back(one.Folder / name);
    SendImage(one.TheLink, 0, false);
    EXPECT_EQ(one.Bbc.Drives[0], disc) << name;
    EXPECT_TRUE(one.Host.DialogFinished);
    EXPECT_EQ(one.Host.LogOf("dialog"), (std::vector<std::string>{"dialog Send Image"}));
  }
}

TEST_F(SendImageTest, TheExchangeRunsInThisOrder) {
  BlankDrive(40);
  Send("x.dat", NoiseDisc(40, {}));
  EXPECT_EQ(rig.Bbc.Heard,
            (std::vector<std::string>{"S19200|", "B|", "*FADFS|", "*MOUNT 0|", "*FREE|", "a0|0|16|",
                                      "a0|16|16|", "a0|32|8|"}));
  EXPECT_EQ(rig.Host.LogOf("total"),
            (std::vector<std::string>{"total Written 0 of 40", "total Written 16 of 40",
                                      "total Written 32 of 40", "total Written 40 of 40"}));
  EXPECT_EQ(rig.Host.LogOf("trace Writing"),
            (std::vector<std::string>{"trace Writing 40 sectors starting at sector 0"}));
}

TEST_F(SendImageTest, AnyOtherExtensionIsRefusedBeforeTheFirstStarCommand) {
  BlankDrive(40);
  rig.Host.ExpectedMessages = {"Unknown image type"};
  Send("x.img", NoiseDisc(40, {}));
  EXPECT_EQ(rig.Bbc.Heard, (std::vector<std::string>{"S19200|", "B|"}));
}

TEST_F(SendImageTest, AFloppyImageThatIsTooLargeIsRefusedAndTheSameAsDatIsSent) {
  BlankDrive(1000);
  rig.Bbc.FreeReply = "0003E0 free\r000008 used\r";
  rig.Host.ExpectedMessages = {"Drive 0 is too small for the image"};
  Send("x.adf", NoiseDisc(1280, {}));
  EXPECT_TRUE(Writes().empty());
  BlankDrive(1280);
  Send("x.dat", NoiseDisc(1280, {}));
  EXPECT_EQ(rig.Bbc.Drives[0], NoiseDisc(1280, {}));
}

TEST_F(SendImageTest, AnLfBehindTheCrOfTheFreeReplyReadsTheUsedSectorsWrong) {
  BlankDrive(640);
  rig.Bbc.FreeReply = "000100 free\r\n000180 used\r\n";
  rig.Host.ExpectedMessages = {"Drive 0 is too small for the image"};
  Send("x.adf", NoiseDisc(640, {}));
}

TEST_F(SendImageTest, AFreeReplyWithoutACrIsNone) {
  BlankDrive(40);
  rig.Bbc.FreeReply = "000100 free 000100 used";
  rig.Host.OnLog = [&](const std::string& line) {
    if (line.ends_with("*FREE.")) rig.Bbc.Acknowledge = "";
  };
  rig.Host.ExpectedMessages = {"Error getting free space"};
  Send("x.adf", NoiseDisc(40, {}));
  EXPECT_EQ(rig.Bbc.Heard.back(), "*FREE|");
}

TEST_F(SendImageTest, EachFailureOfTheOpeningHasItsWords) {
  const std::vector<std::pair<std::string, std::function<void(SimulatedBbc&)>>> table = {
      {"Error changing to ADFS", [](SimulatedBbc& b) { b.AdfsFails = true; }},
      {"Error setting drive 0", [](SimulatedBbc& b) { b.MountFails = true; }},
      {"Error getting free space", [](SimulatedBbc& b) { b.FreeIsSilent = true; }},
  };
  for (const auto& [message, damage] : table) {
    LinkRig one;
    one.Bbc.Drives[0] = Bytes(40 * 256);
    damage(one.Bbc);
    one.Host.ExpectedMessages = {message};
    // There is no such file. A send opens it only after the three commands have succeeded.
    one.Host.FileAnswers.push_back(one.Folder / "none.adf");
    SendImage(one.TheLink, 0, false);
  }
  BlankDrive(40);
  rig.Host.ExpectedMessages = {rig.Folder / "none.adf" + ": No such file or directory"};
  rig.Host.FileAnswers.push_back(rig.Folder / "none.adf");
  SendImage(rig.TheLink, 0, false);
  EXPECT_EQ(rig.Bbc.Heard.back(), "*FREE|");
}

TEST_F(SendImageTest, ASilentBbcOrBufferSizeEndsItBeforeTheFileIsAskedFor) {
  BlankDrive(40);
  rig.Bbc.BufferReply = "";
  rig.Host.ExpectedMessages = {"Error reading track buffer size", "Beeb Not Responding"};
  SendImage(rig.TheLink, 0, false);
  rig.Port.Close();
  rig.Bbc.Faults.Mute = true;
  SendImage(rig.TheLink, 0, false);
  EXPECT_TRUE(rig.Host.LogOf("open Send").empty());
}

TEST_F(SendImageTest, AWriteWithoutAnAcknowledgeCountsARetryAndNamesDriveAndSector) {
  BlankDrive(40);
  rig.Bbc.Faults.NoAcknowledgeEvery = 2;
  Send("x.dat", NoiseDisc(40, {}));
  EXPECT_EQ(rig.Host.LogOf("trace Received no reply"),
            (std::vector<std::string>{"trace Received no reply for disc 0 sector 16 from BBC",
                                      "trace Received no reply for disc 0 sector 32 from BBC"}));
  EXPECT_EQ(rig.Host.LogOf("counters").back(), "counters 2 0 0");
  // The chunk is sent again. The user sees nothing of the one that failed.
  EXPECT_EQ(rig.Host.LogOf("total").size(), 4U);
  EXPECT_EQ(std::count(rig.Bbc.Heard.begin(), rig.Bbc.Heard.end(), "ESC2"), 2);
  EXPECT_EQ(rig.Bbc.Drives[0], NoiseDisc(40, {}));
}

TEST_F(SendImageTest, AWriteErrorIsFeltAroundAndOnlyTheBadSectorIsSkipped) {
  BlankDrive(40);
  rig.Bbc.Faults.CannotWrite = {18};
  Send("x.dat", NoiseDisc(40, {}));
  EXPECT_EQ(Writes(), (std::vector<std::string>{"a0|0|16|", "a0|16|16|", "a0|16|1|", "a0|17|1|",
                                                "a0|18|1|", "a0|19|16|", "a0|35|5|"}));
  EXPECT_TRUE(rig.Host.Traced("Error writing sector 000012, 18"));
  EXPECT_EQ(rig.Host.Counters.BadSectors, 2);
  Bytes expected = NoiseDisc(40, {});
  std::fill(expected.begin() + 18 * 256, expected.begin() + 19 * 256, std::uint8_t{0});
  EXPECT_EQ(rig.Bbc.Drives[0], expected);
}

TEST_F(SendImageTest, AWriteErrorThatPassesIsFollowedByOneSingleForEachSector) {
  BlankDrive(40);
  rig.Bbc.Faults.CannotWrite = {18};
  rig.Host.OnLog = [&](const std::string& line) {
    if (line.starts_with("trace RX: 0000 : 1B 02")) rig.Bbc.Faults.CannotWrite.clear();
  };
  Send("x.dat", NoiseDisc(40, {}));
  const auto writes = Writes();
  ASSERT_EQ(writes.size(), 2U + 16 + 1);
  EXPECT_EQ(writes[2], "a0|16|1|");
  EXPECT_EQ(writes[17], "a0|31|1|");
  EXPECT_EQ(writes[18], "a0|32|8|");
  EXPECT_TRUE(rig.Host.LogOf("trace Error writing").empty());
  EXPECT_EQ(rig.Bbc.Drives[0], NoiseDisc(40, {}));
}

TEST_F(SendImageTest, AWrongCrcSendsTheChunkAgainAtOnceWithoutAReset) {
  BlankDrive(40);
  rig.Bbc.Faults.WrongCrcEvery = 2;
  Send("x.dat", NoiseDisc(40, {}));
  EXPECT_EQ(rig.Port.Opens, 2);  // both for the connection
  EXPECT_EQ(rig.Host.Counters.BadCRCs, 2);
  EXPECT_EQ(rig.Bbc.Drives[0], NoiseDisc(40, {}));
}

TEST_F(SendImageTest, ACrcThatNeverComesIsARetryWithAResetAndShowsTheTotal) {
  BlankDrive(32);
  rig.Bbc.Faults.NoCrcEvery = 2;
  Send("x.dat", NoiseDisc(32, {}));
  EXPECT_EQ(Writes(), (std::vector<std::string>{"a0|0|16|", "a0|16|16|", "a0|16|16|"}));
  EXPECT_EQ(rig.Host.LogOf("counters").back(), "counters 1 0 0");
  EXPECT_EQ(rig.Port.Opens, 3);
  EXPECT_EQ(rig.Host.LogOf("total Written 16 of 32").size(), 2U);
}

TEST_F(SendImageTest, ADataImageSendsOnlyWhatItsMapDoesNotListAsFree) {
  BlankDrive(60);
  const Bytes disc = NoiseDisc(60, {{10, 5}, {30, 30}});
  Send("x.dat", disc, true);
  EXPECT_EQ(Writes(), (std::vector<std::string>{"a0|0|10|", "a0|15|15|"}));
}

TEST_F(SendImageTest, SectorsPastTheEndOfAShortImageGoOutAsZeros) {
  rig.Bbc.Drives[0] = NoiseDisc(40, {}, 9);
  Bytes disc = NoiseDisc(40, {});
  disc.resize(20 * 256 + 100);
  Send("x.dat", disc);
  disc.resize(40 * 256);
  EXPECT_EQ(rig.Bbc.Drives[0], disc);
}

TEST_F(SendImageTest, CheckBeforeTransferWritesOnlyTheChunksThatDiffer) {
  rig.Bbc.Drives[0] = NoiseDisc(64, {});
  rig.Bbc.Drives[0][20 * 256] ^= 1;
  rig.Host.Check = true;
  Send("x.dat", NoiseDisc(64, {}));
  EXPECT_EQ(Writes(), (std::vector<std::string>{"a0|16|16|"}));
  EXPECT_EQ(rig.Host.LogOf("trace CRC Match - don't write").size(), 3U);
  EXPECT_EQ(rig.Bbc.Drives[0], NoiseDisc(64, {}));
}

TEST_F(SendImageTest, CheckBeforeTransferReadsADoubleSidedFileInItsOwnOrder) {
  const Bytes disc = NoiseDisc(2560, {});
  rig.Bbc.Drives[0] = disc;
  rig.Bbc.Drives[0][1282 * 256] ^= 1;
  rig.Host.Check = true;
  Send("x.adl", Interleave(disc));
  EXPECT_EQ(Writes(), (std::vector<std::string>{"a0|1280|16|"}));
  EXPECT_EQ(rig.Bbc.Drives[0], disc);
}

TEST_F(SendImageTest, ADriveThatCannotBeComparedIsWritten) {
  rig.Bbc.Drives[0] = NoiseDisc(32, {});
  rig.Host.Check = true;
  rig.Bbc.Faults.CannotRead = {17};
  Send("x.dat", NoiseDisc(32, {}));
  EXPECT_EQ(Writes(), (std::vector<std::string>{"a0|16|16|"}));
  EXPECT_EQ(rig.Host.LogOf("trace CRC Match").size(), 1U);
  EXPECT_EQ(rig.Host.LogOf("counters").back(), "counters 0 0 0");
}

TEST_F(SendImageTest, ASilentCompareCountsARetryAndComesAgainWithNothingShown) {
  BlankDrive(32);
  rig.Host.Check = true;
  rig.Bbc.Faults.SilentEvery = 3;  // the compare of the second chunk
  rig.Host.OnLog = [&](const std::string& line) {
    if (line.starts_with("counters 1")) rig.Bbc.Faults.SilentEvery = 0;
  };
  Send("x.dat", NoiseDisc(32, {}));
  EXPECT_EQ(rig.Host.LogOf("counters").back(), "counters 1 0 0");
  EXPECT_EQ(rig.Host.LogOf("total"),
            (std::vector<std::string>{"total Written 0 of 32", "total Written 16 of 32",
                                      "total Written 32 of 32"}));
  EXPECT_EQ(rig.Host.LogOf("chunk").size(), 3U);
  EXPECT_EQ(rig.Bbc.Drives[0], NoiseDisc(32, {}));
}

TEST_F(SendImageTest, AnAbortThatStillStandsMakesTheConnectionFail) {
  BlankDrive(40);
  rig.TheLink.AbortRequested = true;
  rig.Host.ExpectedMessages = {"Beeb Not Responding"};
  SendImage(rig.TheLink, 0, false);
  EXPECT_TRUE(rig.Bbc.Heard.empty());
}

}  // namespace
}  // namespace sectorbox::testing
