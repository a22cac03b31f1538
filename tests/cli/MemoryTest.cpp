// How much memory sbx takes for images that are large or made to do harm. The memory of a process
// with sanitizers says nothing, so there only the results are looked at.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>

#include "tests/support/CrowdedDisc.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;
namespace fs = std::filesystem;

#ifdef __SANITIZE_ADDRESS__
constexpr bool kMemoryTells = false;
#else
constexpr bool kMemoryTells = true;
#endif

constexpr std::uint32_t kMegabyte = 1 << 20;
constexpr long kMost = 64 * 1024;  // kilobytes

class MemoryTest : public ::testing::Test {
 protected:
  ~MemoryTest() override {
    if (kMemoryTells && childrenBefore_ < kMost && OwnPeak() < kMost) {
      EXPECT_LT(PeakOf(RUSAGE_CHILDREN), kMost);
    }
  }

  // The host tells the peak of the largest child so far, and what a child had of this process
  // before it became sbx counts too. So a test whose process has had larger ones before can't tell.
  static long PeakOf(int who) {
    rusage used{};
    ::getrusage(who, &used);
    return used.ru_maxrss;
  }
  static long OwnPeak() { return PeakOf(RUSAGE_SELF); }

  // A .dat of that many sectors with one file BIG, which fills it. No byte of the file is there:
  // the host keeps no room for them.
  std::string OneFile(std::uint32_t sectors, std::uint32_t address = 0) {
    ImageBuilder image(640);
    image.AddFile(2, {"BIG", {}, address, address, "WR"});
    const auto put = [&](std::int64_t at, std::uint32_t value, int bytes) {
      for (int i = 0; i < bytes; ++i) image.Poke(at + i, static_cast<std::uint8_t>(value >> 8 * i));
    };
    image.SetFreeRuns({});
    put(252, sectors, 3);
    put(517 + 18, (sectors - 7) * 256, 4);
    image.FixChecksums();
    std::string path = folder_ / "one.dat";
    image.WriteTo(path);
    fs::resize_file(path, std::uintmax_t{sectors} * 256);
    return path;
  }
  std::string Crowded(const std::vector<std::uint8_t>& bytes) {
    WriteAll(folder_ / "crowded.dat", bytes);
    return folder_ / "crowded.dat";
  }

  TempFolder folder_;
  const long childrenBefore_ = PeakOf(RUSAGE_CHILDREN);
};

TEST_F(MemoryTest, AFileWithoutLineEndsIsShownAsTextPartByPart) {
  const std::string image = OneFile(80 * kMegabyte / 256);
  EXPECT_EQ(RunSbx({"text", image, "BIG", "-o", folder_ / "out"}).Status, 0);
  EXPECT_EQ(fs::file_size(folder_ / "out"), 80U * kMegabyte - 7 * 256);
}

TEST_F(MemoryTest, AFileIsReadAndExportedPartByPart) {
  const std::string image = OneFile(1000 * kMegabyte / 256);
  EXPECT_EQ(RunSbx({"get", image, "BIG", "-o", folder_ / "out"}).Status, 0);
  EXPECT_EQ(fs::file_size(folder_ / "out"), 1000U * kMegabyte - 7 * 256);
  EXPECT_EQ(RunSbx({"export", image, "$", folder_ / "all"}).Status, 0);
  EXPECT_EQ(fs::file_size(folder_ / "all/BIG"), 1000U * kMegabyte - 7 * 256);
}

TEST_F(MemoryTest, TheViewOfALongWordwiseDocumentEndsAtSixteenMegabytesAndSaysSo) {
  const std::string image = OneFile(70 * kMegabyte / 256, 0xFFFFFFFF);
  {
    // Commands that the line has to remember, as far as the document goes.
    std::fstream file(image, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(7 * 256);
    std::string commands;
    while (commands.size() < kMegabyte) commands += "\x02US";
    for (int i = 0; i < 60; ++i) file << commands;
  }
  const SbxResult result = RunSbx({"wordwise", image, "BIG"});
  EXPECT_NE(result.Out.find("The view ends here: the document is longer than 16 MB\n"),
            std::string::npos);
}

TEST_F(MemoryTest, AHostFileIsAddedPartByPart) {
  WriteText(folder_ / "host", "x");
  fs::resize_file(folder_ / "host", 200U * kMegabyte);
  WriteText(folder_ / "new.dat", "");
  ASSERT_EQ(RunSbx({"new", "256m", folder_ / "new.dat", "--force"}).Status, 0);
  EXPECT_EQ(RunSbx({"add", folder_ / "new.dat", "$", folder_ / "host"}).Status, 0);
  EXPECT_EQ(RunSbx({"get", folder_ / "new.dat", "host", "-o", folder_ / "back"}).Status, 0);
  EXPECT_EQ(fs::file_size(folder_ / "back"), 200U * kMegabyte);
}

TEST_F(MemoryTest, EveryReadingCommandStaysSmallOnADiscFullOfDirectories) {
  const std::string image = Crowded(CrowdedDisc(30000, [](std::int32_t n, std::int32_t k) {
    const std::string name = "\x01" + std::to_string(100 + k);
    return CrowdedEntry{name, k % 3 == 0 ? 2 + 5 * (n / 2) : 7 + n * k % 140000, 100, k % 3 == 0};
  }));
  for (const char* command : {"check", "tree", "info", "map", "cat", "ls"}) {
    const SbxResult result = RunSbx({command, image});
    EXPECT_LE(result.Status, 1) << command;
  }
  for (const char* command : {"check", "tree", "ls"}) {
    EXPECT_LE(RunSbx({command, image, "--json"}).Status, 1) << command;
  }
}

TEST_F(MemoryTest, EveryChangeOfADiscFullOfDirectoriesStaysSmall) {
  const std::string image = Crowded(CrowdedDisc(30000, [](std::int32_t n, std::int32_t k) {
    return CrowdedEntry{"F" + std::to_string(100 + k), 7 + n * k % 140000, 100, false};
  }));
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"title", image, "$", "T"}, {"delete", image, "F100"}, {"compact", image}}) {
    EXPECT_EQ(RunSbx(words).Out, "") << words[0];
  }
}

}  // namespace
}  // namespace sectorbox
