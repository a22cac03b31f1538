// What sbx does at a prompt if the BBC sends without end, too slowly, or nothing. Real processes in
// real time, all at once, as most of them run for a minute.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <memory>
#include <vector>

#include "tests/support/NoiseDiscs.h"
#include "tests/support/PtyBbc.h"
#include "tests/support/RunSbx.h"

namespace sectorbox::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;

const std::string kSilent = "The BBC Has Stopped Answering\n";
const std::string kNotThere = "Beeb Not Responding\n";

struct HostileRun {
  std::vector<std::string> Arguments;
  std::size_t AfterCommands;  // the BBC is sound until then
  int Milliseconds;           // between two bytes; -1: nothing is sent and nothing is taken
  std::string Sent;           // again and again
  std::string Err;
  int AtMost;  // seconds
};

// The first commands of a receive are S, B, *FADFS, *MOUNT, A of the map. The sixth is a chunk's.
constexpr std::size_t kAtOnce = 0;
constexpr std::size_t kAtTheChunk = 6;
constexpr std::size_t kAtTheStar = 2;
constexpr std::size_t kAtTheWrite = 7;

std::vector<HostileRun> AllRuns(const std::string& folder) {
  const std::string got = folder + "/got.adf";
  const std::string sent = folder + "/sent.adf";
  const std::string noise(4096, '7');
  const std::string runs("\x1B\0\xFFx", 4);
  return {
      {{"receive", "0", got}, kAtOnce, 0, noise, kNotThere, 30},
      {{"receive", "0", got}, kAtOnce, 80, "x", kNotThere, 30},
      {{"receive", "0", got}, kAtTheChunk, 0, noise, kSilent, 90},
      {{"receive", "0", got}, kAtTheChunk, 0, runs, kSilent, 90},
      {{"receive", "0", got, "--check"}, kAtTheChunk, 0, noise, kSilent, 90},
      {{"receive", "0", got}, kAtTheChunk, 80, "x", kSilent, 90},
      {{"send", "0", sent}, kAtOnce, 80, "x", kNotThere, 30},
      {{"send", "0", sent}, kAtTheWrite, 0, noise, kSilent, 90},
      {{"send", "0", sent}, kAtTheWrite, 80, "x", kSilent, 90},
      {{"star", "CAT"}, kAtOnce, 80, "x", kNotThere, 30},
      {{"star", "CAT"}, kAtTheStar, 0, noise, "Problem sending * Command\n", 30},
      {{"star", "CAT"}, kAtTheStar, 80, "x", "Problem sending * Command\n", 30},
      {{"star", "CAT"}, kAtTheStar, 500, "x", "", 90},
      {{"bootstrap", "basic"}, kAtOnce, -1, "", kSilent, 90},
      {{"bootstrap", "format"}, kAtOnce, -1, "", kSilent, 90},
  };
}

TEST(HostileBbcTest, EveryCommandEndsWithAStatusAndALine) {
  TempFolder folder;
  WriteAll(folder / "sent.adf", NoiseDisc(640, {}));
  struct Running {
    PtyBbc Line;
    std::unique_ptr<SbxProcess> Sbx;
  };
  const std::vector<HostileRun> runs = AllRuns(folder.Path());
  std::vector<std::unique_ptr<Running>> all;
  const auto start = Clock::now();
  for (const HostileRun& run : runs) {
    all.push_back(std::make_unique<Running>());
    PtyBbc& line = all.back()->Line;
    line.Bbc.Drives[0] = NoiseDisc(640, {});
    line.Flood = run.Sent;
    line.FloodAfterCommands = run.AfterCommands;
    line.FloodMilliseconds = run.Milliseconds;
    line.TakesNothing = run.Milliseconds < 0;
    std::vector<std::string> words = run.Arguments;
    words.insert(words.end(), {"--port", line.Device()});
    line.Start();
    all.back()->Sbx = std::make_unique<SbxProcess>(words);
  }
  for (std::size_t i = 0; i < runs.size(); ++i) {
    SCOPED_TRACE(runs[i].Arguments[0] + " after " + std::to_string(runs[i].AfterCommands) +
                 ", every " + std::to_string(runs[i].Milliseconds) +
                 " ms: " + runs[i].Sent.substr(0, 1));
    const SbxResult result = all[i]->Sbx->Wait();
    EXPECT_LE(Clock::now() - start, std::chrono::seconds(runs[i].AtMost + 15));
    EXPECT_EQ(result.Status, 1);
    if (!runs[i].Err.empty()) {
      EXPECT_EQ(result.Err, runs[i].Err);
    }
    EXPECT_EQ(Lines(result.Err).size(), 1U);
  }
  rusage used{};
  ::getrusage(RUSAGE_CHILDREN, &used);
  EXPECT_LT(used.ru_maxrss, 64 * 1024);  // of the largest, in kilobytes
}

}  // namespace
}  // namespace sectorbox::testing
