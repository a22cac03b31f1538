// The real sbx, killed at each call of the host, or with that call failing: the disc is then as it
// was before the command or as it is after it, and goes on working.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/DiscReading.h"
#include "tests/support/ImageBuilder.h"
#include "tests/support/RunSbx.h"
#include "tests/support/TempFolder.h"

namespace sectorbox {
namespace {

using namespace testing;
using Words = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t kSectors = 240;

struct Command {
  const char* Name;
  Words Arguments;  // IMAGE stands for the image
};

struct Image {
  const char* Name;
  const char* File;
  bool IsCard;
};

const std::vector<Command> kCommands = {
    {"Add", {"add", "IMAGE", "$", "NEW"}},
    {"Replace", {"add", "IMAGE", "$", "F03"}},
    {"AddAFolder", {"add", "IMAGE", "$", "TREE"}},
    {"Delete", {"delete", "IMAGE", "$.F05"}},
    {"DeleteATree", {"--delete-non-empty", "on", "delete", "IMAGE", "$.SUB"}},
    {"Rename", {"rename", "IMAGE", "$.F06", "ZZZ"}},
    {"Mkdir", {"mkdir", "IMAGE", "$.SUB", "MADE"}},
    {"Access", {"access", "IMAGE", "$.SUB", "LR"}},
    {"Address", {"address", "IMAGE", "$.F07", "FFFF1900", "FFFF8023"}},
    {"Title", {"title", "IMAGE", "$", "Another"}},
    {"Boot", {"boot", "IMAGE", "exec"}},
    {"Compact", {"compact", "IMAGE"}},
};
constexpr Image kImages[] = {
    {"Adf", "x.adf", false}, {"Dat", "x.dat", false}, {"Card", "x.raw", true}};

using Parameters = std::tuple<Command, Image>;

class FailingHostTest : public ::testing::TestWithParam<Parameters> {
 protected:
  FailingHostTest() {
    WriteAll(folder_ / "NEW", Bytes(3000, 7));
    WriteAll(folder_ / "F03", Bytes(4000, 8));
    std::filesystem::create_directory(folder_ / "TREE");
    for (int i = 0; i < 3; ++i) WriteAll(folder_ / ("TREE/T" + std::to_string(i)), Bytes(700, 9));
    WriteImage();
    before_ = DescribeDisc(Disc());
    EXPECT_EQ(Run().Status, 0);
    after_ = DescribeDisc(Disc());
  }
  ~FailingHostTest() override { Fail("", 0, ""); }

  [[nodiscard]] static const Image& Kind() { return std::get<Image>(GetParam()); }
  [[nodiscard]] std::string Path() const { return folder_ / Kind().File; }
  [[nodiscard]] std::string Name() const { return Kind().IsCard ? "cf:" + Path() + ",0" : Path(); }

  void WriteImage() {
    std::filesystem::remove(Path() + "-journal");
    std::filesystem::remove_all(std::string(std::getenv("XDG_STATE_HOME")) + "/sectorbox");
    ImageBuilder image(kSectors);
    for (int i = 0; i < 10; ++i) {
      if (i == 2) image.AddHole(5);
      image.AddFile(2,
                    {"F0" + std::to_string(i), Bytes(200U + 300U * static_cast<unsigned>(i), 1)});
    }
    const std::int32_t sub = image.AddDirectory(2, "SUB");
    image.AddFile(sub, {"IN", Bytes(900, 2)});
    if (!Kind().IsCard) return image.WriteTo(Path());
    Bytes card;
    for (const std::uint8_t byte : image.Bytes()) card.insert(card.end(), {byte, 0xC5});
    WriteAll(Path(), card);
  }

  [[nodiscard]] Bytes Disc() const {
    const Bytes file = ReadAll(Path());
    Bytes bytes;
    for (std::size_t i = 0; i < file.size(); i += Kind().IsCard ? 2 : 1) bytes.push_back(file[i]);
    // A floppy image may be stored without the free space at its end.
    bytes.resize(static_cast<std::size_t>(kSectors) * 256);
    return bytes;
  }

  static void Fail(const std::string& call, int at, const std::string& how) {
    ::setenv("FAILING_CALL", call.c_str(), 1);
    ::setenv("FAILING_AT", std::to_string(at).c_str(), 1);
    ::setenv("FAILING_HOW", how.c_str(), 1);
  }

  SbxResult Run() { return Run(std::get<Command>(GetParam()).Arguments); }
  SbxResult Run(Words words) {
    for (std::string& word : words) {
      if (word == "IMAGE") word = Name();
    }
    ::setenv("LD_PRELOAD", FAILING_CALLS_PATH, 1);
    // The sanitizer's library would insist on being the first one.
    ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    SbxProcess process(words, folder_.Path());
    ::unsetenv("LD_PRELOAD");
    ::unsetenv("ASAN_OPTIONS");
    return process.Wait();
  }

  // Lets each call fail in turn, until one isn't made any more. How many were.
  int FailEach(const std::string& call, const std::string& how) {
    for (int at = 1;; ++at) {
      WriteImage();
      Fail(call, at, how);
      const SbxResult result = Run();
      Fail("", 0, "");
      const std::string what = call + " " + std::to_string(at) + " " + how + ": " + result.Err;
      ExpectBeforeOrAfter(what, result.Status == 0);
      if (result.Status == 0 || HasFailure()) return at - 1;
    }
  }

  void ExpectBeforeOrAfter(const std::string& what, bool done) {
    // The next command finishes what was interrupted.
    ASSERT_EQ(Run({"check", "IMAGE"}).Status, 0) << what;
    const std::string now = DescribeDisc(Disc());
    ASSERT_TRUE(now == after_ || (!done && now == before_)) << what;
    ASSERT_EQ(Run({"add", "IMAGE", "$", "NEW"}).Status, 0) << what;
    ASSERT_EQ(Run({"check", "IMAGE"}).Status, 0) << what;
    ASSERT_EQ(FaultsOf(Disc()), Words()) << what;
  }

  TempFolder folder_;
  std::string before_;
  std::string after_;
};

TEST_P(FailingHostTest, AKillAtAnyCallLosesNothing) {
  int calls = 0;
  for (const char* call : {"pwrite", "write", "fsync", "rename", "remove"}) {
    calls += FailEach(call, "kill");
  }
  EXPECT_GT(calls, 1);
}

TEST_P(FailingHostTest, AKillInTheMiddleOfAnyWriteLosesNothing) {
  for (const char* call : {"pwrite", "write"}) (void)FailEach(call, "half");
}

TEST_P(FailingHostTest, AnyCallThatFailsLosesNothing) {
  for (const char* call : {"pwrite", "write", "pread", "fsync", "rename"}) {
    (void)FailEach(call, "eio");
  }
}

TEST_P(FailingHostTest, AFullHostLosesNothing) {
  for (const char* call : {"pwrite", "write"}) {
    (void)FailEach(call, "enospc");
    (void)FailEach(call, "nothing");
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, FailingHostTest,
                         ::testing::Combine(::testing::ValuesIn(kCommands),
                                            ::testing::ValuesIn(kImages)),
                         [](const auto& one) {
                           return std::string(std::get<Command>(one.param).Name) + "On" +
                                  std::get<Image>(one.param).Name;
                         });

}  // namespace
}  // namespace sectorbox
