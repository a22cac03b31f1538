// Discs with damage of every kind. Every operation on them ends in bounded time, reads and writes
// only its own memory, and shows no messages but its own.

#include <filesystem>
#include <random>

#include "disc/change/Compaction.h"
#include "disc/exchange/HostExchange.h"
#include "disc/host/HostError.h"
#include "tests/disc/EngineTest.h"

namespace sectorbox {
namespace {

using namespace testing;

class DamagedDiscTest : public EngineTest {
 protected:
  static ImageBuilder Small() {
    ImageBuilder image(640);
    const auto dir = image.AddDirectory(2, "B");
    const auto sub = image.AddDirectory(dir, "SUB");
    for (int i = 0; i < 6; ++i) {
      image.AddFile(sub, {"F" + std::to_string(i), Pattern(300), 0, 0, "WR"});
      image.AddHole(2);
      image.AddFile(2, {"G" + std::to_string(i), Pattern(500), 0, 0, "LWR"});
    }
    return image;
  }

  void RunEverything(int round) {
    host_.AcceptMessages = true;
    const std::string file = HostFile("B.NEW", Pattern(400));
    const auto attempt = [&](const auto& operation) {
      try {
        operation();
      } catch (const HostError&) {
        // For a file name that the host can't take the message is the host's.
      }
    };
    attempt([&] { ExportFiles(disc_, folder_ / ("out" + std::to_string(round)), 2); });
    attempt([&] { (void)AddFile(disc_, 2, file); });
    attempt([&] { (void)RenameEntry(disc_, "RENAMED", "B", 2, true); });
    attempt([&] { (void)SetEntryAttributes(disc_, 2, "RENAMED", true, false, false); });
    attempt([&] { (void)SetEntryAddresses(disc_, 2, "G1", "12345678", "0"); });
    attempt([&] { (void)NewDirectory(disc_, 2, "MADE"); });
    attempt([&] { (void)SetDirTitle(disc_, 12, "TITLE"); });
    attempt([&] { (void)DeleteEntry(disc_, 2, "G2", false, true); });
    attempt([&] { (void)CompactDisc(disc_); });
    attempt([&] {
      (void)DeleteTree(disc_, 2, GetEntrySector(disc_, 2, "RENAMED"), "RENAMED", true, true);
    });
    attempt([&] { (void)DeleteTree(disc_, -1, 2, "$", true, true); });
    EXPECT_TRUE(disc_.TrackedSectors.empty());
    std::filesystem::remove_all(folder_ / ("out" + std::to_string(round)));
  }
};

TEST_F(DamagedDiscTest, RandomBytesInTheMapAndTheDirectoriesHurtNoOperation) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    ImageBuilder image = Small();
    const int pokes = 1 + static_cast<int>(random() % 30);
    for (int i = 0; i < pokes; ++i) {
      // Sectors 0 to 16: the map, the root and both directories.
      const auto at = static_cast<std::int64_t>(random() % (17 * 256));
      image.Poke(at, static_cast<std::uint8_t>(random() % 3 ? random() % 24 : random()));
    }
    Open(image, seed % 4 == 0 ? kAdl : kAdf);
    RunEverything(static_cast<int>(seed));
  }
}

TEST_F(DamagedDiscTest, DirectoriesThatLieInOneAnotherHurtNoOperation) {
  for (int offset = 0; offset < 16; ++offset) {
    SCOPED_TRACE(offset);
    ImageBuilder image = Small();
    image.Poke(7 * 256 + 5 + 22, static_cast<std::uint8_t>(offset));
    Open(image);
    RunEverything(offset);
  }
}

TEST_F(DamagedDiscTest, OverlappingRunsAreBelieved) {
  ImageBuilder image = Small();
  image.SetFreeRuns({{10, 30}, {20, 700}, {0, 640}});
  Open(image);
  RunEverything(0);
}

TEST_F(DamagedDiscTest, AFileThatIsNoDiscAtAllHurtsNoOperation) {
  Open(Pattern(4096), kAdf);
  RunEverything(0);
  Open(Bytes(4096, 0xFF), kAdf);
  RunEverything(1);
}

}  // namespace
}  // namespace sectorbox
