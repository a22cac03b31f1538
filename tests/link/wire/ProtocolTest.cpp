#include <gtest/gtest.h>

#include "link/transfer/StarCommand.h"
#include "link/wire/Commands.h"
#include "link/wire/Compression.h"
#include "link/wire/Packets.h"
#include "link/wire/Trace.h"
#include "link/wire/WireCRC.h"
#include "tests/link/LinkRig.h"

namespace sectorbox::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::uint32_t CrcOf(const Bytes& bytes) {
  std::uint32_t crc = 0;
  UpdateCRC(crc, bytes);
  return crc;
}

Bytes StreamOf(const Bytes& data) {
  Bytes stream = CompressBytes(data);
  stream.push_back(27);
  stream.push_back(3);
  return stream;
}

TEST(WireCRC, NineDigitsGiveTheKnownValueAndTheTableAgreesWithTheBits) {
  EXPECT_EQ(CrcOf({'1', '2', '3', '4', '5', '6', '7', '8', '9'}), 20100U);
  const Bytes noise = NoiseBytes(5000, 3);
  EXPECT_EQ(CrcOf(noise), BbcCrc({noise.begin(), noise.end()}));
}

TEST(Compressor, TheExampleStreamAndItsCrc) {
  const Bytes stream = StreamOf({0x41, 0x41, 0x41, 0x41, 0x41, 0x1B, 0x42});
  EXPECT_EQ(stream, (Bytes{0x1B, 0, 5, 0x41, 0x1B, 1, 0x42, 0x1B, 3}));
  EXPECT_EQ(CrcOf(stream), 7895U);
}

TEST(Compressor, AnEmptySectorIsARunOf255AndOneByte) {
  const Bytes stream = StreamOf(Bytes(256));
  EXPECT_EQ(stream, (Bytes{27, 0, 255, 0, 0, 27, 3}));
  EXPECT_EQ(CrcOf(stream), 6952U);
}

TEST(Compressor, ARunOfThreeGoesOutLiterallyAndOneOfFourAsARun) {
  EXPECT_EQ(CompressBytes(Bytes{9, 9, 9}), (Bytes{9, 9, 9}));
  EXPECT_EQ(CompressBytes(Bytes{9, 9, 9, 9}), (Bytes{27, 0, 4, 9}));
}

TEST(Compressor, ALongRunIsCutAt255AndItsRestIsLookedAtAfresh) {
  EXPECT_EQ(CompressBytes(Bytes(300, 7)), (Bytes{27, 0, 255, 7, 27, 0, 45, 7}));
  EXPECT_EQ(CompressBytes(Bytes(258, 27)), (Bytes{27, 0, 255, 27, 27, 1, 27, 1, 27, 1}));
}

TEST(Compressor, ThreeEscapesAreEscapedOneByOneAndFourAreARun) {
  EXPECT_EQ(CompressBytes(Bytes{27, 27, 27}), (Bytes{27, 1, 27, 1, 27, 1}));
  EXPECT_EQ(CompressBytes(Bytes{27, 27, 27, 27}), (Bytes{27, 0, 4, 27}));
}

TEST(Compressor, TheWorstDataFitsItsBuffer) {
  Bytes worst;
  for (int i = 0; i < 64 * 256; ++i) worst.push_back(i % 4 == 3 ? 1 : 27);
  EXPECT_LE(CompressBytes(worst).size(), LongestStream(worst.size()));
  EXPECT_EQ(CompressBytes(worst).size(), worst.size() * 7 / 4);
}

// Gives bytes to ReceivePacket as the server would send them.
class PacketTest : public ::testing::Test {
 protected:
  PacketTest() { rig.Connect(); }
  SectorStatus Receive(const Bytes& stream, std::int32_t sectors) {
    rig.Bbc.StarReplies["GO"] = {{0, std::string(stream.begin(), stream.end())}};
    rig.Bbc.Acknowledge = "";
    (void)SendCommand(rig.TheLink, "*GO\r", false);
    crc = 0;
    return ReceivePacket(rig.TheLink,
                         std::span(buffer).first(256 * static_cast<std::size_t>(sectors)), crc,
                         sectors);
  }

  LinkRig rig;
  Bytes buffer = Bytes(4 * 256, 0xCC);
  std::uint32_t crc = 0;
};

TEST_F(PacketTest, WhatWasCompressedComesOutAgainWithTheCrcOfTheWire) {
  Bytes data = NoiseBytes(512, 5);
  std::fill(data.begin() + 100, data.begin() + 127, std::uint8_t{27});  // a count of 27
  const Bytes stream = StreamOf(data);
  EXPECT_EQ(Receive(stream, 2), SectorStatus::kSuccess);
  EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + 512), data);
  EXPECT_EQ(crc, CrcOf(stream));
}

TEST_F(PacketTest, ACountOf27IsNoEscape) {
  Bytes stream = {27, 0, 27, 7};
  stream.insert(stream.end(), 256 - 27, 1);
  stream.insert(stream.end(), {27, 3});
  EXPECT_EQ(Receive(stream, 1), SectorStatus::kSuccess);
  EXPECT_EQ(buffer[26], 7);
  EXPECT_EQ(buffer[27], 1);
}

TEST_F(PacketTest, RunsOfNoneToThreeAreTaken) {
  Bytes stream = {27, 0, 0, 9, 27, 0, 1, 8, 27, 0, 2, 7, 27, 0, 3, 6};
  stream.insert(stream.end(), 250, 1);
  stream.insert(stream.end(), {27, 3});
  EXPECT_EQ(Receive(stream, 1), SectorStatus::kSuccess);
  EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + 7), (Bytes{8, 7, 7, 6, 6, 6, 1}));
}

TEST_F(PacketTest, AStreamOneByteShortTellsItsLength) {
  Bytes stream(255, 1);
  stream.insert(stream.end(), {27, 3});
  EXPECT_EQ(Receive(stream, 1), SectorStatus::kWrongLength);
  EXPECT_TRUE(rig.Host.Traced("Data Decompression Failed - Data Length = 255"));
}

TEST_F(PacketTest, AStreamThatIsTooLongChangesNothingBehindTheBuffer) {
  Bytes stream(300, 1);
  stream.insert(stream.end(), {27, 0, 255, 1, 27, 1, 27, 3});
  EXPECT_EQ(Receive(stream, 1), SectorStatus::kWrongLength);
  EXPECT_TRUE(rig.Host.Traced("Data Decompression Failed - Data Length = 556"));
  EXPECT_EQ(buffer[256], 0xCC);
}

TEST_F(PacketTest, AnUnknownEscapeIsStatusThree) {
  EXPECT_EQ(Receive({1, 27, 4}, 1), SectorStatus::kUnknownEscape);
  EXPECT_TRUE(rig.Host.Traced("Unknown ESCAPE sequence"));
}

TEST_F(PacketTest, TheServersReadErrorIsStatusOne) {
  EXPECT_EQ(Receive({1, 27, 2}, 1), SectorStatus::kReadError);
  EXPECT_TRUE(rig.Host.Traced("Read Error from BBC"));
}

TEST_F(PacketTest, AStreamThatStopsAnywhereTimesOutThirtySecondsAfterItsLastByte) {
  for (const Bytes& part : {Bytes{1}, Bytes{1, 27}, Bytes{27, 0}, Bytes{27, 0, 9}}) {
    const auto start = rig.Clock.Milliseconds();
    EXPECT_EQ(Receive(part, 1), SectorStatus::kTimeOut);
    EXPECT_NEAR(static_cast<double>(rig.Clock.Milliseconds() - start), 30000, 10);
  }
}

TEST_F(PacketTest, AnAbortEndsAStreamAtItsNextItemAndSaysSo) {
  rig.Host.OnPump = [&] {
    if (buffer[9] == 5) rig.TheLink.AbortRequested = true;
  };
  EXPECT_EQ(Receive(Bytes(256, 5), 1), SectorStatus::kTimeOut);
  EXPECT_TRUE(rig.Host.Traced("Transfer Aborted"));
  EXPECT_EQ(buffer[250], 0xCC);
}

TEST_F(PacketTest, AReadWhoseCrcNeverComesIsATimeOutAndResetsTheLink) {
  rig.Bbc.Drives[0] = NoiseDisc(4, {});
  rig.Bbc.Faults.NoCrcEvery = 1;
  EXPECT_EQ(ReadSectors(rig.TheLink, buffer, 0, 0, 4), SectorStatus::kTimeOut);
  const auto log = rig.Host.LogOf("trace ");
  ASSERT_GE(log.size(), 2U);
  EXPECT_EQ(log[log.size() - 2], "trace Waiting for CRC");
  EXPECT_EQ(log.back(), "trace Timeout waiting for response");
  EXPECT_EQ(rig.Host.LogOf("close").size(), 1U);
}

TEST_F(PacketTest, ASendTracesItsSizeWithoutTheEndMarkAndGivesTheCrcOfTheWire) {
  rig.Port.Written.clear();
  const auto pumps = rig.Host.Pumps;
  SendPacket(rig.TheLink, Bytes(256), crc, 1);
  EXPECT_EQ(rig.Port.Written, std::string("\x1B\0\xFF\0\0\x1B\x03", 7));
  EXPECT_EQ(crc, 6952U);
  EXPECT_TRUE(rig.Host.Traced("Compressed Packet Size  5"));
  EXPECT_EQ(rig.Host.Pumps - pumps, 1);
}

TEST_F(PacketTest, AnAbortStopsASendAtOnceWithoutItsEndMark) {
  const Bytes data = NoiseBytes(512, 3);
  const Bytes stream = CompressBytes(data);
  rig.Port.Written.clear();
  rig.Host.OnPump = [&] {
    if (rig.Port.Written.size() > 128) rig.TheLink.AbortRequested = true;
  };
  SendPacket(rig.TheLink, data, crc, 2);
  EXPECT_GT(rig.Port.Written.size(), 128U);
  EXPECT_LT(rig.Port.Written.size(), 260U);
  EXPECT_TRUE(std::string(stream.begin(), stream.end()).starts_with(rig.Port.Written));
}

TEST(Replies, AnAcknowledgeIsTheTokenWithCrOrWithLfAndCr) {
  EXPECT_TRUE(IsAcknowledge("-----BBC-----PC-----\r"));
  EXPECT_TRUE(IsAcknowledge("-----BBC-----PC-----\n\r"));
  for (const char* no : {"-----BBC-----PC-----", "-----BBC-----PC-----\r\n", "",
                         "x-----BBC-----PC-----\r", "-----BBC-----PC-----\r\r"}) {
    EXPECT_FALSE(IsAcknowledge(no)) << no;
  }
}

TEST(Replies, TheErrorTokenIsTestedLikeTheAcknowledge) {
  EXPECT_TRUE(IsStarError("-----BBCerror1-----PC-----\r"));
  EXPECT_TRUE(IsStarError("-----BBCerror1-----PC-----\n\r"));
  for (const char* no : {"-----BBCerror1-----PC-----", "-----BBCerror1-----PC-----\r\n",
                         "-----BBCerror2-----PC-----\r", "-----BBC-----PC-----\r"}) {
    EXPECT_FALSE(IsStarError(no)) << no;
  }
}

// The CRC of zeros is 0, which is also what a text without digits counts as.
TEST(Replies, NoiseIsNoCrcAlsoWhereOursIsZero) {
  LinkRig rig;
  EXPECT_TRUE(TraceCRCs(rig.TheLink, "0\n\r", 0));
  EXPECT_FALSE(TraceCRCs(rig.TheLink, "\x80\xFF", 0));
  EXPECT_FALSE(TraceCRCs(rig.TheLink, "", 0));
}

TEST(Replies, NumbersAreComparedAsNumbers) {
  EXPECT_EQ(LeadingNumber("00123\r"), 123);
  EXPECT_EQ(LeadingNumber("x1"), 0);
  LinkRig rig;
  EXPECT_TRUE(TraceCRCs(rig.TheLink, "00123\r", 123));
  EXPECT_FALSE(TraceCRCs(rig.TheLink, "124\r", 123));
  EXPECT_TRUE(rig.Host.Traced("Received CRC of  123"));
  EXPECT_TRUE(rig.Host.Traced("My CRC =  123"));
}

TEST(Commands, TheWaitForTheLinesHasNoLimitButAbort) {
  LinkRig rig;
  rig.Connect();
  rig.Port.CTS = false;
  rig.Host.OnPump = [&] {
    if (rig.Clock.Milliseconds() > 3'600'000) rig.TheLink.AbortRequested = true;
  };
  EXPECT_EQ(SendCommand(rig.TheLink, "B\r", true), "");
  EXPECT_EQ(rig.Port.Written, "");
  EXPECT_GT(rig.Clock.Milliseconds(), 3'600'000);
}

TEST(Commands, ACommandWaitsUntilDsrRises) {
  LinkRig rig;
  rig.Connect();
  rig.Port.DSR = false;
  rig.Host.OnPump = [&] { rig.Port.DSR = rig.Clock.Milliseconds() > 500; };
  EXPECT_EQ(SendCommand(rig.TheLink, "B\r", true), "4096\r");
}

TEST(Commands, AReplyTimesOutAfterTenSecondsAndSaysSo) {
  LinkRig rig;
  rig.Connect();
  rig.Bbc.Faults.Mute = true;
  EXPECT_EQ(SendCommand(rig.TheLink, "B\r", true), "");
  EXPECT_NEAR(static_cast<double>(rig.Clock.Milliseconds()), 10000, 5);
  EXPECT_TRUE(rig.Host.Traced("Timeout waiting for response"));
}

TEST(Commands, ATenthOfASecondOfSilenceEndsAReply) {
  LinkRig rig;
  rig.Connect();
  rig.Bbc.Acknowledge = "";
  rig.Bbc.StarReplies["X"] = {{0, "one"}, {90, "two"}, {110, "three"}};
  EXPECT_EQ(SendCommand(rig.TheLink, "*X\r", true), "onetwo");
  std::string rest;
  EXPECT_TRUE(ReadReply(rig.TheLink, rest));
  EXPECT_EQ(rest, "three");
}

TEST(Commands, AClosedPortIsOpenedAtTheSettingsThatStand) {
  LinkRig rig;
  rig.Port.Settings("4800,N,8,1");
  rig.Host.Log.clear();
  (void)SendCommand(rig.TheLink, "*X\r", false);
  rig.Port.Close();
  SendRaw(rig.TheLink, "raw");
  EXPECT_EQ(rig.Port.Written, "*X\rraw");
  EXPECT_EQ(rig.Host.Log,
            (std::vector<std::string>{
                "open 4800,N,8,1",
                "trace TX: 0000 : 2A 58 0D                                         *X.", "close",
                "open 4800,N,8,1"}));
}

TEST(Commands, ASpeedChosenWhileThePortIsOpenCountsAtTheNextConnection) {
  LinkRig rig;
  rig.Host.Speed = 4800;
  EXPECT_TRUE(Reconnect(rig.TheLink));
  EXPECT_EQ(rig.Bbc.Speed, 4800);
  Disconnect(rig.TheLink);
  EXPECT_EQ(rig.Bbc.Speed, 1200);
  rig.Host.Speed = 9600;
  EXPECT_TRUE(Reconnect(rig.TheLink));
  EXPECT_EQ(rig.Bbc.Speed, 9600);
}

TEST(Commands, WithoutATickedSpeedTheLinkRunsAt19200) {
  LinkRig rig;
  rig.Host.Speed = 0;
  EXPECT_TRUE(Reconnect(rig.TheLink));
  EXPECT_EQ(rig.Bbc.Heard, (std::vector<std::string>{"S19200|"}));
}

TEST(Commands, AReconnectThatGetsAnotherReplySaysSo) {
  LinkRig rig;
  rig.Bbc.Acknowledge = "-----BBC-----PC-----\r\n";
  rig.Host.ExpectedMessages = {"Beeb Not Responding"};
  EXPECT_FALSE(Reconnect(rig.TheLink));
  EXPECT_EQ(rig.Host.LogOf("message").at(0), "message Sectorbox|Beeb Not Responding");
}

TEST(Commands, AResetThrowsAwayWhatComesInUntilTwoSecondsOfSilence) {
  LinkRig rig;
  rig.Connect();
  rig.Bbc.StarReplies["X"] = {{0, "noise"}, {1500, "more"}};
  (void)SendCommand(rig.TheLink, "*X\r", false);
  ResetLink(rig.TheLink);
  EXPECT_EQ(rig.Port.InBufferCount(), 0U);
  // The last byte has come in after 1.52 seconds.
  EXPECT_NEAR(static_cast<double>(rig.Clock.Milliseconds()), 1520 + 2000 + 500, 30);
  EXPECT_EQ(rig.Host.LogOf("close").size(), 1U);
  EXPECT_EQ(SendCommand(rig.TheLink, "B\r", true), "4096\r");
}

TEST(Trace, ADumpIgnoresBit7InItsText) {
  LinkRig rig;
  TraceHex(rig.TheLink, "\xC1\x1B\x7F", true);
  TraceHex(rig.TheLink, "", true);
  EXPECT_EQ(rig.Host.Trace,
            "NOW TX: 0000 : C1 1B 7F                                         A..\r\n");
}

TEST(Trace, LogAndWindowGetTheSameLinesWithTheSameTime) {
  LinkRig rig;
  rig.Host.FileAnswers.push_back(rig.Folder / "x.log");
  ChooseTraceFile(rig.TheLink);
  TraceLine(rig.TheLink, "one\r");
  TraceLine(rig.TheLink, "two\rthree\r");
  EXPECT_EQ(rig.Host.Trace, "NOW one\r\nNOW two\r\nthree\r\n");
  EXPECT_EQ(ReadText(rig.Folder / "x.log"), rig.Host.Trace);
}

TEST(Trace, NoAppendsYesReplacesAndCancelAsksAgain) {
  LinkRig rig;
  const std::string path = rig.Folder / "x.log";
  WriteText(path, "old\r\n");
  const auto choose = [&](const std::vector<ReplaceAnswer>& answers) {
    for (const auto answer : answers) {
      rig.Host.FileAnswers.push_back(path);
      rig.Host.ReplaceAnswers.push_back(answer);
    }
    ChooseTraceFile(rig.TheLink);
    TraceLine(rig.TheLink, "new\r");
  };
  choose({ReplaceAnswer::kCancel, ReplaceAnswer::kNo});
  EXPECT_EQ(ReadText(path), "old\r\nNOW new\r\n");
  EXPECT_EQ(rig.Host.LogOf("replace").at(0), "replace Replace existing file - " + path + "?");
  choose({ReplaceAnswer::kYes});
  EXPECT_EQ(ReadText(path), "NOW new\r\n");
}

TEST(Trace, CancellingTheChoiceChangesNothingAndAFailedOneEndsTheLog) {
  LinkRig rig;
  const std::string path = rig.Folder / "x.log";
  const std::string missing = rig.Folder / "none/x.log";
  for (const std::string& answer : {path, std::string(), missing}) {
    rig.Host.FileAnswers.push_back(answer);
    if (answer == missing) {
      rig.Host.ExpectedMessages = {missing + ": No such file or directory"};
    }
    ChooseTraceFile(rig.TheLink);
    TraceLine(rig.TheLink, "line\r");
  }
  EXPECT_EQ(ReadText(path), "NOW line\r\nNOW line\r\n");
  EXPECT_FALSE(rig.TheLink.TraceFile.IsOpen());
  EXPECT_EQ(rig.Host.LogOf("save").at(0),
            "save Open Trace Log File|Log Files (*.LOG)|*.log|All Files (*.*)|*.*|");
  EXPECT_EQ(rig.Host.LogOf("warning").size(), 1U);
}

TEST(Trace, AnOldLogThatCannotBeDeletedIsToldAndTheOneThatIsOpenGoesOn) {
  LinkRig rig;
  rig.Host.FileAnswers = {rig.Folder / "x.log", "/proc/version"};
  rig.Host.ReplaceAnswers = {ReplaceAnswer::kYes};
  rig.Host.AcceptMessages = true;
  ChooseTraceFile(rig.TheLink);
  ChooseTraceFile(rig.TheLink);
  ASSERT_EQ(rig.Host.LogOf("warning").size(), 1U);
  EXPECT_TRUE(rig.Host.LogOf("warning")[0].starts_with("warning /proc/version: "));
  TraceLine(rig.TheLink, "line\r");
  EXPECT_EQ(ReadText(rig.Folder / "x.log"), "NOW line\r\n");
}

TEST(StarCommand, OutputInBurstsComesInPiecesAndEndsWithTheToken) {
  LinkRig rig;
  rig.Connect();
  rig.Bbc.StarReplies["CAT"] = {{0, "one\r"}, {600, "two\n\r"}};
  std::vector<std::string> pieces;
  EXPECT_TRUE(
      RunStarCommand(rig.TheLink, "CAT", [&](const std::string& p) { pieces.push_back(p); }));
  EXPECT_EQ(pieces, (std::vector<std::string>{"one\r\n", "two\n\r\n"}));
  EXPECT_EQ(rig.Bbc.Heard, (std::vector<std::string>{"*CAT|"}));
}

TEST(StarCommand, ACommandThatPrintsNothingShowsNothingAndPausesASecond) {
  LinkRig rig;
  rig.Connect();
  std::string shown;
  EXPECT_TRUE(RunStarCommand(rig.TheLink, "FADFS", [&](const std::string& p) { shown += p; }));
  EXPECT_EQ(shown, "");
  // The text comes after the tenth of a second that ended the acknowledge.
  EXPECT_NEAR(static_cast<double>(rig.Clock.Milliseconds()), 1115, 30);
}

TEST(StarCommand, ALeadingStarGoesOutTwiceAndAnErrorShowsTheBbcsText) {
  LinkRig rig;
  rig.Connect();
  rig.Host.ExpectedMessages = {"Bad command\n\r"};
  EXPECT_FALSE(RunStarCommand(rig.TheLink, "*X", [](const std::string&) {}));
  EXPECT_EQ(rig.Bbc.Heard, (std::vector<std::string>{"**X|", "-----BBCerror1-----PC-----"}));
  EXPECT_EQ(rig.Host.LogOf("message").at(0), "message * Command Error|Bad command\n\r");
}

TEST(StarCommand, WhatFollowsTheTokenInAPieceIsDropped) {
  LinkRig rig;
  rig.Connect();
  rig.Bbc.Acknowledge = "-----BBC-----PC-----\n\rrest";
  rig.Bbc.StarReplies["CAT"] = {{0, "one\r"}};
  std::string shown;
  EXPECT_TRUE(RunStarCommand(rig.TheLink, "CAT", [&](const std::string& p) { shown += p; }));
  EXPECT_EQ(shown, "one\r\n");
}

TEST(StarCommand, AnErrorWhoseTextNeverComesIsAProblem) {
  LinkRig rig;
  rig.Connect();
  rig.Bbc.ErrorText = "";
  rig.Host.ExpectedMessages = {"Problem sending * Command"};
  EXPECT_FALSE(RunStarCommand(rig.TheLink, "X", [](const std::string&) {}));
  EXPECT_EQ(rig.Host.LogOf("message").at(0), "message * Command Error|Problem sending * Command");
}

TEST(StarCommand, AnAbortWhileItPrintsEndsItBehindThePieceAtHand) {
  LinkRig rig;
  rig.Connect();
  rig.Bbc.StarReplies["TALK"] = {{0, "one\r"}, {600, "two\r"}, {600, "three\r"}};
  std::string shown;
  EXPECT_TRUE(RunStarCommand(rig.TheLink, "TALK", [&](const std::string& p) {
    shown += p;
    rig.TheLink.AbortRequested = shown.ends_with("two\r\n");
  }));
  EXPECT_EQ(shown, "one\r\ntwo\r\n");
}

TEST(StarCommand, AnAbortLeftByTheLastTransferFailsEveryCommandAtOnce) {
  LinkRig rig;
  rig.Connect();
  rig.TheLink.AbortRequested = true;
  rig.Host.ExpectedMessages = {"Problem sending * Command"};
  EXPECT_FALSE(RunStarCommand(rig.TheLink, "CAT", [](const std::string&) {}));
  EXPECT_EQ(rig.Clock.Milliseconds(), 0);
}

}  // namespace
}  // namespace sectorbox::testing
