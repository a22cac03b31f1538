// The real sbx, killed at each call of the host, or with that call failing: the disc is then as it
// was before the command or as it is after it, and goes on working.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/cli/ChangedImage.h"
#include "tests/support/DiscReading.h"
#include "tests/support/RunSbx.h"

namespace sectorbox {
namespace {

using namespace testing;
using Words = std::vector<std::string>;

constexpr ImageFile kImages[] = {kAdfFile, kDatFile, kCardFile};

using Parameters = std::tuple<SbxCommand, ImageFile>;

// Commands on an image, with one call of the host failing.
class FailingHost : public ::testing::TestWithParam<Parameters> {
 protected:
  FailingHost() : image_(std::get<ImageFile>(GetParam())) {}
  ~FailingHost() override { Fail("", 0, ""); }

  static void Fail(const std::string& call, int at, const std::string& how) {
    ::setenv("FAILING_CALL", call.c_str(), 1);
    ::setenv("FAILING_AT", std::to_string(at).c_str(), 1);
    ::setenv("FAILING_HOW", how.c_str(), 1);
  }

  SbxResult Run() { return Run(std::get<SbxCommand>(GetParam()).Arguments); }
  SbxResult Run(const Words& words) {
    ::setenv("LD_PRELOAD", FAILING_CALLS_PATH, 1);
    // The sanitizer's library would insist on being the first one.
    ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    SbxProcess process(image_.Words(words), image_.Folder());
    ::unsetenv("LD_PRELOAD");
    ::unsetenv("ASAN_OPTIONS");
    return process.Wait();
  }

  // Lets each call fail in turn, until one isn't made any more. How many were.
  int FailEach(const std::string& call, const std::string& how) {
    for (int at = 1;; ++at) {
      const SbxResult result = RunFailing(call, at, how);
      const std::string what = call + " " + std::to_string(at) + " " + how + ": " + result.Err;
      ExpectBeforeOrAfter(what, result.Status == 0);
      if (result.Status == 0 || HasFailure()) return at - 1;
      // A program that was killed says nothing.
      EXPECT_TRUE(result.Status > 128 || !result.Err.empty()) << what;
    }
  }

  // The command goes on with the rest after each transfer that is cut short.
  void CutEachShort() {
    for (const char* call : {"pwrite", "write", "pread"}) {
      const SbxResult result = RunFailing(call, 0, "short");
      EXPECT_EQ(result.Status, 0) << call << ": " << result.Err;
      ExpectBeforeOrAfter(call, true);
    }
  }

  // Looks at what the command has left.
  virtual void ExpectBeforeOrAfter(const std::string& what, bool done) = 0;

  ChangedImage image_;

 private:
  SbxResult RunFailing(const std::string& call, int at, const std::string& how) {
    image_.Write();
    Fail(call, at, how);
    SbxResult result = Run();
    Fail("", 0, "");
    return result;
  }
};

// A change to the image.
class FailingHostTest : public FailingHost {
 protected:
  FailingHostTest() {
    before_ = DescribeDisc(image_.Disc());
    EXPECT_EQ(Run().Status, 0);
    after_ = DescribeDisc(image_.Disc());
  }

  void ExpectBeforeOrAfter(const std::string& what, bool done) override {
    // The next command finishes what was interrupted.
    ASSERT_EQ(Run({"check", "IMAGE"}).Status, 0) << what;
    const std::string now = DescribeDisc(image_.Disc());
    ASSERT_TRUE(now == after_ || (!done && now == before_)) << what;
    ASSERT_EQ(Run({"add", "IMAGE", "$", "NEW"}).Status, 0) << what;
    ASSERT_EQ(Run({"check", "IMAGE"}).Status, 0) << what;
    ASSERT_EQ(FaultsOf(image_.Disc()), Words()) << what;
  }

  std::string before_;
  std::string after_;
};

// A whole file that is written, or resized: its bytes are the old ones or the new ones.
class FailingFileTest : public FailingHost {
 protected:
  FailingFileTest() {
    EXPECT_EQ(Run().Status, 0);
    image_.Write();
    before_ = Files();
    EXPECT_EQ(Run().Status, 0);
    after_ = Files();
  }

  using Bytes = std::vector<std::uint8_t>;
  [[nodiscard]] std::pair<Bytes, Bytes> Files() const {
    return {ReadAll(image_.Path()), ReadAll(image_.Out())};
  }

  void ExpectBeforeOrAfter(const std::string& what, bool done) override {
    ASSERT_EQ(Run({"check", "IMAGE"}).Status, 0) << what;
    const auto now = Files();
    ASSERT_TRUE(now == after_ || (!done && now == before_)) << what;
    // The same command works now.
    ASSERT_EQ(Run().Status, 0) << what;
    ASSERT_EQ(Files(), after_) << what;
  }

  std::pair<Bytes, Bytes> before_;
  std::pair<Bytes, Bytes> after_;
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
  for (const char* call : {"fsync", "mkostemp", "rename"}) (void)FailEach(call, "enospc");
}

TEST_P(FailingHostTest, TransfersThatAreCutShortAreContinued) {
  CutEachShort();
}

TEST_P(FailingFileTest, AKillAtAnyCallLeavesTheOldFileOrTheNew) {
  int calls = 0;
  for (const char* call : {"pwrite", "write", "fsync", "ftruncate", "mkostemp", "rename"}) {
    calls += FailEach(call, "kill");
  }
  for (const char* call : {"pwrite", "write"}) calls += FailEach(call, "half");
  EXPECT_GT(calls, 1);
}

TEST_P(FailingFileTest, AnyCallThatFailsLeavesTheOldFileOrTheNew) {
  for (const char* call :
       {"pwrite", "write", "pread", "fsync", "ftruncate", "mkostemp", "rename"}) {
    (void)FailEach(call, "eio");
  }
}

TEST_P(FailingFileTest, AFullHostLeavesTheOldFileOrTheNew) {
  for (const char* call : {"pwrite", "write", "fsync", "ftruncate", "mkostemp", "rename"}) {
    (void)FailEach(call, "enospc");
  }
  for (const char* call : {"pwrite", "write"}) (void)FailEach(call, "nothing");
}

TEST_P(FailingFileTest, TransfersThatAreCutShortAreContinued) {
  CutEachShort();
}

std::string NameOf(const ::testing::TestParamInfo<Parameters>& one) {
  return std::string(std::get<SbxCommand>(one.param).Name) + "On" +
         std::get<ImageFile>(one.param).Name;
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, FailingHostTest,
                         ::testing::Combine(::testing::ValuesIn(kChangingCommands),
                                            ::testing::ValuesIn(kImages)),
                         NameOf);
// A card has no size of its own that could be changed.
INSTANTIATE_TEST_SUITE_P(
    HardDiscs, FailingFileTest,
    ::testing::Combine(::testing::Values(SbxCommand{"Resize", {"resize", "IMAGE", "1"}},
                                         SbxCommand{"New", {"new", "1m", "OUT", "--force"}}),
                       ::testing::Values(kDatFile)),
    NameOf);
INSTANTIATE_TEST_SUITE_P(Saves, FailingFileTest,
                         ::testing::Combine(::testing::Values(SbxCommand{"Save",
                                                                         {"save", "IMAGE", "OUT"}}),
                                            ::testing::ValuesIn(kImages)),
                         NameOf);

}  // namespace
}  // namespace sectorbox
