// The commands of sbx in a host without memory: each allocation of a command fails in turn, by
// itself or with all that follow. The disc is then as it was before the command or as it is after
// it, the command tells and doesn't claim to be done, and the next one works.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <tuple>

#include "cli/program/Dispatch.h"
#include "tests/cli/ChangedImage.h"
#include "tests/support/failing/FailingInProcess.h"

namespace sectorbox {
namespace {

using namespace testing;
using Words = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

constexpr ImageFile kImages[] = {kAdfFile, kDatFile, kCardFile};

// Keeps a stream of the program in a file while it lives.
class KeptStream {
 public:
  KeptStream(int stream, const std::string& path)
      : stream_(stream), path_(path), former_(::dup(stream)) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    ::dup2(file, stream_);
    ::close(file);
  }
  ~KeptStream() {
    ::dup2(former_, stream_);
    ::close(former_);
  }
  KeptStream(const KeptStream&) = delete;
  KeptStream& operator=(const KeptStream&) = delete;
  [[nodiscard]] std::string Text() const { return ReadText(path_); }

 private:
  int stream_;
  std::string path_;
  int former_;
};

// A command's end, and all that it has left behind.
struct SbxRun {
  int Status = -1;
  std::int64_t Allocations = 0;
  std::string Err;
};

using Parameters = std::tuple<SbxCommand, ImageFile>;

// The host's memory is a folder too, where a sync costs nothing. It is taken if it is there.
struct FastFolder {
  FastFolder() {
    if (::access("/dev/shm", W_OK) == 0) ::setenv("TMPDIR", "/dev/shm", 1);
  }
};

class OutOfMemoryTest : public ::testing::TestWithParam<Parameters> {
 protected:
  // A command's files have their names from the folder.
  OutOfMemoryTest() : image_(std::get<ImageFile>(GetParam())), former_(::open(".", O_RDONLY)) {
    EXPECT_EQ(::chdir(image_.Folder().c_str()), 0);
  }
  ~OutOfMemoryTest() override {
    EXPECT_EQ(::fchdir(former_), 0);
    ::close(former_);
  }

  SbxRun RunIt(const Words& arguments, std::int64_t at = 0, Failing which = Failing::kOne) {
    const Words words = image_.Words(arguments);
    SbxRun run;
    const KeptStream out(STDOUT_FILENO, image_.Folder() + "/.out");
    const KeptStream err(STDERR_FILENO, image_.Folder() + "/.err");
    {
      const FailingMemory memory(at, which);
      run.Status = cli::RunSbx(words);
      run.Allocations = FailingMemory::Count();
    }
    run.Err = err.Text();
    return run;
  }

  // Each of the last allocations fails in turn, dense of them, and each seventh of those before.
  // How many there were.
  std::int64_t FailEach(Failing which, std::int64_t dense) {
    const Words& command = std::get<SbxCommand>(GetParam()).Arguments;
    image_.Write();
    EXPECT_EQ(RunIt({"check", "IMAGE"}).Status, 0);
    before_ = Seen();
    const SbxRun whole = RunIt(command);
    EXPECT_EQ(whole.Status, 0) << whole.Err;
    after_ = Seen();
    for (std::int64_t at = 1; at <= whole.Allocations; ++at) {
      if (at + dense < whole.Allocations && at % 7 != 0) continue;
      image_.Write();
      const SbxRun run = RunIt(command, at, which);
      ExpectBeforeOrAfter(run, "allocation " + std::to_string(at) + ": " + run.Err);
      if (HasFailure()) break;
    }
    RecordProperty("allocations", std::to_string(whole.Allocations));
    return whole.Allocations;
  }

  // The bytes of the image and of the other file.
  [[nodiscard]] Bytes Seen() const {
    Bytes seen = ReadAll(image_.Path());
    const Bytes out = ReadAll(image_.Out());
    seen.insert(seen.end(), out.begin(), out.end());
    return seen;
  }
  // True for the same bytes, and for a disc that is written in place if only its free sectors have
  // other bytes.
  [[nodiscard]] bool IsLike(const Bytes& now, const Bytes& then) const {
    if (now == then) return true;
    if (std::get<ImageFile>(GetParam()).Sectors != kDatFile.Sectors) return false;
    return now.size() == then.size() &&
           DescribeDisc(image_.DiscIn(now)) == DescribeDisc(image_.DiscIn(then));
  }

  void ExpectBeforeOrAfter(const SbxRun& run, const std::string& what) {
    // An allocation that a library can do without may fail and the command be done.
    if (run.Status != 0) {
      EXPECT_EQ(run.Status, 1) << what;
      EXPECT_NE(run.Err, "") << what;
    }
    const bool hadJournal = image_.HasJournal();
    if (hadJournal) {
      EXPECT_EQ(RunIt({"check", "IMAGE"}).Status, 0) << what;
    }
    const Bytes now = Seen();
    EXPECT_TRUE(IsLike(now, after_) || (run.Status != 0 && IsLike(now, before_))) << what;
    // The disc goes on working. That it does is seen once for each of the two.
    if (!hadJournal && now == lastSeen_) return;
    lastSeen_ = now;
    EXPECT_EQ(RunIt({"title", "IMAGE", "$", "Once more"}).Status, 0) << what;
    EXPECT_EQ(RunIt({"check", "IMAGE"}).Status, 0) << what;
  }

  FastFolder fast_;
  ChangedImage image_;
  int former_;
  Bytes before_;
  Bytes after_;
  Bytes lastSeen_;
};

TEST_P(OutOfMemoryTest, AnyAllocationThatFailsLosesNothing) {
  EXPECT_GT(FailEach(Failing::kOne, 300), 100);
}

TEST_P(OutOfMemoryTest, MemoryThatIsUsedUpAtAnyMomentLosesNothing) {
  EXPECT_GT(FailEach(Failing::kFromThere, 40), 100);
}

std::string NameOf(const ::testing::TestParamInfo<Parameters>& one) {
  return std::string(std::get<SbxCommand>(one.param).Name) + "On" +
         std::get<ImageFile>(one.param).Name;
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, OutOfMemoryTest,
                         ::testing::Combine(::testing::ValuesIn(kChangingCommands),
                                            ::testing::ValuesIn(kImages)),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(WholeImages, OutOfMemoryTest,
                         ::testing::Combine(::testing::Values(SbxCommand{"Save",
                                                                         {"save", "IMAGE", "OUT"}}),
                                            ::testing::ValuesIn(kImages)),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(
    Files, OutOfMemoryTest,
    ::testing::Combine(::testing::Values(SbxCommand{"New", {"new", "1m", "OUT", "--force"}},
                                         SbxCommand{"Resize", {"resize", "IMAGE", "1"}}),
                       ::testing::Values(kDatFile)),
    NameOf);

}  // namespace
}  // namespace sectorbox
