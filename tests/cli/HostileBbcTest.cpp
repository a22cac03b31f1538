// What sbx does at a prompt if the BBC sends without end, too slowly, or nothing. Real processes in
// real time, all at once, as most of them run for a minute.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdlib>
#include <thread>
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
      // On a busy machine some pauses are longer, and are taken for the end of a piece.
      {{"star", "CAT"}, kAtTheStar, 80, "x", "", 90},
      {{"star", "CAT"}, kAtTheStar, 500, "x", "", 90},
      {{"bootstrap", "basic"}, kAtOnce, -1, "", kSilent, 90},
      {{"bootstrap", "format"}, kAtOnce, -1, "", kSilent, 90},
  };
}

void ExpectEnd(const HostileRun& run) {
  PtyBbc line;
  line.Bbc.Drives[0] = NoiseDisc(640, {});
  line.Flood = run.Sent;
  line.FloodAfterCommands = run.AfterCommands;
  line.FloodMilliseconds = run.Milliseconds;
  line.TakesNothing = run.Milliseconds < 0;
  std::vector<std::string> words = run.Arguments;
  words.insert(words.end(), {"--port", line.Device()});
  line.Start();
  const auto start = Clock::now();
  const SbxResult result = RunSbx(words);
  const auto took = Clock::now() - start;
  line.Stop();
  const std::string name = run.Arguments[0] + " after " + std::to_string(run.AfterCommands) +
                           ", every " + std::to_string(run.Milliseconds) + " ms";
  EXPECT_LE(took, std::chrono::seconds(run.AtMost)) << name;
  EXPECT_EQ(result.Status, 1) << name;
  EXPECT_EQ(Lines(result.Err).size(), 1U) << name << result.Err;
  if (!run.Err.empty()) {
    EXPECT_EQ(result.Err, run.Err) << name;
  }
}

// A sanitizer would keep what the program gives back, and that would count as the program's memory.
void KeepNoFreedMemory() {
  const char* given = std::getenv("ASAN_OPTIONS");
  const std::string options = given == nullptr ? "" : std::string(given) + ":";
  ::setenv("ASAN_OPTIONS", (options + "quarantine_size_mb=1").c_str(), 1);
}

TEST(HostileBbcTest, EveryCommandEndsWithAStatusAndALine) {
  KeepNoFreedMemory();
  TempFolder folder;
  WriteAll(folder / "sent.adf", NoiseDisc(640, {}));
  std::vector<std::thread> threads;
  for (const HostileRun& run : AllRuns(folder.Path())) {
    threads.emplace_back([run] { ExpectEnd(run); });
  }
  for (std::thread& thread : threads) thread.join();
  rusage used{};
  ::getrusage(RUSAGE_CHILDREN, &used);
  EXPECT_LT(used.ru_maxrss, 64 * 1024);  // of the largest, in kilobytes
}

}  // namespace
}  // namespace sectorbox::testing
