#include <gtest/gtest.h>

#include "disc/host/HostError.h"
#include "link/transfer/Bootstrap.h"
#include "link/transfer/ReceiveImage.h"
#include "link/transfer/SendImage.h"
#include "link/wire/Commands.h"
#include "tests/link/LinkRig.h"

namespace sectorbox::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Presses Abort at the n-th turn of the event pump after the dialog has come up.
class AbortAtPump {
 public:
  AbortAtPump(LinkRig& rig, std::int64_t pump) {
    rig.Host.OnPump = [this, &rig, pump] {
      if (!rig.Host.DialogOpen || pressed_) return;
      if (++pumps_ < pump) return;
      pressed_ = true;
      rig.TheLink.AbortRequested = true;
      rig.Host.DialogOpen = false;
    };
  }
  bool Pressed() const { return pressed_; }

 private:
  std::int64_t pumps_ = 0;
  bool pressed_ = false;
};

// A transfer with one fault of each kind: a silence, a wrong CRC, a bad sector.
void MakeTroubled(LinkRig& rig) {
  rig.Bbc.SetBuffer(4);
  rig.Bbc.Drives[0] = NoiseDisc(16, {});
  rig.Bbc.Faults.WrongCrcEvery = 6;
  rig.Bbc.Faults.SilentEvery = 9;
  rig.Bbc.Faults.CannotRead = {6};
  rig.Bbc.Faults.CannotWrite = {6};
}

TEST(Abort, AnywhereInAReceiveEndsItWithAResetAndNoSound) {
  for (const bool check : {false, true}) {
    bool reached = true;
    for (std::int64_t pump = 1; reached; pump += pump < 300 ? 7 : 997) {
      LinkRig rig;
      MakeTroubled(rig);
      rig.Host.Check = check;
      rig.Host.Wave = true;
      rig.Host.FileAnswers.push_back(rig.Folder / "x");
      const AbortAtPump abort(rig, pump);
      std::string fileName;
      const bool done = ReceiveImage(rig.TheLink, 0, false, fileName);
      reached = abort.Pressed();
      EXPECT_TRUE(done || reached);
      if (done) continue;
      EXPECT_EQ(rig.Host.LogOf("close dialog").size(), 1U) << pump;
      EXPECT_EQ(rig.Host.Log.back(), "close dialog");
      EXPECT_TRUE(rig.Host.LogOf("wave").empty());
      EXPECT_TRUE(rig.Port.PortOpen());
      EXPECT_LE(ReadAll(rig.Folder / "x").size(), 16U * 256);
    }
  }
}

TEST(Abort, AnywhereInASendTellsTheServerLeavesItListeningAndPlaysNoSound) {
  for (const bool check : {false, true}) {
    bool reached = true;
    for (std::int64_t pump = 1; reached; pump += pump < 300 ? 7 : 997) {
      LinkRig rig;
      MakeTroubled(rig);
      rig.Host.Check = check;
      rig.Host.Wave = true;
      WriteAll(rig.Folder / "x.dat", NoiseDisc(16, {}, 7));
      rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
      const AbortAtPump abort(rig, pump);
      SendImage(rig.TheLink, 0, false);
      reached = abort.Pressed();
      if (rig.Host.DialogFinished) continue;
      ASSERT_TRUE(reached);
      EXPECT_EQ(rig.Host.Log.back(), "close dialog");
      EXPECT_TRUE(rig.Host.LogOf("wave").empty());
      EXPECT_FALSE(rig.TheLink.AbortRequested);
      EXPECT_EQ(rig.Bbc.Heard.back(), "ESC2") << pump;
      EXPECT_EQ(SendCommand(rig.TheLink, "B\r", true), "1024\r") << pump;
    }
  }
}

TEST(Abort, BetweenTheChunksOfAReceiveNothingIsSaid) {
  LinkRig rig;
  rig.Bbc.Drives[0] = NoiseDisc(40, {});
  rig.Host.FileAnswers.push_back(rig.Folder / "x");
  rig.Host.OnLog = [&](const std::string& line) {
    if (line == "total Read 16 of 40") rig.TheLink.AbortRequested = true;
  };
  std::string fileName;
  EXPECT_FALSE(ReceiveImage(rig.TheLink, 0, false, fileName));
  EXPECT_EQ(rig.Bbc.Heard.back(), "A0|0|16|");
  EXPECT_TRUE(rig.TheLink.AbortRequested);
}

TEST(Abort, InTheStreamOfAReceiveNothingIsSaidEither) {
  LinkRig rig;
  rig.Bbc.Drives[0] = NoiseDisc(40, {});
  rig.Host.FileAnswers.push_back(rig.Folder / "x");
  rig.Host.OnPump = [&] {
    if (rig.Bbc.Heard.back() == "A0|16|16|") rig.TheLink.AbortRequested = true;
  };
  std::string fileName;
  EXPECT_FALSE(ReceiveImage(rig.TheLink, 0, false, fileName));
  EXPECT_EQ(rig.Bbc.Heard.back(), "A0|16|16|");
  EXPECT_TRUE(rig.Host.Traced("Transfer Aborted"));
  EXPECT_EQ(ReadAll(rig.Folder / "x").size(), 16U * 256);
  const TransferCounters& faults = rig.Host.Counters;
  EXPECT_EQ(faults.Retries + faults.BadCRCs + faults.BadSectors, 0);
}

TEST(Abort, BehindTheChecksumOfAReceiveTheServerIsTold) {
  LinkRig rig;
  rig.Bbc.Drives[0] = NoiseDisc(40, {});
  rig.Host.Check = true;
  rig.Host.FileAnswers.push_back(rig.Folder / "x");
  rig.Host.OnPump = [&] {
    if (rig.Bbc.Heard.back()[0] == 'c') rig.TheLink.AbortRequested = true;
  };
  std::string fileName;
  EXPECT_FALSE(ReceiveImage(rig.TheLink, 0, false, fileName));
  EXPECT_EQ(rig.Bbc.Heard.back(), "ESC2");
}

TEST(Abort, WhileAnAcknowledgeIsAwaitedThatNeverComesIsNotLost) {
  LinkRig rig;
  rig.Bbc.Drives[0] = Bytes(40 * 256);
  rig.Bbc.Faults.NoAcknowledgeEvery = 1;
  WriteAll(rig.Folder / "x.dat", NoiseDisc(40, {}));
  rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
  rig.Host.OnPump = [&] {
    if (rig.Bbc.Heard.size() > 5 && rig.Bbc.Heard.size() < 7) rig.TheLink.AbortRequested = true;
  };
  SendImage(rig.TheLink, 0, false);
  EXPECT_FALSE(rig.Host.DialogFinished);
  EXPECT_EQ(rig.Host.Log.back(), "close dialog");
}

TEST(Vanishing, APortThatGoesAnywhereInATransferIsToldAndTheDialogCloses) {
  for (std::int64_t bytes = 1; bytes < 5000; bytes += 97) {
    LinkRig rig;
    MakeTroubled(rig);
    rig.Host.AcceptMessages = true;
    WriteAll(rig.Folder / "x.dat", NoiseDisc(16, {}, 7));
    rig.Host.FileAnswers.push_back(rig.Folder / "x.dat");
    rig.Port.BytesUntilItVanishes = bytes;
    std::string fileName;
    if (bytes % 2 == 0) {
      SendImage(rig.TheLink, 0, false);
    } else {
      EXPECT_FALSE(ReceiveImage(rig.TheLink, 0, false, fileName));
    }
    EXPECT_EQ(rig.Host.LogOf("warning"),
              (std::vector<std::string>{"warning /dev/virtual: No such device"}))
        << bytes;
    EXPECT_FALSE(rig.Host.DialogOpen);
    EXPECT_FALSE(rig.Port.PortOpen());
    rig.Host.FileAnswers.clear();
  }
}

class BootstrapTest : public ::testing::Test {
 protected:
  BootstrapTest() { rig.Host.Folder = rig.Folder.Path(); }
  const std::string kClosing = "REM *********************************\r*FX 2,0\r";
  LinkRig rig;
  double percent = -1;
  BootstrapProgress progress = [this](double p) { percent = p; };
};

TEST_F(BootstrapTest, TheListingGoesLineByLineAlsoTheLastWithoutALineEnd) {
  WriteText(rig.Folder / "adfsxfer.bas", "10 REM A\r\n20 REM B\r\n30 REM C");
  SendBasicProgram(rig.TheLink, progress);
  EXPECT_EQ(rig.Port.Written,
            "10 REM A\r20 REM B\r30 REM C\r"
            "REM *********************************\rREM File Transfer Complete\r"
            "REM Type SAVE \"ADFSXFER\" to save file\rREM Then RUN to start program\r" +
                kClosing);
  EXPECT_EQ(percent, 100.0);
  EXPECT_FALSE(rig.Port.PortOpen());
  EXPECT_EQ(rig.Host.Log.back(), "settings 19200,N,8,1");
}

TEST_F(BootstrapTest, ACancelStillTellsTheScreenOfTheBbc) {
  WriteText(rig.Folder / "adfsxfer.bas", "10 REM A\r\n20 REM B\r\n30 REM C");
  bool pressed = false;
  rig.Host.OnPump = [&] {
    if (pressed || rig.Port.Written != "10 REM A\r20 REM B\r") return;
    pressed = rig.TheLink.AbortRequested = true;
  };
  SendBasicProgram(rig.TheLink, progress);
  EXPECT_EQ(rig.Port.Written,
            "10 REM A\r20 REM B\rREM *********************************\r"
            "REM File Transfer Aborted\r" +
                kClosing);
}

TEST_F(BootstrapTest, AMissingListingComesIntoBeingEmptyAndOnlyTheClosingLinesGo) {
  SendBasicProgram(rig.TheLink, progress);
  EXPECT_EQ(ReadText(rig.Folder / "adfsxfer.bas"), "");
  EXPECT_TRUE(rig.Port.Written.starts_with("REM ****"));
  EXPECT_TRUE(rig.Port.Written.ends_with(kClosing));
}

TEST_F(BootstrapTest, APortThatCannotBeOpenedIsLeftAt19200AllTheSame) {
  rig.Port.CannotOpen = true;
  EXPECT_THROW(SendBasicProgram(rig.TheLink, progress), HostError);
  EXPECT_THROW(SendFormatProgram(rig.TheLink, progress), HostError);
  EXPECT_EQ(rig.Host.Log.back(), "settings 19200,N,8,1");
}

TEST_F(BootstrapTest, ACancelInTheLoaderSendsNeitherTheRestOfItNorTheFormatter) {
  WriteAll(rig.Folder / "aform", NoiseBytes(5738, 4));
  rig.Host.OnPump = [&] { rig.TheLink.AbortRequested = true; };
  SendFormatProgram(rig.TheLink, progress);
  EXPECT_EQ(rig.Port.Written, "10CLS:P.\"Please Wait ...\";:*DISC\r");
  EXPECT_EQ(percent, -1);
}

const char* const kLoaderText =
    "10CLS:P.\"Please Wait ...\";:*DISC\r"
    "20T%=0:F.A%=0TO&1669:C%=GET:T%=(T%+C%)AND255:A%?&2FB3=C%\r"
    "30IF A% MOD 128 = 0 THEN VDU 46\r"
    "40N.:*FX2,0\r"
    "50IFT%=206 CALL &2FB3 ELSE PRINT\"TRANSFER CORRUPT - PLEASE TRY AGAIN\"\r"
    "RUN\r";

TEST_F(BootstrapTest, TheFormatterFollowsItsLoaderByteForByteAtTheLinesSpeed) {
  const Bytes program = NoiseBytes(5738, 4);
  WriteAll(rig.Folder / "aform", program);
  SendFormatProgram(rig.TheLink, progress);
  EXPECT_EQ(rig.Port.Written, kLoaderText + std::string(program.begin(), program.end()));
  EXPECT_EQ(percent, 100.0);
  EXPECT_NEAR(static_cast<double>(rig.Clock.Milliseconds()), (5738 + 209) * 1000.0 / 120, 1000);
}

TEST_F(BootstrapTest, AfterACancelOfTheFormatterNothingMoreIsSent) {
  WriteAll(rig.Folder / "aform", NoiseBytes(5738, 4));
  rig.Host.OnPump = [&] {
    if (rig.Port.Written.size() > 1000) rig.TheLink.AbortRequested = true;
  };
  SendFormatProgram(rig.TheLink, progress);
  EXPECT_LT(rig.Port.Written.size(), 1100U);
  EXPECT_FALSE(rig.Port.PortOpen());
}

}  // namespace
}  // namespace sectorbox::testing
