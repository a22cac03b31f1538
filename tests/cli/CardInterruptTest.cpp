// Ctrl-C in the long jobs on a card. Real processes, in real time.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"

namespace sectorbox::testing {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

class CardInterrupt : public ::testing::Test {
 protected:
  // A card of the largest size, as a file that is full of holes. Each of the jobs takes seconds.
  CardInterrupt() {
    MakeSparse("card", std::uintmax_t{2} << 30);
    fs::create_directory(folder / "out");
  }

  std::string MakeSparse(const std::string& name, std::uintmax_t bytes) {
    WriteAll(folder / name, {});
    fs::resize_file(folder / name, bytes);
    return folder / name;
  }
  // Starts sbx, presses Ctrl-C when the moment has come, and waits for the end.
  SbxResult RunInto(const std::vector<std::string>& words, const std::function<bool()>& moment,
                    int signal = SIGINT) {
    SbxProcess sbx(words);
    const auto start = Clock::now();
    while (!moment() && Clock::now() - start < std::chrono::seconds(20)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(moment());
    sbx.Signal(signal);
    return sbx.Wait();
  }
  // The bytes that a file takes on its medium.
  static std::uintmax_t Taken(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 ? static_cast<std::uintmax_t>(info.st_blocks) * 512 : 0;
  }
  static std::function<bool()> HasTaken(const std::string& path, std::uintmax_t bytes) {
    return [path, bytes] { return Taken(path) >= bytes; };
  }
  static void ExpectAborted(const SbxResult& result, const std::string& told = "") {
    EXPECT_EQ(result.Status, 1);
    EXPECT_EQ(result.Out, "");
    EXPECT_EQ(result.Err, told + "Aborted\n");
  }
  // What is told of a partition on which a work was ended in its middle.
  std::string NoDiscOn(const std::string& partition) const {
    return card + "," + partition +
           ": there is no disc on it now. Format it again, or restore a backup\n";
  }
  std::vector<std::string> Outputs() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder / "out")) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  TempFolder folder;
  const std::string card = folder / "card";
};

TEST_F(CardInterrupt, ABackupLeavesTheOlderOneAndNothingElse) {
  const std::vector<std::uint8_t> older(1000, 0x42);
  WriteAll(folder / "out/b.dat", older);
  // The card is full of zeros, so the backup takes no room by which one could tell how far it is.
  const auto isHalfWay = [this] { return Outputs().size() > 1; };
  ExpectAborted(RunInto({"cf", "backup", card + ",0", folder / "out/b.dat", "--full"}, isHalfWay));
  EXPECT_EQ(Outputs(), std::vector<std::string>{"b.dat"});
  EXPECT_EQ(ReadAll(folder / "out/b.dat"), older);
}

TEST_F(CardInterrupt, ASignalThatEndsTheProgramLeavesNoTemporaryFile) {
  for (const int signal : {SIGTERM, SIGHUP, SIGQUIT}) {
    WriteText(folder / "out/b.dat", "older");
    const auto isHalfWay = [this] { return Outputs().size() > 1; };
    const SbxResult result =
        RunInto({"cf", "backup", card + ",0", folder / "out/b.dat", "--full"}, isHalfWay, signal);
    EXPECT_EQ(result.Status, 128 + signal);
    EXPECT_EQ(Outputs(), std::vector<std::string>{"b.dat"});
    EXPECT_EQ(ReadText(folder / "out/b.dat"), "older");
  }
}

TEST_F(CardInterrupt, AFormatEndsWithoutADisc) {
  ASSERT_EQ(RunSbx({"cf", "format", card + ",0", "512MB", "--quick"}).Status, 0);
  ExpectAborted(RunInto({"cf", "format", card + ",0", "512MB"}, HasTaken(card, 1 << 20)),
                NoDiscOn("0"));
  EXPECT_LT(Taken(card), std::uintmax_t{1} << 30);
  EXPECT_EQ(RunSbx({"cf", "scan", card}).Out, "");
}

TEST_F(CardInterrupt, ARestoreThatEndsInItsMiddleLeavesNoDisc) {
  const std::string file = MakeSparse("in.dat", std::uintmax_t{511} << 20);
  std::vector<std::uint8_t> front = ImageBuilder(0x1FE000).Bytes();
  front.resize(2048);
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    MakeSparse("card", std::uintmax_t{2} << 30);
    ASSERT_EQ(RunSbx({"cf", "format", card + ",1", "512MB", "--quick"}).Status, 0);
    std::fstream(file, std::ios::in | std::ios::out | std::ios::binary)
        .write(reinterpret_cast<const char*>(front.data()), 2048);
    const SbxResult result =
        RunInto({"cf", "restore", card + ",1", file}, HasTaken(card, 1 << 20), signal);
    if (signal == SIGINT) {
      ExpectAborted(result, NoDiscOn("1"));
    } else {
      EXPECT_EQ(result.Status, 128 + signal);
    }
    EXPECT_LT(Taken(card), std::uintmax_t{1} << 30);
    EXPECT_EQ(RunSbx({"cf", "scan", card}).Out, "");
  }
}

TEST_F(CardInterrupt, ASavedImageLeavesTheOlderOneToo) {
  ASSERT_EQ(RunSbx({"cf", "format", card + ",0", "512MB", "--quick"}).Status, 0);
  WriteText(folder / "out/b.dat", "older");
  const auto isHalfWay = [this] { return Outputs().size() > 1; };
  ExpectAborted(
      RunInto({"save", "--pad", "on", "cf:" + card + ",0", folder / "out/b.dat"}, isHalfWay));
  EXPECT_EQ(Outputs(), std::vector<std::string>{"b.dat"});
  EXPECT_EQ(ReadText(folder / "out/b.dat"), "older");
}

}  // namespace
}  // namespace sectorbox::testing
