// What a user at a prompt sees and does while sbx talks to the BBC: the progress line, and Ctrl-C.
// Real processes, in real time.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include "tests/support/NoiseDiscs.h"
#include "tests/support/PtyBbc.h"
#include "tests/support/RunSbx.h"

namespace sectorbox::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

constexpr int kEndedByInterrupt = 128 + 2;

bool StartsWith(const Bytes& whole, const Bytes& start) {
  return start.size() <= whole.size() && std::equal(start.begin(), start.end(), whole.begin());
}

class InterruptTest : public ::testing::Test {
 protected:
  // Starts sbx, presses Ctrl-C when the moment has come (and once more, some while later, if
  // asked), and waits for the end.
  SbxResult Run(std::vector<std::string> arguments, const std::function<bool()>& moment,
                bool twice = false) {
    arguments.insert(arguments.end(), {"--port", line.Device()});
    line.Start();
    SbxProcess sbx(arguments);
    const auto start = Clock::now();
    while (!moment() && Clock::now() - start < seconds(20)) Rest(1);
    EXPECT_TRUE(moment());
    sbx.Interrupt();
    pressed = Clock::now();
    if (twice) {
      Rest(300);
      sbx.Interrupt();
    }
    SbxResult result = sbx.Wait();
    line.Stop();
    return result;
  }
  static void Rest(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
  std::function<bool()> FileHolds(const std::string& path, std::uintmax_t bytes) {
    return [path, bytes] {
      std::error_code missing;
      const auto size = std::filesystem::file_size(path, missing);
      return !missing && size >= bytes;
    };
  }
  std::function<bool()> BbcHeard(std::size_t bytes) {
    return [this, bytes] { return line.Received() >= bytes; };
  }
  void ExpectAborted(const SbxResult& result) {
    EXPECT_EQ(result.Status, 1);
    EXPECT_EQ(result.Out, "");
    EXPECT_EQ(result.Err, "Transfer Aborted\n");
    EXPECT_EQ(line.Bbc.Heard.back(), "Q");
    EXPECT_LT(Clock::now() - pressed, seconds(8));
  }

  PtyBbc line;
  TempFolder folder;
  Clock::time_point pressed;
};

TEST_F(InterruptTest, AReceiveKeepsTheSectorsThatHadCome) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(4);
  const std::string file = folder / "x.adf";
  const SbxResult result =
      Run({"receive", "0", file, "--trace", folder / "log"}, FileHolds(file, 12 * 256));
  ExpectAborted(result);
  const Bytes got = ReadAll(file);
  EXPECT_GE(got.size(), 12U * 256);
  EXPECT_LT(got.size(), 640U * 256);
  EXPECT_EQ(got.size() % 256, 0U);
  EXPECT_TRUE(StartsWith(line.Bbc.Drives[0], got));
  EXPECT_EQ(std::count(line.Bbc.Heard.begin(), line.Bbc.Heard.end(), "ESC2"), 0);
  EXPECT_NE(ReadText(folder / "log").find("of 640\r\n"), std::string::npos);
}

TEST_F(InterruptTest, ASendTellsTheBbcWhichKeepsTheSectorsThatHadArrived) {
  line.Bbc.Drives[0] = Bytes(640 * 256);
  line.Bbc.SetBuffer(4);
  const Bytes disc = NoiseDisc(640, {});
  const std::string file = folder / "x.adf";
  WriteAll(file, disc);
  ExpectAborted(Run({"send", "0", file}, BbcHeard(8000)));
  const auto& heard = line.Bbc.Heard;
  ASSERT_GE(heard.size(), 2U);
  EXPECT_EQ(heard[heard.size() - 2], "ESC2");
  EXPECT_GT(line.Bbc.SectorsWritten, 0);
  EXPECT_LT(line.Bbc.SectorsWritten, 640);
  const auto written = static_cast<std::ptrdiff_t>(line.Bbc.SectorsWritten) * 256;
  EXPECT_TRUE(StartsWith(disc, {line.Bbc.Drives[0].begin(), line.Bbc.Drives[0].begin() + written}));
  EXPECT_EQ(ReadAll(file), disc);
}

TEST_F(InterruptTest, ACompareIsAbortedAsAnExchangeIs) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(4);
  const std::string file = folder / "x.adf";
  WriteAll(file, line.Bbc.Drives[0]);
  ExpectAborted(Run({"send", "0", file, "--check"}, BbcHeard(100)));
  EXPECT_EQ(line.Bbc.SectorsWritten, 0);
}

// The wait for a reply runs to its end. Its message, that the BBC is silent, would then be wrong.
TEST_F(InterruptTest, WhileItConnectsTheAbortIsToldAndNotTheSilence) {
  line.Bbc.Faults.Mute = true;
  const SbxResult result = Run({"receive", "0", folder / "x"}, BbcHeard(7));
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Err, "Transfer Aborted\n");
  EXPECT_FALSE(std::filesystem::exists(folder / "x"));
  EXPECT_LT(Clock::now() - pressed, seconds(15));
}

TEST_F(InterruptTest, AStarCommandThatGoesOnPrintingEndsBehindThePieceAtHand) {
  line.Bbc.StarReplies["TALK"] = {{0, "one\n\r"}};
  for (int i = 0; i < 8; ++i) line.Bbc.StarReplies["TALK"].push_back({700, "more\n\r"});
  const SbxResult result = Run({"star", "TALK"}, BbcHeard(13));
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Out, "one\n");
  EXPECT_EQ(result.Err, "Command Aborted\n");
  EXPECT_EQ(line.Bbc.Heard, (std::vector<std::string>{"S19200|", "*TALK|", "Q"}));
}

TEST_F(InterruptTest, ASecondOneEndsTheProgramAtOnce) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(4);
  const std::string file = folder / "x.adf";
  const SbxResult result = Run({"receive", "0", file}, FileHolds(file, 12 * 256), /*twice=*/true);
  EXPECT_EQ(result.Status, kEndedByInterrupt);
  EXPECT_LT(Clock::now() - pressed, seconds(2));
  EXPECT_TRUE(StartsWith(line.Bbc.Drives[0], ReadAll(file)));
}

// A second pseudo-terminal stands for the user's screen. The test doesn't look at how its far end
// would show the text.
TEST_F(InterruptTest, OnATerminalProgressIsOneLineThatIsWipedAtTheEnd) {
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Bbc.SetBuffer(128);
  PtyBbc screen;
  screen.Bbc.Faults.Mute = true;
  screen.Start();
  line.Start();
  SbxProcess sbx({"receive", "0", folder / "x.adf", "--port", line.Device()}, "", SBX_PATH,
                 screen.Device());
  EXPECT_EQ(sbx.Wait().Status, 0);
  line.Stop();
  screen.Stop();
  const std::string& shown = screen.Bytes();
  EXPECT_NE(shown.find("\rReceiving Sectors 128 to 255 (20%, retries 0, bad CRCs 0, bad sectors 0)"
                       "\x1B[K"),
            std::string::npos);
  EXPECT_EQ(shown.find('\n'), std::string::npos);
  EXPECT_TRUE(shown.ends_with("\r\x1B[K"));
}

}  // namespace
}  // namespace sectorbox::testing
